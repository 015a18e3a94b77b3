// Handing documents to outside warehouses: tasks for the service that synchronises with them.
#include "frame/key_list.h"
#include "frame/order_call.h"
#include "frame/text_builder.h"
#include "frame/update_or_insert.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "warehouse/contracts.h"

namespace tessarlorn {
namespace {

/// What a transaction type's lines are submitted as.
struct DocumentKind {
  std::string_view line_table;
  std::int32_t task_type = 0;
};

DocumentKind KindOf(std::int32_t transaction_type) {
  constexpr std::int32_t kPurchaseOrder = 71;
  constexpr std::int32_t kSalesOrder = 81;
  switch (transaction_type) {
    case kPurchaseOrder:
      return {.line_table = "POOrderEntry", .task_type = 120};
    case kSalesOrder:
      return {.line_table = "SEOrderEntry", .task_type = 160};
    default:
      return {};
  }
}

}  // namespace

bool clsSaveData::SubMitTplOrderTask(std::string_view sDsn, std::string_view sFID, std::int32_t tplType,
                                     std::string_view sUserName, std::string_view sWebTplID) {
  constexpr const Contract& contract = kContract<&clsSaveData::SubMitTplOrderTask>;
  return CallForTexts(State(), contract, {sDsn, sFID}, [&](Connection& connection) {
    TextBuilder task;
    task.Append(
        R"(
 INSERT TPLTaskFlow  (FTaskType,FTaskName,FWebTplType,FWebTplID,FProgressPer,FUserName,FRefreshTime,FStatus,FPriority)
 VALUES (130,'{orders}',{type},'{warehouse}',0,'{user}',GetDate(),0,10)
)"_sql,
        {{"orders", sFID}, {"type", tplType}, {"warehouse", sWebTplID}, {"user", sUserName}});
    const auto mark = [](TextBuilder& text, std::string_view key) {
      AppendUpdateOrInsert(text, key,
                           {.table = "IC_Web2ERPOrdersEx",
                            .set = "FTplStatus='3'  ",
                            .guard = "FTplStatus in ('0','2') AND ",
                            .columns = " ,FOrderID,FLotNumber,FSerialNumber,FCreateDate,FAddressReachable,FTplStatus",
                            .values = ",'','','',GETDATE(),'','3'"});
    };
    ExecuteInBatches(connection, SplitKeys(sFID), mark, task.GetText());
    return true;
  });
}

std::string clsSaveData::SubMitPorTask(std::string_view sDsn, std::string_view sTaskID, std::string_view sInterFID,
                                       std::int32_t tplType, std::string_view sStockID, std::string_view sUserName,
                                       std::string_view sFiter, std::int32_t lTranType) {
  constexpr const Contract& contract = kContract<&clsSaveData::SubMitPorTask>;
  return CallForTexts(State(), contract, {sDsn, sTaskID, sInterFID}, [&](Connection& connection) {
    const DocumentKind kind = KindOf(lTranType);
    TextBuilder text;
    text.Append(
        R"(
 INSERT TPLTaskFlow  (FTaskId,FTaskType,FTaskName,FWebTplType,FWebTplID,FProgressPer,FUserName,FRefreshTime,FStatus,FPriority)
 VALUES ('{task}',{task_type},'{documents}',{type},'{stock}',0,'{user}',GetDate(),0,10)
        UPDATE  t1
)"_sql,
        {{"task", sTaskID},
         {"task_type", kind.task_type},
         {"documents", sInterFID},
         {"type", tplType},
         {"stock", sStockID},
         {"user", sUserName}});
    text.Append("        SET t1.FTplEStatus='3' ,t1.FTplEFail='',t1.FTplEflat='{type}',t1.FTplEStock='{stock}' \r\n",
                {{"type", tplType}, {"stock", sStockID}});
    text.Line("        from ", kind.line_table, " t1");
    text.Line("         WHERE t1.FTplEStatus in ('0','') AND  (", sFiter, ")");
    connection.Execute(text.GetText());
    return std::string();
  });
}

bool clsSaveData::ClearTplFieldInfo(std::string_view sDsn, std::string_view sBillNo) {
  constexpr const Contract& contract = kContract<&clsSaveData::ClearTplFieldInfo>;
  return CallOperation(State(), contract, sDsn, [&](Connection& connection) {
    TextBuilder text;
    text.Line("        UPDATE POOrder");
    text.Line("        SET FTplStatus='' ,FTplFail='',FTplflat='',FTplStock='' ");
    text.Append("        WHERE  FBillNo  = '{number}'\r\n", {{"number", sBillNo}});
    text.Line("        UPDATE POOrderEntry");
    text.Line("        SET FTplEStatus='' ,FTplEFail='',FTplEflat='',FTplEStock='' ");
    text.Append("        WHERE FInterID  = (select FInterID from POOrder  WHERE FBillNo  = '{number}')\r\n",
                {{"number", sBillNo}});
    connection.Execute(text.GetText());
    return true;
  });
}

bool clsSaveData::DownloadWebTpls(std::string_view sDsn, std::int32_t lScheme) {
  constexpr const Contract& contract = kContract<&clsSaveData::DownloadWebTpls>;
  return CallOperation(State(), contract, sDsn, [&](Connection& connection) {
    TextBuilder text;
    text.Append(R"(
if exists(select 1 from IC_SynchSetting where FSettingName='DownloadWebTpls')
  UPDATE IC_SynchSetting SET FSettingValue='{scheme}'  WHERE  FSettingName='DownloadWebTpls'
)"_sql,
                {{"scheme", lScheme}});
    connection.Execute(text.GetText());
    return true;
  });
}

std::int32_t clsGetData::GetPurchaseTaskInfo(std::string_view sDsn, std::string_view taskName, std::string_view taskID,
                                             std::string_view sWebTplType, std::string_view sWebTplID) {
  constexpr const Contract& contract = kContract<&clsGetData::GetPurchaseTaskInfo>;
  constexpr std::int32_t kFinished = -1;
  if (taskName.empty() && taskID.empty()) return 0;
  return CallForTexts(State(), contract, {sDsn}, [&](Connection& connection) {
    TextBuilder text;
    if (!taskID.empty()) {
      text.Append("   select FStatus from TPLTaskFlow where  FTaskId ='{task}'   \r\n", {{"task", taskID}});
    } else {
      text.Append(
          "   select FStatus from TPLTaskFlow where FTaskType =120 and FWebTplType='{type}' and FWebTplID='{warehouse}'"
          " and  FTaskName ='{name}'   \r\n",
          {{"type", sWebTplType}, {"warehouse", sWebTplID}, {"name", taskName}});
    }
    const RecordsetPtr tasks = connection.Query(text.GetText());
    for (; !tasks->eof(); tasks->MoveNext()) {
      if (tasks->Get("FStatus").ToText() == "2") return kFinished;
    }
    return std::int32_t{0};
  });
}

}  // namespace tessarlorn
