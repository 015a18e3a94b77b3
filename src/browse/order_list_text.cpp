#include "browse/order_list_text.h"

namespace tessarlorn {

void AppendOrderColumns(TextBuilder& text, std::string_view row_limit, std::string_view caption_column) {
  if (row_limit.empty()) {
    text.Line("SELECT  t1.FID ,                                   -- 网上订单内码");
  } else {
    text.Line("SELECT  TOP ", row_limit, " t1.FID , -- 网上订单内码");
  }
  text.Append(R"(
        t1.FSiteOrderID ,
        t8.FName AS FOrderType ,
        t1.FOrderDate ,
        t1.FOrderID ,
        t1.FBuyerNick ,
        t1.FBuyerName ,
        t1.FConsignee ,
        t1.FWebshopID AS FWebshopIDduplicate ,
        t6.FWebShopName AS FWebshopName ,
        t1.FWebshopID ,
        t1.FTelephone ,
        t1.FMobile ,
        t1.FZipCode ,
        t1.FTransactionType ,
        t10.FName AS FTransactionTypeName ,
        t16.FName AS FEmpIDName ,
        t1.FInvoiceName ,
        t1.FOrderPickingDate ,
        t1.FDeliveryCountry ,
        t30.{caption} AS FDeliveryCountryName ,
        t1.FDeliveryProvince ,
        t11.{caption} AS FDeliveryProvinceName ,
        t1.FDeliveryCity ,
        t12.{caption} AS FDeliveryCityName ,
        t1.FDeliveryDistrict ,
        t13.{caption} AS FDeliveryDistrictName ,
        t1.FDeliveryAddress ,
        t1.FBuyerEMail ,
        t1.FShippingType ,
        t7.FName AS FShippingTypeName ,
        t1.FAmount ,
        t1.FDiscountFee ,
        t1.FTotalFreight ,
        ( t1.FAmount - t1.FDiscountFee + t1.FTotalFreight - t1.FBillDiscountFee ) AS FFinallyAmount ,
        t1.FLogisticsID ,
        t1.FEMSorderType ,
        t14.FNumber AS FLogisticsNumber ,
        t14.{caption} AS FLogisticsIDName ,
        CASE t26.FRefundStatus WHEN 1 THEN 'Y' ELSE '' END AS FRefundStatus ,
        t1.FSitePayDate ,
        t1.FBuyerMessage ,
        t1.FSellerMessage ,
        'N' AS FTextMulti ,
        t1.FMergeStatus ,
        CASE t1.FInvoiceStatus WHEN 1 THEN 'Y' ELSE '' END AS FInvoiceStatus ,
        CASE WHEN t1.FFeeBillNO <> '' THEN 'Y' ELSE '' END AS FCostInvoice ,
        t1.FOrderFlag ,
        t1.FChkDate ,
        t1.FChkMan ,
        t4.FName AS FChkManName ,
        t1.FBiller ,
        t5.FName AS FBillerName ,
        CASE t1.FCheckStatus WHEN 1 THEN 'Y' ELSE '' END AS FCheckStatus ,
        CASE WHEN t1.FOrderStatus & 4 = 4 THEN 'Y' ELSE '' END AS FTextPickStatus ,
        CASE WHEN t1.FOrderStatus & 8 = 8 THEN 'Y' ELSE '' END AS FTextSendStatus ,
        t1.FInnerInvoice ,
        t1.FUniqueCode ,
        t1.FLogisticsOrder ,
        t1.FLogisticsCost ,
        t1.FWeight ,
        t1.FShippingRem ,
        t1.FDeliveryRemark ,
        t1.FPickRem ,
        t1.FBillDiscountFee ,
        t1.FTransactionStatus ,
        t9.FName AS FTransactionStatusName ,
        t1.FReasonsForFailure ,
        t1.FPickDate ,
        t1.FPickMan ,
        t2.FName AS FPickManName ,
        t1.FSendDate ,
        t1.FOnlineSendDate ,
        t1.FShippingMan ,
        t3.FName AS FShippingManName ,
        CASE t1.FPIckingGoodsStatus WHEN 1 THEN 'Y' ELSE '' END AS FPIckingGoodsStatus ,
        t1.FPickingGoodMan ,
        t21.FName AS FPickingGoodManName ,
        CASE t28.FIsPrintPick WHEN 1 THEN 'Y' WHEN 0 THEN '' ELSE '打印中' END AS FIsPrintPick ,
        CASE t28.FIsPrintExpress WHEN 1 THEN 'Y' WHEN 0 THEN '' ELSE '打印中' END AS FIsPrintExpress ,
        CASE t28.FIsPrintSend WHEN 1 THEN 'Y' WHEN 0 THEN '' ELSE '打印中' END AS FIsPrintSend ,
        t1.FPrintExpressUserID ,
        ISNULL(t1.FPrintExpressCount,0) AS FPrintExpressCount ,
        CASE t1.FUpLoadStatus WHEN 0 THEN '未上传' WHEN 1 THEN '上传成功' WHEN 2 THEN '上传失败' WHEN 3 THEN '上传中' END AS FUpLoadStatus ,
        CASE t1.FWeighttingStatus WHEN 1 THEN 'Y' ELSE '' END AS FWeighttingStatus ,
        t17.FName AS FWeighttingMan ,
        t1.FTransactionStatus AS FReceiptStatus ,
        t1.FTradeFrom ,
        t1.FBuyerPayMode ,
        t22.FLotNumber ,
        t22.FSerialNumber ,
        ISNULL(t22.FAddressReachable,4) AS FAddressReachable ,
        t22.FTpName ,
        t998.FIs_jzservice_order AS FIsJzserviceOrder ,
        ISNULL(t22.FInsuredValue,0) AS FInsuredValue ,
        t27.FTplOrderStatus ,
        t31.FIsShShip ,
        t22.FTplStatus ,
        t22.FTplFail ,
        CASE t23.FStockBillStatus WHEN 1 THEN '待处理' WHEN 2 THEN '成功' WHEN 3 THEN '失败' END AS FStockBillStatus ,
        t23.FStockBillResult ,
        ISNULL(t22.FLogisticsState,-1) AS FLogisticsState ,
        t24.FName AS FLogisticsStateName ,
        t22.FItemSummary ,
        t999.FMailNo ,
        ISNULL(t22.FParcelQuantity,1) AS FParcelQuantity ,
        CASE t22.FIsLock WHEN 1 THEN 'Y' ELSE '' END AS FIsLock ,
        t22.FLockReason ,
        t29.FName AS FCurrencyID ,
        t1.FDeliveryTime ,
        t22.FTplOrderID
)"_sql,
              {{"caption", caption_column}});
}

void AppendOrderTables(TextBuilder& text) {
  // t2 picker, t3 shipper, t4 checker, t5 bill maker, t6 web shop, t7 to t10 shipping type, order type, transaction
  // status and transaction type, t30 and t11 to t13 country, province, city, district, t14 carrier, t16 employee, t17
  // who weighed, t21 who checked the picking, t22 header extension, t23 stock-bill queue, t24 trace state, t26 refunds,
  // t27 outside warehouse, t28 prints, t999 courier's waybill, t29 currency, t998 home-delivery service, t31 forwarded
  // shipping.
  text.Line("FROM    IC_Web2ERPOrders t1 with(nolock) ");
  text.Append(R"(
        LEFT JOIN t_Emp t2 ON t1.FPickMan = t2.FNumber
        LEFT JOIN t_User t3 ON t1.FShippingMan = t3.FUserID AND t3.FUserID<>0
        LEFT JOIN t_User t4 ON t1.FChkMan = t4.FUserID
        LEFT JOIN t_User t5 ON t1.FBiller = t5.FUserID
        LEFT JOIN IC_WebshopToStorage t6 with(nolock) ON t1.FWebshopID = t6.FWebshopID
        LEFT JOIN t_SubMessage t7 ON t1.FShippingType = t7.FInterID
        LEFT JOIN t_SubMessage t8 ON t1.FOrderType = t8.FInterID
        LEFT JOIN t_SubMessage t9 ON t1.FTransactionStatus = t9.FInterID
        LEFT JOIN t_SubMessage t10 ON t1.FTransactionType = t10.FInterID
        LEFT JOIN IC_Area t30 ON t1.FDeliveryCountry = t30.FID
        LEFT JOIN IC_Area t11 ON t1.FDeliveryProvince = t11.FID
        LEFT JOIN IC_Area t12 ON t1.FDeliveryCity = t12.FID
        LEFT JOIN IC_Area t13 ON t1.FDeliveryDistrict = t13.FID
        LEFT JOIN IC_Logistics t14 ON t1.FLogisticsID = t14.FItemID
        LEFT JOIN t_EMP t16 ON t1.FEmpID = t16.FItemID
        LEFT JOIN t_EMP t17 ON t1.FWeighttingMan = t17.FItemID
        LEFT JOIN t_EMP t21 ON t1.FPickingGoodMan = t21.FItemID
        LEFT JOIN IC_Web2ERPOrdersEx t22 ON t1.FID = t22.FID
        LEFT JOIN IC_StockBillOrdersStatus t23 ON t1.FID = t23.FID
        LEFT JOIN IC_LogisticsTraceState t24 ON t22.FLogisticsState = t24.FID
        LEFT JOIN vw_Web2ERPOrdersRefund t26 ON t1.FID = t26.FID
        LEFT JOIN vw_TplWeb2ERPOrders t27 ON t1.FID = t27.FID
        LEFT JOIN IC_PrintOrderInfo t28 with(nolock) ON t1.FID = t28.FID
        LEFT JOIN IC_SfexpressLogisticsOrder t999 ON t1.FID = t999.FID
        LEFT JOIN t_Currency t29 ON t1.FCurrencyID = t29.FCurrencyID
        LEFT JOIN vw_Web2ERPOrdersJZ t998 ON t1.FID = t998.FID
        LEFT JOIN vw_CainiaoShShipWeb2ERPOrders t31 ON t1.FID = t31.FID
)"_sql);
}

}  // namespace tessarlorn
