import { defineWords } from '../words/language.js';

export const shortListWords = defineWords({
  state: ['State', '状态', '狀態'],
  selectAll: ['Select all {count}', '全选 {count} 个', '全選 {count} 筆'],
  select: ['Select {order}', '选择 {order}', '選擇 {order}'],
  more: ['Show {count} more', '再显示 {count} 个', '再顯示 {count} 筆'],
  selected: ['{count} of {all} orders selected', '已选 {count} / {all} 个订单', '已選 {count} / {all} 筆訂單'],
});
