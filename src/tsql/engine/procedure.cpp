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

/// The arguments of an EXEC.
class Session::WrittenArguments final : public CallArguments {
 public:
  WrittenArguments(Session& session, const Statement& call, Scope& scope)
      : session_(session), call_(call), scope_(scope) {}

  [[nodiscard]] std::size_t size() const override { return call_.arguments.size(); }
  [[nodiscard]] std::string name(std::size_t argument) const override {
    return LowerCase(call_.arguments[argument].first);
  }
  [[nodiscard]] bool is_default(std::size_t argument) const override {
    return call_.arguments[argument].second == nullptr;
  }
  Datum Value(std::size_t argument, const SqlType& type) override {
    return session_.Evaluate(*call_.arguments[argument].second, type, scope_);
  }
  void TakeBack(std::size_t argument, const Datum& value, const SqlType& type) override {
    const ExpressionPtr& variable = call_.arguments[argument].second;
    if (!call_.argument_outputs[argument] || variable->kind != Expression::Kind::kVariable) return;
    session_.SetVariable(scope_.frame->Get(variable->text), value, type);
  }
  void TakeStatus(std::int32_t status) override {
    if (call_.result_variable.empty()) return;
    session_.SetVariable(scope_.frame->Get(call_.result_variable), std::int64_t{status}, IntType());
  }

 private:
  Session& session_;
  const Statement& call_;
  Scope& scope_;
};

void Session::RunText(std::string_view text, Frame& frame) {
  const Nested nested(*this, {});
  RunBatch(text, frame);
}

void Session::ExecuteProcedure(const Statement& statement, Scope& scope) {
  const int depth = depth_;
  if (statement.text_expression != nullptr) {
    const Datum text = Evaluate(*statement.text_expression, NVarCharType(0), scope);
    Frame frame;
    if (const auto* sql = std::get_if<std::string>(&text)) RunText(*sql, frame);
  } else {
    WrittenArguments arguments(*this, statement, scope);
    Call(statement.table, arguments);
  }
  if (depth_ == depth || (options_.implicit_transactions && depth == 0)) return;
  throw SqlError(266,
                 "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT statements. "
                 "Previous count = " +
                     std::to_string(depth) + ", current count = " + std::to_string(depth_) + ".",
                 16, 2);
}

void Session::Call(const ObjectName& name, CallArguments& arguments) {
  if (EqualsIgnoreCase(name.name, "sp_executesql")) {
    ExecuteSql(arguments);
    return;
  }
  CatalogObjectPtr procedure = FindSystemProcedure(name.name);
  if (procedure == nullptr) {
    RequireLocal(name);
    procedure = catalog_.Find(name.name);
  }
  if (procedure == nullptr || procedure->kind != CatalogKind::kProcedure) {
    throw SqlError(2812, "Could not find stored procedure '" + name.name + "'.");
  }
  CallProcedure(*procedure, arguments);
}

std::shared_ptr<Plan> Session::PlanOf(const CatalogObject& procedure) {
  std::shared_ptr<Plan>& plan = procedures_[procedure.signature()];
  if (plan == nullptr) {
    Tokens tokens;
    TokenizeDefinition(procedure.definition, names_, tokens);
    std::vector<StatementPtr> statements = ParseStatements(procedure.definition, tokens);
    plan = std::make_shared<Plan>();
    plan->statement = std::move(statements.at(0));
  }
  return plan;
}

std::vector<std::size_t> Session::TakeArguments(const CatalogObject& procedure,
                                                const std::vector<Parameter>& parameters, CallArguments& arguments,
                                                Frame& frame) {
  std::vector<std::size_t> positions;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string name = arguments.name(i);
    std::size_t position = i;
    if (!name.empty()) {
      const auto found = std::find_if(parameters.begin(), parameters.end(), [&](const Parameter& parameter) {
        return EqualsIgnoreCase(parameter.name, name);
      });
      position = static_cast<std::size_t>(found - parameters.begin());
    }
    if (position >= parameters.size()) {
      if (name.empty())
        throw SqlError(8144, "Procedure or function " + procedure.name + " has too many arguments specified.");
      throw SqlError(8145, name + " is not a parameter for procedure " + procedure.name + ".");
    }
    positions.push_back(position);
    Variable& parameter = frame.Get(parameters[position].name);
    if (!arguments.is_default(i)) parameter.value = arguments.Value(i, parameter.type);
  }
  return positions;
}

void Session::CallProcedure(const CatalogObject& procedure, CallArguments& arguments) {
  const std::shared_ptr<Plan> body = PlanOf(procedure);
  const Statement& definition = *body->statement;
  const std::vector<Parameter>& parameters = definition.parameters;
  Frame frame;
  for (const Parameter& parameter : parameters) frame.Declare(parameter.name, ResolveType(parameter.type, false));
  const std::vector<std::size_t> positions = TakeArguments(procedure, parameters, arguments, frame);
  Scope inner{&frame, body.get(), {}, {}, nullptr};
  if (body->checked_generation != catalog_.generation()) Revalidate(*body, frame);
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    if (std::find(positions.begin(), positions.end(), i) != positions.end()) continue;
    const Parameter& parameter = parameters[i];
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
  for (std::size_t i = 0; i < positions.size(); ++i) {
    if (arguments.is_default(i)) continue;
    const Variable& from = frame.Get(parameters[positions[i]].name);
    arguments.TakeBack(i, from.value, from.type);
  }
  arguments.TakeStatus(inner.return_value);
}

const std::vector<Session::Declared>& Session::DeclaredBy(const std::string& declarations) {
  // A client calls the same few texts again and again.
  constexpr std::size_t kMostKept = 1000;
  if (declared_.size() >= kMostKept) declared_.clear();
  const auto [found, is_new] = declared_.try_emplace(declarations);
  if (is_new) {
    try {
      for (const Parameter& parameter : ParseParameters(declarations, names_)) {
        found->second.push_back({parameter.name, ResolveType(parameter.type, false)});
      }
    } catch (...) {
      declared_.erase(found);
      throw;
    }
  }
  return found->second;
}

void Session::ExecuteSql(CallArguments& arguments) {
  const auto text_of = [&](std::size_t argument) {
    if (argument >= arguments.size() || arguments.is_default(argument)) return std::string();
    Datum value = arguments.Value(argument, NVarCharType(0));
    auto* text = std::get_if<std::string>(&value);
    return text == nullptr ? std::string() : std::move(*text);
  };
  if (arguments.size() == 0) {
    throw SqlError(214, "Procedure expects parameter '@statement' of type 'ntext/nchar/nvarchar'.");
  }
  const std::string text = text_of(0);
  Frame frame;
  std::vector<Declared> declared;
  if (arguments.size() > 1) declared = DeclaredBy(text_of(1));
  for (const Declared& parameter : declared) frame.Declare(parameter.name, parameter.type);
  constexpr std::size_t kFirst = 2;
  std::vector<std::string> names;
  for (std::size_t i = kFirst; i < arguments.size(); ++i) {
    std::string name = arguments.name(i);
    if (name.empty() && i - kFirst >= declared.size()) {
      throw SqlError(8144, "Procedure or function sp_executesql has too many arguments specified.");
    }
    if (name.empty()) name = declared[i - kFirst].name;
    Variable& parameter = frame.Get(name);
    if (!arguments.is_default(i)) parameter.value = arguments.Value(i, parameter.type);
    names.push_back(std::move(name));
  }
  RunText(text, frame);
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (arguments.is_default(i + kFirst)) continue;
    const Variable& from = frame.Get(names[i]);
    arguments.TakeBack(i + kFirst, from.value, from.type);
  }
}

}  // namespace tessarlorn::tsql
