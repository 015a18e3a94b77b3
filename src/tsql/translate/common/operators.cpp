#include "tsql/translate/common/operators.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "tsql/translate/common/conversion.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

std::string_view OperatorName(BinaryOp op) {
  switch (op) {
    case BinaryOp::kAdd:
      return "add";
    case BinaryOp::kSubtract:
      return "subtract";
    case BinaryOp::kMultiply:
      return "multiply";
    case BinaryOp::kDivide:
      return "divide";
    case BinaryOp::kModulo:
      return "modulo";
    case BinaryOp::kBitAnd:
      return "'&'";
    case BinaryOp::kBitOr:
      return "'|'";
    default:
      return "'^'";
  }
}

[[noreturn]] void RaiseOperand(const SqlType& type, BinaryOp op) {
  throw SqlError(8117, "Operand data type " + std::string(TypeNameText(type)) + " is invalid for " +
                           std::string(OperatorName(op)) + " operator.");
}

/// a + b of texts.
Typed Concatenation(Parameters& parameters, const Typed& a, const Typed& b, SqlType type) {
  if (type.kind == FieldType::kChar) type.kind = FieldType::kVarChar;
  if (type.kind == FieldType::kNChar) type.kind = FieldType::kNVarChar;
  const int most = type.is_national() ? 4000 : 8000;
  type.size = a.type.size == 0 || b.type.size == 0 ? 0 : std::min(most, a.type.size + b.type.size);
  SqlType whole = type;
  whole.size = 0;
  std::string left = Coerce(parameters, a, whole);
  // A long chain stays flat.
  if (a.joined && left == a.sql) left = left.substr(1, left.size() - 2);
  Typed joined{"(" + left + " || " + Coerce(parameters, b, whole) + ")", type, a.nullable || b.nullable, -1};
  joined.joined = true;
  return joined;
}

/// a + b of binaries.
Typed JoinedBytes(Parameters& parameters, const Typed& a, const Typed& b) {
  constexpr int kMost = 8000;
  const int size = a.type.size == 0 || b.type.size == 0 ? 0 : std::min(kMost, a.type.size + b.type.size);
  const SqlType whole{FieldType::kVarBinary, 0, 0, 0, false};
  // What SQLite joins is text, whatever it was.
  return {"CAST((" + Coerce(parameters, a, whole) + " || " + Coerce(parameters, b, whole) + ") AS BLOB)",
          SqlType{FieldType::kVarBinary, size, 0, 0, false}, a.nullable || b.nullable, -1};
}

/// One side of date + days, in milliseconds.
std::string Milliseconds(Parameters& parameters, const Typed& value, const SqlType& other, BinaryOp op) {
  if (value.type.is_date() && !value.type.is_old_date()) {
    if (!other.is_number() || other.untyped_null) RaiseOperand(value.type, op);
    throw SqlError(206, "Operand type clash: " + std::string(TypeNameText(value.type)) + " is incompatible with " +
                            std::string(TypeNameText(other)));
  }
  if (value.type.is_date()) return value.sql;
  if (value.type.is_text()) return Coerce(parameters, value, DateTimeType());
  if (value.type.is_integer()) return "(" + Coerce(parameters, value, BigIntType()) + " * 86400000)";
  return "CAST(round(" + Coerce(parameters, value, FloatType()) + " * 86400000) AS INTEGER)";
}

Typed DateArithmetic(Parameters& parameters, BinaryOp op, const Typed& a, const Typed& b, const SqlType& common) {
  const SqlType type = common.form() == DateForm::kSmallDateTime ? common : DateTimeType();
  const std::string left = Milliseconds(parameters, a, b.type, op);
  const std::string right = Milliseconds(parameters, b, a.type, op);
  return {"ts_datetime(" + left + (op == BinaryOp::kAdd ? " + " : " - ") + right + ", " + Packed(type) + ")", type,
          a.nullable || b.nullable, -1};
}

Typed BitArithmetic(BinaryOp op, const Typed& a, const Typed& b, const SqlType& common) {
  const bool nullable = a.nullable || b.nullable;
  if (!a.type.is_integer() || !b.type.is_integer()) RaiseOperand(common, op);
  if (op == BinaryOp::kBitXor) {
    return {"((" + a.sql + " | " + b.sql + ") - (" + a.sql + " & " + b.sql + "))", common, nullable, -1};
  }
  return {"(" + a.sql + (op == BinaryOp::kBitAnd ? " & " : " | ") + b.sql + ")", common, nullable, -1};
}

std::string SignOf(BinaryOp op) {
  constexpr std::array<std::string_view, 5> kSigns = {" + ", " - ", " * ", " / ", " % "};
  return std::string(kSigns[static_cast<std::size_t>(op)]);
}

std::string FloatArithmetic(Parameters& parameters, BinaryOp op, const Typed& a, const Typed& b, const SqlType& type) {
  const std::string left = Coerce(parameters, a, FloatType());
  const std::string right = Coerce(parameters, b, FloatType());
  if (op == BinaryOp::kModulo) RaiseOperand(type, op);
  if (op == BinaryOp::kDivide) return "ts_fdiv(" + left + ", " + right + ")";
  return "ts_float(" + left + SignOf(op) + right + ")";
}

std::string IntegerArithmetic(BinaryOp op, const Typed& a, const Typed& b, const SqlType& type) {
  if (op == BinaryOp::kModulo) return "ts_mod(" + a.sql + ", " + b.sql + ")";
  const std::string value =
      op == BinaryOp::kDivide ? "ts_div(" + a.sql + ", " + b.sql + ")" : a.sql + SignOf(op) + b.sql;
  if (type.kind == FieldType::kBigInt) return "ts_i64(" + value + ")";
  if (type.kind == FieldType::kInt) return "ts_i32(" + value + ")";
  return "ts_small(" + value + ", " + Packed(type) + ")";
}

std::string DecimalArithmetic(Parameters& parameters, BinaryOp op, const Typed& a, const Typed& b,
                              const SqlType& type) {
  const bool as_integers = type.storage() == Storage::kScaled && (op == BinaryOp::kAdd || op == BinaryOp::kSubtract) &&
                           AsDecimal(a.type).storage() == Storage::kScaled &&
                           AsDecimal(b.type).storage() == Storage::kScaled;
  if (as_integers) {
    return "(" + Coerce(parameters, a, type, Fit::kCompare) + SignOf(op) + Coerce(parameters, b, type, Fit::kCompare) +
           ")";
  }
  return DecimalCall(op, a.sql, a.type, b.sql, b.type, type);
}

/// The type in which a column is compared with a constant, so that an index on the column serves: constants are brought
/// to the column's type where that loses nothing.
std::optional<SqlType> ColumnsOwnType(const Typed& column, const Typed& constant) {
  if (constant.parameter < 0 || column.parameter >= 0 || constant.type.untyped_null) return std::nullopt;
  if (column.type.is_exact() && (constant.type.is_integer() || constant.type.is_exact()) &&
      AsDecimal(constant.type).scale <= column.type.scale) {
    return column.type;
  }
  if (column.type.is_integer() && constant.type.is_exact() && constant.type.scale == 0) return BigIntType();
  if (column.type.kind == FieldType::kDateTime && constant.type.has_offset()) return DateTime2Type(7);
  return std::nullopt;
}

}  // namespace

std::string DecimalCall(BinaryOp op, const std::string& a, const SqlType& a_type, const std::string& b,
                        const SqlType& b_type, const SqlType& type) {
  return "ts_arith(" + std::to_string(static_cast<int>(op)) + ", " + a + ", " + Packed(a_type) + ", " + b + ", " +
         Packed(b_type) + ", " + Packed(type) + ")";
}

Typed Arithmetic(Parameters& parameters, BinaryOp op, Typed a, Typed b) {
  const SqlType common = CommonType(a.type, b.type);
  if (op == BinaryOp::kAdd && common.is_text()) return Concatenation(parameters, a, b, common);
  const bool bits = op == BinaryOp::kBitAnd || op == BinaryOp::kBitOr || op == BinaryOp::kBitXor;
  if (common.is_date() && !bits && (op == BinaryOp::kAdd || op == BinaryOp::kSubtract)) {
    return DateArithmetic(parameters, op, a, b, common);
  }
  if (common.is_binary() && op == BinaryOp::kAdd) return JoinedBytes(parameters, a, b);
  if (!common.is_number()) RaiseOperand(common, op);
  // Text beside a number becomes a number of that type.
  for (Typed* value : {&a, &b}) {
    if (value->type.untyped_null) value->type = common;
    if (value->type.is_text()) *value = {Coerce(parameters, *value, common), common, value->nullable, -1};
  }
  if (bits) return BitArithmetic(op, a, b, common);
  const SqlType type = ArithmeticType(op, a.type, b.type);
  std::string sql = type.is_float()     ? FloatArithmetic(parameters, op, a, b, type)
                    : type.is_integer() ? IntegerArithmetic(op, a, b, type)
                                        : DecimalArithmetic(parameters, op, a, b, type);
  return {std::move(sql), type, a.nullable || b.nullable, -1};
}

void ArithmeticChain::Add(BinaryOp op, Typed value) {
  constexpr int kMostSteps = 30;
  const auto is_exact = [](const Typed& operand) {
    const bool whole = operand.type.is_integer() && operand.type.kind != FieldType::kBigInt;
    return !operand.type.untyped_null && (whole || operand.type.is_exact());
  };
  const bool moves = op == BinaryOp::kAdd || op == BinaryOp::kSubtract || op == BinaryOp::kMultiply;
  if (!moves || !is_exact(value_) || !is_exact(value)) {
    value_ = Arithmetic(parameters_, op, std::move(value_), std::move(value));
    steps_ = 0;
    return;
  }
  const SqlType type = ArithmeticType(op, value_.type, value.type);
  if (steps_ == 0 || steps_ == kMostSteps) {
    steps_ = 0;
    value_.sql = "ts_fold(" + value_.sql + ", " + Packed(value_.type) + ")";
  }
  ++steps_;
  value_.sql.pop_back();
  value_.sql += ", " + std::to_string(static_cast<int>(op)) + ", " + value.sql + ", " + Packed(value.type) + ", " +
                Packed(type) + ")";
  value_ = {std::move(value_.sql), type, value_.nullable || value.nullable, -1};
}

Typed BitComplement(const Typed& value) {
  if (!value.type.is_integer()) RaiseOperand(value.type, BinaryOp::kBitAnd);
  if (value.type.kind == FieldType::kBit) return {"(1 - " + value.sql + ")", value.type, value.nullable, -1};
  return {"(~" + value.sql + ")", value.type, value.nullable, -1};
}

Typed Negative(Typed value) {
  if (value.type.untyped_null) return value;
  if (!value.type.is_number()) RaiseOperand(value.type, BinaryOp::kSubtract);
  if (value.type.storage() == Storage::kBigDecimal) {
    // Of its own type: all 38 digits may be taken.
    return {DecimalCall(BinaryOp::kSubtract, "0", IntType(), value.sql, value.type, value.type), value.type,
            value.nullable, -1};
  }
  if (value.type.kind == FieldType::kTinyInt) value.type.kind = FieldType::kSmallInt;
  return {"(-" + value.sql + ")", value.type, value.nullable, -1};
}

std::string Compared(Parameters& parameters, CompareOp op, const Typed& a, const Typed& b) {
  constexpr std::array<std::string_view, 6> kCompareText = {" = ", " <> ", " < ", " <= ", " > ", " >= "};
  SqlType common = CommonType(a.type, b.type);
  if (const std::optional<SqlType> of_a = ColumnsOwnType(a, b)) {
    common = *of_a;
  } else if (const std::optional<SqlType> of_b = ColumnsOwnType(b, a)) {
    common = *of_b;
  }
  const std::string left = Coerce(parameters, a, common, Fit::kCompare);
  const std::string right = Coerce(parameters, b, common, Fit::kCompare);
  const std::string collation = CollationOf(common);
  if (op == CompareOp::kEqual && common.is_text() && a.number.empty() != b.number.empty()) {
    // An index on the number serves where the text can be read as one; that it can follows from the equality.
    const Typed& number = a.number.empty() ? b : a;
    const Typed& text = a.number.empty() ? a : b;
    return "(" + left + collation + " = " + right + " AND " + number.number + " = ts_try(" + text.sql + ", " +
           Packed(text.type) + ", " + Packed(BigIntType()) + ", 0))";
  }
  return "(" + left + collation + std::string(kCompareText[static_cast<std::size_t>(op)]) + right + ")";
}

}  // namespace tessarlorn::tsql
