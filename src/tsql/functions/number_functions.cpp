// Number functions and checked arithmetic on whole numbers and floats.
#include <cmath>
#include <limits>
#include <numbers>
#include <random>

#include "platform/text/guid_text.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/sqlite_value.h"

namespace tessarlorn::tsql {
namespace {

[[noreturn]] void RaiseDivideByZero() { throw SqlError(8134, "Divide by zero error encountered."); }

// ts_rows_wanted(number, 0 for TOP, 1 for OFFSET, 2 for FETCH)
void CheckRowLimit(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) {
    throw SqlError(
        1060, "The number of rows provided for a TOP or FETCH clauses row count parameter must be an integer.", 15);
  }
  const std::int64_t rows = sqlite3_value_int64(arguments[0]);
  const int clause = sqlite3_value_int(arguments[1]);
  if (rows < 0 && clause == 0) throw SqlError(127, "A TOP N or FETCH rowcount value may not be negative.", 15);
  if (rows < 0 && clause == 1) {
    throw SqlError(10742, "The offset specified in a OFFSET clause may not be negative.", 15);
  }
  if (rows <= 0 && clause == 2) {
    throw SqlError(10744, "The number of rows provided for a FETCH clause must be greater then zero.", 15);
  }
  sqlite3_result_int64(context, rows);
}

// ts_i32(value): a whole number that has to fit in an int
void CheckInt(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  const std::int64_t value = sqlite3_value_int64(arguments[0]);
  if (sqlite3_value_type(arguments[0]) != SQLITE_INTEGER || value < std::numeric_limits<std::int32_t>::min() ||
      value > std::numeric_limits<std::int32_t>::max()) {
    RaiseArithmeticOverflow(IntType());
  }
  sqlite3_result_int64(context, value);
}

// ts_i64(value): SQLite makes a float of a whole number that overflows
void CheckBigInt(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  if (sqlite3_value_type(arguments[0]) != SQLITE_INTEGER) RaiseArithmeticOverflow(BigIntType());
  sqlite3_result_value(context, arguments[0]);
}

// ts_float(value): a float that has to be finite
void CheckFloat(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  if (!std::isfinite(sqlite3_value_double(arguments[0]))) RaiseArithmeticOverflow(FloatType());
  sqlite3_result_value(context, arguments[0]);
}

void Divide(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const std::int64_t divisor = sqlite3_value_int64(arguments[1]);
  const std::int64_t dividend = sqlite3_value_int64(arguments[0]);
  if (divisor == 0) RaiseDivideByZero();
  if (divisor == -1 && dividend == std::numeric_limits<std::int64_t>::min()) RaiseArithmeticOverflow(BigIntType());
  sqlite3_result_int64(context, dividend / divisor);
}

void Modulo(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const std::int64_t divisor = sqlite3_value_int64(arguments[1]);
  if (divisor == 0) RaiseDivideByZero();
  sqlite3_result_int64(context, divisor == -1 ? 0 : sqlite3_value_int64(arguments[0]) % divisor);
}

void DivideFloat(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const double divisor = sqlite3_value_double(arguments[1]);
  if (divisor == 0.0) RaiseDivideByZero();
  const double quotient = sqlite3_value_double(arguments[0]) / divisor;
  if (!std::isfinite(quotient)) RaiseArithmeticOverflow(FloatType());
  sqlite3_result_double(context, quotient);
}

// ts_round(value, places, truncate, type)
void Round(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const SqlType type = UnpackType(sqlite3_value_int64(arguments[3]));
  const int places = IntOf(arguments[1]);
  const bool truncate = sqlite3_value_int(arguments[2]) != 0;
  if (type.is_float()) {
    const double power = std::pow(10.0, places);
    const double scaled = sqlite3_value_double(arguments[0]) * power;
    sqlite3_result_double(context, (truncate ? std::trunc(scaled) : std::round(scaled)) / power);
    return;
  }
  Decimal value = ToDecimal(ToDatum(arguments[0]), type);
  if (places >= 0) {
    if (places < value.scale()) value = truncate ? value.Truncate(places) : value.Rescale(places).value_or(value);
  } else if (places < -37) {
    value = Decimal();
  } else {
    // Left of the point: move the point, round, move it back.
    const Decimal unit = *Decimal::Parse("1e" + std::to_string(-places));
    const std::optional<Decimal> moved = Decimal::Divide(value, unit, 38 - 38 / 2);
    const Decimal whole = !moved ? Decimal() : truncate ? moved->Truncate(0) : moved->Rescale(0).value_or(Decimal());
    value = Decimal::Multiply(whole, unit, 0).value_or(Decimal());
  }
  SetResult(context, type.is_integer() ? Convert(FromDecimal(value, DecimalType(38, 0)), DecimalType(38, 0), type)
                                       : FromDecimal(value, type));
}

// ts_floor(value, up, type, result type)
void Floor(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const bool up = sqlite3_value_int(arguments[1]) != 0;
  const SqlType type = UnpackType(sqlite3_value_int64(arguments[2]));
  if (type.is_float()) {
    const double value = sqlite3_value_double(arguments[0]);
    sqlite3_result_double(context, up ? std::ceil(value) : std::floor(value));
    return;
  }
  const Decimal value = ToDecimal(ToDatum(arguments[0]), type);
  Decimal whole = value.Truncate(0);
  if (whole != value && value.negative() != up) {
    whole = *Decimal::Add(whole, Decimal(up ? 1 : -1));
  }
  SetResult(context, FromDecimal(whole, UnpackType(sqlite3_value_int64(arguments[3]))));
}

// ts_power(base, exponent, type)
void Power(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const SqlType type = UnpackType(sqlite3_value_int64(arguments[2]));
  const double value = std::pow(sqlite3_value_double(arguments[0]), sqlite3_value_double(arguments[1]));
  if (!std::isfinite(value)) throw SqlError(3623, "An invalid floating point operation occurred.");
  SetResult(context, Convert(type.is_float() ? value : std::round(value * 1e6) / 1e6, FloatType(), type));
}

template <double (*F)(double)>
void Math(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  const double value = F(sqlite3_value_double(arguments[0]));
  if (!std::isfinite(value)) throw SqlError(3623, "An invalid floating point operation occurred.");
  sqlite3_result_double(context, value);
}

// ts_log(number[, base])
void Logarithm(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  double value = std::log(sqlite3_value_double(arguments[0]));
  if (arguments.size() > 1) value /= std::log(sqlite3_value_double(arguments[1]));
  if (!std::isfinite(value)) throw SqlError(3623, "An invalid floating point operation occurred.");
  sqlite3_result_double(context, value);
}

double Cotangent(double angle) { return 1 / std::tan(angle); }

constexpr double kDegreesOfRadian = 180 / std::numbers::pi;
double Degrees(double radians) { return radians * kDegreesOfRadian; }
double Radians(double degrees) { return degrees / kDegreesOfRadian; }

void ArcTangent2(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (AnyNull(arguments)) return;
  sqlite3_result_double(context, std::atan2(sqlite3_value_double(arguments[0]), sqlite3_value_double(arguments[1])));
}

std::mt19937_64& Generator() {
  thread_local std::mt19937_64 generator(std::random_device{}());
  return generator;
}

// ts_rand(seed)
void Rand(sqlite3_context* context, Runtime&, Arguments arguments) {
  if (!arguments.empty()) Generator().seed(static_cast<std::uint64_t>(sqlite3_value_int64(arguments[0])));
  sqlite3_result_double(context, std::uniform_real_distribution<double>()(Generator()));
}

void NewId(sqlite3_context* context, Runtime&, Arguments) {
  std::string bytes(16, '\0');
  for (char& byte : bytes) byte = static_cast<char>(Generator()());
  // Version 4: of random bits.
  bytes[6] = static_cast<char>((bytes[6] & 0x0F) | 0x40);
  bytes[8] = static_cast<char>((bytes[8] & 0x3F) | 0x80);
  SetText(context, GuidText(bytes));
}

}  // namespace

void RegisterNumberFunctions(sqlite3* database, Runtime& runtime) {
  RegisterFunction(database, runtime, "ts_i32", 1, CheckInt);
  RegisterFunction(database, runtime, "ts_rows_wanted", 2, CheckRowLimit);
  RegisterFunction(database, runtime, "ts_i64", 1, CheckBigInt);
  RegisterFunction(database, runtime, "ts_float", 1, CheckFloat);
  RegisterFunction(database, runtime, "ts_div", 2, Divide);
  RegisterFunction(database, runtime, "ts_mod", 2, Modulo);
  RegisterFunction(database, runtime, "ts_fdiv", 2, DivideFloat);
  RegisterFunction(database, runtime, "ts_round", 4, Round);
  RegisterFunction(database, runtime, "ts_floor", 4, Floor);
  RegisterFunction(database, runtime, "ts_power", 3, Power);
  RegisterFunction(database, runtime, "ts_sqrt", 1, Math<std::sqrt>);
  RegisterFunction(database, runtime, "ts_exp", 1, Math<std::exp>);
  RegisterFunction(database, runtime, "ts_log", -1, Logarithm);
  RegisterFunction(database, runtime, "ts_log10", 1, Math<std::log10>);
  RegisterFunction(database, runtime, "ts_sin", 1, Math<std::sin>);
  RegisterFunction(database, runtime, "ts_cos", 1, Math<std::cos>);
  RegisterFunction(database, runtime, "ts_tan", 1, Math<std::tan>);
  RegisterFunction(database, runtime, "ts_cot", 1, Math<Cotangent>);
  RegisterFunction(database, runtime, "ts_degrees", 1, Math<Degrees>);
  RegisterFunction(database, runtime, "ts_radians", 1, Math<Radians>);
  RegisterFunction(database, runtime, "ts_asin", 1, Math<std::asin>);
  RegisterFunction(database, runtime, "ts_acos", 1, Math<std::acos>);
  RegisterFunction(database, runtime, "ts_atan", 1, Math<std::atan>);
  RegisterFunction(database, runtime, "ts_atan2", 2, ArcTangent2);
  RegisterFunction(database, runtime, "ts_rand", -1, Rand, false);
  RegisterFunction(database, runtime, "ts_newid", 0, NewId, false);
}

}  // namespace tessarlorn::tsql
