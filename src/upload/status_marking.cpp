// Recording what became of the upload of delivery states to the web shops.
#include "frame/order_call.h"
#include "frame/parameters.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/error.h"
#include "upload/contracts.h"

namespace tessarlorn {

bool clsSaveData::UploadStatus(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::UploadStatus>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    TextBuilder text;
    text.Append(R"(
Update IC_Web2ERPOrders
Set FUpLoadStatus = 1,
 FTransactionStatus = 38193,
)"_sql);
    if (call.parameters.IsNumber("IsOfflineUpLoad", 1)) text.Line("FSendType = 38132 ,");
    text.Append(R"(
    FReasonsForFailure=''
WHERE   FID IN ({FID})
)"_sql,
                {{"FID", call.orders}});
    call.connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::UploadStatusFailure(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsSaveData::UploadStatusFailure>;
  return CallForDictionary(State(), contract, dctPara, [&](Connection& connection, const Parameters& parameters) {
    const std::shared_ptr<Vector> failures = parameters.Value("ErrInfo").ToVector();
    if (!failures) RaiseTypeMismatch();
    TextBuilder text;
    for (const Variant& item : *failures) {
      const std::shared_ptr<Dictionary> failure = ItemDictionary(item);
      const Parameters order(failure.get());
      const Key& key = KeyNamed("FailureFID", upload::kFailure);
      text.Append("UPDATE IC_Web2ERPOrders SET FUpLoadStatus =0,FReasonsForFailure = '{reason}' WHERE FID = {FID}\r\n",
                  {{"reason", WithoutQuotes(order.Text("FailureInfo"))}, {"FID", order.TextOrDefault(key)}});
    }
    if (!text.empty()) connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::UpLoadStatusForManualAndClosed(std::string_view sDsn) {
  constexpr const Contract& contract = kContract<&clsSaveData::UpLoadStatusForManualAndClosed>;
  return CallOperation(State(), contract, sDsn, [&](Connection& connection) {
    TextBuilder text;
    text.Line("Update IC_Web2ERPOrders");
    text.Line("Set FUpLoadStatus = 1 ");
    text.Line("where  (FTransactionStatus=38195 or FOrderType=38112) and FUpLoadStatus=0");
    text.Line("update entry ");
    text.Line("Set FUpLoadStatus = 1 ");
    text.Line("from IC_Web2ERPOrdersEntry  entry ");
    text.Line("inner join  IC_Web2ERPOrders head ");
    text.Line("on entry.FID=head.FID ");
    text.Line("where (FTransactionStatus=38195 or FOrderType=38112) and entry.FUpLoadStatus=0 ");
    connection.Execute(text.GetText());
    return true;
  });
}

RecordsetPtr clsGetData::bExistUpLoadBill(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::bExistUpLoadBill>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    TextBuilder text;
    text.Line("SELECT FOrderID ,FUpLoadStatus FROM IC_Web2ERPOrders WHERE FUpLoadStatus =1 AND FID in (", call.orders,
              ")");
    return call.connection.ExecuteAnswer(text.GetText());
  });
}

}  // namespace tessarlorn
