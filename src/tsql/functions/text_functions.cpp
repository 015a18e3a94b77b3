// Text functions: LEN, SUBSTRING, REPLACE and their like. Positions and lengths count UTF-16 units.
#include <algorithm>
#include <cmath>
#include <string>

#include "platform/text/sql_text.h"
#include "platform/text/text.h"
#include "platform/unicode/collation.h"
#include "platform/unicode/utf16.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/sqlite_value.h"

namespace tessarlorn::tsql {
namespace {

bool IsAscii(std::string_view text) {
  return std::none_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

/// `count` units from the 0-based `start`, both already inside the text.
std::string Slice(std::string_view text, std::int64_t start, std::int64_t count) {
  if (count <= 0) return {};
  const auto from = static_cast<std::size_t>(start);
  const auto units = static_cast<std::size_t>(count);
  if (IsAscii(text)) return from >= text.size() ? std::string() : std::string(text.substr(from, units));
  const std::u16string wide = ToUtf16(text);
  return from >= wide.size() ? std::string() : FromUtf16(std::u16string_view(wide).substr(from, units));
}

std::int64_t Length(std::string_view text) { return TextLength(text, true); }

std::u16string Fold(std::string_view text) {
  std::u16string folded = ToUtf16(text);
  for (char16_t& unit : folded) unit = static_cast<char16_t>(FoldCharacter(unit));
  return folded;
}

void RequireNotNegative(std::int64_t length, const char* function) {
  if (length < 0) throw SqlError(537, std::string("Invalid length parameter passed to the ") + function + " function.");
}

void Len(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  if (sqlite3_value_type(arguments[0]) == SQLITE_BLOB) {
    sqlite3_result_int64(context, sqlite3_value_bytes(arguments[0]));
    return;
  }
  std::string_view text = TextOf(arguments[0]);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  sqlite3_result_int64(context, Length(text));
}

// ts_datalength(value, type)
void DataLength(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  const SqlType type = UnpackType(sqlite3_value_int64(arguments[1]));
  std::int64_t bytes = 8;
  if (type.is_text()) {
    bytes = std::int64_t{TextLength(TextOf(arguments[0]), type.is_national())} * (type.is_national() ? 2 : 1);
  } else if (type.is_binary()) {
    bytes = sqlite3_value_bytes(arguments[0]);
  } else if (type.kind == FieldType::kInt || type.kind == FieldType::kReal) {
    bytes = 4;
  } else if (type.kind == FieldType::kSmallInt) {
    bytes = 2;
  } else if (type.kind == FieldType::kBit || type.kind == FieldType::kTinyInt) {
    bytes = 1;
  } else if (type.kind == FieldType::kDecimal) {
    bytes = type.precision <= 9 ? 5 : type.precision <= 19 ? 9 : type.precision <= 28 ? 13 : 17;
  } else if (type.kind == FieldType::kGuid) {
    bytes = 16;
  } else if (type.has_offset()) {
    bytes = BytesOfMoment(type.scale);
  }
  sqlite3_result_int64(context, bytes);
}

void Substring(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  constexpr std::int64_t kMost = std::int64_t{1} << 40;
  std::int64_t start = std::clamp<std::int64_t>(sqlite3_value_int64(arguments[1]), -kMost, kMost);
  std::int64_t count = std::min<std::int64_t>(sqlite3_value_int64(arguments[2]), 2 * kMost);
  RequireNotNegative(count, "substring");
  if (start < 1) {
    count += start - 1;
    start = 1;
  }
  if (sqlite3_value_type(arguments[0]) == SQLITE_BLOB) {
    const auto size = std::int64_t{sqlite3_value_bytes(arguments[0])};
    const auto* bytes = static_cast<const char*>(sqlite3_value_blob(arguments[0]));
    const std::int64_t from = std::min(start - 1, size);
    sqlite3_result_blob64(context, size == 0 ? "" : bytes + from,
                          static_cast<sqlite3_uint64>(std::clamp<std::int64_t>(count, 0, size - from)),
                          SQLITE_TRANSIENT);
    return;
  }
  SetText(context, Slice(TextOf(arguments[0]), start - 1, count));
}

void Left(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const std::int64_t count = sqlite3_value_int64(arguments[1]);
  RequireNotNegative(count, "left");
  SetText(context, Slice(TextOf(arguments[0]), 0, count));
}

void Right(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const std::int64_t count = sqlite3_value_int64(arguments[1]);
  RequireNotNegative(count, "right");
  const std::string_view text = TextOf(arguments[0]);
  const std::int64_t length = Length(text);
  SetText(context, Slice(text, std::max<std::int64_t>(0, length - count), count));
}

void Upper(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (!IsNull(arguments[0])) SetText(context, UpperCase(TextOf(arguments[0])));
}

void Lower(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (!IsNull(arguments[0])) SetText(context, LowerCase(TextOf(arguments[0])));
}

/// As much of the text as the type holds; the server cuts such results without a word.
std::string Fitting(std::string text, const SqlType& type) {
  if (type.size > 0) text.resize(CutText(text, type.size, type.is_national()).size());
  return text;
}

void Replace(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (AnyNull(arguments.first(3))) return;
  runtime.memory.Require(TextOf(arguments[0]).size() * 6);
  const std::u16string text = ToUtf16(TextOf(arguments[0]));
  const std::u16string folded = Fold(TextOf(arguments[0]));
  const std::u16string from = Fold(TextOf(arguments[1]));
  const std::u16string to = ToUtf16(TextOf(arguments[2]));
  if (from.empty()) {
    sqlite3_result_value(context, arguments[0]);
    return;
  }
  std::u16string result;
  std::size_t done = 0;
  for (std::size_t found = folded.find(from); found != std::u16string::npos; found = folded.find(from, done)) {
    // The result stands twice for a moment, the second time in up to three bytes a unit.
    runtime.memory.Require((result.size() + text.size() + to.size()) * 5);
    runtime.CheckCancelled();
    result.append(text, done, found - done).append(to);
    done = found + from.size();
  }
  result.append(text, done);
  SetText(context, Fitting(FromUtf16(result), TypeArgument(arguments[3])));
}

// ts_charindex(wanted, text[, start])
void CharIndex(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const std::u16string wanted = Fold(TextOf(arguments[0]));
  const std::int64_t start = arguments.size() > 2 ? std::max<std::int64_t>(1, sqlite3_value_int64(arguments[2])) : 1;
  const std::size_t found = wanted.empty()
                                ? std::u16string::npos
                                : Fold(TextOf(arguments[1])).find(wanted, static_cast<std::size_t>(start - 1));
  sqlite3_result_int64(context, found == std::u16string::npos ? 0 : static_cast<std::int64_t>(found) + 1);
}

// ts_patindex(pattern, text)
void PatIndex(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (AnyNull(arguments)) return;
  std::string_view pattern = TextOf(arguments[0]);
  const bool anywhere = pattern.starts_with('%');
  if (anywhere) pattern.remove_prefix(1);
  runtime.memory.Require(TextOf(arguments[1]).size() * 4);
  const LikePattern wanted(pattern, 0, &runtime.cancelled);
  const std::size_t found = wanted.FindIn(TextOf(arguments[1]), anywhere);
  runtime.CheckCancelled();
  sqlite3_result_int64(context, static_cast<std::int64_t>(found));
}

void Reverse(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  std::u32string characters;
  const std::string_view text = TextOf(arguments[0]);
  for (std::size_t i = 0; i < text.size();) characters += NextCharacter(text, i);
  std::string result;
  for (std::size_t i = characters.size(); i-- > 0;) AppendCharacter(result, characters[i]);
  SetText(context, result);
}

// ts_replicate(text, times, type)
void Replicate(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (IsNull(arguments[0]) || IsNull(arguments[1])) return;
  const std::int64_t times = sqlite3_value_int64(arguments[1]);
  if (times < 0) return;
  const std::string_view text = TextOf(arguments[0]);
  const SqlType type = TypeArgument(arguments[2]);
  constexpr std::size_t kMost = std::size_t{1} << 30;
  // No character counts less than a quarter of its bytes.
  const std::size_t room = type.size == 0 ? kMost : static_cast<std::size_t>(type.size) * 4;
  const std::size_t most = text.empty() ? 0 : room / text.size();
  if (type.size == 0 && static_cast<std::uint64_t>(times) > most && !text.empty()) {
    sqlite3_result_error_toobig(context);
    return;
  }
  const std::size_t count = std::min(static_cast<std::size_t>(times), most);
  // The result, and SQLite's copy of it.
  runtime.memory.Require(count * text.size() * 2);
  std::string result;
  result.reserve(count * text.size());
  for (std::size_t i = 0; i < count; ++i) result += text;
  SetText(context, Fitting(result, type));
}

// ts_stuff(text, start, length, insert, type)
void Stuff(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (IsNull(arguments[0]) || IsNull(arguments[1]) || IsNull(arguments[2])) return;
  runtime.memory.Require((TextOf(arguments[0]).size() + TextOf(arguments[3]).size()) * 5);
  const std::u16string text = ToUtf16(TextOf(arguments[0]));
  const std::int64_t start = sqlite3_value_int64(arguments[1]);
  const std::int64_t length = sqlite3_value_int64(arguments[2]);
  if (start < 1 || length < 0 || start > static_cast<std::int64_t>(text.size())) return;
  std::u16string result = text.substr(0, static_cast<std::size_t>(start - 1));
  if (!IsNull(arguments[3])) result += ToUtf16(TextOf(arguments[3]));
  const auto rest =
      static_cast<std::size_t>(start - 1 + std::min<std::int64_t>(length, static_cast<std::int64_t>(text.size())));
  if (rest < text.size()) result.append(text, rest);
  SetText(context, Fitting(FromUtf16(result), TypeArgument(arguments[4])));
}

void Space(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  const std::int64_t count = sqlite3_value_int64(arguments[0]);
  if (count >= 0) SetText(context, std::string(static_cast<std::size_t>(std::min<std::int64_t>(count, 8000)), ' '));
}

// ts_char(code, national)
void Char(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const std::int64_t code = sqlite3_value_int64(arguments[0]);
  const bool national = sqlite3_value_int(arguments[1]) != 0;
  if (code < 0 || code > (national ? 0xffff : 0xff)) return;
  // Half a character cannot stand alone in UTF-8.
  const bool half = code >= 0xd800 && code < 0xe000;
  std::string text;
  AppendCharacter(text, half ? char32_t{0xfffd} : static_cast<char32_t>(code));
  SetText(context, text);
}

void Unicode(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  const std::u16string text = ToUtf16(TextOf(arguments[0]));
  if (!text.empty()) sqlite3_result_int(context, text[0]);
}

void Concat(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  std::size_t size = 0;
  for (sqlite3_value* value : arguments) size += TextOf(value).size();
  runtime.memory.Require(size * 2);
  std::string text;
  text.reserve(size);
  for (sqlite3_value* value : arguments) text += TextOf(value);
  SetText(context, text);
}

// ts_concat_ws(separator, …): NULLs are left out
void ConcatWithSeparator(sqlite3_context* context, Runtime&, Arguments arguments) {
  std::string text;
  bool first = true;
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    if (IsNull(arguments[i])) continue;
    if (!first) text += TextOf(arguments[0]);
    text += TextOf(arguments[i]);
    first = false;
  }
  SetText(context, text);
}

void QuoteName(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  const std::string_view with = arguments.size() > 1 ? TextOf(arguments[1]) : "[";
  const char open = with.empty() ? '[' : with == "]" ? '[' : with[0];
  SetText(context, Quoted(TextOf(arguments[0]), open, ClosingSign(open)));
}

// ts_str(number, length, places)
void Str(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const auto length = static_cast<std::size_t>(std::clamp(IntOf(arguments[1]), 0, 8000));
  const int places = std::clamp(IntOf(arguments[2]), 0, 16);
  const std::optional<Decimal> number = Decimal::FromDouble(sqlite3_value_double(arguments[0]));
  std::string text = number && number->Rescale(places) ? number->Rescale(places)->ToString() : "";
  if (text.empty() || std::min(text.find('.'), text.size()) > length) {
    text = std::string(length, '*');
  } else if (text.size() > length) {
    text.resize(length);
  }
  SetText(context, std::string(length - text.size(), ' ') + text);
}

/// A sign, point, comma or currency alone: money reads them as 0.
bool IsSign(std::string_view text) {
  return text.size() == 1 && std::string_view("+-.,$\\").find(text[0]) != std::string_view::npos;
}

// ts_isnumeric(text)
void IsNumericText(sqlite3_context* context, Runtime&, Arguments arguments) {
  bool numeric = false;
  if (!IsNull(arguments[0])) {
    std::string text;
    for (const char c : Trim(TextOf(arguments[0]))) {
      if (c != ',' && c != '$') text += c;
    }
    if (!text.empty() && (text.back() == 'd' || text.back() == 'D')) text.pop_back();
    std::string_view digits = text;
    if (!digits.empty() && digits.front() == '+') digits.remove_prefix(1);
    numeric = Decimal::Parse(digits).has_value() || IsSign(Trim(TextOf(arguments[0])));
    if (!numeric && !digits.empty()) {
      char* end = nullptr;
      const std::string copy(digits);
      numeric = std::isfinite(std::strtod(copy.c_str(), &end)) && end == copy.c_str() + copy.size() &&
                copy.find_first_not_of("0123456789.eE+-") == std::string::npos;
    }
  }
  sqlite3_result_int(context, numeric ? 1 : 0);
}

}  // namespace

void RegisterTextFunctions(sqlite3* database, Runtime& runtime) {
  RegisterFunction(database, runtime, "ts_len", 1, Len);
  RegisterFunction(database, runtime, "ts_datalength", 2, DataLength);
  RegisterFunction(database, runtime, "ts_substring", 3, Substring);
  RegisterFunction(database, runtime, "ts_left", 2, Left);
  RegisterFunction(database, runtime, "ts_right", 2, Right);
  RegisterFunction(database, runtime, "ts_upper", 1, Upper);
  RegisterFunction(database, runtime, "ts_lower", 1, Lower);
  RegisterFunction(database, runtime, "ts_replace", 4, Replace);
  RegisterFunction(database, runtime, "ts_charindex", -1, CharIndex);
  RegisterFunction(database, runtime, "ts_patindex", 2, PatIndex);
  RegisterFunction(database, runtime, "ts_reverse", 1, Reverse);
  RegisterFunction(database, runtime, "ts_replicate", 3, Replicate);
  RegisterFunction(database, runtime, "ts_stuff", 5, Stuff);
  RegisterFunction(database, runtime, "ts_space", 1, Space);
  RegisterFunction(database, runtime, "ts_char", 2, Char);
  RegisterFunction(database, runtime, "ts_unicode", 1, Unicode);
  RegisterFunction(database, runtime, "ts_concat", -1, Concat);
  RegisterFunction(database, runtime, "ts_concat_ws", -1, ConcatWithSeparator);
  RegisterFunction(database, runtime, "ts_quotename", -1, QuoteName);
  RegisterFunction(database, runtime, "ts_str", 3, Str);
  RegisterFunction(database, runtime, "ts_isnumeric", 1, IsNumericText);
}

}  // namespace tessarlorn::tsql
