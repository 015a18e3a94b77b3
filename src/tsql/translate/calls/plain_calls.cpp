// Functions whose arguments are converted and handed to one row function.
#include <algorithm>
#include <array>
#include <string_view>

#include "tsql/translate/calls/call_topics.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

enum class ArgumentKind : char { kText = 't', kInt = 'i', kFloat = 'f' };

/// A scalar function whose arguments are converted and handed to one row function.
struct PlainFunction {
  std::string_view name;
  std::string_view row_function;
  /// One letter an argument: t text, i whole number, f float; upper case: may be left out.
  std::string_view arguments;
  /// What stands behind the arguments in the call, "" for nothing.
  std::string_view tail;
  /// t: text like the first argument, n: nvarchar(4000), m: nvarchar(max), o: nvarchar(128), v: varchar(8000), s:
  /// varchar(4), i: int, f: float; w: as wide as text can be
  /// that comes of its texts, which the row function gets as last argument.
  char result;
};

constexpr std::array kPlainFunctions = {
    PlainFunction{"len", "ts_len", "t", "", 'i'},
    PlainFunction{"substring", "ts_substring", "tii", "", 't'},
    PlainFunction{"left", "ts_left", "ti", "", 't'},
    PlainFunction{"right", "ts_right", "ti", "", 't'},
    PlainFunction{"upper", "ts_upper", "t", "", 't'},
    PlainFunction{"lower", "ts_lower", "t", "", 't'},
    PlainFunction{"ltrim", "ts_ltrim", "tT", "", 't'},
    PlainFunction{"rtrim", "ts_rtrim", "tT", "", 't'},
    PlainFunction{"trim", "ts_trim", "tT", "", 't'},
    PlainFunction{"translate", "ts_translate", "ttt", "", 't'},
    PlainFunction{"soundex", "ts_soundex", "t", "", 's'},
    PlainFunction{"difference", "ts_difference", "tt", "", 'i'},
    PlainFunction{"parsename", "ts_parsename", "ti", "", 'o'},
    PlainFunction{"string_escape", "ts_string_escape", "tt", "", 'm'},
    PlainFunction{"replace", "ts_replace", "ttt", "", 'w'},
    PlainFunction{"charindex", "ts_charindex", "ttI", "", 'i'},
    PlainFunction{"patindex", "ts_patindex", "tt", "", 'i'},
    PlainFunction{"reverse", "ts_reverse", "t", "", 't'},
    PlainFunction{"replicate", "ts_replicate", "ti", "", 'w'},
    PlainFunction{"stuff", "ts_stuff", "tiit", "", 'w'},
    PlainFunction{"space", "ts_space", "i", "", 'v'},
    PlainFunction{"char", "ts_char", "i", ", 0", 'v'},
    PlainFunction{"nchar", "ts_char", "i", ", 1", 'n'},
    PlainFunction{"ascii", "ts_unicode", "t", "", 'i'},
    PlainFunction{"unicode", "ts_unicode", "t", "", 'i'},
    PlainFunction{"quotename", "ts_quotename", "tT", "", 'n'},
    PlainFunction{"isjson", "ts_isjson", "t", "", 'i'},
    PlainFunction{"json_value", "ts_json_value", "tt", "", 'n'},
    PlainFunction{"isdate", "ts_isdate", "t", "", 'i'},
    PlainFunction{"isnumeric", "ts_isnumeric", "t", "", 'i'},
    PlainFunction{"sqrt", "ts_sqrt", "f", "", 'f'},
    PlainFunction{"exp", "ts_exp", "f", "", 'f'},
    PlainFunction{"log", "ts_log", "fF", "", 'f'},
    PlainFunction{"log10", "ts_log10", "f", "", 'f'},
    PlainFunction{"sin", "ts_sin", "f", "", 'f'},
    PlainFunction{"cos", "ts_cos", "f", "", 'f'},
    PlainFunction{"tan", "ts_tan", "f", "", 'f'},
    PlainFunction{"cot", "ts_cot", "f", "", 'f'},
    PlainFunction{"asin", "ts_asin", "f", "", 'f'},
    PlainFunction{"acos", "ts_acos", "f", "", 'f'},
    PlainFunction{"atan", "ts_atan", "f", "", 'f'},
    PlainFunction{"atn2", "ts_atan2", "ff", "", 'f'},
};

/// What the types of a call's texts tell of its result.
struct TextTypes {
  SqlType first = NVarCharType(4000);
  bool national = false;
  bool unlimited = false;
};

std::string TextOf(const Call& call, const PlainFunction& plain, std::size_t i, TextTypes& types) {
  const Typed value = call.Value(i);
  if (i == 0 && value.type.is_text()) types.first = value.type;
  types.national = types.national || value.type.is_national();
  types.unlimited = types.unlimited || (i == 0 && value.type.is_text() && value.type.size == 0);
  const bool cut = plain.name == "substring" && i == 0;
  if (cut && !value.type.is_text() && !value.type.is_binary()) {
    throw SqlError(8116, "Argument data type " + std::string(TypeNameText(value.type)) +
                             " is invalid for argument 1 of substring function.");
  }
  // Of binaries bytes are counted and cut.
  const bool bytes = value.type.is_binary() && (cut || plain.name == "len");
  if (cut && bytes) types.first = {FieldType::kVarBinary, value.type.size, 0, 0, false};
  return bytes ? value.sql : AsText(call.parameters(), value);
}

SqlType ResultOf(const PlainFunction& plain, const TextTypes& types) {
  switch (plain.result) {
    case 't': {
      SqlType type = types.first;
      if (type.kind == FieldType::kChar) type.kind = FieldType::kVarChar;
      if (type.kind == FieldType::kNChar) type.kind = FieldType::kNVarChar;
      return type;
    }
    case 'n':
      return NVarCharType(4000);
    case 'm':
      return NVarCharType(0);
    case 'o':
      return NVarCharType(128);
    case 's':
      return VarCharType(4);
    case 'v':
      return VarCharType(8000);
    case 'f':
      return FloatType();
    case 'w':
      return types.national ? NVarCharType(types.unlimited ? 0 : 4000) : VarCharType(types.unlimited ? 0 : 8000);
    default:
      return IntType();
  }
}

}  // namespace

Typed PlainCall(const Call& call) {
  const auto* const found = std::find_if(kPlainFunctions.begin(), kPlainFunctions.end(),
                                         [&](const PlainFunction& plain) { return plain.name == call.name(); });
  if (found == kPlainFunctions.end()) return {};
  const PlainFunction& plain = *found;
  const auto required = static_cast<std::size_t>(
      std::count_if(plain.arguments.begin(), plain.arguments.end(), [](char c) { return c >= 'a'; }));
  call.Require(required, plain.arguments.size());
  std::string sql = std::string(plain.row_function) + "(";
  TextTypes types;
  for (std::size_t i = 0; i < call.count(); ++i) {
    const auto kind = static_cast<ArgumentKind>(plain.arguments[i] | 0x20);
    if (i > 0) sql += ", ";
    sql += kind == ArgumentKind::kText  ? TextOf(call, plain, i, types)
           : kind == ArgumentKind::kInt ? call.Int(i)
                                        : call.Float(i);
  }
  const SqlType type = ResultOf(plain, types);
  if (plain.result == 'w') sql += ", " + Packed(type);
  return {sql + std::string(plain.tail) + ")", type, true, -1};
}

}  // namespace tessarlorn::tsql
