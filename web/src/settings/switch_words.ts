import { defineWords } from '../words/language.js';

/** What the switches that are read here do. */
export const switchWords = defineWords({
  WebShopAccess: [
    '0: everybody sees the orders of every web shop. Otherwise users see those of their own shops.',
    '0：所有人可查看全部网店的订单；否则用户仅可查看自己网店的订单。',
    '0：所有人可檢視全部網店的訂單；否則使用者僅可檢視自己網店的訂單。',
  ],
  NotCheckRefundOnStatus: [
    '1: orders in refund stay in the lists of their state. 0: they are left out there.',
    '1：退款中的订单仍显示在其状态的列表中；0：不显示。',
    '1：退款中的訂單仍顯示在其狀態的清單中；0：不顯示。',
  ],
  ECPickingGoods: [
    '1: what was picked is checked before delivery.', '1：发货前进行配货检验。', '1：發貨前進行配貨檢驗。',
  ],
  PickByBatch: ['1: articles are picked by batch.', '1：按批次配货。', '1：按批次配貨。'],
  PickGoodsCount: [
    'How many orders a picking run has; 20 when there is none.',
    '每次配货的订单数，未设置时为 20。',
    '每次配貨的訂單數，未設定時為 20。',
  ],
  MarkBilling: ['1: orders are marked as invoiced.', '1：启用订单开票标记。', '1：啟用訂單開票標記。'],
  ECWeightting: ['1: parcels are weighed.', '1：启用包裹称重。', '1：啟用包裹秤重。'],
  AddressReachable: [
    '1: whether the carrier serves the address is checked.',
    '1：检查物流公司能否送达收货地址。',
    '1：檢查物流公司能否送達收貨地址。',
  ],
  ThermalPrinting: ['1: waybills go to a thermal printer.', '1：快递单使用热敏打印机。', '1：快遞單使用熱感印表機。'],
  DownloadWebTpls: [
    'The scheme by which lists of outside warehouses are downloaded. It can be changed here.',
    '下载外仓列表所用的方案，可在此更改。',
    '下載外倉清單所用的方案，可在此變更。',
  ],
});
