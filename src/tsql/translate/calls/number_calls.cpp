// Functions on numbers, but for those of plain_calls.cpp.
#include "tsql/translate/calls/call_topics.h"
#include "tsql/translate/common/operators.h"

namespace tessarlorn::tsql {
namespace {

/// ABS and SIGN.
Typed Magnitude(const std::string& name, const Typed& value) {
  if (value.type.storage() != Storage::kBigDecimal) {
    const bool sign_of_scaled = name == "sign" && value.type.is_exact();
    const std::string call = name + "(" + value.sql + ")";
    const std::string sql =
        sign_of_scaled ? "(" + call + " * 1" + std::string(static_cast<std::size_t>(value.type.scale), '0') + ")"
        : value.type.kind == FieldType::kInt ? "ts_i32(" + call + ")"
                                             : call;
    return {sql, value.type, value.nullable, -1};
  }
  if (name == "abs") {
    const std::string negated = DecimalCall(BinaryOp::kSubtract, "0", IntType(), value.sql, value.type, value.type);
    return {"max(" + value.sql + ", " + negated + ")", value.type, value.nullable, -1};
  }
  const std::string origin = "ts_conv(0, " + Packed(IntType()) + ", " + Packed(value.type) + ", 0)";
  return {"CASE WHEN " + value.sql + " > " + origin + " THEN 1 WHEN " + value.sql + " < " + origin + " THEN -1 WHEN " +
              value.sql + " IS NOT NULL THEN 0 END",
          IntType(), value.nullable, -1};
}

Typed Round(const Call& call, const Typed& value) {
  const std::string places = call.Int(1);
  return {"ts_round(" + value.sql + ", " + places + ", " + call.Int(2, "0") + ", " + Packed(value.type) + ")",
          value.type, value.nullable, -1};
}

/// FLOOR and CEILING.
Typed Floor(const Call& call, const Typed& value) {
  const SqlType result = value.type.is_exact() ? DecimalType(value.type.precision, 0) : value.type;
  return {"ts_floor(" + value.sql + ", " + (call.name() == "floor" ? "0" : "1") + ", " + Packed(value.type) + ", " +
              Packed(result) + ")",
          result, value.nullable, -1};
}

/// POWER and SQUARE.
Typed Power(const Call& call, const Typed& value) {
  const std::string base = call.Coerced(value, FloatType());
  if (call.name() == "square") {
    return {"ts_power(" + base + ", 2.0, " + Packed(FloatType()) + ")", FloatType(), value.nullable, -1};
  }
  return {"ts_power(" + base + ", " + call.Float(1) + ", " + Packed(value.type) + ")", value.type, true, -1};
}

/// DEGREES and RADIANS, of the argument's kind: whole numbers stay whole.
Typed Angle(const Call& call, const Typed& value) {
  const SqlType type = value.type.kind == FieldType::kDecimal ? DecimalType(38, 18) : value.type;
  const std::string angle = "ts_" + call.name() + "(" + call.Coerced(value, FloatType()) + ")";
  return {call.Coerced({angle, FloatType(), value.nullable, -1}, type), type, value.nullable, -1};
}

/// The first argument as a number that the functions take.
Typed NumberOf(const Call& call) {
  Typed value = call.Value(0);
  if (!value.type.is_number()) value = {call.Coerced(value, FloatType()), FloatType(), value.nullable, -1};
  if (value.type.kind == FieldType::kBit || value.type.kind == FieldType::kTinyInt ||
      value.type.kind == FieldType::kSmallInt) {
    value.type = IntType();
  }
  value.type.precision = value.type.is_integer() ? 0 : value.type.precision;
  return value;
}

}  // namespace

Typed NumberCall(const Call& call) {
  const std::string& name = call.name();
  if (name == "pi") return call.parameters().Constant(3.14159265358979323846, FloatType());
  if (name == "rand") {
    call.Require(0, 1);
    return {"ts_rand(" + call.Int(0, "") + ")", FloatType(), false, -1};
  }
  if (name == "newid") return {"ts_newid()", SqlType{FieldType::kGuid, 0, 0, 0, false}, false, -1};
  if (name == "round") {
    call.Require(2, 3);
    return Round(call, NumberOf(call));
  }
  if (name == "power") {
    call.Require(2);
    return Power(call, NumberOf(call));
  }
  if (name != "abs" && name != "floor" && name != "ceiling" && name != "sign" && name != "square" &&
      name != "degrees" && name != "radians") {
    return {};
  }
  call.Require(1);
  const Typed value = NumberOf(call);
  if (name == "square") return Power(call, value);
  if (name == "degrees" || name == "radians") return Angle(call, value);
  return name == "abs" || name == "sign" ? Magnitude(name, value) : Floor(call, value);
}

}  // namespace tessarlorn::tsql
