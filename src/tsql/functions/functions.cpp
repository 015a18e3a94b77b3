#include "tsql/functions/functions.h"

#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "platform/text/text.h"
#include "platform/unicode/collation.h"
#include "tsql/functions/sqlite_value.h"
#include "tsql/values/moment.h"

namespace tessarlorn::tsql {
namespace {

struct Registration {
  RowFunction function;
  Runtime* runtime;
};

void Dispatch(sqlite3_context* context, int count, sqlite3_value** values) {
  const auto* registration = static_cast<const Registration*>(sqlite3_user_data(context));
  Guarded(context, *registration->runtime, [&] {
    registration->function(context, *registration->runtime, Arguments(values, static_cast<std::size_t>(count)));
  });
}

void DeleteRegistration(void* data) { const std::unique_ptr<Registration> owned(static_cast<Registration*>(data)); }

int Collate(void* runtime, int a_size, const void* a, int b_size, const void* b) {
  return CompareTextIn(static_cast<const Runtime*>(runtime)->text_order,
                       {static_cast<const char*>(a), static_cast<std::size_t>(a_size)},
                       {static_cast<const char*>(b), static_cast<std::size_t>(b_size)});
}

/// SQLite's collation of the server's name, for ORDER BY … COLLATE.
template <TextOrder order>
void RegisterOrder(sqlite3* database) {
  const auto compare = [](void*, int a_size, const void* a, int b_size, const void* b) {
    return CompareTextIn(order, {static_cast<const char*>(a), static_cast<std::size_t>(a_size)},
                         {static_cast<const char*>(b), static_cast<std::size_t>(b_size)});
  };
  sqlite3_create_collation_v2(database, std::string(TextOrderName(order)).c_str(), SQLITE_UTF8, nullptr, compare,
                              nullptr);
}

int CollateMoments(void*, int a_size, const void* a, int b_size, const void* b) {
  return CompareStoredMoments({static_cast<const char*>(a), static_cast<std::size_t>(a_size)},
                              {static_cast<const char*>(b), static_cast<std::size_t>(b_size)});
}

// ts_conv(value, from, to, style)
void ConvertValue(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  const SqlType to = TypeArgument(arguments[2]);
  SetResult(context, Convert(ToDatum(arguments[0]), TypeArgument(arguments[1]), to,
                             StyleFor(to, sqlite3_value_int(arguments[3]), runtime.date_order)));
}

// ts_try(value, from, to, style): NULL where ts_conv fails
void TryConvertValue(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  try {
    ConvertValue(context, runtime, arguments);
  } catch (const SqlError&) {
    sqlite3_result_null(context);
  }
}

// ts_small(value, type): arithmetic on smallint and tinyint
void CheckSmall(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  const std::int64_t value = sqlite3_value_int64(arguments[0]);
  const SqlType type = TypeArgument(arguments[1]);
  const bool tiny = type.kind == FieldType::kTinyInt;
  if (value < (tiny ? 0 : -32768) || value > (tiny ? 255 : 32767)) RaiseArithmeticOverflow(type);
  sqlite3_result_int64(context, value);
}

// ts_assign(value, from, to, table, column): a value on its way into a column
void AssignValue(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  try {
    SetResult(context,
              Convert(ToDatum(arguments[0]), TypeArgument(arguments[1]), TypeArgument(arguments[2]), 0, Fit::kAssign));
  } catch (const SqlError& error) {
    if (error.number() != 8152) throw;
    RaiseTruncated(TextOf(arguments[3]), TextOf(arguments[4]), TextOf(arguments[0]), TypeArgument(arguments[2]));
  }
}

// ts_require(value, table, column): NULL on its way into a column that is SQLite's row number
void RequireValue(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) {
    throw SqlError(515, "Cannot insert the value NULL into column '" + std::string(TextOf(arguments[2])) +
                            "', table '" + std::string(TextOf(arguments[1])) +
                            "'; column does not allow nulls. INSERT fails.");
  }
  sqlite3_result_value(context, arguments[0]);
}

// ts_arith(operator, a, a's type, b, b's type, result's type)
void Arithmetic(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[1]) || IsNull(arguments[3])) return;
  SetResult(context, ExactArithmetic(static_cast<BinaryOp>(sqlite3_value_int(arguments[0])), ToDatum(arguments[1]),
                                     TypeArgument(arguments[2]), ToDatum(arguments[3]), TypeArgument(arguments[4]),
                                     TypeArgument(arguments[5])));
}

/// Operands and results are of int at most: a step of them fits in 64 bits.
Datum WholeStep(BinaryOp op, std::int64_t a, std::int64_t b, const SqlType& type) {
  const std::int64_t value = op == BinaryOp::kAdd ? a + b : op == BinaryOp::kSubtract ? a - b : a * b;
  return Convert(value, BigIntType(), type);
}

// ts_fold(value, its type, operator, value, its type, result's type, operator, …): one step after the other
void Fold(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  Datum value = ToDatum(arguments[0]);
  SqlType type = TypeArgument(arguments[1]);
  for (std::size_t i = 2; i + 3 < arguments.size(); i += 4) {
    if (IsNull(arguments[i + 1])) return;
    const auto op = static_cast<BinaryOp>(sqlite3_value_int(arguments[i]));
    const SqlType other = TypeArgument(arguments[i + 2]);
    const SqlType result = TypeArgument(arguments[i + 3]);
    value = result.is_integer()
                ? WholeStep(op, std::get<std::int64_t>(value), sqlite3_value_int64(arguments[i + 1]), result)
                : ExactArithmetic(op, value, type, ToDatum(arguments[i + 1]), other, result);
    type = result;
  }
  SetResult(context, value);
}

// ts_var(name): the variable's value now
void ReadVariable(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  SetResult(context, runtime.frame->Get(TextOf(arguments[0])).value);
}

// ts_setvar(through, name, value, name, value, …): assigns the variables and answers `through`
void WriteVariables(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  for (std::size_t i = 1; i + 1 < arguments.size(); i += 2) {
    runtime.frame->Get(TextOf(arguments[i])).value = ToDatum(arguments[i + 1]);
  }
  sqlite3_result_value(context, arguments[0]);
}

// ts_call(function, argument, …): a scalar function of the database
void CallFunction(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  std::vector<Datum> values;
  for (sqlite3_value* argument : arguments.subspan(1)) values.push_back(ToDatum(argument));
  SetResult(context, runtime.call_function(std::string(TextOf(arguments[0])), std::move(values)));
}

// ts_next(sequence, place)
void NextNumber(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  sqlite3_result_int64(context, runtime.next_number(TextOf(arguments[0]), sqlite3_value_int64(arguments[1])));
}

// ts_last(sequence's number)
void LastNumber(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  SetResult(context, runtime.last_number(sqlite3_value_int64(arguments[0])));
}

// ts_like(text, pattern[, escape])
void Like(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (AnyNull(arguments)) return;
  char32_t escape = 0;
  if (arguments.size() == 3) {
    std::u32string characters;
    const std::string_view text = TextOf(arguments[2]);
    for (std::size_t i = 0; i < text.size();) characters += NextCharacter(text, i);
    if (characters.size() != 1) {
      throw SqlError(506,
                     "The invalid escape character \"" + std::string(text) + "\" was specified in a LIKE predicate.");
    }
    escape = characters[0];
  }
  runtime.memory.Require(TextOf(arguments[0]).size() * 4);
  const bool matches = LikePattern(TextOf(arguments[1]), escape, &runtime.cancelled).Matches(TextOf(arguments[0]));
  runtime.CheckCancelled();
  sqlite3_result_int(context, matches ? 1 : 0);
}

}  // namespace

SqlType TypeArgument(sqlite3_value* value) { return UnpackType(sqlite3_value_int64(value)); }

void RaiseTruncated(std::string_view table, std::string_view column, std::string_view value, const SqlType& type) {
  constexpr int kMostShown = 100;
  throw SqlError(2628, "String or binary data would be truncated in table '" + std::string(table) + "', column '" +
                           std::string(column) + "'. Truncated value: '" +
                           std::string(CutText(CutText(value, type.size, type.is_national()), kMostShown, true)) +
                           "'.");
}

std::int32_t IntOf(sqlite3_value* value) {
  const std::int64_t whole = sqlite3_value_int64(value);
  if (whole != static_cast<std::int32_t>(whole)) RaiseArithmeticOverflow(IntType());
  return static_cast<std::int32_t>(whole);
}

bool AnyNull(Arguments arguments) {
  for (sqlite3_value* value : arguments) {
    if (IsNull(value)) return true;
  }
  return false;
}

void RegisterFunction(sqlite3* database, Runtime& runtime, const char* name, int argument_count, RowFunction function,
                      bool constant) {
  auto registration = std::make_unique<Registration>(Registration{function, &runtime});
  const int flags = SQLITE_UTF8 | SQLITE_INNOCUOUS | (constant ? SQLITE_DETERMINISTIC : 0);
  if (sqlite3_create_function_v2(database, name, argument_count, flags, registration.release(), Dispatch, nullptr,
                                 nullptr, DeleteRegistration) != SQLITE_OK) {
    throw std::bad_alloc();
  }
}

void RegisterConversionFunctions(sqlite3* database, Runtime& runtime) {
  RegisterFunction(database, runtime, "ts_conv", 4, ConvertValue);
  RegisterFunction(database, runtime, "ts_try", 4, TryConvertValue);
  RegisterFunction(database, runtime, "ts_small", 2, CheckSmall);
  RegisterFunction(database, runtime, "ts_assign", 5, AssignValue);
  RegisterFunction(database, runtime, "ts_require", 3, RequireValue);
  RegisterFunction(database, runtime, "ts_arith", 6, Arithmetic);
  RegisterFunction(database, runtime, "ts_fold", -1, Fold);
  RegisterFunction(database, runtime, "ts_var", 1, ReadVariable, false);
  RegisterFunction(database, runtime, "ts_setvar", -1, WriteVariables, false);
  RegisterFunction(database, runtime, "ts_call", -1, CallFunction, false);
  RegisterFunction(database, runtime, "ts_next", 2, NextNumber, false);
  RegisterFunction(database, runtime, "ts_last", 1, LastNumber, false);
  RegisterFunction(database, runtime, "ts_like", 2, Like);
  RegisterFunction(database, runtime, "ts_like", 3, Like);
}

void RegisterFunctions(sqlite3* database, Runtime& runtime) {
  sqlite3_create_collation_v2(database, "TSQL", SQLITE_UTF8, &runtime, Collate, nullptr);
  RegisterOrder<TextOrder::kPinyin>(database);
  RegisterOrder<TextOrder::kStroke>(database);
  RegisterOrder<TextOrder::kTaiwanStroke>(database);
  sqlite3_create_collation_v2(database, "MOMENT", SQLITE_UTF8, nullptr, CollateMoments, nullptr);
  RegisterConversionFunctions(database, runtime);
  RegisterTextFunctions(database, runtime);
  RegisterWordFunctions(database, runtime);
  RegisterNumberFunctions(database, runtime);
  RegisterDateFunctions(database, runtime);
  RegisterDateMaking(database, runtime);
  RegisterTimeZones(database, runtime);
  RegisterFormatFunction(database, runtime);
  RegisterAggregates(database, runtime);
  RegisterStatistics(database, runtime);
  RegisterDigestFunctions(database, runtime);
  RegisterJsonFunctions(database, runtime);
}

}  // namespace tessarlorn::tsql
