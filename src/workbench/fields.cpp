#include "workbench/fields.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn::workbench {
namespace {

constexpr std::string_view kKey = "fields";

/// A table of the template, and how one of its columns is reached from an order t1.
struct Table {
  std::string_view name;
  /// The column in front of the comparison; "" for lines.
  std::string_view column;
  /// What stands around the comparison of a line's column.
  std::string_view lines = {};
};
constexpr std::array kTables = {
    Table{"IC_Web2ERPOrders", "t1."},
    Table{"IC_Web2ERPOrdersEx", "t22."},
    Table{"IC_StockBillOrdersStatus", "t23."},
    Table{"IC_PrintOrderInfo", "t28."},
    Table{"IC_Web2ERPOrdersEntry", "e.",
          "EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEntry e with(nolock) WHERE e.FID = t1.FID AND "},
    Table{
        "t_ICItem", "i.",
        "EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEntry e with(nolock) INNER JOIN t_ICItem i with(nolock) ON i.FItemID = "
        "e.FItemID WHERE e.FID = t1.FID AND "},
};

/// FCtlType of the template.
enum class Control : std::int32_t { kNumber = 2, kDate = 3, kMark = 4 };

struct Condition {
  std::string field;
  std::string comparison;
  std::string value;
};

Condition ReadCondition(const std::string& text) {
  const std::size_t end = text.find_first_of("=~<>");
  if (end != std::string::npos && end > 0) {
    for (const char* const comparison : {">=", "<=", "=", "~"}) {
      if (text.compare(end, std::string_view(comparison).size(), comparison) != 0) continue;
      return {std::string(Trim(text.substr(0, end))), comparison,
              std::string(Trim(text.substr(end + std::string_view(comparison).size())))};
    }
  }
  throw WrongValue(kKey, "fields are written as FWeight>=1.5, with =, ~, >= or <=, not " + OnOneLine(text));
}

bool IsIdentifier(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
  });
}

SqlParameter Value(const Condition& condition, Control control, std::string name) {
  try {
    const Variant text(condition.value);
    if (control == Control::kNumber || control == Control::kMark) {
      constexpr double kLargest = 1e17;
      const double number = text.ToDouble();
      if (number > kLargest || number < -kLargest) throw WrongValue(kKey, condition.field + " is compared with less");
      return {.name = std::move(name), .type = "decimal(28,10)", .value = text};
    }
    if (control == Control::kDate) {
      constexpr int kFirstYear = 1760;
      const DateTime time = text.ToDateTime();
      if (time.ToCivil().year < kFirstYear) throw WrongValue(kKey, condition.field + " is compared with later dates");
      return {.name = std::move(name), .type = "datetime", .value = time};
    }
    const std::string value =
        condition.comparison == "~" ? "%" + EscapedForLike(condition.value) + "%" : condition.value;
    return {.name = std::move(name), .type = "nvarchar(4000)", .value = value};
  } catch (const Error&) {
    throw WrongValue(kKey, condition.field + " is not compared with " + OnOneLine(condition.value) +
                               (control == Control::kDate ? ": it is a date" : ": it is a number"));
  }
}

}  // namespace

void AddFieldCondition(Statement& statement, Connection& connection, const std::string& text, std::size_t place) {
  const Condition condition = ReadCondition(text);
  SqlParameter parameters[] = {{"@key", "nvarchar(50)", condition.field}};
  const RecordsetPtr row = connection.Query(
      {"SELECT TOP (1) FTableName, FFieldName, FCtlType FROM ICClassTableInfo WHERE FClassTypeID = 1014301 AND FKey = "
       "@key ORDER BY FPage",
       parameters});
  if (row->eof()) throw WrongValue(kKey, "the order grid has no field " + OnOneLine(condition.field));
  const std::string table = row->Get("FTableName").ToText();
  const std::string column = row->Get("FFieldName").ToText();
  const auto* const known =
      std::find_if(kTables.begin(), kTables.end(), [&](const Table& one) { return one.name == table; });
  if (known == kTables.end() || !IsIdentifier(column)) {
    throw WrongValue(kKey, condition.field + " is not kept with orders, and cannot be filtered by");
  }
  const auto control = static_cast<Control>(row->Get("FCtlType").ToInt32());
  const bool texts = control != Control::kNumber && control != Control::kDate && control != Control::kMark;
  if (condition.comparison == "~" && !texts) {
    throw WrongValue(kKey, condition.field + " is no text: it is compared by =, >= or <=");
  }
  const std::string name = "@field" + std::to_string(place);
  std::string compared = std::string(known->column) + column;
  // A field that is looked up holds a key or a code.
  if (texts) compared = "CAST(" + compared + " AS nvarchar(4000))";
  compared += condition.comparison == "~" ? " LIKE " + name + " ESCAPE '\\'" : " " + condition.comparison + " " + name;
  statement.Add(" AND ").Add(known->lines).Add(compared).Add(known->lines.empty() ? "" : ")");
  SqlParameter value = Value(condition, control, name);
  statement.Set(std::move(value.name), std::move(value.type), std::move(value.value));
}

}  // namespace tessarlorn::workbench
