// A wrong call of the command: what is at fault, and where help is.
#pragma once

#include <string>
#include <utility>

#include "hosts/calls/wrong_call.h"

namespace tessarlorn::cli {

class UsageError : public WrongCall {
 public:
  explicit UsageError(const std::string& fault, std::string help_command = {})
      : WrongCall(fault), help_command_(std::move(help_command)) {}

  /// The command that helps, as "tessarlorn ops Delivery"; "" when it is the --help of the called one.
  [[nodiscard]] const std::string& help_command() const noexcept { return help_command_; }

 private:
  std::string help_command_;
};

}  // namespace tessarlorn::cli
