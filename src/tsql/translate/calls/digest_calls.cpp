// HASHBYTES, CHECKSUM and BINARY_CHECKSUM.
#include "tsql/translate/calls/call_topics.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

Typed HashBytes(const Call& call) {
  call.Require(2);
  const Typed hashed = call.Value(1);
  if (!hashed.type.is_text() && !hashed.type.is_binary() && !hashed.type.untyped_null) {
    throw SqlError(8116, "Argument data type " + std::string(TypeNameText(hashed.type)) +
                             " is invalid for argument 2 of hashbytes function.");
  }
  const std::string bytes = call.Coerced(hashed, {FieldType::kVarBinary, 0, 0, 0, false});
  return {"ts_hashbytes(" + call.Text(0) + ", " + bytes + ")", {FieldType::kVarBinary, 8000, 0, 0, false}, true, -1};
}

Typed Checksum(const Call& call) {
  std::vector<Typed> values;
  for (std::size_t i = 0; i < call.count(); ++i) {
    if (const auto* star = As<Star>(call.Argument(i))) {
      std::vector<ResultColumn> columns;
      ExpandStar(*star, call.scope(), values, columns);
    } else {
      values.push_back(call.Value(i));
    }
  }
  std::string sql = call.name() == "checksum" ? "ts_checksum(0" : "ts_checksum(1";
  for (const Typed& value : values) {
    // Moments are equal when their UTC is, which stands before the offset.
    constexpr const char* kUtcLength = "23";
    sql += ", " + (value.type.has_offset() ? "substr(" + value.sql + ", 1, " + kUtcLength + ")" : value.sql);
  }
  return {sql + ")", IntType(), false, -1};
}

}  // namespace

Typed DigestCall(const Call& call) {
  if (call.name() == "hashbytes") return HashBytes(call);
  if (call.name() == "checksum" || call.name() == "binary_checksum") return Checksum(call);
  return {};
}

}  // namespace tessarlorn::tsql
