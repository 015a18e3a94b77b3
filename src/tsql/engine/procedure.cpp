// EXEC: stored procedures, texts, and sp_executesql.
#include <algorithm>
#include <utility>

#include "platform/text.h"
#include "tsql/engine/session.h"
#include "tsql/storage/system_views.h"

namespace tessarlorn::tsql {

/// A procedure or text that runs inside a batch; what it changed of the session's options and the temporary tables
/// that it made go with it.
class Session::Nested {
 public:
  /// Raises 217 when it is nested too deep. @param procedure its name, "" for a text; outlives this
  Nested(Session& session, std::string_view procedure)
      : session_(session), options_(session.options_), temporary_tables_(session.catalog_.TemporaryTables()) {
    constexpr int kMostCalls = 32;
    if (session.call_depth_ >= kMostCalls) {
      throw SqlError(217, "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit 32).");
    }
    ++session.call_depth_;
    procedure_ = std::exchange(session.procedure_, procedure);
    identity_ = std::exchange(session.scope_identity_, std::nullopt);
  }
  Nested(const Nested&) = delete;
  Nested& operator=(const Nested&) = delete;
  ~Nested() {
    --session_.call_depth_;
    session_.options_ = options_;
    session_.runtime_.date_order = date_order_;
    session_.procedure_ = procedure_;
    session_.scope_identity_ = identity_;
    try {
      session_.DropTemporaryTables(temporary_tables_);
    } catch (const SqlError&) {
      // They go with the session.
      return;
    }
  }

 private:
  Session& session_;
  SetOptions options_;
  DateOrder date_order_ = session_.runtime_.date_order;
  std::string_view procedure_;  // of the caller
  std::optional<std::int64_t> identity_;
  std::vector<std::string> temporary_tables_;  // of the caller
};

void Session::RunText(std::string_view text, Frame& frame) {
  const Nested nested(*this, {});
  RunBatch(text, frame);
}

void Session::ExecuteProcedure(const Statement& statement, Scope& scope) {
  const int depth = depth_;
  CallOrRun(statement, scope);
  if (depth_ == depth || (options_.implicit_transactions && depth == 0)) return;
  throw SqlError(266,
                 "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT statements. "
                 "Previous count = " +
                     std::to_string(depth) + ", current count = " + std::to_string(depth_) + ".",
                 16, 2);
}

void Session::CallOrRun(const Statement& statement, Scope& scope) {
  if (statement.text_expression != nullptr) {
    const Datum text = Evaluate(*statement.text_expression, NVarCharType(0), scope);
    const std::string* sql = std::get_if<std::string>(&text);
    Frame frame;
    if (sql != nullptr) RunText(*sql, frame);
    return;
  }
  if (EqualsIgnoreCase(statement.table.name, "sp_executesql")) {
    ExecuteSql(statement, scope);
    return;
  }
  if (const CatalogObjectPtr own = FindSystemProcedure(statement.table.name); own != nullptr) {
    CallProcedure(*own, statement, scope);
    return;
  }
  RequireLocal(statement.table);
  const CatalogObjectPtr procedure = catalog_.Find(statement.table.name);
  if (procedure == nullptr || procedure->kind != CatalogKind::kProcedure) {
    throw SqlError(2812, "Could not find stored procedure '" + statement.table.name + "'.");
  }
  CallProcedure(*procedure, statement, scope);
}

void Session::CallProcedure(const CatalogObject& procedure, const Statement& call, Scope& scope) {
  std::shared_ptr<Plan>& plan = procedures_[procedure.signature()];
  if (plan == nullptr) {
    Tokens tokens;
    TokenizeDefinition(procedure.definition, names_, tokens);
    std::vector<StatementPtr> statements = ParseStatements(procedure.definition, tokens);
    plan = std::make_shared<Plan>();
    plan->statement = std::move(statements.at(0));
  }
  const std::shared_ptr<Plan> body = plan;
  const Statement& definition = *body->statement;
  Frame frame;
  for (const Parameter& parameter : definition.parameters)
    frame.Declare(parameter.name, ResolveType(parameter.type, false));
  std::vector<std::pair<std::string, std::string>> outputs;  // parameter, caller's variable
  std::vector<bool> given(definition.parameters.size(), false);
  for (std::size_t i = 0; i < call.arguments.size(); ++i) {
    const std::string& name = call.arguments[i].first;
    const ExpressionPtr& value = call.arguments[i].second;
    std::size_t position = i;
    if (!name.empty()) {
      const auto found =
          std::find_if(definition.parameters.begin(), definition.parameters.end(),
                       [&](const Parameter& parameter) { return EqualsIgnoreCase(parameter.name, name); });
      position = static_cast<std::size_t>(found - definition.parameters.begin());
    }
    if (position >= definition.parameters.size()) {
      if (name.empty())
        throw SqlError(8144, "Procedure or function " + procedure.name + " has too many arguments specified.");
      throw SqlError(8145, name + " is not a parameter for procedure " + procedure.name + ".");
    }
    Variable& parameter = frame.Get(definition.parameters[position].name);
    given[position] = true;
    if (value == nullptr) continue;
    parameter.value = Evaluate(*value, parameter.type, scope);
    if (call.argument_outputs[i] && value->kind == Expression::Kind::kVariable)
      outputs.emplace_back(parameter.name, value->text);
  }
  Scope inner{&frame, body.get(), {}, {}, nullptr};
  if (body->checked_generation != catalog_.generation()) Revalidate(*body, frame);
  for (std::size_t i = 0; i < definition.parameters.size(); ++i) {
    const Parameter& parameter = definition.parameters[i];
    if (given[i]) continue;
    if (parameter.default_value == nullptr) {
      throw SqlError(201, "Procedure or function '" + procedure.name + "' expects parameter '" + parameter.name +
                              "', which was not supplied.");
    }
    Variable& variable = frame.Get(parameter.name);
    variable.value = Evaluate(*parameter.default_value, variable.type, inner);
  }
  for (const StatementPtr& statement : definition.body) Declare(*statement, frame);
  const Nested nested(*this, procedure.name);
  struct Leave {
    Session& session;
    Frame* frame;
    ~Leave() { session.runtime_.frame = frame; }
  } leave{*this, runtime_.frame};
  runtime_.frame = &frame;
  ExecuteBody(definition.body, inner);
  for (const auto& [parameter, variable] : outputs) {
    const Variable& from = frame.Get(parameter);
    SetVariable(scope.frame->Get(variable), from.value, from.type);
  }
  if (!call.result_variable.empty()) {
    SetVariable(scope.frame->Get(call.result_variable), std::int64_t{inner.return_value}, IntType());
  }
}

void Session::ExecuteSql(const Statement& call, Scope& scope) {
  if (call.arguments.empty()) {
    throw SqlError(214, "Procedure expects parameter '@statement' of type 'ntext/nchar/nvarchar'.");
  }
  const auto text_of = [&](std::size_t argument) {
    const Datum value = Evaluate(*call.arguments[argument].second, NVarCharType(0), scope);
    const auto* text = std::get_if<std::string>(&value);
    return text == nullptr ? std::string() : *text;
  };
  const std::string text = text_of(0);
  Frame frame;
  std::vector<std::pair<std::string, std::string>> outputs;
  if (call.arguments.size() > 1) {
    // The declarations read as those of a procedure, OUTPUT and defaults included.
    const std::string declarations = "CREATE PROCEDURE p " + text_of(1) + " AS RETURN";
    Tokens tokens;
    TokenizeDefinition(declarations, names_, tokens);
    const std::vector<StatementPtr> parsed = ParseStatements(declarations, tokens);
    const std::vector<Parameter>& parameters = parsed.at(0)->parameters;
    for (const Parameter& parameter : parameters) {
      frame.Declare(parameter.name, ResolveType(parameter.type, false));
    }
    for (std::size_t i = 2; i < call.arguments.size(); ++i) {
      const auto& [name, value] = call.arguments[i];
      if (name.empty() && i - 2 >= parameters.size()) {
        throw SqlError(8144, "Procedure or function sp_executesql has too many arguments specified.");
      }
      Variable& parameter = frame.Get(name.empty() ? parameters[i - 2].name : LowerCase(name));
      if (value == nullptr) continue;
      parameter.value = Evaluate(*value, parameter.type, scope);
      if (call.argument_outputs[i] && value->kind == Expression::Kind::kVariable)
        outputs.emplace_back(parameter.name, value->text);
    }
  }
  RunText(text, frame);
  for (const auto& [parameter, variable] : outputs) {
    const Variable& from = frame.Get(parameter);
    SetVariable(scope.frame->Get(variable), from.value, from.type);
  }
}

}  // namespace tessarlorn::tsql
