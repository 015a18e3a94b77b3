// Logistics numbers and logistics costs.
#include "delivery/contracts.h"
#include "frame/formats.h"
#include "frame/key_list.h"
#include "frame/order_call.h"
#include "frame/parameters.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn {

bool clsSaveData::ModifyCost(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::ModifyCost>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    const std::string cost = FormatAmount(call.parameters.Value("LogisticsCosts"));
    for (const std::string_view order : SplitKeys(call.orders)) WriteSaveOrderLog(order, "0", "FLogisticsCost", cost);
    TextBuilder text;
    text.Append(R"(
Update IC_Web2ERPOrders
Set FLogisticsCost = {cost}--物流成本
WHERE   FID IN ({FID})
)"_sql,
                {{"cost", cost}, {"FID", call.orders}});
    call.connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::SetUpLogisticsNumberAndWeight(std::string_view sDsn, const Vector* vctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::SetUpLogisticsNumberAndWeight>;
  if (vctPara == nullptr) return false;
  return CallOperation(State(), contract, sDsn, [&](Connection& connection) {
    TextBuilder text;
    for (const Variant& item : *vctPara) {
      const std::shared_ptr<Dictionary> order = ItemDictionary(item);
      const Parameters parcel(order.get());
      const std::string number = parcel.Text("FLogisticsOrder");
      const std::string key = parcel.Text("FID");
      text.Append(R"(
Update IC_Web2ERPOrders
SET     FLogisticsOrder ='{FLogisticsOrder}',
        FWeight = {FWeight},
        FLogisticsCost = {FLogisticsCost}
Where FID ={FID}
)"_sql,
                  {{"FLogisticsOrder", number},
                   {"FWeight", LeadingNumber(parcel.Text("FWeight"))},
                   {"FLogisticsCost", LeadingNumber(parcel.Text("FLogisticsCost"))},
                   {"FID", key}});
      if (!number.empty()) WriteSaveOrderLog(key, "0", "FLogisticsOrder", number);
    }
    if (!text.empty()) connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::SetUpLogisticsNumber(std::string_view sDsn, const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::SetUpLogisticsNumber>;
  if (Parameters(dctPara).empty()) return false;
  return CallForTexts(State(), contract, {sDsn}, [&](Connection& connection) {
    TextBuilder text;
    for (const auto& [unique_code, number] : *dctPara) {
      text.Append("UPDATE IC_Web2ERPOrders SET FLogisticsOrder = '{number}' WHERE FUniqueCode ={unique_code}\r\n",
                  {{"number", number.ToText()}, {"unique_code", unique_code}});
    }
    connection.Execute(text.GetText());
    return true;
  });
}

double clsGetData::GetTotalLogisticsCosts(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::GetTotalLogisticsCosts>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    TextBuilder text;
    text.Line(" SET TRANSACTION ISOLATION LEVEL READ UNCOMMITTED  ");
    text.Line(" select SUM(FLogisticsCost) AS TotalLogisticsCosts from ");
    text.Line(" (select case c.FOperator when '*' then FLogisticsCost*c.FExchangeRate   ");
    text.Line(
        " else FLogisticsCost/(case when c.FExchangeRate=0 then 1 else c.FExchangeRate end) end FLogisticsCost  ");
    text.Line(" from IC_Web2ERPOrders o inner join t_Currency c on o.FCurrencyID=c.FCurrencyID  ");
    text.Line(" WHERE   o.FID IN ( ", call.orders, ")) t");
    const Variant total = call.connection.Query(text.GetText())->Get("TotalLogisticsCosts");
    return total.is_null() ? 0.0 : total.ToDouble();
  });
}

}  // namespace tessarlorn
