// Words that more than one screen says.
import { defineWords } from './language.js';

export const common = defineWords({
  orders: ['Orders', '订单', '訂單'],
  shelf: ['Shelf', '拣货', '揀貨'],
  desk: ['Packing desk', '打包台', '打包台'],
  ramp: ['Ramp', '出库台', '出庫台'],
  outside: ['Outside warehouses', '外仓', '外倉'],
  invoices: ['Cost invoices', '费用发票', '費用發票'],
  uploads: ['Uploads', '上传', '上傳'],
  cancel: ['Cancel', '取消', '取消'],
  close: ['Close', '关闭', '關閉'],
  save: ['Save', '保存', '儲存'],
  undo: ['Undo', '撤销', '復原'],
  retry: ['Try again', '重试', '重試'],
  loading: ['Loading…', '正在加载…', '正在載入…'],
  nothing: ['Nothing here', '没有内容', '沒有內容'],
  yes: ['Yes', '是', '是'],
  no: ['No', '否', '否'],
  search: ['Search', '搜索', '搜尋'],
  all: ['All', '全部', '全部'],
  none: ['None', '无', '無'],
  print: ['Print', '打印', '列印'],
  unreachable: [
    'The server cannot be reached. What you typed stays; it goes on by itself.',
    '无法连接服务器。已输入的内容会保留，恢复后自动继续。',
    '無法連接伺服器。已輸入的內容會保留，恢復後自動繼續。',
  ],
  busy: ['The server is busy. Try again in a moment.', '服务器繁忙，请稍后重试。', '伺服器忙碌中，請稍後重試。'],
  refused: ['You may not do this: {why}', '您没有此权限：{why}', '您沒有此權限：{why}'],
  loggedOut: ['Your login has ended. Log in again to go on.', '登录已失效，请重新登录。', '登入已失效，請重新登入。'],
});
