// Values and rows as JSON. All JSON of results is made here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/calls/result_rows.h"

namespace tessarlorn {

/// How whole numbers of more than 15 digits are written, such as unique codes: JavaScript would cut them.
enum class LongNumbers : std::uint8_t { kAsNumbers, kAsTexts };

/// The value as JSON: numbers with all their digits, Booleans, dates in ISO form, null for Null, Empty and Nothing, a
/// recordset as an array of objects. Malformed UTF-8 becomes U+FFFD.
std::string JsonText(const Variant& value, FieldType type = FieldType::kNVarChar);

/// A text as JSON, in quotes.
void AppendJsonText(std::string& json, std::string_view text);
void AppendJson(std::string& json, const Variant& value, FieldType type = FieldType::kNVarChar,
                LongNumbers long_numbers = LongNumbers::kAsNumbers);

/// Rows as objects. Of fields with the same head the later ones get "_2" and so on behind it.
class JsonRows {
 public:
  explicit JsonRows(const ResultRows& shown, LongNumbers long_numbers = LongNumbers::kAsNumbers);
  /// Appends the current row of a recordset with the same fields.
  void AppendObject(std::string& json, const Recordset& rows) const;
  /// The keys of the objects.
  [[nodiscard]] const std::vector<std::string>& keys() const noexcept { return keys_; }

 private:
  LongNumbers long_numbers_;
  std::vector<std::size_t> fields_;
  std::vector<std::string> keys_;
  /// In front of each value: the comma or brace, the key in quotes, and the colon.
  std::vector<std::string> leads_;
};

}  // namespace tessarlorn
