#include "siblings/web_order_log.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/text/text.h"
#include "siblings/arguments.h"
#include "tessarlorn/collections.h"
#include "tessarlorn/error.h"
#include "tessarlorn/session.h"

namespace tessarlorn {
namespace {

constexpr std::string_view kComponent = "TessarMWebOrder.TessarMWebOrderUpdate";

// Widths of the log columns, in UTF-16 units.
constexpr std::size_t kFieldNameWidth = 64;
constexpr std::size_t kFieldValueWidth = 2000;
constexpr std::size_t kAddressWidth = 64;
constexpr std::size_t kOperationValueWidth = 255;

DataSession& Session() {
  DataSession* session = DataSession::Current();
  if (session == nullptr) Raise(error_number::kObjectNotSet, "No session is open to log on");
  return *session;
}

/// A text of at most `width` UTF-16 units; a character is kept whole or dropped.
SqlParameter Text(const char* name, const Variant& value, std::size_t width) {
  const std::string text = value.ToText();
  std::size_t kept = 0;
  std::size_t units = 0;
  for (std::size_t position = 0; position < text.size(); kept = position) {
    units += NextCharacter(text, position) > 0xFFFF ? 2 : 1;
    if (units > width) break;
  }
  return {name, "nvarchar(" + std::to_string(width) + ")", text.substr(0, kept)};
}

/// Raises 13 for a text that is no number.
SqlParameter Number(std::string name, const Variant& value) { return {std::move(name), "int", value.ToInt32()}; }

/// The same, NULL for the empty text.
SqlParameter NumberOrNull(const char* name, const Variant& value) {
  return value.ToText().empty() ? SqlParameter{name, "int", Null{}} : Number(name, value);
}

bool WriteFieldLog(std::span<const Variant> arguments) {
  DataSession& session = Session();
  const Variant caller = session.GetContext().GetCallerInfo();
  const Variant user = session.host().CreateInstance("QuorBase.SecurityInfo")->Call("GetCurrentUserID", {&caller, 1});
  SqlParameter parameters[] = {
      NumberOrNull("@order", arguments[0]),
      NumberOrNull("@entry", arguments[1]),
      Text("@field", arguments[2], kFieldNameWidth),
      Text("@value", arguments[3], kFieldValueWidth),
      Number("@user", user),
  };
  session.GetConnection().Execute(
      {"INSERT INTO IC_TradeFieldLog (FOrderFID,FEntryID,FFieldName,FNewValue,FOPUserID,FOPTime) "
       "VALUES (@order,@entry,@field,@value,@user,GETDATE())",
       parameters});
  return true;
}

/// The statement that logs so many orders: all of the row but the order is the same.
std::string OperationLogText(std::size_t orders) {
  std::string text =
      "INSERT INTO IC_TradeLog (FOrderFID,FOPUserID,FOPCode,FUserIP,FOPTime,FItemID,FOldValue,FNewValue) VALUES ";
  for (std::size_t i = 0; i < orders; ++i) {
    text += (i == 0 ? "(@order" : ",(@order") + std::to_string(i) + ",@user,@code,@address,@time,@item,@old,@new)";
  }
  return text;
}

bool WriteOperationLog(std::span<const Variant> arguments) {
  const std::shared_ptr<Dictionary> log = arguments[0].ToDictionary();
  if (!log) RaiseTypeMismatch();
  const std::vector<SqlParameter> common = {
      Number("@user", log->GetValue("FOPUserID")),
      Number("@code", log->GetValue("FOPCode")),
      Text("@address", log->GetValue("FUserIP"), kAddressWidth),
      {"@time", "datetime", log->GetValue("FOPTime").ToDateTime()},
      Number("@item", log->GetValue("FItemID")),
      Text("@old", log->GetValue("FOldValue"), kOperationValueWidth),
      Text("@new", log->GetValue("FNewValue"), kOperationValueWidth),
  };
  const std::string orders = log->GetValue("sFID").ToText();
  if (orders.empty()) return false;
  std::vector<Variant> numbers;
  for (const std::string_view order : Split(orders, ',')) numbers.emplace_back(Variant(order).ToInt32());
  constexpr std::size_t kOrdersOfStatement = 150;
  for (std::size_t first = 0; first < numbers.size(); first += kOrdersOfStatement) {
    const std::size_t count = std::min(kOrdersOfStatement, numbers.size() - first);
    std::vector<SqlParameter> parameters = common;
    for (std::size_t i = 0; i < count; ++i) {
      parameters.push_back(Number("@order" + std::to_string(i), numbers[first + i]));
    }
    Session().GetConnection().Execute({OperationLogText(count), parameters});
  }
  return true;
}

bool IsEnabled(const Variant& code) {
  SqlParameter key[] = {{"@key", "nvarchar(255)", "TradeLog" + code.ToText()}};
  return !Session()
              .GetConnection()
              .Query(
                  {"SELECT 1 AS FEnabled FROM t_SystemProfile WHERE FCategory='EC' AND FKey=@key AND FValue='1'", key})
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
