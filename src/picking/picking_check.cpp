// Confirming the picker, and the picking check of orders.
#include "frame/order_call.h"
#include "frame/parameters.h"
#include "frame/text_builder.h"
#include "picking/contracts.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn {

bool clsSaveData::ConfirmBill(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::ConfirmBill>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    TextBuilder text;
    text.Append(R"(
Update IC_Web2ERPOrders
SET     FPickMan = '{FPickManNumber}', --配货员职员代码
        FPickRem = '{FPickRem}', --配货备注
        FPickDate=GETDATE(),                    --配货日期
        FOrderStatus = 6                        --待发货状态值
WHERE   FID IN ( {FID})
)"_sql,
                {{"FPickManNumber", call.parameters.Text("FPickManNumber")},
                 {"FPickRem", call.parameters.Text("FPickRem")},
                 {"FID", call.orders}});
    call.connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::SavePickingGoods(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::SavePickingGoods>;
  return CallForDictionary(State(), contract, dctPara, [&](Connection& connection, const Parameters& parameters) {
    // What is no number is refused before anything is logged.
    const bool passed = parameters.Has("FPickingGoodsStatus") && !parameters.IsNumber("FPickingGoodsStatus", 0);
    const bool timed = parameters.IsNumber("FPickingGoodsstatus", 1);
    const std::string parcel = parameters.Text("FLogisticsOrder");
    TextBuilder condition;
    if (IsNumeric(parcel)) {
      condition.Append(" Where FUniqueCode ='{parcel}' OR FLogisticsOrder ='{parcel}'", {{"parcel", parcel}});
    } else {
      condition.Append(" Where FLogisticsOrder ='{parcel}'", {{"parcel", parcel}});
    }
    if (IsLogEnable("3003")) {
      TextBuilder query;
      query.Line("select FID from IC_Web2ERPOrders with(nolock) ", condition.GetText());
      const RecordsetPtr orders = connection.Query(query.GetText());
      if (!orders->eof()) {
        WriteOPLog(orders->Get(std::size_t{0}).ToText(), "3003", "0", "", passed ? "通过" : "不通过");
      }
    }
    const Key& status = KeyNamed("FPickingGoodsStatus", picking::kPickingGoods);
    TextBuilder text;
    text.Append("UPDATE IC_Web2ERPOrders  SET FPIckingGoodsStatus ={status},FPickingGoodMan = {man}",
                {{"status", parameters.TextOrDefault(status)}, {"man", parameters.Text("FPickingGoodMan")}});
    if (timed) text.Append(",FOrderPickingDate='{now}'", {{"now", host_.LocalNow().ToString()}});
    text.Line(condition.GetText());
    connection.Execute(text.GetText());
    return true;
  });
}

/// What tells marking from clearing.
struct clsSaveData::PickingMark {
  const Contract& contract;
  std::string_view code;
  bool always_logged;
  std::string_view set;
  std::string_view guard;
};

bool clsSaveData::MarkPickingGoodsStatus(const Dictionary* dctPara) {
  return ChangePickingMark(dctPara,
                           {.contract = kContract<&clsSaveData::MarkPickingGoodsStatus>,
                            .code = "3014",
                            .always_logged = true,
                            .set = "SET FOrderPickingDate = GETDATE(),FPIckingGoodsStatus = 1,FPickingGoodMan=",
                            .guard = ") AND FPIckingGoodsStatus = 0"});
}

bool clsSaveData::ClearPickingGoodsStatus(const Dictionary* dctPara) {
  return ChangePickingMark(dctPara,
                           {.contract = kContract<&clsSaveData::ClearPickingGoodsStatus>,
                            .code = "3013",
                            .always_logged = false,
                            .set = "SET FOrderPickingDate = GETDATE(),FPIckingGoodsStatus = 0,FPickingGoodMan=",
                            .guard = ") AND FPIckingGoodsStatus = 1"});
}

bool clsSaveData::ChangePickingMark(const Dictionary* dctPara, const PickingMark& mark) {
  return CallForOrders(State(), mark.contract, dctPara, [&](const OrderCall& call) {
    if (mark.always_logged || IsLogEnable(mark.code)) WriteOPLog(call.orders, mark.code, "0", "", "");
    TextBuilder text;
    text.Line("UPDATE IC_Web2ERPOrders ");
    text.Line(mark.set, call.parameters.Text("UserId"));
    text.Line("WHERE FID IN (", call.orders, mark.guard);
    call.connection.Execute(text.GetText());
    return true;
  });
}

}  // namespace tessarlorn
