import { defineWords } from '../words/language.js';

export const words = defineWords({
  right: ['Right', '正确', '正確'],
  wrong: ['Look here', '注意', '注意'],
  sounds: ['Sounds', '声音', '聲音'],
  waiting: ['{count} {count|write waits|writes wait} for the server.', '{count} 条记录等待发送到服务器。', '{count} 筆紀錄等待傳送至伺服器。'],
  ofAnother: [
    'They are of {user} and go when {user} logs in here.',
    '它们属于 {user}，在 {user} 于此登录后发送。',
    '它們屬於 {user}，在 {user} 於此登入後傳送。',
  ],
  refused: ['Not done: {what}. {why}', '未完成：{what}。{why}', '未完成：{what}。{why}'],
  refund: ['Refund under way: {orders}.', '退款中：{orders}。', '退款中：{orders}。'],
  closed: ['Closed: {orders}.', '已关闭：{orders}。', '已關閉：{orders}。'],
  locked: ['Locked: {orders}.', '已锁定：{orders}。', '已鎖定：{orders}。'],
  unchecked: ['Not audited: {orders}.', '未审核：{orders}。', '未審核：{orders}。'],
  wrongState: ['Not in the right state: {orders}.', '状态不符：{orders}。', '狀態不符：{orders}。'],
  notThere: ['Not there: {orders}.', '不存在：{orders}。', '不存在：{orders}。'],
  unknown: ['No order has the number {number}.', '没有编号为 {number} 的订单。', '沒有編號為 {number} 的訂單。'],
  several: [
    'Several orders have the number {number}. Scan the unique code.',
    '多个订单的编号为 {number}，请扫描唯一码。',
    '多個訂單的編號為 {number}，請掃描唯一碼。',
  ],
  othersDone: ['{why} The others were confirmed.', '{why}其余订单已确认。', '{why}其餘訂單已確認。'],
  weighAgain: [
    'The weight is not as expected. Scan and weigh the parcel again.',
    '重量与预期不符，请重新扫描并称重。',
    '重量與預期不符，請重新掃描並秤重。',
  ],
});
