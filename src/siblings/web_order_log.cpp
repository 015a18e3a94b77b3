#include "siblings/web_order_log.h"

#include <vector>

#include "platform/collections.h"
#include "platform/error.h"
#include "platform/session.h"
#include "platform/text.h"
#include "siblings/arguments.h"

namespace tessarlorn {
namespace {

constexpr std::string_view kComponent = "TessarMWebOrder.TessarMWebOrderUpdate";

// Widths of the log columns, in UTF-16 units.
constexpr std::size_t kFieldNameWidth = 64;
constexpr std::size_t kFieldValueWidth = 2000;
constexpr std::size_t kAddressWidth = 64;
constexpr std::size_t kOperationValueWidth = 255;

DataSession& Session() {
  DataSession* session = SessionFactory::ForThisThread().current();
  if (session == nullptr) Raise(error_number::kObjectNotSet, "No session is open to log on");
  return *session;
}

/// A quoted text literal of at most `width` UTF-16 units; a character is kept whole or dropped.
std::string Quoted(std::string_view text, std::size_t width) {
  std::size_t kept = 0;
  std::size_t units = 0;
  for (std::size_t position = 0; position < text.size(); kept = position) {
    units += NextCharacter(text, position) > 0xFFFF ? 2 : 1;
    if (units > width) break;
  }
  return "N'" + ReplaceAll(text.substr(0, kept), "'", "''") + "'";
}

/// A number literal. Raises 13 for a text that is no number.
std::string Number(const Variant& value) { return std::to_string(value.ToInt32()); }

/// The same, NULL for the empty text.
std::string NumberOrNull(const Variant& value) { return value.ToText().empty() ? "NULL" : Number(value); }

bool WriteFieldLog(std::span<const Variant> arguments) {
  DataSession& session = Session();
  const Variant caller = session.GetContext().GetCallerInfo();
  const Variant user =
      ObjectService::ForThisThread().CreateInstance("QuorBase.SecurityInfo")->Call("GetCurrentUserID", {&caller, 1});
  session.GetConnection().Execute(
      "INSERT INTO IC_TradeFieldLog (FOrderFID,FEntryID,FFieldName,FNewValue,FOPUserID,FOPTime) VALUES (" +
      NumberOrNull(arguments[0]) + "," + NumberOrNull(arguments[1]) + "," +
      Quoted(arguments[2].ToText(), kFieldNameWidth) + "," + Quoted(arguments[3].ToText(), kFieldValueWidth) + "," +
      Number(user) + ",GETDATE())\r\n");
  return true;
}

bool WriteOperationLog(std::span<const Variant> arguments) {
  const std::shared_ptr<Dictionary> log = arguments[0].ToDictionary();
  if (!log) RaiseTypeMismatch();
  const std::string columns = "," + Number(log->GetValue("FOPUserID")) + "," + Number(log->GetValue("FOPCode")) + "," +
                              Quoted(log->GetValue("FUserIP").ToText(), kAddressWidth) + ",'" +
                              log->GetValue("FOPTime").ToDateTime().ToString() + "'," +
                              Number(log->GetValue("FItemID")) + "," +
                              Quoted(log->GetValue("FOldValue").ToText(), kOperationValueWidth) + "," +
                              Quoted(log->GetValue("FNewValue").ToText(), kOperationValueWidth) + ")\r\n";
  const std::string orders = log->GetValue("sFID").ToText();
  if (orders.empty()) return false;
  std::vector<std::string> numbers;
  for (const std::string_view order : Split(orders, ',')) numbers.push_back(Number(order));
  // In parts: the text of a row is twenty times as long as the key of its order.
  constexpr std::size_t kRowsOfBatch = 1000;
  std::string text;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    text +=
        "INSERT INTO IC_TradeLog (FOrderFID,FOPUserID,FOPCode,FUserIP,FOPTime,FItemID,FOldValue,FNewValue) VALUES (" +
        numbers[i] + columns;
    if (i + 1 < numbers.size() && (i + 1) % kRowsOfBatch != 0) continue;
    Session().GetConnection().Execute(text);
    text.clear();
  }
  return true;
}

bool IsEnabled(const Variant& code) {
  const std::string key = "TradeLog" + code.ToText();
  return !Session()
              .GetConnection()
              .Query("SELECT 1 FROM t_SystemProfile WHERE FCategory='EC' AND FKey=" + Quoted(key, key.size()) +
                     " AND FValue='1'\r\n")
              ->eof();
}

}  // namespace

Variant WebOrderLog::Call(std::string_view method, std::span<const Variant> arguments) {
  if (EqualsIgnoreCase(method, "WriteSaveOrderLog")) {
    ExpectArguments(method, arguments, 4);
    return WriteFieldLog(arguments);
  }
  if (EqualsIgnoreCase(method, "WriteOPLog")) {
    ExpectArguments(method, arguments, 2);
    return WriteOperationLog(arguments);
  }
  if (EqualsIgnoreCase(method, "IsLogEnable")) {
    ExpectArguments(method, arguments, 1);
    return IsEnabled(arguments[0]);
  }
  RaiseNoSuchMethod(kComponent, method);
}

}  // namespace tessarlorn
