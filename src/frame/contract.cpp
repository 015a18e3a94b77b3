#include "tessarlorn/contract.h"

namespace tessarlorn {

std::string_view TypeName(ValueType type) {
  constexpr auto kNames = std::to_array<std::string_view>({"String", "Long", "Integer", "Double", "Boolean", "Date",
                                                           "Dictionary", "Vector", "Recordset", "Variant", "Decimal"});
  static_assert(kNames.size() == static_cast<std::size_t>(ValueType::kDecimal) + 1);
  return kNames[static_cast<std::size_t>(type)];
}

std::string_view StandingText(Standing stands) {
  constexpr auto kTexts = std::to_array<std::string_view>({
      "not in the statement",
      "between quotes",
      "between quotes, its own quotes removed",
      "as a converted number",
      "bare, as a number",
      "bare, as a list of keys",
      "bare, as a table's name",
      "bare, as SQL",
  });
  static_assert(kTexts.size() == static_cast<std::size_t>(Standing::kSql) + 1);
  return kTexts[static_cast<std::size_t>(stands)];
}

std::string_view ColumnsTitle(ValueType result) {
  if (result == ValueType::kVector) return "Keys of each Dictionary of the answer";
  return result == ValueType::kDictionary ? "Keys of the answer" : "Columns of the answer";
}

std::string_view NamesText(Names names) {
  constexpr auto kTexts = std::to_array<std::string_view>({"", "orders", "order lines", "orders of a waybill number",
                                                           "orders of a unique code", "orders of a cost invoice"});
  static_assert(kTexts.size() == static_cast<std::size_t>(Names::kCostInvoices) + 1);
  return kTexts[static_cast<std::size_t>(names)];
}

std::string Key::Explanation() const {
  std::string text(help);
  if (need == Need::kUnchecked) text += "; the database refuses the statement without it";
  if (need == Need::kGiven || need == Need::kMandatory) text += "; nothing is done without it";
  if (!fallback.empty()) text += "; default " + std::string(fallback);
  return text;
}

std::string Contract::Explanation() const {
  std::string text(help);
  if (source.empty()) return text;
  text.append(" Raises with Source ").append(source);
  if (!errors.empty()) text.append(", ").append(errors);
  return text + ".";
}

}  // namespace tessarlorn
