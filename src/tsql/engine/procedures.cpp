#include "tsql/engine/procedures.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

#include "platform/text/text.h"
#include "tsql/engine/nested_call.h"
#include "tsql/storage/system_views.h"

namespace tessarlorn::tsql {
namespace {

/// The place of an argument that leaves its parameter to the default.
constexpr auto kOwnDefault = static_cast<std::size_t>(-1);

/// An argument as text, "" for NULL and for one that is not given.
std::string TextOf(CallArguments& arguments, std::size_t argument) {
  if (argument >= arguments.size() || arguments.is_default(argument)) return {};
  Datum value = arguments.Value(argument, NVarCharType(0));
  auto* text = std::get_if<std::string>(&value);
  return text == nullptr ? std::string() : std::move(*text);
}

/// An argument as its parameter's type has it: what does not fit is error 8114, in statements 245.
Datum ValueOf(CallArguments& arguments, std::size_t argument, const SqlType& type) {
  try {
    return arguments.Value(argument, type);
  } catch (const SqlError& error) {
    constexpr std::string_view kBeginning = "Conversion failed when converting the ";
    const std::string text = error.what();
    const std::size_t end = text.find(" value '");
    if (error.number() != 245 || !text.starts_with(kBeginning) || end == std::string::npos) throw;
    throw SqlError(8114, "Error converting data type " + text.substr(kBeginning.size(), end - kBeginning.size()) +
                             " to " + std::string(TypeNameText(type)) + ".");
  }
}

/// Raises 2809 for an object that is no procedure.
void RequireCallable(const CatalogObject& object, const std::string& name) {
  if (object.kind == CatalogKind::kProcedure) return;
  const char* const word = object.kind == CatalogKind::kTable      ? "table"
                           : object.kind == CatalogKind::kView     ? "view"
                           : object.kind == CatalogKind::kSequence ? "sequence"
                           : object.kind == CatalogKind::kTrigger  ? "trigger"
                                                                   : "table valued function";
  throw SqlError(
      2809, "The request for procedure '" + name + "' failed because '" + name + "' is a " + word + " object.", 18);
}

}  // namespace

/// The arguments of an EXEC.
class Procedures::WrittenArguments final : public CallArguments {
 public:
  WrittenArguments(Procedures& calls, const CallStatement& call, const Activation& activation)
      : calls_(calls), call_(call), activation_(activation) {}

  [[nodiscard]] std::size_t size() const override { return call_.arguments.size(); }
  [[nodiscard]] std::string name(std::size_t argument) const override {
    return LowerCase(call_.arguments[argument].name);
  }
  [[nodiscard]] bool is_default(std::size_t argument) const override {
    return call_.arguments[argument].value == nullptr;
  }
  Datum Value(std::size_t argument, const SqlType& type) override {
    return calls_.evaluator_.Value(*call_.arguments[argument].value, type, activation_);
  }
  void TakeBack(std::size_t argument, const Datum& value, const SqlType& type) override {
    const auto* variable = As<VariableReference>(*call_.arguments[argument].value);
    if (call_.arguments[argument].output && variable != nullptr) Set(variable->name, value, type);
  }
  void TakeStatus(const Datum& status, const SqlType& type) override {
    if (!call_.result_variable.empty()) Set(call_.result_variable, status, type);
  }

 private:
  void Set(const std::string& variable, const Datum& value, const SqlType& type) {
    SetVariable(activation_.frame->Get(variable), value, type, calls_.database_.runtime().date_order);
  }

  Procedures& calls_;
  const CallStatement& call_;
  const Activation& activation_;
};

Procedures::Procedures(SessionDatabase& database, SessionOptions& options, Results& results, ErrorState& errors,
                       Transaction& transaction, PlanStore& plans, Evaluator& evaluator, Definitions& definitions,
                       CallRunner runner)
    : database_(database),
      options_(options),
      results_(results),
      errors_(errors),
      transaction_(transaction),
      plans_(plans),
      evaluator_(evaluator),
      definitions_(definitions),
      runner_(std::move(runner)) {
  database.runtime().call_function = [this](std::string_view function, std::vector<Datum> arguments) {
    return CallFunction(function, std::move(arguments));
  };
}

template <typename Body>
void Procedures::Balanced(const Body& body) {
  const int depth = transaction_.depth();
  body();
  const int now = transaction_.depth();
  if (now == depth || (options_.implicit_transactions() && depth == 0)) return;
  throw SqlError(266,
                 "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT statements. "
                 "Previous count = " +
                     std::to_string(depth) + ", current count = " + std::to_string(now) + ".",
                 16, 2);
}

void Procedures::RunText(std::string_view text, Frame& frame) {
  const Nested nested(*this, {});
  runner_.run_text(text, frame);
}

void Procedures::Execute(const ExecuteTextStatement& statement, const Activation& activation) {
  Balanced([&] {
    const std::optional<std::string> text = evaluator_.Text(*statement.text, NVarCharType(0), activation);
    Frame frame;
    if (text) RunText(*text, frame);
  });
}

void Procedures::Execute(const CallStatement& call, const Activation& activation) {
  Balanced([&] {
    WrittenArguments arguments(*this, call, activation);
    Call(call.procedure, arguments, activation.plan->schema);
  });
}

void Procedures::Call(const ObjectName& name, CallArguments& arguments, const std::string& schema) {
  if (EqualsIgnoreCase(name.name, "sp_executesql")) {
    ExecuteSql(arguments);
    return;
  }
  if (EqualsIgnoreCase(name.name, kRenameProcedure)) {
    Rename(arguments);
    return;
  }
  for (const char* const refused : {"sp_sequence_get_range", "sp_settriggerorder"}) {
    if (EqualsIgnoreCase(name.name, refused)) RaiseUnsupported(refused);
  }
  CatalogObjectPtr procedure = FindSystemProcedure(name.name);
  if (procedure == nullptr) {
    RequireLocal(name);
    database_.catalog().Refresh();
    procedure = database_.catalog().Find(database_.catalog().Meant(name, schema));
  }
  if (procedure != nullptr && procedure->kind == CatalogKind::kFunction) {
    CallFunction(*procedure, arguments);
    return;
  }
  if (errors_.in_function) {
    throw SqlError(557, "Only functions and some extended stored procedures can be executed from within a function.");
  }
  if (procedure != nullptr) RequireCallable(*procedure, name.name);
  if (procedure == nullptr) {
    throw SqlError(2812, "Could not find stored procedure '" + name.name + "'.");
  }
  CallProcedure(*procedure, arguments);
}

std::vector<std::size_t> Procedures::TakeArguments(const CatalogObject& procedure,
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
        throw SqlError(8144, "Procedure or function " + procedure.own_name() + " has too many arguments specified.");
      throw SqlError(8145, name + " is not a parameter for procedure " + procedure.own_name() + ".");
    }
    positions.push_back(arguments.is_default(i) ? kOwnDefault : position);
    Variable& parameter = frame.Get(parameters[position].name);
    if (!arguments.is_default(i)) parameter.value = ValueOf(arguments, i, parameter.type);
  }
  return positions;
}

void Procedures::TakeDefaults(const CatalogObject& procedure, const std::vector<Parameter>& parameters,
                              const std::vector<std::size_t>& given, const Activation& inner) {
  for (std::size_t i = 0; i < parameters.size(); ++i) {
    if (std::find(given.begin(), given.end(), i) != given.end()) continue;
    const Parameter& parameter = parameters[i];
    if (parameter.default_value == nullptr) {
      throw SqlError(201, "Procedure or function '" + procedure.own_name() + "' expects parameter '" + parameter.name +
                              "', which was not supplied.");
    }
    Variable& variable = inner.frame->Get(parameter.name);
    variable.value = evaluator_.Value(*parameter.default_value, variable.type, inner);
  }
}

std::vector<std::size_t> Procedures::Begin(const CatalogObject& object, const std::vector<Parameter>& parameters,
                                           CallArguments& arguments, const Activation& inner) {
  Frame& frame = *inner.frame;
  for (const Parameter& parameter : parameters) frame.Declare(parameter.name, ResolveType(parameter.type, false));
  std::vector<std::size_t> positions = TakeArguments(object, parameters, arguments, frame);
  if (inner.plan->checked_generation != database_.catalog().generation()) plans_.Revalidate(*inner.plan, frame);
  TakeDefaults(object, parameters, positions, inner);
  PlanStore::Declare(*inner.plan->statement, frame);
  return positions;
}

void Procedures::CallProcedure(const CatalogObject& procedure, CallArguments& arguments) {
  const std::shared_ptr<Plan> plan = plans_.OfProcedure(procedure);
  const auto& definition = std::get<CreateProcedureStatement>(plan->statement->node);
  const std::vector<Parameter>& parameters = definition.parameters;
  Frame frame;
  Activation inner{&frame, plan.get(), {}, {}, nullptr};
  const std::vector<std::size_t> positions = Begin(procedure, parameters, arguments, inner);
  const std::string name = procedure.own_name();
  const Nested nested(*this, name);
  runner_.run_body(definition.body, inner);
  for (std::size_t i = 0; i < positions.size(); ++i) {
    if (arguments.is_default(i)) continue;
    const Variable& from = frame.Get(parameters[positions[i]].name);
    arguments.TakeBack(i, from.value, from.type);
  }
  arguments.TakeStatus(std::int64_t{inner.return_value}, IntType());
}

void Procedures::Fire(const CatalogObject& trigger) {
  const std::shared_ptr<Plan> plan = plans_.OfProcedure(trigger);
  Frame frame;
  Activation inner{&frame, plan.get(), {}, {}, nullptr};
  if (plan->checked_generation != database_.catalog().generation()) plans_.Revalidate(*plan, frame);
  PlanStore::Declare(*plan->statement, frame);
  const std::string name = trigger.own_name();
  const Nested nested(*this, name);
  options_.AbortOnErrors();
  runner_.run_body(std::get<CreateTriggerStatement>(plan->statement->node).body, inner);
}

const std::vector<Procedures::Declared>& Procedures::DeclaredBy(const std::string& declarations) {
  // A client calls the same few texts again and again.
  constexpr std::size_t kMostKept = 1000;
  if (declared_.size() >= kMostKept) declared_.clear();
  const auto [found, is_new] = declared_.try_emplace(declarations);
  if (is_new) {
    try {
      for (const Parameter& parameter : ParseParameters(declarations, database_.names())) {
        found->second.push_back({parameter.name, ResolveType(parameter.type, false)});
      }
    } catch (...) {
      declared_.erase(found);
      throw;
    }
  }
  return found->second;
}

void Procedures::Rename(CallArguments& arguments) {
  transaction_.EnsureWrite();
  definitions_.Rename(TextOf(arguments, 0), TextOf(arguments, 1), TextOf(arguments, 2));
}

void Procedures::ExecuteSql(CallArguments& arguments) {
  if (arguments.size() == 0) {
    throw SqlError(214, "Procedure expects parameter '@statement' of type 'ntext/nchar/nvarchar'.");
  }
  const std::string text = TextOf(arguments, 0);
  Frame frame;
  // Until the text runs: it may call others, which forget what is kept.
  std::span<const Declared> declared;
  if (arguments.size() > 1) declared = DeclaredBy(TextOf(arguments, 1));
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
    if (!arguments.is_default(i)) parameter.value = ValueOf(arguments, i, parameter.type);
    names.push_back(std::move(name));
  }
  for (const Declared& parameter : declared) {
    if (std::find(names.begin(), names.end(), parameter.name) != names.end()) continue;
    throw SqlError(8178, "The parameterized query '(" + TextOf(arguments, 1) + ")" + text +
                             "' expects the parameter '" + parameter.name + "', which was not supplied.");
  }
  RunText(text, frame);
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (arguments.is_default(i + kFirst)) continue;
    const Variable& from = frame.Get(names[i]);
    arguments.TakeBack(i + kFirst, from.value, from.type);
  }
}

}  // namespace tessarlorn::tsql
