// A call that nobody can make as it was asked for: what of it is at fault.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace tessarlorn {

/// `what()` names the thing at fault, as one sentence without an end. Nothing was done.
class WrongCall : public std::runtime_error {
 public:
  explicit WrongCall(const std::string& what, std::string name = {})
      : std::runtime_error(what), name_(std::move(name)) {}
  /// The argument or key at fault, as "dctPara.FID"; "" when it is none of them.
  [[nodiscard]] const std::string& name() const noexcept { return name_; }

 private:
  std::string name_;
};

}  // namespace tessarlorn
