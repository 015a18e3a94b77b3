import { defineWords } from '../words/language.js';

export const workWords = defineWords({
  checking: ['Checking…', '正在检查…', '正在檢查…'],
  progress: ['{done} of {count}', '{done} / {count}', '{done} / {count}'],
  will: ['{count} {count|order|orders} will change.', '将更改 {count} 个订单。', '將變更 {count} 筆訂單。'],
  cannot: ['{count} cannot:', '{count} 个无法更改：', '{count} 筆無法變更：'],
  start: ['{name}: {count} {count|order|orders}', '{name}：{count} 个订单', '{name}：{count} 筆訂單'],
  stop: ['Stop', '停止', '停止'],
  done: ['Done', '已完成', '已完成'],
  onlyDone: ['Only done: {names}', '仅完成：{names}', '僅完成：{names}'],
  notReached: ['Not reached', '未处理', '未處理'],
  wasDone: ['{count} {count|order|orders} done.', '已完成 {count} 个订单。', '已完成 {count} 筆訂單。'],
  wasNot: ['{count} not:', '{count} 个未完成：', '{count} 筆未完成：'],
  left: ['Stopped. {count} {count|order is|orders are} not finished.', '已停止，{count} 个订单未完成。', '已停止，{count} 筆訂單未完成。'],
  order: ['Order', '订单', '訂單'],
  outcome: ['What became of it', '结果', '結果'],
  reason: ['Reason', '原因', '原因'],
  saveList: ['Save as CSV', '保存为 CSV', '儲存為 CSV'],
});
