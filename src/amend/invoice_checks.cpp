// Whether orders have a sales invoice or an internal one, and whether billing is marked.
#include "amend/contracts.h"
#include "frame/order_call.h"
#include "frame/results.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"

namespace tessarlorn {

std::optional<Dictionary> clsGetData::CheckInnerInvoice(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::CheckInnerInvoice>;
  return CallForOrders(State(), contract, dctPara, [](const OrderCall& call) {
    TextBuilder text;
    text.Line("SELECT DISTINCT");
    text.Line("        FID ,");
    text.Line("        FOrderID");
    text.Line("FROM    IC_Web2ERPOrders ");
    text.Line("Where FID IN ( ", call.orders, ") and FInnerInvoice=0 and FInvoiceStatus=1");
    Vector bills = RowDictionaries(call.connection.Query(text.GetText()), kOrderNames);
    const std::int32_t status = bills.empty() ? 0 : 1;
    return std::optional(Dictionary{{"FStatus", status}, {"ReturnBills", std::move(bills)}});
  });
}

bool clsGetData::GetIsMarkBilling(std::string_view sDsn) {
  constexpr const Contract& contract = kContract<&clsGetData::GetIsMarkBilling>;
  return CallForTexts(State(), contract, {sDsn}, [](Connection& connection) {
    TextBuilder text;
    text.Line(
        "select COUNT(1) as flag  from t_SystemProfile where FKey ='MarkBilling' and FValue =1 and FCategory='EC' ");
    return ReadFlag(connection, text.GetText());
  });
}

bool clsGetData::bExistInvoice(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::bExistInvoice>;
  return CallForOrders(State(), contract, dctPara, [](const OrderCall& call) {
    TextBuilder text;
    text.Append(R"(
SELECT  COUNT(11) AS Flag
FROM    ICSaleEntry t1
        INNER JOIN dbo.ICStockBillEntry t2 ON t1.FSourceInterId = t2.FInterID
                                              AND t1.FSourceEntryID = t2.FEntryID
        INNER JOIN dbo.IC_Web2ERPOrders t3 ON t2.FSourceTranType = 1014301
                                              AND t2.FSourceInterId = t3.FID
WHERE   t3.FID IN ( {FID} )
)"_sql,
                {{"FID", call.orders}});
    return ReadFlag(call.connection, text.GetText());
  });
}

}  // namespace tessarlorn
