// The parameters of a statement that is being translated, and how its literals and variables become such.
#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tsql/functions/runtime.h"
#include "tsql/syntax/ast.h"
#include "tsql/translate/common/typed.h"

namespace tessarlorn::tsql {

/// The system value of UPDATE(column) is called so, with the column's name behind it.
inline constexpr std::string_view kUpdatedColumn = "updated:";
/// A value in SQLite's words.
std::string ConstantSql(const Datum& value);

/// A parameter stands in the SQL as ?n while it is put together. Finish gives the parameters their order.
class Parameters {
 public:
  /// What the parameters of a function stand for in its text, by name.
  using Arguments = std::unordered_map<std::string, Typed>;

  /// While it lives, a view's, a function's or a default's text is translated: its literals are not the statement's.
  class InDefinition {
   public:
    /// @param arguments of a function; outlives this
    explicit InDefinition(Parameters& parameters, const Arguments* arguments = nullptr)
        : parameters_(parameters), outer_(std::exchange(parameters.arguments_, arguments)) {
      ++parameters_.definition_depth_;
    }
    InDefinition(const InDefinition&) = delete;
    InDefinition& operator=(const InDefinition&) = delete;
    ~InDefinition() {
      --parameters_.definition_depth_;
      parameters_.arguments_ = outer_;
    }

   private:
    Parameters& parameters_;
    const Arguments* outer_;
  };

  /// @param lift_literals literals become parameters that are bound from the batch's tokens; otherwise their values
  /// stand in the compiled statement.
  Parameters(Frame& frame, bool lift_literals, Dependencies& dependencies)
      : frame_(frame), lift_(lift_literals), dependencies_(dependencies) {}

  Typed Constant(Datum value, const SqlType& type);
  Typed System(const std::string& name, const SqlType& type);
  /// Raises 137 for a variable that is not declared.
  Typed Variable(const std::string& name);
  [[nodiscard]] const SqlType& VariableType(const std::string& name) { return frame_.Get(name).type; }
  Typed OfLiteral(const Literal& literal);
  /// The items of a list token, converted to `to`, as a parameter's SQL.
  std::string List(int index, const SqlType& item, const SqlType& to);
  [[nodiscard]] BoundParameter& at(int parameter) { return parameters_[static_cast<std::size_t>(parameter)]; }

  /// The statement assigns the variable as it runs: its value is asked for row by row.
  void Assign(const std::string& variable) { assigned_.insert(variable); }

  /// The value of a literal went into the translation: the plan serves no text with another one.
  void Pin(const Literal& literal);
  /// Pins every literal of an expression whose text decided something.
  void PinAll(const Expression& expression);

  /// How many texts of views and defaults are open.
  [[nodiscard]] int definition_depth() const { return definition_depth_; }
  [[nodiscard]] std::size_t size() const { return parameters_.size(); }
  /// Forgets the parameters behind the first `size`.
  void ShrinkTo(std::size_t size) { parameters_.resize(size); }

  /// The finished SQL with its parameters.
  Compiled Finish(const std::string& sql);
  /// The same of one SQL of several.
  [[nodiscard]] Compiled Part(const std::string& sql) const;
  /// The finished SQL for a definition: constants are written where their parameters stand.
  std::string FinishDefinition(const std::string& sql);

 private:
  /// The SQL with a text in the place of each parameter.
  template <typename Text>
  [[nodiscard]] std::string Filled(const std::string& sql, const Text& text) const;
  [[nodiscard]] bool lifts(const Literal& literal) const {
    return lift_ && definition_depth_ == 0 && literal.index >= 0;
  }

  Frame& frame_;
  bool lift_;
  Dependencies& dependencies_;
  std::vector<BoundParameter> parameters_;
  std::set<std::string> assigned_;
  int definition_depth_ = 0;
  const Arguments* arguments_ = nullptr;
};

}  // namespace tessarlorn::tsql
