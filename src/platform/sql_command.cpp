#include "tessarlorn/sql_command.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

struct TypeWord {
  std::string_view word;
  FieldType type;
  /// What it counts as without arguments; -1: it takes none.
  int size = -1;
};

constexpr int kUnlimited = 0;

constexpr std::array kTypeWords = {
    TypeWord{"bigint", FieldType::kBigInt},
    TypeWord{"binary", FieldType::kBinary, 1},
    TypeWord{"bit", FieldType::kBit},
    TypeWord{"char", FieldType::kChar, 1},
    TypeWord{"date", FieldType::kDate},
    TypeWord{"datetime", FieldType::kDateTime},
    TypeWord{"datetime2", FieldType::kDateTime},
    TypeWord{"datetimeoffset", FieldType::kDateTimeOffset},
    TypeWord{"decimal", FieldType::kDecimal},
    TypeWord{"float", FieldType::kFloat},
    TypeWord{"image", FieldType::kVarBinary, kUnlimited},
    TypeWord{"int", FieldType::kInt},
    TypeWord{"money", FieldType::kMoney},
    TypeWord{"nchar", FieldType::kNChar, 1},
    TypeWord{"ntext", FieldType::kNVarChar, kUnlimited},
    TypeWord{"numeric", FieldType::kDecimal},
    TypeWord{"nvarchar", FieldType::kNVarChar, 1},
    TypeWord{"real", FieldType::kReal},
    TypeWord{"smalldatetime", FieldType::kDateTime},
    TypeWord{"smallint", FieldType::kSmallInt},
    TypeWord{"smallmoney", FieldType::kMoney},
    TypeWord{"text", FieldType::kVarChar, kUnlimited},
    TypeWord{"time", FieldType::kTime},
    TypeWord{"tinyint", FieldType::kTinyInt},
    TypeWord{"uniqueidentifier", FieldType::kGuid},
    TypeWord{"varbinary", FieldType::kVarBinary, 1},
    TypeWord{"varchar", FieldType::kVarChar, 1},
};

[[noreturn]] void RaiseUnknown(std::string_view declaration) {
  Raise(error_number::kStatementError, "'" + std::string(declaration) + "' is no type of a parameter");
}

int NumberOf(std::string_view digits, std::string_view declaration) {
  digits = Trim(digits);
  if (EqualsIgnoreCase(digits, "max")) return kUnlimited;
  const std::optional<int> number = WholeNumber<int>(digits, 0);
  if (!number) RaiseUnknown(declaration);
  return *number;
}

}  // namespace

Field FieldOfDeclaration(std::string_view declaration) {
  const std::size_t open = std::min(declaration.find('('), declaration.size());
  const std::string word = LowerCase(Trim(declaration.substr(0, open)));
  const auto* found =
      std::find_if(kTypeWords.begin(), kTypeWords.end(), [&](const TypeWord& known) { return known.word == word; });
  if (found == kTypeWords.end()) RaiseUnknown(declaration);
  Field field;
  field.type = found->type;
  field.size = std::max(found->size, 0);
  if (field.type == FieldType::kDecimal) field.precision = 18;
  if (field.type == FieldType::kMoney) {
    field.precision = word == "money" ? 19 : 10;
    field.scale = 4;
  }
  if (open == declaration.size()) return field;
  const std::size_t close = declaration.rfind(')');
  if (close == std::string_view::npos || !Trim(declaration.substr(close + 1)).empty()) RaiseUnknown(declaration);
  const std::vector<std::string_view> arguments = Split(declaration.substr(open + 1, close - open - 1), ',');
  if (field.type == FieldType::kDecimal) {
    field.precision = NumberOf(arguments[0], declaration);
    if (arguments.size() > 1) field.scale = NumberOf(arguments[1], declaration);
  } else if (found->size >= 0) {
    field.size = NumberOf(arguments[0], declaration);
  }
  return field;
}

std::string_view TypeWordOf(FieldType type) {
  return std::find_if(kTypeWords.begin(), kTypeWords.end(),
                      [type](const TypeWord& known) { return known.type == type && known.size != kUnlimited; })
      ->word;
}

}  // namespace tessarlorn
