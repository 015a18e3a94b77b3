#include "samples/grid_layout.h"

#include <cstdint>
#include <span>
#include <string_view>

#include "samples/insert_rows.h"

namespace tessarlorn::cli {
namespace {

/// FCtlType.
enum class Control : std::uint8_t { kText = 1, kNumber = 2, kDate = 3, kCheck = 4, kLookup = 5 };

struct Field {
  std::string_view key;
  /// Column and table that it comes from; no table: computed.
  std::string_view column;
  std::string_view table;
  std::string_view caption;
  std::string_view caption_traditional;
  Control control;
  bool visible;
  /// Kept in the order itself.
  bool saved;
  /// Of a lookup field: what lists its choices, their id and the column shown.
  std::string_view choices = {};
  std::string_view choice_id = {};
  std::string_view choice_name = {};
};

constexpr std::string_view kOrders = "IC_Web2ERPOrders";
constexpr std::string_view kExtension = "IC_Web2ERPOrdersEx";
constexpr std::string_view kPrints = "IC_PrintOrderInfo";
constexpr std::string_view kLines = "IC_Web2ERPOrdersEntry";
constexpr std::string_view kItems = "t_ICItem";
constexpr std::string_view kEarlyWaybills = "IC_TradeUpdateMemoStatus";

constexpr Field kHeaderFields[] = {
    {"FID", "FID", kOrders, "订单内码", "訂單內碼", Control::kNumber, false, true},
    {"FOrderID", "FOrderID", kOrders, "系统订单号", "系統訂單號", Control::kText, true, true},
    {"FSiteOrderID", "FSiteOrderID", kOrders, "网上订单号", "網上訂單號", Control::kText, true, true},
    {"FUniqueCode", "FUniqueCode", kOrders, "唯一码", "唯一碼", Control::kText, true, true},
    {"FOrderType", "FOrderType", kOrders, "订单类型", "訂單類型", Control::kLookup, true, true,
     "SELECT FInterID,FName FROM t_SubMessage WHERE FTypeID=3811", "FInterID", "FName"},
    {"FOrderDate", "FOrderDate", kOrders, "下单时间", "下單時間", Control::kDate, true, true},
    {"FSitePayDate", "FSitePayDate", kOrders, "付款时间", "付款時間", Control::kDate, true, true},
    {"FOrderFlag", "FOrderFlag", kOrders, "旗帜", "旗幟", Control::kNumber, true, true},
    {"FTradeFrom", "FTradeFrom", kOrders, "交易来源", "交易來源", Control::kText, true, true},
    {"FWebshopID", "FWebshopID", kOrders, "网店", "網店", Control::kLookup, true, true,
     "SELECT FWebShopID,FWebShopName FROM IC_WebshopToStorage", "FWebShopID", "FWebShopName"},
    {"FMergeStatus", "FMergeStatus", kOrders, "合并订单", "合併訂單", Control::kCheck, true, true},
    {"FBuyerNick", "FBuyerNick", kOrders, "买家昵称", "買家暱稱", Control::kText, true, true},
    {"FBuyerName", "FBuyerName", kOrders, "买家姓名", "買家姓名", Control::kText, true, true},
    {"FBuyerEMail", "FBuyerEMail", kOrders, "买家邮箱", "買家郵箱", Control::kText, false, true},
    {"FBuyerPayMode", "FBuyerPayMode", kOrders, "付款方式", "付款方式", Control::kText, true, true},
    {"FBuyerMessage", "FBuyerMessage", kOrders, "买家留言", "買家留言", Control::kText, true, true},
    {"FSellerMessage", "FSellerMessage", kOrders, "卖家备注", "賣家備註", Control::kText, true, true},
    {"FConsignee", "FConsignee", kOrders, "收货人", "收貨人", Control::kText, true, true},
    {"FTelephone", "FTelephone", kOrders, "收货人电话", "收貨人電話", Control::kText, true, true},
    {"FMobile", "FMobile", kOrders, "收货人手机", "收貨人手機", Control::kText, true, true},
    {"FZipCode", "FZipCode", kOrders, "邮编", "郵遞區號", Control::kText, true, true},
    {"FDeliveryCountry", "FDeliveryCountry", kOrders, "国家", "國家", Control::kLookup, false, true,
     "SELECT FID,FName FROM IC_Area WHERE FLevel=0", "FID", "FName"},
    {"FDeliveryProvince", "FDeliveryProvince", kOrders, "省", "省", Control::kLookup, true, true,
     "SELECT FID,FName FROM IC_Area WHERE FLevel=1", "FID", "FName"},
    {"FDeliveryCity", "FDeliveryCity", kOrders, "市", "市", Control::kLookup, true, true,
     "SELECT FID,FName FROM IC_Area WHERE FLevel=2", "FID", "FName"},
    {"FDeliveryDistrict", "FDeliveryDistrict", kOrders, "区", "區", Control::kLookup, true, true,
     "SELECT FID,FName FROM IC_Area WHERE FLevel=3", "FID", "FName"},
    {"FDeliveryAddress", "FDeliveryAddress", kOrders, "收货地址", "收貨地址", Control::kText, true, true},
    {"FDeliveryTime", "FDeliveryTime", kOrders, "送货时间", "送貨時間", Control::kText, true, true},
    {"FCurrencyID", "FCurrencyID", kOrders, "币别", "幣別", Control::kLookup, true, true,
     "SELECT FCurrencyID,FName FROM t_Currency", "FCurrencyID", "FName"},
    {"FAmount", "FAmount", kOrders, "订单金额", "訂單金額", Control::kNumber, true, true},
    {"FDiscountFee", "FDiscountFee", kOrders, "优惠金额", "優惠金額", Control::kNumber, true, true},
    {"FBillDiscountFee", "FBillDiscountFee", kOrders, "整单优惠", "整單優惠", Control::kNumber, true, true},
    {"FTotalFreight", "FTotalFreight", kOrders, "买家运费", "買家運費", Control::kNumber, true, true},
    {"FFinallyAmount", "FFinallyAmount", "", "应收金额", "應收金額", Control::kNumber, true, false},
    {"FInvoiceStatus", "FInvoiceStatus", kOrders, "已开票", "已開票", Control::kCheck, true, true},
    {"FInvoiceName", "FInvoiceName", kOrders, "发票抬头", "發票抬頭", Control::kText, true, true},
    {"FInnerInvoice", "FInnerInvoice", kOrders, "内部发票", "內部發票", Control::kCheck, false, true},
    {"FCostInvoice", "FFeeBillNO", kOrders, "费用发票", "費用發票", Control::kCheck, true, false},
    {"FTransactionType", "FTransactionType", kOrders, "交易类型", "交易類型", Control::kLookup, true, true,
     "SELECT FInterID,FName FROM t_SubMessage WHERE FTypeID=3815", "FInterID", "FName"},
    {"FTransactionStatus", "FTransactionStatus", kOrders, "交易状态", "交易狀態", Control::kLookup, true, true,
     "SELECT FInterID,FName FROM t_SubMessage WHERE FTypeID=3819", "FInterID", "FName"},
    {"FTextApplyForReFund", "FRefundStatus", "IC_Web2ERPOrdersRefund", "退款申请", "退款申請", Control::kCheck, true,
     false},
    {"FTextMulti", "FTextMulti", "", "多商品", "多商品", Control::kCheck, false, true},
    {"FCheckStatus", "FCheckStatus", kOrders, "已审核", "已審核", Control::kCheck, true, true},
    {"FChkMan", "FChkMan", kOrders, "审核人", "審核人", Control::kLookup, true, true,
     "SELECT FUserID,FName FROM t_User", "FUserID", "FName"},
    {"FChkDate", "FChkDate", kOrders, "审核时间", "審核時間", Control::kDate, true, true},
    {"FBiller", "FBiller", kOrders, "制单人", "製單人", Control::kLookup, true, true,
     "SELECT FUserID,FName FROM t_User", "FUserID", "FName"},
    {"FEmpID", "FEmpID", kOrders, "业务员", "業務員", Control::kLookup, true, true, "SELECT FItemID,FName FROM t_Emp",
     "FItemID", "FName"},
    {"FPickMan", "FPickMan", kOrders, "配货人", "配貨人", Control::kLookup, true, true,
     "SELECT FNumber,FName FROM t_Emp", "FNumber", "FName"},
    {"FPickDate", "FPickDate", kOrders, "配货时间", "配貨時間", Control::kDate, true, true},
    {"FPickRem", "FPickRem", kOrders, "配货备注", "配貨備註", Control::kText, true, true},
    {"FPIckingGoodsStatus", "FPIckingGoodsStatus", kOrders, "已配货检验", "已配貨檢驗", Control::kCheck, true, true},
    {"FPickingGoodMan", "FPickingGoodMan", kOrders, "配货检验人", "配貨檢驗人", Control::kLookup, true, true,
     "SELECT FItemID,FName FROM t_Emp", "FItemID", "FName"},
    {"FOrderPickingDate", "FOrderPickingDate", kOrders, "配货检验时间", "配貨檢驗時間", Control::kDate, true, true},
    {"FLogisticsID", "FLogisticsID", kOrders, "物流公司", "物流公司", Control::kLookup, true, true,
     "SELECT FItemID,FName FROM IC_Logistics", "FItemID", "FName"},
    {"FLogisticsOrder", "FLogisticsOrder", kOrders, "物流单号", "物流單號", Control::kText, true, true},
    {"FShippingType", "FShippingType", kOrders, "发货方式", "發貨方式", Control::kLookup, true, true,
     "SELECT FInterID,FName FROM t_SubMessage WHERE FTypeID=3814", "FInterID", "FName"},
    {"FWeight", "FWeight", kOrders, "重量", "重量", Control::kNumber, true, true},
    {"FLogisticsCost", "FLogisticsCost", kOrders, "物流成本", "物流成本", Control::kNumber, true, true},
    {"FWeighttingStatus", "FWeighttingStatus", kOrders, "已称重", "已稱重", Control::kCheck, true, true},
    {"FWeighttingMan", "FWeighttingMan", kOrders, "称重人", "稱重人", Control::kLookup, true, true,
     "SELECT FItemID,FName FROM t_Emp", "FItemID", "FName"},
    {"FShippingMan", "FShippingMan", kOrders, "发货人", "發貨人", Control::kLookup, true, true,
     "SELECT FUserID,FName FROM t_User", "FUserID", "FName"},
    {"FShippingRem", "FShippingRem", kOrders, "发货备注", "發貨備註", Control::kText, true, true},
    {"FDeliveryRemark", "FDeliveryRemark", kOrders, "送货要求", "送貨要求", Control::kText, true, true},
    {"FSendDate", "FSendDate", kOrders, "发货时间", "發貨時間", Control::kDate, true, true},
    {"FOnlineSendDate", "FOnlineSendDate", kOrders, "网上发货时间", "網上發貨時間", Control::kDate, true, true},
    {"FUpLoadStatus", "FUpLoadStatus", kOrders, "上传状态", "上傳狀態", Control::kNumber, true, true},
    {"FReasonsForFailure", "FReasonsForFailure", kOrders, "失败原因", "失敗原因", Control::kText, true, true},
    {"FLotNumber", "FLotNumber", kExtension, "打印批次", "列印批次", Control::kText, true, false},
    {"FSerialNumber", "FSerialNumber", kExtension, "打印序号", "列印序號", Control::kText, true, false},
    {"FAddressReachable", "FAddressReachable", kExtension, "地址可达", "地址可達", Control::kNumber, true, false},
    {"FLogisticsState", "FLogisticsState", kExtension, "物流状态", "物流狀態", Control::kLookup, true, false,
     "SELECT FID,FName FROM IC_LogisticsTraceState", "FID", "FName"},
    {"FParcelQuantity", "FParcelQuantity", kExtension, "包裹数", "包裹數", Control::kNumber, true, false},
    {"FInsuredValue", "FInsuredValue", kExtension, "保价金额", "保價金額", Control::kNumber, true, false},
    {"FItemSummary", "FItemSummary", kExtension, "商品汇总", "商品匯總", Control::kText, true, false},
    {"FTplStatus", "FTplStatus", kExtension, "外仓状态", "外倉狀態", Control::kText, true, false},
    {"FTplFail", "FTplFail", kExtension, "外仓失败原因", "外倉失敗原因", Control::kText, true, false},
    {"FTplOrderID", "FTplOrderID", kExtension, "外仓单号", "外倉單號", Control::kText, true, false},
    {"FTpName", "FTpName", kExtension, "外仓名称", "外倉名稱", Control::kText, true, false},
    {"FIsLock", "FIsLock", kExtension, "已锁定", "已鎖定", Control::kCheck, true, false},
    {"FLockReason", "FLockReason", kExtension, "锁定原因", "鎖定原因", Control::kText, true, false},
    {"FStockBillStatus", "FStockBillStatus", "IC_StockBillOrdersStatus", "出库单状态", "出庫單狀態", Control::kNumber,
     true, false},
    {"FStockBillResult", "FStockBillResult", "IC_StockBillOrdersStatus", "出库单结果", "出庫單結果", Control::kText,
     true, false},
    {"FIsPrintPick", "FIsPrintPick", kPrints, "已打配货单", "已印配貨單", Control::kCheck, true, false},
    {"FIsPrintExpress", "FIsPrintExpress", kPrints, "已打快递单", "已印快遞單", Control::kCheck, true, false},
    {"FIsPrintSend", "FIsPrintSend", kPrints, "已打发货单", "已印發貨單", Control::kCheck, true, false},
    {"FPrintExpressUserID", "FPrintExpressUserID", kOrders, "快递单打印人", "快遞單列印人", Control::kLookup, true,
     false, "SELECT FUserID,FName FROM t_User", "FUserID", "FName"},
    {"FPrintExpressCount", "FPrintExpressCount", kOrders, "快递单打印次数", "快遞單列印次數", Control::kNumber, true,
     false},
    {"FMailNo", "FMailNo", "IC_SfexpressLogisticsOrder", "电子运单号", "電子運單號", Control::kText, true, false},
};

constexpr Field kLineFields[] = {
    {"FEntryID", "FEntryID", kLines, "分录内码", "分錄內碼", Control::kNumber, false, true},
    {"FIndex", "FIndex", kLines, "行号", "行號", Control::kNumber, true, true},
    {"FSiteOrderID", "FSiteOrderID", kLines, "网上订单号", "網上訂單號", Control::kText, true, true},
    {"FChildOrderID", "FChildOrderID", kLines, "子订单号", "子訂單號", Control::kText, true, true},
    {"FItemID", "FItemID", kLines, "商品内码", "商品內碼", Control::kNumber, false, true},
    {"FNumber", "FNumber", kItems, "商品代码", "商品代碼", Control::kText, true, false},
    {"FItemName", "FName", kItems, "商品名称", "商品名稱", Control::kText, true, false},
    {"FItemType", "FModel", kItems, "规格型号", "規格型號", Control::kText, true, false},
    {"FGrossWeight", "FGrossWeight", kItems, "毛重", "毛重", Control::kNumber, true, false},
    {"FNumID", "FNumID", kLines, "网上商品编号", "網上商品編號", Control::kText, false, true},
    {"FSKUID", "FSKUID", kLines, "网上规格编号", "網上規格編號", Control::kText, false, true},
    {"FItemOnlineProductNumber", "FOuterID", kLines, "网上商品编码", "網上商品編碼", Control::kText, true, true},
    {"FOnlineItemName", "FOnlineTitle", kLines, "网上商品名称", "網上商品名稱", Control::kText, true, true},
    {"FBarCode", "FBarCode", kLines, "条形码", "條碼", Control::kText, true, true},
    {"FAttrCode", "FAttrCode", kLines, "辅助属性", "輔助屬性", Control::kLookup, true, true,
     "SELECT FItemID,FName FROM t_AuxItem", "FItemID", "FName"},
    {"FAttrName", "FAttrType", kLines, "属性类别", "屬性類別", Control::kText, true, true},
    {"FUnitID", "FUnitID", kLines, "单位", "單位", Control::kLookup, true, true,
     "SELECT FMeasureUnitID,FName FROM t_MeasureUnit", "FMeasureUnitID", "FName"},
    {"FQuantity", "FQuantity", kLines, "数量", "數量", Control::kNumber, true, true},
    {"FPrice", "FPrice", kLines, "含税单价", "含稅單價", Control::kNumber, true, true},
    {"FEntryAmount", "FAmount", kLines, "金额", "金額", Control::kNumber, true, true},
    {"FEntryDiscountFee", "FDiscountFee", kLines, "优惠金额", "優惠金額", Control::kNumber, true, true},
    {"FEntryBillDiscountFee", "FEntryBillDiscountFee", kLines, "分摊整单优惠", "分攤整單優惠", Control::kNumber, true,
     true},
    {"FAfterDiscountAmount", "FAfterDiscountAmount", kLines, "优惠后金额", "優惠後金額", Control::kNumber, true, true},
    {"FBuyerFreight", "FBuyerFreight", kLines, "买家运费", "買家運費", Control::kNumber, true, true},
    {"FIsFree", "FIsFree", kLines, "赠品", "贈品", Control::kCheck, true, true},
    {"FMealID2", "FMealID", kLines, "套餐编号", "套餐編號", Control::kText, true, true},
    {"FMealName", "FMealName", kLines, "套餐名称", "套餐名稱", Control::kText, true, true},
    {"FPackagedGoods", "FPackagedGoods", kLines, "组合商品", "組合商品", Control::kLookup, true, true,
     "SELECT FItemID,FName FROM t_ICItem WHERE FNumber LIKE '09.%'", "FItemID", "FName"},
    {"FPackagedGoodsName", "FName", kItems, "组合商品名称", "組合商品名稱", Control::kText, true, false},
    {"FStockID", "FStockID", kLines, "发货仓库", "發貨倉庫", Control::kLookup, true, true,
     "SELECT FItemID,FName FROM t_Stock", "FItemID", "FName"},
    {"FSPID", "FSPID", kLines, "仓位", "倉位", Control::kLookup, true, true, "SELECT FSPID,FName FROM t_StockPlace",
     "FSPID", "FName"},
    {"FBatchNo", "FBatchNo", kLines, "批号", "批號", Control::kText, true, true},
    {"FRealStock", "FRealStock", kLines, "实际库存", "實際庫存", Control::kNumber, false, true},
    {"FOutStockQuantity", "FOutStockQuantity", kLines, "出库数量", "出庫數量", Control::kNumber, true, true},
    {"FOutStockAmount", "FOutStockAmount", kLines, "出库金额", "出庫金額", Control::kNumber, true, true},
    {"FAuxQtyInvoice", "FAuxQtyInvoice", kLines, "开票数量", "開票數量", Control::kNumber, true, true},
    {"FInvoiceAmount", "FInvoiceAmount", kLines, "开票金额", "開票金額", Control::kNumber, true, true},
    {"FStatus", "FStatus", kLines, "网上状态", "網上狀態", Control::kText, true, true},
    {"FRowClosed", "FRowClosed", kLines, "手工关闭", "手工關閉", Control::kCheck, true, true},
    {"FIsRowClose", "FIsRowClose", kLines, "行关闭", "行關閉", Control::kCheck, true, true},
    {"FEntryRefundStatus", "FRefundStatus", kLines, "退款申请", "退款申請", Control::kCheck, true, true},
    {"FReceiptQty", "FReceiptQty", kLines, "退货签收数量", "退貨簽收數量", Control::kNumber, true, true},
    {"FServiceStatus", "FServiceStatus", kLines, "售后状态", "售後狀態", Control::kLookup, true, true,
     "SELECT FInterID,FName FROM t_SubMessage WHERE FTypeID=843", "FInterID", "FName"},
    {"FActivityName", "FActivityName", "IC_CDPSActivity", "促销活动", "促銷活動", Control::kText, true, false},
    {"FTplRemark", "FTplRemark", "IC_Web2ERPOrdersEntryEx", "外仓备注", "外倉備註", Control::kText, true, false},
    {"FUpdateMemoStauts", "FStauts", kEarlyWaybills, "预传单号状态", "預傳單號狀態", Control::kNumber, true, false},
    {"FUpdateMemoFail", "FFailinfo", kEarlyWaybills, "预传失败原因", "預傳失敗原因", Control::kText, true, false},
};

}  // namespace

void WriteGridLayout(Connection& connection) {
  constexpr int kWebOrders = 1014301;
  if (connection
          .Execute("SELECT TOP 1 1 AS FFilled FROM ICClassTableInfo WHERE FClassTypeID=1014301 AND FUserDefine=0")
          ->RecordCount() > 0) {
    return;
  }
  InsertRows rows(connection, "ICClassTableInfo",
                  "FClassTypeID,FPage,FKey,FCaption_CHS,FCaption_CHT,FFieldName,FTableName,FVisible,FTabIndex,FCtlType,"
                  "FNeedSave,FLookUpList,FSRCFieldName,FDSPFieldName");
  int page = 0;
  for (const std::span<const Field> fields :
       {std::span<const Field>(kHeaderFields), std::span<const Field>(kLineFields)}) {
    ++page;
    int position = 0;
    for (const Field& field : fields) {
      rows.Add(kWebOrders, page, field.key, field.caption, field.caption_traditional, field.column, field.table,
               field.visible ? 1 : 0, ++position, static_cast<int>(field.control), field.saved ? 1 : 0, field.choices,
               field.choice_id, field.choice_name);
    }
  }
  rows.Flush();
}

}  // namespace tessarlorn::cli
