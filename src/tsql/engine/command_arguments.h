// The parameters of a command, as the arguments of a call or as the variables of a batch.
#pragma once

#include <cstddef>
#include <string>

#include "tessarlorn/sql_command.h"
#include "tsql/engine/call_arguments.h"
#include "tsql/functions/runtime.h"

namespace tessarlorn::tsql {

class CommandArguments final : public CallArguments {
 public:
  /// @param order how a text that is to be a date stands for one
  CommandArguments(SqlCommand& command, DateOrder order) : command_(command), order_(order) {}

  [[nodiscard]] std::size_t size() const override { return command_.parameters.size(); }
  [[nodiscard]] std::string name(std::size_t argument) const override;
  [[nodiscard]] bool is_default(std::size_t argument) const override {
    return command_.parameters[argument].is_default;
  }
  /// By way of the type that its caller gave it.
  Datum Value(std::size_t argument, const SqlType& type) override;
  void TakeBack(std::size_t argument, const Datum& value, const SqlType& type) override;
  void TakeStatus(const Datum& status, const SqlType& type) override;

  /// Declares the parameters as variables of a batch, with their values.
  void DeclareIn(Frame& frame);
  /// Takes the outputs back from the batch's variables.
  void TakeBackFrom(Frame& frame);

 private:
  SqlCommand& command_;
  DateOrder order_;
};

/// Bytes of text and parameters.
std::size_t SizeOf(const SqlCommand& command);

}  // namespace tessarlorn::tsql
