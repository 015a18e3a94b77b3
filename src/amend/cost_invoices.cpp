// Which cost invoice covers an order, and the price differences that are settled with it.
#include "amend/contracts.h"
#include "frame/order_call.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn {

bool clsSaveData::UpdateCostInvoiceStatus(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::UpdateCostInvoiceStatus>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    WriteOPLog(call.orders, "3007", "0", "", "");
    TextBuilder text;
    text.Append(R"(
Update t1
SET     t1.FFeeBillNO = '{invoice}'
FROM    IC_Web2ERPOrders t1
WHERE   t1.FID IN ({FID})
)"_sql,
                {{"invoice", call.parameters.Text("FCostInvoiceInterID")}, {"FID", call.orders}});
    call.connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::UpdateAfterDeleteBill(std::string_view sDsn, std::string_view sFID) {
  constexpr const Contract& contract = kContract<&clsSaveData::UpdateAfterDeleteBill>;
  return CallForTexts(State(), contract, {sDsn, sFID}, [&](Connection& connection) {
    TextBuilder text;
    text.Line(" Update t1 ");
    text.Line("SET     t1.FFeeBillNO = '' ");
    text.Line("FROM    IC_Web2ERPOrders t1  ");
    text.Line("WHERE   t1.FFeeBillNO in (", sFID, ")");
    connection.Execute(text.GetText());
    return true;
  });
}

std::int32_t clsGetData::GetWebFIDByCostInoviceID(std::string_view sDsn, std::int32_t lInoviceID) {
  constexpr const Contract& contract = kContract<&clsGetData::GetWebFIDByCostInoviceID>;
  constexpr std::int32_t kNotOneOrder = -1;
  return CallOperation(State(), contract, sDsn, [&](Connection& connection) {
    TextBuilder text;
    text.Append(R"(
 SELECT DISTINCT iwee.FID
 FROM   ICExpenses ie
        LEFT JOIN IC_Web2ERPOrders iwee
           ON  ie.FinterID = iwee.FFeeBillNO
)"_sql);
    text.Line("           where   ie.FinterID = iwee.FFeeBillNO and ie.FinterID=", std::to_string(lInoviceID), " ");
    const RecordsetPtr orders = connection.Query(text.GetText());
    return orders->RecordCount() == 1 ? orders->Get("FID").ToInt32() : kNotOneOrder;
  });
}

RecordsetPtr clsGetData::GetTotalPriceChange(std::string_view sDsn, std::string_view sFIDs) {
  constexpr const Contract& contract = kContract<&clsGetData::GetTotalPriceChange>;
  return CallForTexts(State(), contract, {sDsn}, [&](Connection& connection) {
    TextBuilder text;
    text.Line(
        "SELECT FID,SUM(ISNULL(FAfterDiscountAmount,0)) as FTotalPriceChange,SUM(ISNULL(FBuyerFreight,0)) as "
        "FTotalFreight,sum(isnull(FEntryBillDiscountFee,0)) as FEntryBillDiscountFee FROM IC_Web2ERPOrdersEntry ");
    text.Line(
        " Where (FItemID IN (SELECT t2.FItemID FROM ic_goodstomateriel t1,t_ICItem t2 where t1.FMaterielCode=t2.FNumber "
        "AND t1.FIsPriceChange=1))",
        " And FID in(", sFIDs, ")");
    text.Line(" Group by FID");
    return connection.ExecuteAnswer(text.GetText());
  });
}

}  // namespace tessarlorn
