// Which carrier takes an order: the list to choose from, and the choice.
#include "carriers/contracts.h"
#include "frame/identity.h"
#include "frame/order_call.h"
#include "frame/results.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

/// The orders that are not delivered and have another carrier. Raises 5 for a carrier that does not exist; 0 is none.
RecordsetPtr OrdersToChange(const OrderCall& call, std::int32_t carrier) {
  TextBuilder text;
  text.Append(R"(
SELECT  t2.FID ,
        t2.FLogisticsID
FROM    (SELECT 0 AS FItemID UNION ALL SELECT FItemID FROM IC_Logistics with(nolock)) t1
        LEFT JOIN IC_Web2ERPOrders t2 with(nolock) ON t2.FID IN ( {FID}) AND t2.FOrderStatus <> 14
                                                      AND t2.FLogisticsID <> t1.FItemID
WHERE   t1.FItemID = {carrier}
ORDER BY t2.FID
)"_sql,
              {{"FID", call.orders}, {"carrier", carrier}});
  RecordsetPtr orders = call.connection.Query(text.GetText());
  if (orders->eof()) RaiseInvalidArgument("there is no carrier " + std::to_string(carrier));
  return orders;
}

}  // namespace

bool clsSaveData::SetUpLogisticsCompany(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::SetUpLogisticsCompany>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    const std::int32_t carrier = call.parameters.Number("FLogisticsID");
    const RecordsetPtr orders = OrdersToChange(call, carrier);
    // Without any order there is one row of Nulls.
    if (orders->Get("FID").is_null()) return true;
    for (; !orders->eof(); orders->MoveNext()) {
      WriteSaveOrderLog(orders->Get("FID").ToText(), "0", "FLogisticsID",
                        orders->Get("FLogisticsID").ToText() + "->" + std::to_string(carrier));
    }
    TextBuilder text;
    text.Append(R"(
UPDATE  IC_Web2ERPOrdersEx
SET     FAddressReachable = NULL           --地址需要重新检查
WHERE   FID IN ( {FID})
UPDATE  IC_Web2ERPOrders
SET     FLogisticsID = {carrier} ,
        FLogisticsOrder = '' ,             --清空物流单号
        FEMSStatus = 0                     --清空电子面单状态
WHERE   FID IN ( {FID}) AND FOrderStatus <> 14
)"_sql,
                {{"FID", JoinColumn(orders, "FID")}, {"carrier", carrier}});
    call.connection.Execute(text.GetText());
    return true;
  });
}

RecordsetPtr clsGetData::GetLogisticsCompany(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::GetLogisticsCompany>;
  return CallForDictionary(State(), contract, dctPara, [&](Connection& connection, const Parameters& parameters) {
    TextBuilder text;
    text.Append(R"(
SELECT  t1.FItemID ,
        t1.FNumber ,
        t1.{name} AS FName ,
        t1.FIsElectronic ,
        t1.FIsDefault
FROM    IC_Logistics t1 with(nolock)
)"_sql,
                {{"name", NameColumn(context_)}});
    if (parameters.HasText("FID")) {
      text.Append(R"(
WHERE   NOT EXISTS (SELECT 1
                    FROM    IC_Web2ERPOrders t2 with(nolock)
                            INNER JOIN IC_SaveAddressReachableInfo t3 with(nolock)
                            ON  t3.FDeliveryProvince = CAST(t2.FDeliveryProvince AS nvarchar(50))
                            AND t3.FDeliveryCity = CAST(t2.FDeliveryCity AS nvarchar(50))
                            AND t3.FDeliveryDistrict = CAST(t2.FDeliveryDistrict AS nvarchar(50))
                    WHERE   t2.FID IN ( {FID})
                            AND t3.FNumber = t1.FNumber
                            AND t3.FArrive <> 1)
)"_sql,
                  {{"FID", parameters.Text("FID")}});
    }
    text.Line("ORDER BY t1.FNumber, t1.FItemID");
    return connection.ExecuteAnswer(text.GetText());
  });
}

}  // namespace tessarlorn
