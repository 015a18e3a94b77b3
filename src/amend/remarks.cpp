// The three remarks that an order carries: the seller's, the buyer's wishes for the delivery, the shipper's.
#include "amend/contracts.h"
#include "frame/key_list.h"
#include "frame/order_call.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn {

struct clsSaveData::RemarkChange {
  const Contract& contract;
  /// The key of the new remark, and the column.
  std::string_view field;
  /// The assignment, with {remark} for the new remark.
  std::string_view replace;
  std::string_view append = {};
  /// Whether the new remark is added behind the old one and a backslash.
  bool (*appends)(const Parameters& parameters) = nullptr;
};

bool clsSaveData::OrderRemark(const Dictionary* dctPara) {
  return ChangeRemark(dctPara, {.contract = kContract<&clsSaveData::OrderRemark>,
                                .field = "FSellerMessage",
                                .replace = "SET    FSellerMessage ='{remark}'\r\n",
                                .append = "SET    FSellerMessage = FSellerMessage + '\\{remark}'\r\n",
                                .appends = [](const Parameters& parameters) {
                                  return parameters.HasText("Mode") && !parameters.IsNumber("Mode", 0);
                                }});
}

bool clsSaveData::DeRemark(const Dictionary* dctPara) {
  return ChangeRemark(dctPara, {.contract = kContract<&clsSaveData::DeRemark>,
                                .field = "FDeliveryRemark",
                                .replace = "SET    FDeliveryRemark ='{remark}'\r\n"});
}

bool clsSaveData::DeliveryRemark(const Dictionary* dctPara) {
  return ChangeRemark(dctPara,
                      {.contract = kContract<&clsSaveData::DeliveryRemark>,
                       .field = "FShippingRem",
                       .replace = "SET    FShippingRem ='{remark}'\r\n",
                       .append = "SET    FShippingRem = FShippingRem + '\\{remark}'\r\n",
                       .appends = [](const Parameters& parameters) { return parameters.IsNumber("Mode", 1); }});
}

bool clsSaveData::ChangeRemark(const Dictionary* dctPara, const RemarkChange& change) {
  return CallForOrders(State(), change.contract, dctPara, [&](const OrderCall& call) {
    const std::string remark = call.parameters.Text(change.field);
    const bool appends = change.appends != nullptr && change.appends(call.parameters);
    for (const std::string_view order : SplitKeys(call.orders)) WriteSaveOrderLog(order, "0", change.field, remark);
    TextBuilder text;
    text.Line("Update IC_Web2ERPOrders ");
    text.Append(appends ? change.append : change.replace, {{"remark", remark}});
    text.Line("Where FID in (", call.orders, ")");
    call.connection.Execute(text.GetText());
    return true;
  });
}

}  // namespace tessarlorn
