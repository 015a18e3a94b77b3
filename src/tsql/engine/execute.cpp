// The statements that a session runs itself: control flow, variables, errors, procedures.
#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include "platform/text.h"
#include "tsql/engine/session.h"
#include "tsql/functions/sqlite_value.h"

namespace tessarlorn::tsql {
namespace {

/// Makes a statement ready for its next use when the block is left, whichever way.
class Running {
 public:
  explicit Running(sqlite3_stmt* statement) : statement_(statement) {}
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() { sqlite3_reset(statement_); }

 private:
  sqlite3_stmt* statement_;
};

/// printf-like %s, %d, %i, %u, %% of RAISERROR, filled with the texts of its arguments.
std::string FormatMessage(const std::string& format, const std::vector<std::string>& arguments) {
  std::string text;
  std::size_t next = 0;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%' || i + 1 == format.size()) {
      text += format[i];
    } else if (format[++i] == '%') {
      text += '%';
    } else {
      while (i + 1 < format.size() && std::string_view("0123456789.-+ #*").find(format[i]) != std::string_view::npos)
        ++i;
      text += next < arguments.size() ? arguments[next++] : "(null)";
    }
  }
  return text;
}

}  // namespace

Session::Flow Session::ExecuteGuarded(const Statement& statement, Scope& scope) {
  try {
    return Execute(statement, scope);
  } catch (SqlError& error) {
    error.set_line(statement.line, procedure_);
    NoteLostTransaction();
    last_error_ = error.number();
    if (options_.xact_abort) error.set_takes_transaction_back();
    const bool called = error.misunderstood_at() > call_depth_;  // only what was called is at its end
    if (try_depth_ > 0 || options_.xact_abort || !(error.ends_statement_only() || called)) throw;
    if (results_->sink.StatementFailed(ToError(error))) {
      if (EffectOf(statement) == Effect::kChangesRows) Say(statement, "The statement has been terminated.", 3621);
      return Flow::kNormal;
    }
    if (!first_error_) first_error_ = error;
    return Flow::kNormal;
  }
}

Session::Flow Session::ExecuteBody(const std::vector<StatementPtr>& body, Scope& scope) {
  for (const StatementPtr& statement : body) {
    const Flow flow = ExecuteGuarded(*statement, scope);
    if (flow != Flow::kNormal) return flow;
  }
  return Flow::kNormal;
}

Session::Flow Session::Execute(const Statement& statement, Scope& scope) {
  using Kind = Statement::Kind;
  if (options_.format_only && statement.kind != Kind::kSetOption) {
    if (statement.kind == Kind::kSelect) DescribeSelect(statement, scope);
    return Flow::kNormal;
  }
  if (options_.implicit_transactions && depth_ == 0) BeginImplicitTransaction(statement);
  LockFor(statement);
  switch (statement.kind) {
    case Kind::kSelect:
      ExecuteSelect(statement, scope);
      break;
    case Kind::kInsert:
    case Kind::kUpdate:
    case Kind::kDelete:
    case Kind::kTruncate:
      ExecuteChange(statement, scope);
      break;
    case Kind::kDeclare:
      for (const VariableDeclaration& declaration : statement.declarations) {
        if (declaration.initial == nullptr) continue;
        const SqlType type = scope.frame->Get(declaration.name).type;
        Datum value = Evaluate(*declaration.initial, type, scope);
        scope.frame->Get(declaration.name).value = std::move(value);
        row_count_ = 1;
      }
      return Flow::kNormal;
    case Kind::kSet:
      ExecuteSet(statement, scope);
      row_count_ = 1;
      return Flow::kNormal;
    case Kind::kSetOption:
      ExecuteSetOption(statement, scope);
      return Flow::kNormal;
    case Kind::kIf:
      if (Holds(statement, scope)) return ExecuteGuarded(*statement.body[0], scope);
      return statement.body.size() > 1 ? ExecuteGuarded(*statement.body[1], scope) : Flow::kNormal;
    case Kind::kWhile:
      return ExecuteWhile(statement, scope);
    case Kind::kBlock:
      return ExecuteBody(statement.body, scope);
    case Kind::kBreak:
      return Flow::kBreak;
    case Kind::kContinue:
      return Flow::kContinue;
    case Kind::kReturn:
      if (statement.value != nullptr) {
        const Datum value = Evaluate(*statement.value, IntType(), scope);
        const auto* number = std::get_if<std::int64_t>(&value);
        scope.return_value = number == nullptr ? 0 : static_cast<int>(*number);
      }
      return Flow::kReturn;
    case Kind::kPrint: {
      const Datum message = Evaluate(*statement.value, NVarCharType(0), scope);
      const auto* words = std::get_if<std::string>(&message);
      // A message is never empty.
      Say(statement, words == nullptr || words->empty() ? " " : *words, 0);
      row_count_ = 0;
      return Flow::kNormal;
    }
    case Kind::kRaiseError:
    case Kind::kThrow:
      RaiseUser(statement, scope);
      return Flow::kNormal;
    case Kind::kTryCatch:
      return ExecuteTryCatch(statement, scope);
    case Kind::kBeginTransaction:
    case Kind::kCommit:
    case Kind::kRollback:
    case Kind::kSaveTransaction:
      ExecuteTransaction(statement);
      break;
    case Kind::kExecute:
      ExecuteProcedure(statement, scope);
      break;
    case Kind::kWaitFor: {
      const Datum value = Evaluate(*statement.value, SqlType{FieldType::kTime, 0, 0, 3, false}, scope);
      const auto* delay = std::get_if<std::int64_t>(&value);
      const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(delay == nullptr ? 0 : *delay);
      while (std::chrono::steady_clock::now() < until) {
        CheckCancelled();
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
      }
      break;
    }
    case Kind::kCreateTable:
      CreateTable(statement, scope);
      break;
    case Kind::kAlterTable:
      AlterTable(statement, scope);
      break;
    case Kind::kDropTable:
      DropObjects(statement);
      break;
    case Kind::kCreateIndex:
      CreateIndex(statement, scope);
      break;
    case Kind::kDropIndex:
      DropIndex(statement);
      break;
    case Kind::kCreateView:
      CreateView(statement, scope);
      break;
    case Kind::kCreateProcedure:
      CreateProcedure(statement);
      break;
    case Kind::kUse:
      RequireThisDatabase(statement.text);
      return Flow::kNormal;
    case Kind::kEmpty:
      return Flow::kNormal;
  }
  last_error_ = 0;
  return Flow::kNormal;
}

Session::Flow Session::ExecuteWhile(const Statement& statement, Scope& scope) {
  while (Holds(statement, scope)) {
    CheckCancelled();
    const Flow flow = ExecuteGuarded(*statement.body[0], scope);
    if (flow == Flow::kBreak) break;
    if (flow == Flow::kReturn) return flow;
  }
  return Flow::kNormal;
}

Session::Flow Session::ExecuteTryCatch(const Statement& statement, Scope& scope) {
  const int depth = try_depth_;
  try {
    ++try_depth_;
    const Flow flow = ExecuteBody(statement.body, scope);
    try_depth_ = depth;
    return flow;
  } catch (const SqlError& error) {
    try_depth_ = depth;
    constexpr std::int32_t kCancelledNumber = 3617;
    if (error.number() == kCancelledNumber || error.severity() >= 20) throw;
    if (error.misunderstood_at() == call_depth_) throw;
    // An error that would have ended the batch leaves a transaction that can only be rolled back.
    if (depth_ > 0 && error.ends_transaction()) doomed_ = true;
    caught_.push_back(error);
  }
  struct Leave {
    std::vector<SqlError>& caught;
    ~Leave() { caught.pop_back(); }
  } leave{caught_};
  if (depth == 0 && statement.catch_body.empty()) return Flow::kNormal;
  return ExecuteBody(statement.catch_body, scope);
}

bool Session::Holds(const Statement& statement, Scope& scope) {
  const Snapshot snapshot(*this);
  Compiled& compiled = CompiledCondition(statement, scope);
  sqlite3_stmt* query = Bind(compiled, scope);
  const Running running(query);
  return Step(query, compiled.verb) == SQLITE_ROW && sqlite3_column_int(query, 0) != 0;
}

Datum Session::Evaluate(const Expression& expression, const SqlType& type, Scope& scope) {
  const Snapshot snapshot(*this);
  Compiled& compiled = CompiledValue(expression, &type, scope);
  if (compiled.parameter_only) return ParameterValue(compiled.parameters[0], scope);
  return FirstValue(compiled, scope);
}

Datum Session::FirstValue(Compiled& compiled, Scope& scope) {
  sqlite3_stmt* query = Bind(compiled, scope);
  const Running running(query);
  return Step(query, compiled.verb) == SQLITE_ROW ? ToDatum(sqlite3_column_value(query, 0)) : Datum{};
}

Datum Session::EvaluateNatural(const Expression& expression, SqlType& type, Scope& scope) {
  const Snapshot snapshot(*this);
  Compiled& compiled = CompiledValue(expression, nullptr, scope);
  type = compiled.columns[0].type;
  return FirstValue(compiled, scope);
}

void Session::ExecuteSelect(const Statement& statement, Scope& scope) {
  if (statement.query->select != nullptr && !statement.query->select->into.name.empty()) {
    ExecuteSelectInto(statement, scope);
    return;
  }
  const Snapshot snapshot(*this);
  Compiled& compiled = CompiledStatement(statement, scope);
  sqlite3_stmt* query = Bind(compiled, scope);
  const Running running(query);
  if (!compiled.assigned.empty()) {
    AssignRows(compiled, query, scope);
    return;
  }
  ReadRows(compiled, query, results_->wants_more());
}

void Session::DescribeSelect(const Statement& statement, Scope& scope) {
  if (!statement.query->select || !statement.query->select->into.name.empty()) return;
  const Snapshot snapshot(*this);
  const std::vector<TableSourcePtr>& from = statement.query->select->from;
  const bool plain = from.size() == 1 && from[0]->kind == TableSource::Kind::kTable;
  const CatalogObjectPtr table = plain ? catalog_.Find(from[0]->table.name) : nullptr;
  const int identity = table == nullptr ? -1 : table->identity_column();
  std::vector<Field> fields;
  for (const ResultColumn& column : CompiledStatement(statement, scope).columns) {
    Field& field = fields.emplace_back(ToField(column.name, column.type, column.nullable));
    field.identity = identity >= 0 && identity == table->FindColumn(column.name);
  }
  if (fields.empty()) return;
  auto rows = std::make_shared<Recordset>(std::move(fields));
  rows->Finish();
  results_->any = true;
  results_->sink.Rows(std::move(rows));
}

void Session::ExecuteSelectInto(const Statement& statement, Scope& scope) {
  const Snapshot snapshot(*this);
  const Query& query = *statement.query;
  const ObjectName& into = query.select->into;
  CatalogObject table;
  table.name = into.name;
  table.temporary = into.temporary();
  for (const ResultColumn& column : MakeTranslator(scope).DescribeQuery(query, true)) {
    SqlType type = column.type.untyped_null ? IntType() : column.type;
    if (type.is_integer()) type.precision = 0;
    table.columns.push_back({column.name, type, column.nullable, column.identity, ""});
  }
  Atomically([&] {
    CreateTable(table, {}, {});
    Compiled compiled = MakeTranslator(scope).CompileInsertInto(*catalog_.Get(into.name), query);
    RunChange(compiled, Bind(compiled, scope));
  });
  TellRowCount();
}

void Session::ExecuteChange(const Statement& statement, Scope& scope) {
  if (statement.execute != nullptr) {
    ExecuteInsertExecute(statement, scope);
    return;
  }
  if (statement.kind == Statement::Kind::kTruncate) {
    RequireLocal(statement.table);
    const CatalogObjectPtr table = catalog_.Get(statement.table.name);
    RequireUnreferenced(
        *table, 4712,
        "Cannot truncate table '" + table->name + "' because it is being referenced by a FOREIGN KEY constraint.");
    RunSql(database_.get(), "DELETE FROM " + TableSql(*table), &runtime_);
    if (table->identity_column() >= 0) {
      RunSql(database_.get(),
             std::string("DELETE FROM ") + (table->temporary ? "temp" : "main") +
                 ".sqlite_sequence WHERE name = " + QuoteText(table->name),
             &runtime_);
    }
    return;
  }
  if (!ExecuteDataChange(statement, scope)) TellRowCount();
}

bool Session::ExecuteDataChange(const Statement& statement, Scope& scope) {
  const bool assigns = std::any_of(statement.assignments.begin(), statement.assignments.end(),
                                   [](const Assignment& assignment) { return !assignment.variable.empty(); });
  const std::optional<Frame> before = assigns ? std::optional<Frame>(*scope.frame) : std::nullopt;
  try {
    const Snapshot snapshot(*this);
    Compiled& compiled = CompiledStatement(statement, scope);
    sqlite3_stmt* change = Bind(compiled, scope);
    const Running running(change);
    if (!compiled.columns.empty()) {
      ReadRows(compiled, change, results_->wants_more());
      if (!compiled.identity_table.empty() && row_count_ > 0) NoteIdentity(compiled.identity_table);
      return true;
    }
    RunChange(compiled, change);
  } catch (const SqlError& error) {
    const bool key = error.number() == 2601 || error.number() == 2627;
    if (statement.kind != Statement::Kind::kUpdate || !key || !statement.output.empty()) throw;
    // SQLite compares keys row by row, the server when all rows stand.
    if (before) *scope.frame = *before;
    MoveRows(statement, scope);
  }
  return false;
}

void Session::MoveRows(const Statement& statement, Scope& scope) {
  const CatalogObjectPtr table = MakeTranslator(scope).ChangedTable(statement);
  std::string columns;
  std::string names;
  bool numbered = false;
  for (std::size_t i = 0; i < table->columns.size(); ++i) {
    const Column& column = table->columns[i];
    columns += ", c" + std::to_string(i);
    names += ", " + QuoteName(column.name);
    numbered = numbered || column.identity || column.row_key;
  }
  const std::string to = TableSql(*table);
  // A column that is the row's number brings it along.
  const std::string insert = numbered ? " (" + names.substr(2) + ") SELECT " + columns.substr(2)
                                      : " (_rowid_" + names + ") SELECT r" + columns;
  Atomically([&] {
    RunSql(database_.get(),
           "PRAGMA defer_foreign_keys = ON; CREATE TEMP TABLE \"$moved\" (r INTEGER PRIMARY KEY" + columns + ")",
           &runtime_);
    {
      Compiled compiled = MakeTranslator(scope).CompileUpdate(statement, true);
      RunChange(compiled, Bind(compiled, scope));
    }
    const std::int64_t moved = row_count_;
    std::string leave = "DELETE FROM ";
    leave.append(to).append(" WHERE _rowid_ IN (SELECT r FROM temp.\"$moved\")");
    std::string come = "INSERT INTO ";
    come.append(to).append(insert).append(" FROM temp.\"$moved\"");
    for (const std::string& sql : {leave, come}) {
      const StatementHandle change = Prepare(database_.get(), sql, &runtime_);
      Step(change.get(), "UPDATE");
    }
    int open = 0;
    int unused = 0;
    sqlite3_db_status(database_.get(), SQLITE_DBSTATUS_DEFERRED_FKS, &open, &unused, 0);
    if (open != 0) throw SqlError(547, "The UPDATE statement conflicted with the FOREIGN KEY constraint.");
    RunSql(database_.get(), "PRAGMA defer_foreign_keys = OFF; DROP TABLE temp.\"$moved\"", &runtime_);
    row_count_ = moved;
  });
}

void Session::ExecuteInsertExecute(const Statement& statement, Scope& scope) {
  const std::size_t used = runtime_.memory.used();
  std::vector<TakenRows> taken;
  {
    Results inner{results_->sink, false, false, &taken};
    struct GiveBack {
      Results*& results;
      Results* outer;
      ~GiveBack() { results = outer; }
    } give_back{results_, std::exchange(results_, &inner)};
    ExecuteProcedure(*statement.execute, scope);
  }
  std::int64_t inserted = 0;
  Atomically([&] {
    for (const TakenRows& rows : taken) {
      InsertTaken(statement, rows, scope);
      inserted += row_count_;
    }
  });
  runtime_.memory.ReleaseTo(used);
  row_count_ = inserted;
  TellRowCount();
}

void Session::InsertTaken(const Statement& statement, const TakenRows& taken, Scope& scope) {
  // The values stand in a table of SQLite's own, as they are, and go on as those of INSERT … SELECT do.
  std::string columns;
  std::string marks;
  for (std::size_t i = 0; i < taken.columns.size(); ++i) {
    columns += (i == 0 ? "c" : ", c") + std::to_string(i);
    marks += i == 0 ? "?" : ", ?";
  }
  RunSql(database_.get(), "CREATE TEMP TABLE \"$taken\" (" + columns + ")", &runtime_);
  {
    const StatementHandle insert =
        Prepare(database_.get(), "INSERT INTO temp.\"$taken\" VALUES (" + marks + ")", &runtime_);
    for (const std::vector<Datum>& row : taken.rows) {
      for (std::size_t i = 0; i < row.size(); ++i) BindDatum(insert.get(), static_cast<int>(i) + 1, row[i]);
      Step(insert.get(), "INSERT");
      sqlite3_reset(insert.get());
    }
    const TranslatedQuery rows{"SELECT * FROM temp.\"$taken\"", taken.columns};
    Compiled compiled =
        MakeTranslator(scope).CompileInsert(statement, EqualsIgnoreCase(identity_insert_, statement.table.name), &rows);
    RunChange(compiled, Bind(compiled, scope));
  }
  RunSql(database_.get(), "DROP TABLE temp.\"$taken\"", &runtime_);
}

void Session::TellRowCount() {
  if (!options_.no_count && results_->taken == nullptr) results_->sink.RowCount(row_count_);
}

void Session::ExecuteSet(const Statement& statement, Scope& scope) {
  const Assignment& assignment = statement.assignments[0];
  const SqlType type = scope.frame->Get(assignment.variable).type;
  if (!assignment.is_compound) {
    Datum value = Evaluate(*assignment.value, type, scope);
    scope.frame->Get(assignment.variable).value = std::move(value);
    return;
  }
  const Snapshot snapshot(*this);
  Compiled& compiled = CompiledFor(
      &assignment, scope, [&](Translator& translator) { return translator.CompileCompound(assignment, type); });
  scope.frame->Get(assignment.variable).value = FirstValue(compiled, scope);
}

void Session::ExecuteSetOption(const Statement& statement, Scope& scope) {
  constexpr std::array kAlwaysOn = {
      "ansi_nulls",        "ansi_padding",      "ansi_warnings", "arithabort", "concat_null_yields_null",
      "quoted_identifier", "ansi_null_dflt_on", "ansi_defaults"};
  constexpr std::array kAlwaysOff = {"numeric_roundabort", "noexec",       "parseonly",         "showplan_all",
                                     "showplan_text",      "showplan_xml", "ansi_null_dflt_off"};
  const std::string& option = statement.text;
  row_count_ = 0;
  if (option == "identity_insert") {
    identity_insert_ = statement.flag ? statement.table.name : "";
    return;
  }
  if (option == "xact_abort") {
    options_.xact_abort = statement.flag;
    return;
  }
  if (option == "nocount") {
    options_.no_count = statement.flag;
    return;
  }
  if (option == "fmtonly") {
    options_.format_only = statement.flag;
    return;
  }
  if (option == "implicit_transactions") {
    options_.implicit_transactions = statement.flag;
    return;
  }
  const auto refuse = [&](const char* state) {
    RaiseUnsupported("SET " + UpperCase(option) + " " + state, statement.line);
  };
  if (!statement.flag && std::find(kAlwaysOn.begin(), kAlwaysOn.end(), option) != kAlwaysOn.end()) refuse("OFF");
  if (statement.flag && std::find(kAlwaysOff.begin(), kAlwaysOff.end(), option) != kAlwaysOff.end()) refuse("ON");
  if (option == "language" && !EqualsIgnoreCase(statement.text2, "us_english") &&
      !EqualsIgnoreCase(statement.text2, "english")) {
    RaiseUnsupported("SET LANGUAGE " + statement.text2, statement.line);
  }
  if (option == "dateformat") {
    constexpr std::array<std::string_view, 6> kOrders = {"mdy", "dmy", "ymd", "ydm", "myd", "dym"};
    const auto* const found = std::find(kOrders.begin(), kOrders.end(), LowerCase(statement.text2));
    if (found == kOrders.end()) throw SqlError(2741, "SET DATEFORMAT date order '" + statement.text2 + "' is invalid.");
    runtime_.date_order = static_cast<DateOrder>(found - kOrders.begin());
    return;
  }
  const bool counts = option == "rowcount" || option == "datefirst" || option == "lock_timeout";
  if (!counts || statement.value == nullptr) return;
  const Datum value = Evaluate(*statement.value, IntType(), scope);
  const auto* wanted = std::get_if<std::int64_t>(&value);
  if (option == "rowcount" && (wanted == nullptr || *wanted != 0)) refuse("with a number");
  if (option == "datefirst" && (wanted == nullptr || *wanted != 7)) refuse("other than 7");
  if (option == "lock_timeout") {
    options_.lock_timeout.reset();
    if (wanted != nullptr && *wanted >= 0) options_.lock_timeout = std::chrono::milliseconds(*wanted);
  }
  // The isolation levels, TEXTSIZE, LANGUAGE and STATISTICS change no result here.
}

void Session::Say(const Statement& statement, const std::string& text, std::int32_t number, int severity, int state) {
  results_->sink.Message(
      text, {number, "01000", std::max(severity, 0), state, static_cast<int>(statement.line), std::string(procedure_)});
}

void Session::RaiseUser(const Statement& statement, Scope& scope) {
  if (statement.values.empty()) {
    if (caught_.empty()) {
      throw SqlError(10704, "To rethrow an error, a THROW statement must be used inside a CATCH block.", 15);
    }
    throw SqlError(caught_.back());
  }
  if (statement.kind == Statement::Kind::kThrow) {
    const Datum number = Evaluate(*statement.values[0], IntType(), scope);
    const Datum message = Evaluate(*statement.values[1], NVarCharType(2048), scope);
    const auto* code = std::get_if<std::int64_t>(&number);
    const auto* text = std::get_if<std::string>(&message);
    if (code == nullptr || *code < 50000) {
      throw SqlError(
          35100,
          "Error number in the THROW statement is outside the valid range. Specify an error number in the valid range of 50000 to 2147483647.");
    }
    const Datum given = Evaluate(*statement.values[2], IntType(), scope);
    const auto* state = std::get_if<std::int64_t>(&given);
    throw SqlError(static_cast<std::int32_t>(*code), text == nullptr ? "" : *text, 16,
                   state == nullptr ? 1 : static_cast<int>(std::clamp<std::int64_t>(*state, 0, 255)))
        .EndingBatch();
  }
  std::vector<std::string> arguments;
  for (std::size_t i = 3; i < statement.values.size(); ++i) {
    const Datum value = Evaluate(*statement.values[i], NVarCharType(0), scope);
    const auto* text = std::get_if<std::string>(&value);
    arguments.push_back(text == nullptr ? "(null)" : *text);
  }
  const Datum message = Evaluate(*statement.values[0], NVarCharType(2048), scope);
  const Datum severity = Evaluate(*statement.values[1], IntType(), scope);
  const Datum state = Evaluate(*statement.values[2], IntType(), scope);
  const auto whole = [](const Datum& value) {
    const auto* number = std::get_if<std::int64_t>(&value);
    return number == nullptr ? 0 : static_cast<int>(*number);
  };
  const auto* text = std::get_if<std::string>(&message);
  const Expression& said = *statement.values[0];
  const bool number = said.kind == Expression::Kind::kVariable
                          ? scope.frame->Get(said.text).type.is_integer()
                          : said.kind == Expression::Kind::kLiteral && said.literal == LiteralKind::kInteger;
  if (number && text != nullptr) {
    throw SqlError(18054,
                   "Error " + *text + ", severity " + std::to_string(whole(severity)) + ", state " +
                       std::to_string(whole(state)) +
                       " was raised, but no message with that error number was found in sys.messages. If error is "
                       "larger than 50000, make sure the user-defined message is added using sp_addmessage.",
                   16, 1);
  }
  if (whole(severity) <= 10) {
    Say(statement, FormatMessage(text == nullptr ? "" : *text, arguments), 50000, whole(severity), whole(state));
    return;
  }
  throw SqlError(50000, FormatMessage(text == nullptr ? "" : *text, arguments), whole(severity), whole(state));
}

}  // namespace tessarlorn::tsql
