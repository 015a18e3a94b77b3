// The statements that a session runs itself: control flow, variables, errors, procedures.
#include <algorithm>
#include <array>
#include <chrono>
#include <thread>

#include "drivers/embedded/session.h"
#include "drivers/embedded/sqlite_value.h"
#include "platform/text.h"

namespace tessarlorn::embedded {
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
    if (try_depth_ > 0 || xact_abort_ || !error.ends_statement_only()) throw;
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
  if (implicit_transactions_ && depth_ == 0) BeginImplicitTransaction(statement);
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
      }
      return Flow::kNormal;
    case Kind::kSet:
      ExecuteSet(statement, scope);
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
      Say(statement, words == nullptr ? "" : *words, 0);
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
      const Datum value = Evaluate(*statement.value, SqlType{FieldType::kTime, 0, 0, 0, false}, scope);
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
    // An error that would have ended the batch leaves a transaction that can only be rolled back.
    if (depth_ > 0 && (xact_abort_ || error.ends_transaction())) doomed_ = true;
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

void Session::ExecuteSelectInto(const Statement& statement, Scope& scope) {
  const Snapshot snapshot(*this);
  const Query& query = *statement.query;
  const ObjectName& into = query.select->into;
  CatalogObject table;
  table.name = into.name;
  table.temporary = into.temporary();
  for (const ResultColumn& column : MakeTranslator(scope).DescribeQuery(query)) {
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
    RunSql(database_.get(), "DELETE FROM " + TableSql(*table), &runtime_);
    if (table->identity_column() >= 0) {
      RunSql(database_.get(),
             std::string("DELETE FROM ") + (table->temporary ? "temp" : "main") +
                 ".sqlite_sequence WHERE name = " + QuoteText(table->name),
             &runtime_);
    }
    return;
  }
  const Snapshot snapshot(*this);
  Compiled& compiled = CompiledStatement(statement, scope);
  sqlite3_stmt* change = Bind(compiled, scope);
  const Running running(change);
  RunChange(compiled, change);
  TellRowCount();
}

void Session::ExecuteInsertExecute(const Statement& statement, Scope& scope) {
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
  if (!no_count_ && results_->taken == nullptr) results_->sink.RowCount(row_count_);
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
      "ansi_nulls",        "ansi_padding",     "ansi_warnings", "arithabort", "concat_null_yields_null",
      "quoted_identifier", "ansi_null_dflt_on"};
  constexpr std::array kAlwaysOff = {"numeric_roundabort", "noexec",        "parseonly",    "fmtonly",
                                     "showplan_all",       "showplan_text", "showplan_xml", "ansi_null_dflt_off"};
  const std::string& option = statement.text;
  if (option == "identity_insert") {
    identity_insert_ = statement.flag ? statement.table.name : "";
    return;
  }
  if (option == "xact_abort") {
    xact_abort_ = statement.flag;
    return;
  }
  if (option == "nocount") {
    no_count_ = statement.flag;
    return;
  }
  if (option == "implicit_transactions") {
    implicit_transactions_ = statement.flag;
    return;
  }
  const auto refuse = [&](const char* state) {
    RaiseUnsupported("SET " + UpperCase(option) + " " + state, statement.line);
  };
  if (!statement.flag && std::find(kAlwaysOn.begin(), kAlwaysOn.end(), option) != kAlwaysOn.end()) refuse("OFF");
  if (statement.flag && std::find(kAlwaysOff.begin(), kAlwaysOff.end(), option) != kAlwaysOff.end()) refuse("ON");
  const bool zero =
      statement.value != nullptr && statement.value->kind == Expression::Kind::kLiteral && statement.value->text == "0";
  if (option == "rowcount" && !zero) refuse("with a number");
  if (option == "dateformat" && statement.text2 != "mdy" && statement.text2 != "ymd") refuse(statement.text2.c_str());
  const bool seven =
      statement.value != nullptr && statement.value->kind == Expression::Kind::kLiteral && statement.value->text == "7";
  if (option == "datefirst" && !seven) refuse("other than 7");
  if (option == "lock_timeout" && statement.value != nullptr) {
    const Datum value = Evaluate(*statement.value, IntType(), scope);
    const auto* wanted = std::get_if<std::int64_t>(&value);
    lock_timeout_.reset();
    if (wanted != nullptr && *wanted >= 0) lock_timeout_ = std::chrono::milliseconds(*wanted);
    return;
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
    throw SqlError(static_cast<std::int32_t>(*code), text == nullptr ? "" : *text, 16, 1).EndingBatch();
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
  if (whole(severity) <= 10) {
    Say(statement, FormatMessage(text == nullptr ? "" : *text, arguments), 50000, whole(severity), whole(state));
    return;
  }
  throw SqlError(50000, FormatMessage(text == nullptr ? "" : *text, arguments), whole(severity), whole(state));
}

}  // namespace tessarlorn::embedded
