// The lines of one order, as the line grid and the print templates show them.
#include "browse/contracts.h"
#include "browse/user_fields.h"
#include "frame/call_frame.h"
#include "frame/parameters.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"

namespace tessarlorn {
namespace {

constexpr std::string_view kColumns = R"(
SELECT  0.05 as FTest, t1.FID ,
        t1.FUniqueCode ,
        t2.FEntryID ,
        t2.FIndex ,
        t2.FSiteOrderID ,
        t2.FItemID ,
        t3.FNumber ,
        t3.FName AS FItemName ,
        t2.FNumID AS FNumID ,
        t3.FModel AS FItemType ,
        (t3.FGrossWeight*t2.FQuantity) as FGrossWeight ,
        t2.FAttrCode ,
        t6.FName as FAttrCodeName ,
        t2.FAttrType AS FAttrName ,
        t2.FUnitID ,
        t5.FName AS FUnitIDName ,
        t2.FQuantity ,
        t2.FPrice ,
        t2.FDiscountFee ,
        t2.FBuyerFreight ,
        t2.FAmount ,
        CASE t2.FMealID WHEN NULL THEN '' WHEN '0' THEN '' ELSE t2.FMealID END AS FMealID,
        t2.FMealName ,
        CASE t2.FIsFree WHEN '1' THEN 'Y' Else '' END AS FIsFree ,
        case (t2.FRefundStatus - isnull(t13.FIsRefuse,0)) when 1 then 'Y' else '' end as FRefundStatus,
        t2.FOuterID as FItemOnLineProductNumber ,
        t2.FOnlineTitle as FOnlineItemName ,
        t3.FPriceDecimal ,
        t3.FQtyDecimal ,
        t2.FStockID ,
        t4.FName AS FStockIDName ,
        0 AS FInstantStock ,
        t2.FRealStock ,
        0 AS FIsOutStock ,
        t2.FAuxQtyInvoice ,
        t2.FAfterDiscountAmount ,
        t2.FSKUID ,
        t2.FBarCode ,
        CASE t2.FRowClosed WHEN 1 THEN 'Y' Else '' END AS FRowClosed ,
        CASE t2.FReceiptQty WHEN 0 THEN '' Else 'Y' END AS FReceiptStatus ,
        t2.FReceiptQty ,
        CASE t2.FIsRowClose WHEN 1 THEN 'Y' Else '' END AS FIsRowClose ,
        t7.FNumber AS FPackagedGoodsNumber ,
        t7.FName AS FPackagedGoodsName ,
        t2.FStatus ,
        t2.FBatchNo ,
        t8.FName as FSPName,t2.FSPID ,
        t1.FOnlineSendDate ,
        t2.FEntryBillDiscountFee ,
        t2.FOutStockQuantity ,
        t2.FOutStockAmount ,
        t2.FInvoiceAmount ,
        t9.FTplRemark ,
        t2.FIsShShip ,
        t10.FStauts as FUpdateMemoStauts ,
        t10.FFailinfo as FUpdateMemoFail ,
        CASE t2.FServiceType WHEN 1 THEN '仅退款' WHEN 2 THEN '退款退货' WHEN 3 THEN '换货' ELSE '' END AS FServiceTypeName ,
        CASE t2.FServiceSource WHEN 1 THEN '线上' WHEN 2 THEN '线下' ELSE '' END AS FServiceSourceName ,
        isnull(t16.FName,'') as FServiceStatusName
 ,t18.FActivityName as FActivityName
)"_sql;

// t2 lines, t3 item, t4 warehouse, t5 unit, t6 auxiliary attribute, t8 stock place, t7 packaged goods, t13 refund, t9
// line extension, t10 pre-uploaded waybill, t16 after-sales status, t17 promotion, t18 activity.
void AppendTables(TextBuilder& text) {
  text.Line("FROM    IC_Web2ERPOrders t1 with(nolock) ");
  text.Append(R"(
INNER JOIN IC_Web2ERPOrdersEntry t2 with(nolock) ON t1.FID = t2.FID
LEFT JOIN t_ICItem t3 ON t2.FItemID =t3.FItemID
LEFT JOIN t_Stock t4 ON t2.FStockID =t4.FItemID
LEFT JOIN t_MeasureUnit t5 ON t2.FUnitID =t5.FMeasureUnitID
LEFT JOIN t_AuxItem t6 ON t2.FAttrCode= t6.FItemID
LEFT JOIN t_stockplace t8 ON t2.FSPID= t8.FSPID
)"_sql);
  text.Line(" LEFT JOIN t_icitem t7 ON t2.FPackagedGoods=t7.FItemID ");
  text.Line(" LEFT JOIN IC_RefundInfo t13 with(nolock) ON t13.FID = t2.FRefundFID ");
  text.Line(" LEFT JOIN IC_Web2ERPOrdersEntryEx t9 ON t2.FEntryID = t9.FEntryID ");
  text.Line(" LEFT JOIN IC_TradeUpdateMemoStatus t10 with(nolock) ON  t2.FSiteOrderID=t10.FSiteOrderID ");
  text.Line(" left join t_SubMessage t16 on t16.FTypeID = 843 and t2.FServiceStatus = t16.FInterID");
  text.Line(" LEFT JOIN IC_CDPSPromotion t17 ON t2.FPromotionID=t17.FPromotionID ");
  text.Line(" LEFT JOIN IC_CDPSActivity t18 ON t17.FActivityID=t18.FActivityID");
}

}  // namespace

RecordsetPtr clsGetData::GetEntryData(std::string_view sDsn, const Dictionary* dctParameters) {
  constexpr const Contract& contract = kContract<&clsGetData::GetEntryData>;
  const Parameters parameters(dctParameters);
  if (!parameters.HasAllOf(contract.keys())) return nullptr;
  const auto body = [&](Connection& connection) {
    TextBuilder text;
    text.Line(" SET TRANSACTION ISOLATION LEVEL READ UNCOMMITTED ");
    text.Append(kColumns);
    const std::string user_fields = UserDefinedFields(connection, "t2", OrderPage::kLines);
    if (!user_fields.empty()) text.Line(user_fields);
    AppendTables(text);
    text.Line("where 1=1 ");
    text.Line("and t1.FID=", parameters.Text("FID"));
    text.Line("ORDER BY t2.FIsFree, t2.FIndex");
    return connection.ExecuteAnswer(text.GetText());
  };
  return CallForTexts(State(), contract, {sDsn}, body, OldSession::kKeep);
}

}  // namespace tessarlorn
