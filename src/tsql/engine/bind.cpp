// Values into compiled statements, and rows out of them.
#include <charconv>
#include <chrono>
#include <cmath>
#include <ctime>

#include "platform/clock.h"
#include "tsql/engine/session.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/list_table.h"
#include "tsql/functions/sqlite_value.h"
#include "tsql/translate/literals.h"
#include "tsql/values/moment.h"

namespace tessarlorn::tsql {
namespace {

std::string_view ColumnBytes(sqlite3_stmt* statement, int column) {
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement, column));
  return bytes == nullptr ? std::string_view{}
                          : std::string_view(bytes, static_cast<std::size_t>(sqlite3_column_bytes(statement, column)));
}

void AppendCell(Recordset& rows, sqlite3_stmt* statement, int column, const SqlType& type, Storage storage) {
  switch (sqlite3_column_type(statement, column)) {
    case SQLITE_NULL:
      rows.AppendNull();
      return;
    case SQLITE_INTEGER:
      if (storage == Storage::kScaled) {
        rows.AppendScaled(sqlite3_column_int64(statement, column));
      } else if (type.is_date()) {
        rows.AppendDateTime(DateTime(sqlite3_column_int64(statement, column)));
      } else if (storage == Storage::kReal) {
        rows.AppendDouble(sqlite3_column_double(statement, column));
      } else {
        rows.AppendInteger(sqlite3_column_int64(statement, column));
      }
      return;
    case SQLITE_FLOAT:
      rows.AppendDouble(sqlite3_column_double(statement, column));
      return;
    case SQLITE_TEXT:
      if (type.has_offset()) {
        rows.AppendText(FormatMoment(ReadStoredMoment(ColumnBytes(statement, column)), type, 0));
      } else {
        rows.AppendText(ColumnBytes(statement, column));
      }
      return;
    default:
      if (storage == Storage::kBigDecimal) {
        rows.AppendDecimal(DecodeBigDecimal(ColumnBytes(statement, column), type.scale));
      } else {
        const std::string_view bytes = ColumnBytes(statement, column);
        rows.AppendBytes(bytes.data(), bytes.size());
      }
  }
}

/// Bytes after which a result is handed over in parts, when it may be.
constexpr std::size_t kPartSize = 65536;

/// Clients read the server's version out of it: what stands behind " - ".
constexpr const char* kVersionText =
    "Microsoft SQL Server 2012 as spoken by the TessarLorn embedded database - 11.0.7001.0 on SQLite ";

/// Before it computes a constant SQLite compares it with every other one of the statement, to compute it once. For
/// thousands of them that takes longer than all else: it is left out then.
class OneByOne {
 public:
  OneByOne(sqlite3* database, std::size_t constants) : database_(constants > kMany ? database : nullptr) {
    constexpr unsigned kFactorOutConstants = 0x8;
    if (database_ != nullptr) sqlite3_test_control(SQLITE_TESTCTRL_OPTIMIZATIONS, database_, kFactorOutConstants);
  }
  OneByOne(const OneByOne&) = delete;
  OneByOne& operator=(const OneByOne&) = delete;
  ~OneByOne() {
    if (database_ != nullptr) sqlite3_test_control(SQLITE_TESTCTRL_OPTIMIZATIONS, database_, 0U);
  }

 private:
  static constexpr std::size_t kMany = 500;
  sqlite3* database_;
};

/// Milliseconds since 1900-01-01.
std::int64_t UtcNow() {
  const auto since = std::chrono::system_clock::now().time_since_epoch();
  constexpr std::int64_t kUnixEpoch = 25567LL * 86'400'000;
  return kUnixEpoch + std::chrono::duration_cast<std::chrono::milliseconds>(since).count();
}

Datum ColumnDatum(sqlite3_stmt* statement, int column) { return ToDatum(sqlite3_column_value(statement, column)); }

}  // namespace

Datum Session::LiteralValue(const Token& token, SqlType& type) {
  switch (token.kind) {
    case TokenKind::kInteger: {
      std::int64_t value = 0;
      const auto [end, error] = std::from_chars(token.text.data(), token.text.data() + token.text.size(), value);
      if (error == std::errc{} && type.is_integer()) return value;
      break;
    }
    case TokenKind::kFloat:
      return Convert(std::string(token.text), VarCharType(0), FloatType());
    case TokenKind::kBinary:
      return BinaryLiteral(token.text);
    case TokenKind::kString:
    case TokenKind::kNString:
      return token.doubled ? Unquote(token) : std::string(token.text);
    default:
      break;
  }
  const std::optional<Decimal> number = Decimal::Parse(token.text);
  if (!number)
    throw SqlError(1007,
                   "The number '" + std::string(token.text) +
                       "' is out of the range for numeric representation (maximum precision 38).",
                   15);
  if (!type.is_exact()) type = DecimalType(std::max(1, number->precision()), number->scale());
  return FromDecimal(*number, type);
}

Datum Session::ParameterValue(const BoundParameter& parameter, Scope& scope) {
  SqlType from = parameter.from;
  Datum value;
  switch (parameter.source) {
    case BoundParameter::Source::kLiteral:
      value = LiteralValue(scope.literals[static_cast<std::size_t>(parameter.index)], from);
      break;
    case BoundParameter::Source::kVariable:
      value = scope.frame->Get(parameter.name).value;
      break;
    case BoundParameter::Source::kSystem:
      value = SystemValue(parameter.name, from);
      break;
    default:
      value = parameter.constant;
      break;
  }
  try {
    return Convert(value, from, parameter.to, StyleFor(parameter.to, parameter.style, runtime_.date_order),
                   parameter.fit);
  } catch (const SqlError& error) {
    if (error.number() != 8152 || parameter.column.empty()) throw;
    const std::string* text = std::get_if<std::string>(&value);
    RaiseTruncated(parameter.table, parameter.column, text == nullptr ? "" : *text);
  }
}

std::shared_ptr<const ListItems> Session::ListValues(const BoundParameter& parameter, Scope& scope) {
  const Token& list = scope.lists[static_cast<std::size_t>(parameter.index)];
  auto items = std::make_shared<ListItems>();
  items->reserve(list.count);
  for (std::uint32_t i = 0; i < list.count; ++i) {
    const Token& token = (*scope.list_items)[list.id + i];
    const bool text = token.kind == TokenKind::kString || token.kind == TokenKind::kNString;
    SqlType from = text ? NVarCharType(0) : BigIntType();
    Datum value = LiteralValue(token, from);
    items->push_back(Convert(value, from, parameter.to, StyleFor(parameter.to, 0, runtime_.date_order), Fit::kCompare));
  }
  return items;
}

void Session::BindParameter(sqlite3_stmt* statement, int index, const BoundParameter& parameter, Scope& scope) {
  if (parameter.source == BoundParameter::Source::kList) {
    BindList(statement, index, ListValues(parameter, scope));
    return;
  }
  // The ways of most literals, without a copy: whole numbers, and text that fits. The batch outlives the statement's
  // run.
  if (parameter.source == BoundParameter::Source::kLiteral) {
    const Token& token = scope.literals[static_cast<std::size_t>(parameter.index)];
    if (token.kind == TokenKind::kInteger && parameter.from.is_integer() &&
        (parameter.to.kind == FieldType::kInt || parameter.to.kind == FieldType::kBigInt)) {
      std::int64_t value = 0;
      std::from_chars(token.text.data(), token.text.data() + token.text.size(), value);
      sqlite3_bind_int64(statement, index, value);
      return;
    }
    const bool text = token.kind == TokenKind::kString || token.kind == TokenKind::kNString;
    const bool varying = parameter.to.kind == FieldType::kNVarChar || parameter.to.kind == FieldType::kVarChar;
    if (text && varying && !token.doubled &&
        (parameter.to.size == 0 || token.text.size() <= static_cast<std::size_t>(parameter.to.size))) {
      sqlite3_bind_text64(statement, index, token.text.data(), token.text.size(), SQLITE_STATIC, SQLITE_UTF8);
      return;
    }
  }
  BindDatum(statement, index, ParameterValue(parameter, scope));
}

sqlite3_stmt* Session::Bind(Compiled& compiled, Scope& scope) {
  if (compiled.handle == nullptr) {
    const OneByOne guard(database_.get(), compiled.parameters.size());
    compiled.handle = Prepare(database_.get(), compiled.sql, &runtime_);
  }
  sqlite3_stmt* statement = compiled.handle.get();
  for (std::size_t i = 0; i < compiled.parameters.size(); ++i) {
    BindParameter(statement, static_cast<int>(i) + 1, compiled.parameters[i], scope);
  }
  return statement;
}

int Session::Step(sqlite3_stmt* statement, std::string_view verb) {
  const int status = sqlite3_step(statement);
  if (status == SQLITE_ROW || status == SQLITE_DONE) return status;
  sqlite3_reset(statement);
  RaiseSqlite(database_.get(), status, &runtime_, verb);
}

void Session::TakeRows(Compiled& compiled, sqlite3_stmt* statement) {
  TakenRows& taken = results_->taken->emplace_back();
  taken.columns = compiled.columns;
  while (Step(statement, compiled.verb) == SQLITE_ROW) {
    std::vector<Datum>& row = taken.rows.emplace_back();
    for (int i = 0; i < static_cast<int>(compiled.columns.size()); ++i) {
      row.push_back(ColumnDatum(statement, i));
      runtime_.memory.Charge(2 * sizeof(Datum) + static_cast<std::size_t>(sqlite3_column_bytes(statement, i)));
    }
  }
  row_count_ = static_cast<std::int64_t>(taken.rows.size());
}

void Session::ReadRows(Compiled& compiled, sqlite3_stmt* statement, bool keep) {
  if (results_->taken != nullptr) {
    TakeRows(compiled, statement);
    return;
  }
  RecordsetPtr rows;
  std::vector<Storage> storages;
  if (keep) {
    std::vector<Field> fields;
    fields.reserve(compiled.columns.size());
    for (const ResultColumn& column : compiled.columns) {
      fields.push_back(ToField(column.name, column.type, column.nullable));
      storages.push_back(column.type.storage());
    }
    rows = std::make_shared<Recordset>(std::move(fields));
  }
  const auto width = static_cast<int>(compiled.columns.size());
  const bool in_parts = results_->sink.takes_parts();
  row_count_ = 0;
  while (Step(statement, compiled.verb) == SQLITE_ROW) {
    ++row_count_;
    if (!keep) continue;
    if (in_parts && rows->size() >= kPartSize) {
      results_->sink.PartOfRows(*rows);
      rows->Clear();
    }
    rows->BeginRow();
    for (int i = 0; i < width; ++i) {
      const auto column = static_cast<std::size_t>(i);
      AppendCell(*rows, statement, i, compiled.columns[column].type, storages[column]);
    }
  }
  if (!keep) return;
  rows->Finish();
  results_->any = true;
  results_->sink.Rows(std::move(rows));
}

void Session::SetVariable(Variable& variable, const Datum& value, const SqlType& type) {
  variable.value = Convert(value, type, variable.type, StyleFor(variable.type, 0, runtime_.date_order));
}

void Session::AssignRows(Compiled& compiled, sqlite3_stmt* statement, Scope& scope) {
  row_count_ = 0;
  while (Step(statement, compiled.verb) == SQLITE_ROW) {
    ++row_count_;
    for (std::size_t i = 0; i < compiled.assigned.size(); ++i) {
      Variable& variable = scope.frame->Get(compiled.assigned[i]);
      SetVariable(variable, ColumnDatum(statement, static_cast<int>(i)), compiled.columns[i].type);
    }
  }
}

void Session::RunChange(Compiled& compiled, sqlite3_stmt* statement) {
  std::int64_t rows = 0;
  while (Step(statement, compiled.verb) == SQLITE_ROW) ++rows;
  // An UPDATE of variables only is a query for SQLite.
  row_count_ = sqlite3_stmt_readonly(statement) != 0 ? rows : sqlite3_changes64(database_.get());
  if (!compiled.identity_table.empty() && row_count_ > 0) NoteIdentity(compiled.identity_table);
}

Datum Session::SystemValue(const std::string& name, SqlType& type) {
  const auto whole = [&](std::int64_t value) -> Datum {
    type = BigIntType();
    return value;
  };
  if (name == "getdate") return LocalNow().milliseconds();
  if (name == "getutcdate") return UtcNow();
  if (name == "sysdatetimeoffset") {
    const std::int64_t local = LocalNow().milliseconds();
    const double minutes = std::round(static_cast<double>(local - UtcNow()) / 60'000);
    // A clock that a test set is not the host's; it counts as UTC.
    constexpr double kMost = 14 * 60;
    return StoredMoment(Moment::OfClock(local, std::fabs(minutes) <= kMost ? static_cast<int>(minutes) : 0));
  }
  if (name == "@@rowcount") return whole(row_count_);
  if (name == "@@error") return whole(last_error_);
  if (name == "@@trancount") return whole(depth_);
  if (name == "@@spid") return whole(1);
  if (name == "xact_state") return whole(doomed_ ? -1 : depth_ > 0 ? 1 : 0);
  if (name == "@@identity") return identity_ ? whole(*identity_) : Datum{};
  if (name == "scope_identity") return scope_identity_ ? whole(*scope_identity_) : Datum{};
  if (name == "@@version") return std::string(kVersionText) + sqlite3_libversion();
  if (name.starts_with("error_")) {
    if (caught_.empty()) return {};
    const SqlError& error = caught_.back();
    if (name == "error_number") return whole(error.number());
    if (name == "error_severity") return whole(error.severity());
    if (name == "error_state") return whole(error.state());
    if (name == "error_line") return whole(error.line());
    if (name == "error_procedure") return error.procedure().empty() ? Datum{} : Datum(error.procedure());
    return std::string(error.what());
  }
  if (name == "db_name") return std::string("main");
  if (name == "suser_sname" || name == "suser_name" || name == "user_name") return std::string("dbo");
  return std::string("localhost");
}

}  // namespace tessarlorn::tsql
