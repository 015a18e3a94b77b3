// A wrong call of the command: what is at fault, and where help is.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarlorn::cli {

/// `what()` names the thing at fault, as one sentence without an end.
class UsageError : public std::runtime_error {
 public:
  explicit UsageError(const std::string& fault, std::string help_command = {})
      : std::runtime_error(fault), help_command_(std::move(help_command)) {}

  /// The command that helps, as "tessarlorn ops Delivery"; "" when it is the --help of the called one.
  [[nodiscard]] const std::string& help_command() const noexcept { return help_command_; }

 private:
  std::string help_command_;
};

/// "; did you mean X?" with the candidate that is nearest to `name`, "" when none is near.
std::string DidYouMean(std::string_view name, const std::vector<std::string_view>& candidates);

}  // namespace tessarlorn::cli
