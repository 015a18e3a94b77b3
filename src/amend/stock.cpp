// The warehouse from which order lines are delivered.
#include "amend/contracts.h"
#include "frame/formats.h"
#include "frame/identity.h"
#include "frame/key_list.h"
#include "frame/order_call.h"
#include "frame/results.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"

namespace tessarlorn {
namespace {

/// One row for each line of the orders, with the names of its old and new warehouse.
void LogChange(DataSession& session, const OrderCall& call, std::string_view stock) {
  const std::string user = std::to_string(CurrentUserId(session));
  const std::string address = ClientAddress(session);
  const std::string now = FormatDateTime(session.host().LocalNow());
  for (const std::string_view order : SplitKeys(call.orders)) {
    TextBuilder text;
    text.Append(
        R"(
insert into IC_TradeLog (FOrderFID,FOPUserID,FOPCode,FUserIP,FOPTime,FItemID,FOldValue,FNewValue) select
{order},
{user},
2001,
'{address}',
'{now}',
t0.FItemID,
t1.FName,
t2.FName
from IC_Web2ERPOrdersEntry t0
left join t_Stock t1 on t1.FItemID = t0.FStockID
left join t_Stock t2 on t2.FItemID = {stock}
where t0.FID = {order}
)"_sql,
        {{"order", order}, {"user", user}, {"address", address}, {"now", now}, {"stock", stock}});
    call.connection.Execute(text.GetText());
  }
}

}  // namespace

bool clsSaveData::ChangeStock(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::ChangeStock>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    const std::string stock = call.parameters.Text("FStockID");
    if (IsLogEnable("2001")) LogChange(*session_, call, stock);
    TextBuilder text;
    text.Line(" UPDATE IC_Web2ERPOrdersEntry SET FSPID = 0 ,FStockID = ", stock);
    text.Line(" WHERE FID IN (", call.orders, ")");
    call.connection.Execute(text.GetText());
    return true;
  });
}

bool clsGetData::bExistStock(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::bExistStock>;
  return CallForOrders(State(), contract, dctPara, [](const OrderCall& call) {
    TextBuilder text;
    text.Line("SELECT COUNT(11) AS flag FROM IC_Web2ERPOrdersEntry WHERE FStockID=0 AND FID =", call.orders);
    return ReadFlag(call.connection, text.GetText());
  });
}

}  // namespace tessarlorn
