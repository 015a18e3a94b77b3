// Delivered, and back again: the last steps of an order.
#include "delivery/contracts.h"
#include "delivery/stock_bill_queue.h"
#include "frame/identity.h"
#include "frame/key_list.h"
#include "frame/order_call.h"
#include "frame/parameters.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn {

bool clsSaveData::Delivery(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::Delivery>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    const std::int16_t user = Variant(CurrentUserId(*session_)).ToInt16();
    TextBuilder text;
    text.Append(R"(
Update IC_Web2ERPOrders
SET     FOrderStatus = 14,                                     --发货状态
        FShippingMan = {user}                 --发货人
WHERE   FID IN ({FID})
Update IC_Web2ERPOrdersEntry
Set FIsRowClose = 1
Where FID IN ({FID})
)"_sql,
                {{"user", user}, {"FID", call.orders}});
    call.connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::BackToThePreviousStep(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::BackToThePreviousStep>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    const bool from_delivered = call.parameters.Value("UpdateFlag").ToBool();
    if (IsLogEnable("3005")) WriteOPLog(call.orders, "3005", "0", "", "");
    TextBuilder text;
    if (from_delivered) {
      text.Append(R"(
UPDATE IC_Web2ERPOrders
SET     FOrderStatus = 6 ,         --待发货状态为6
        FShippingMan = 0           --清空发货人
WHERE   FID IN ({FID})
Update IC_Web2ERPOrdersEntry
Set FIsRowClose = 0
Where FID IN ({FID})
)"_sql,
                  {{"FID", call.orders}});
    } else {
      text.Append(R"(
UPDATE IC_Web2ERPOrders
SET     FOrderStatus = 2 ,         --待配货状态为2
        FPickMan = 0 ,             --配货员为空
        FPickDate = Null           --配货时间为空
WHERE   FID IN ({FID})
)"_sql,
                  {{"FID", call.orders}});
    }
    call.connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::UpdateDeliveryData(std::string_view sDsn, std::string_view sFID) {
  constexpr const Contract& contract = kContract<&clsSaveData::UpdateDeliveryData>;
  return CallOperation(State(), contract, sDsn, [&](Connection& connection) {
    QueueStockBills(connection, sFID);
    return true;
  });
}

}  // namespace tessarlorn
