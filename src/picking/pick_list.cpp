// The pick list: the lines that are to be fetched, in the order in which a picker walks past their places.
#include "frame/identity.h"
#include "frame/order_call.h"
#include "frame/text_builder.h"
#include "picking/contracts.h"
#include "tessarlorn/clsGetData.h"

namespace tessarlorn {
namespace {

/// One row a line.
constexpr std::string_view kLines = R"(
SELECT  t1.FID ,
        t1.FOrderID ,
        t1.FUniqueCode ,           --唯一码
        t9.FLotNumber ,            --打印批次
        t9.FSerialNumber ,         --批次内序号
        t10.FWebShopName ,         --网店
        t1.FConsignee ,            --收货人
        t1.FBuyerMessage ,         --买家留言
        t1.FSellerMessage ,        --卖家备注
        t1.FPickRem ,              --配货备注
        t11.{name} AS FLogisticsName ,  --物流公司
        t2.FEntryID ,
        t2.FIndex ,
        t3.FNumber ,
        t3.FName AS FItemName ,
        t3.FModel ,
        t5.FName AS FAttrName ,
        t2.FBarCode ,
        t2.FQuantity ,
        t4.FName AS FUnitName ,
        t2.FBatchNo ,
        t2.FIsFree ,
        t2.FMealName ,
        t2.FStockID ,
        t6.FName AS FStockName ,
        t8.FNumber AS FSPNumber ,
        t8.FName AS FSPName
)"_sql;

/// One row a thing that the orders need; within it one for each order that needs it.
constexpr std::string_view kCollected = R"(
SELECT  t.FStockID ,
        t.FStockName ,
        t.FSPNumber ,
        t.FSPName ,
        t.FNumber ,
        t.FItemName ,
        t.FModel ,
        t.FAttrName ,
        MAX(t.FBarCode) AS FBarCode ,
        SUM(t.FQuantity) AS FQuantity ,
        t.FUnitName ,
        t.FBatchNo ,
        COUNT(1) AS FOrders ,
        ISNULL(STRING_AGG(CAST(NULLIF(t.FSerialNumber, '') AS nvarchar(max)), ',')
               WITHIN GROUP (ORDER BY t.FLotNumber, LEN(t.FSerialNumber), t.FSerialNumber), '') AS FSerialNumbers
FROM    (
SELECT  t1.FID ,
        t9.FLotNumber ,
        t9.FSerialNumber ,
        t2.FStockID ,
        t6.FNumber AS FStockNumber ,
        t6.FName AS FStockName ,
        t8.FSPID ,
        t8.FNumber AS FSPNumber ,
        t8.FName AS FSPName ,
        t2.FItemID ,
        t3.FNumber ,
        t3.FName AS FItemName ,
        t3.FModel ,
        t2.FAttrCode ,
        t5.FName AS FAttrName ,
        t4.FName AS FUnitName ,
        ISNULL(t2.FBatchNo, '') AS FBatchNo ,
        MAX(t2.FBarCode) AS FBarCode ,
        SUM(t2.FQuantity) AS FQuantity
)"_sql;

// t1 order, t2 line, t3 item, t4 unit, t5 auxiliary attribute, t6 warehouse, t7 its group of places, t8 place, t9
// header extension, t10 web shop, t11 carrier, t12 refund request.
constexpr std::string_view kTables = R"(
FROM    IC_Web2ERPOrders t1 with(nolock)
        INNER JOIN IC_Web2ERPOrdersEntry t2 with(nolock) ON t1.FID = t2.FID
        LEFT JOIN t_ICItem t3 with(nolock) ON t2.FItemID = t3.FItemID
        LEFT JOIN t_MeasureUnit t4 with(nolock) ON t2.FUnitID = t4.FMeasureUnitID
        LEFT JOIN t_AuxItem t5 with(nolock) ON t2.FAttrCode = t5.FItemID
        LEFT JOIN t_Stock t6 with(nolock) ON t2.FStockID = t6.FItemID
        LEFT JOIN t_StockPlaceGroup t7 with(nolock) ON t6.FSPGroupID = t7.FSPGroupID
        LEFT JOIN t_StockPlace t8 with(nolock) ON t8.FSPID = CASE WHEN t2.FSPID <> 0 THEN t2.FSPID
             WHEN t3.FSPID <> 0 AND t3.FDefaultLoc = t2.FStockID THEN t3.FSPID ELSE t7.FDefaultSPID END
        LEFT JOIN IC_Web2ERPOrdersEx t9 with(nolock) ON t1.FID = t9.FID
        LEFT JOIN IC_WebshopToStorage t10 with(nolock) ON t1.FWebshopID = t10.FWebShopID
        LEFT JOIN IC_Logistics t11 with(nolock) ON t1.FLogisticsID = t11.FItemID
        LEFT JOIN IC_RefundInfo t12 with(nolock) ON t2.FRefundFID = t12.FID
WHERE   t1.FID IN ( {FID})
        AND t2.FRowClosed <> 1                                  --去掉手工关闭的行
        AND t2.FRefundStatus - ISNULL(t12.FIsRefuse, 0) <> 1    --去掉退款中的行
        AND NOT EXISTS (SELECT 1 FROM ic_goodstomateriel t13 with(nolock)
             WHERE t13.FMaterielCode = t3.FNumber AND t13.FIsPriceChange = 1) --去掉调差价的商品
)"_sql;

constexpr std::string_view kWalkingOrder = R"(
ORDER BY t6.FNumber, t8.FNumber, t3.FNumber, t9.FLotNumber, LEN(t9.FSerialNumber), t9.FSerialNumber, t1.FID, t2.FIndex
)"_sql;

constexpr std::string_view kCollectedGroups = R"(
GROUP BY t1.FID, t9.FLotNumber, t9.FSerialNumber, t2.FStockID, t6.FNumber, t6.FName, t8.FSPID, t8.FNumber, t8.FName,
         t2.FItemID, t3.FNumber, t3.FName, t3.FModel, t2.FAttrCode, t5.FName, t4.FName, ISNULL(t2.FBatchNo, '')
        ) t
GROUP BY t.FStockID, t.FStockNumber, t.FStockName, t.FSPID, t.FSPNumber, t.FSPName, t.FItemID, t.FNumber, t.FItemName,
         t.FModel, t.FAttrCode, t.FAttrName, t.FUnitName, t.FBatchNo
ORDER BY t.FStockNumber, t.FSPNumber, t.FNumber, t.FAttrName, t.FBatchNo
)"_sql;

}  // namespace

RecordsetPtr clsGetData::GetPrintRecordsetForPick(const Dictionary* dctParam) {
  constexpr const Contract& contract = kContract<&clsGetData::GetPrintRecordsetForPick>;
  return CallForOrders(State(), contract, dctParam, [&](const OrderCall& call) {
    const bool collected = call.parameters.IsNumber("Mode", 1);
    TextBuilder text;
    text.Append(collected ? kCollected : kLines, {{"name", NameColumn(context_)}});
    text.Append(kTables, {{"FID", call.orders}});
    text.Append(collected ? kCollectedGroups : kWalkingOrder);
    return call.connection.ExecuteAnswer(text.GetText());
  });
}

}  // namespace tessarlorn
