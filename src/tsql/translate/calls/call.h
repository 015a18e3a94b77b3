// A call of a function under translation: its arguments, translated when they are asked for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "tsql/translate/common/argument.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/translate/common/translation.h"

namespace tessarlorn::tsql {

class Call {
 public:
  Call(Translation& translation, const FunctionCall& written, std::uint32_t line, Scope& scope)
      : translation_(translation), written_(written), line_(line), scope_(scope) {}

  [[nodiscard]] const std::string& name() const { return written_.name; }
  [[nodiscard]] const std::string& qualifier() const { return written_.qualifier; }
  [[nodiscard]] const std::vector<ExpressionPtr>& arguments() const { return written_.arguments; }
  [[nodiscard]] std::size_t count() const { return written_.arguments.size(); }
  [[nodiscard]] const std::string& date_part() const { return written_.date_part; }
  [[nodiscard]] bool distinct() const { return written_.distinct; }
  [[nodiscard]] const std::vector<OrderItem>& within() const { return written_.within; }
  [[nodiscard]] const Window* window() const { return written_.window.get(); }
  [[nodiscard]] std::uint32_t line() const { return line_; }
  [[nodiscard]] Translation& translation() const { return translation_; }
  [[nodiscard]] Parameters& parameters() const { return translation_.parameters; }
  [[nodiscard]] Scope& scope() const { return scope_; }

  /// The call is COUNT(*).
  [[nodiscard]] bool of_star() const { return count() > 0 && As<Star>(Argument(0)) != nullptr; }
  [[nodiscard]] const Expression& Argument(std::size_t i) const { return *written_.arguments.at(i); }
  [[nodiscard]] Typed Value(std::size_t i) const { return translation_.Value(Argument(i), scope_); }
  [[nodiscard]] std::string Condition(std::size_t i) const { return translation_.Condition(Argument(i), scope_); }
  [[nodiscard]] std::string Text(std::size_t i) const { return TextArgument(translation_, Argument(i), scope_); }
  [[nodiscard]] std::string Int(std::size_t i) const { return IntArgument(translation_, Argument(i), scope_); }
  /// The argument, or `otherwise` where it is left out.
  [[nodiscard]] std::string Int(std::size_t i, const char* otherwise) const {
    return i < count() ? Int(i) : std::string(otherwise);
  }
  [[nodiscard]] std::string Float(std::size_t i) const { return FloatArgument(translation_, Argument(i), scope_); }
  [[nodiscard]] std::string Date(std::size_t i) const { return DateArgument(translation_, Argument(i), scope_); }
  /// `value` converted to `type`.
  [[nodiscard]] std::string Coerced(const Typed& value, const SqlType& type) const {
    return Coerce(translation_.parameters, value, type);
  }

  /// Raises 174 for another number of arguments.
  void Require(std::size_t least, std::size_t most) const;
  void Require(std::size_t number) const { Require(number, number); }

 private:
  Translation& translation_;
  const FunctionCall& written_;
  std::uint32_t line_;
  Scope& scope_;
};

}  // namespace tessarlorn::tsql
