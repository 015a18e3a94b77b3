// Delivered, and back again: the last steps of an order.
#include "delivery/stock_bill_queue.h"
#include "frame/clsSaveData.h"
#include "frame/identity.h"
#include "frame/key_list.h"
#include "frame/parameters.h"
#include "frame/text_builder.h"

namespace tessarlorn {

bool clsSaveData::Delivery(const Dictionary* dctPara) {
  const Parameters parameters(dctPara);
  if (!parameters.HasText("sDSN") || !parameters.HasText("FID")) return false;
  return CallOperation(State(), "Delivery", parameters.Text("sDSN"), [&](Connection& connection) {
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
                {{"user", user}, {"FID", parameters.Text("FID")}});
    connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::DeliveryRemark(const Dictionary* dctPara) {
  const Parameters parameters(dctPara);
  if (!parameters.HasText("sDSN") || !parameters.HasText("FID") || !parameters.Has("FShippingRem")) return false;
  return CallOperation(State(), "OrderRemark", parameters.Text("sDSN"), [&](Connection& connection) {
    const std::string orders = parameters.Text("FID");
    const std::string remark = parameters.Text("FShippingRem");
    const bool appends = parameters.IsNumber("Mode", 1);
    for (const std::string_view order : SplitKeys(orders)) WriteSaveOrderLog(order, "0", "FShippingRem", remark);
    TextBuilder text;
    text.Line("Update IC_Web2ERPOrders ");
    if (appends) {
      text.Line("SET    FShippingRem = FShippingRem + '\\", remark, "'");
    } else {
      text.Line("SET    FShippingRem ='", remark, "'");
    }
    text.Line("Where FID in (", orders, ")");
    connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::BackToThePreviousStep(const Dictionary* dctPara) {
  const Parameters parameters(dctPara);
  if (!parameters.HasText("sDSN") || !parameters.HasText("FID")) return false;
  return CallOperation(State(), "BackToThePreviousStep", parameters.Text("sDSN"), [&](Connection& connection) {
    const std::string orders = parameters.Text("FID");
    const bool from_delivered = parameters.Value("UpdateFlag").ToBool();
    if (IsLogEnable("3005")) WriteOPLog(orders, "3005", "0", "", "");
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
                  {{"FID", orders}});
    } else {
      text.Append(R"(
UPDATE IC_Web2ERPOrders
SET     FOrderStatus = 2 ,         --待配货状态为2
        FPickMan = 0 ,             --配货员为空
        FPickDate = Null           --配货时间为空
WHERE   FID IN ({FID})
)"_sql,
                  {{"FID", orders}});
    }
    connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::UpdateDeliveryData(std::string_view sDsn, std::string_view sFID) {
  constexpr std::string_view kSource = "TessarLornPickingAndDelivery.clsSaveData.UpdateDeliveryData";
  return CallOperation(State(), kSource, sDsn, [&](Connection& connection) {
    QueueStockBills(connection, sFID);
    return true;
  });
}

}  // namespace tessarlorn
