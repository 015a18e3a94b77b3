// States of an order, as lists and its own screen say them.
import { defineWords } from '../words/language.js';

export const valueWords = defineWords({
  toBePicked: ['To be picked', '待配货', '待配貨'],
  toBeDelivered: ['To be delivered', '待发货', '待發貨'],
  delivered: ['Delivered', '已发货', '已發貨'],
  notUploaded: ['Not uploaded', '未上传', '未上傳'],
  uploaded: ['Uploaded', '上传成功', '上傳成功'],
  uploadFailed: ['Upload failed', '上传失败', '上傳失敗'],
  uploading: ['Uploading', '上传中', '上傳中'],
  waiting: ['Waiting', '待处理', '待處理'],
  done: ['Done', '成功', '成功'],
  failed: ['Failed', '失败', '失敗'],
  printing: ['Printing', '打印中', '列印中'],
  served: ['Served', '可达', '可達'],
  notServed: ['Not served by the carrier', '物流不可达', '物流不可達'],
  toBeChecked: ['To be checked', '待检查', '待檢查'],
  exempt: ['Not to be checked', '无需检查', '無需檢查'],
  outsideNot: ['Not submitted', '未提交', '未提交'],
  outsideTaken: ['At the outside warehouse', '外仓已接收', '外倉已接收'],
  outsideFailed: ['Refused; to be submitted again', '失败，待重新提交', '失敗，待重新提交'],
  outsideSubmitted: ['Submitted', '已提交', '已提交'],
});
