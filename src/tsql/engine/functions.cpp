// Scalar functions of the database: what a call within a statement runs.
#include <algorithm>
#include <utility>

#include "tsql/engine/nested_call.h"

namespace tessarlorn::tsql {
namespace {

/// Arguments that a statement has converted to the types of the parameters, and the place of the result.
class ConvertedArguments final : public CallArguments {
 public:
  explicit ConvertedArguments(std::vector<Datum> values) : values_(std::move(values)) {}

  [[nodiscard]] std::size_t size() const override { return values_.size(); }
  [[nodiscard]] std::string name(std::size_t /*argument*/) const override { return {}; }
  [[nodiscard]] bool is_default(std::size_t /*argument*/) const override { return false; }
  Datum Value(std::size_t argument, const SqlType& /*type*/) override { return values_[argument]; }
  void TakeBack(std::size_t /*argument*/, const Datum& /*value*/, const SqlType& /*type*/) override {}
  void TakeStatus(const Datum& status, const SqlType& /*type*/) override { result_ = status; }
  [[nodiscard]] Datum TakeResult() { return std::move(result_); }

 private:
  std::vector<Datum> values_;
  Datum result_;
};

bool AnyNull(const std::vector<Parameter>& parameters, Frame& frame) {
  return std::any_of(parameters.begin(), parameters.end(), [&](const Parameter& parameter) {
    return std::holds_alternative<std::monostate>(frame.Get(parameter.name).value);
  });
}

}  // namespace

/// While it lives a function runs: its errors are those of the calling statement, which counts its own rows.
class Procedures::InFunction {
 public:
  explicit InFunction(Procedures& calls)
      : calls_(calls),
        rows_(calls.results_.row_count()),
        number_(calls.errors_.last_number),
        outer_(std::exchange(calls.errors_.in_function, true)) {
    ++calls.errors_.try_depth;
    ++calls.database_.runtime().function_depth;
  }
  InFunction(const InFunction&) = delete;
  InFunction& operator=(const InFunction&) = delete;
  ~InFunction() {
    --calls_.database_.runtime().function_depth;
    --calls_.errors_.try_depth;
    calls_.results_.set_row_count(rows_);
    calls_.errors_.last_number = number_;
    calls_.errors_.in_function = outer_;
  }

 private:
  Procedures& calls_;
  std::int64_t rows_;
  std::int32_t number_;
  bool outer_;
};

void Procedures::CallFunction(const CatalogObject& function, CallArguments& arguments) {
  const InFunction in_function(*this);
  const PlanStore::FunctionPlan own(plans_, function);
  const auto& definition = std::get<CreateFunctionStatement>(own.plan().statement->node);
  const bool scalar = definition.returned_table.empty();
  const SqlType type = scalar ? ResolveType(definition.returns, false) : SqlType{FieldType::kVarBinary, 0, 0, 0, false};
  Frame frame;
  Activation inner{&frame, &own.plan(), {}, {}, nullptr};
  inner.returns = &type;
  inner.returned_table = definition.returned_table;
  Begin(function, definition.parameters, arguments, inner);
  if (!definition.null_for_null || !AnyNull(definition.parameters, frame)) {
    const std::string name = function.own_name();
    const Nested nested(*this, name);
    runner_.run_body(definition.body, inner);
  }
  arguments.TakeStatus(inner.returned, type);
}

Datum Procedures::CallFunction(std::string_view name, std::vector<Datum> values) {
  const CatalogObjectPtr function = database_.catalog().Find(name);
  if (function == nullptr ||
      (function->kind != CatalogKind::kFunction && function->kind != CatalogKind::kFilledFunction))
    RaiseNoObject({"dbo", std::string(name)});
  ConvertedArguments arguments(std::move(values));
  CallFunction(*function, arguments);
  return arguments.TakeResult();
}

}  // namespace tessarlorn::tsql
