// A call that nobody can make as it was asked for: what of it is at fault.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tessarlorn {

/// `what()` names the thing at fault, as one sentence without an end. Nothing was done.
class WrongCall : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// "; did you mean X?" with the candidate that is nearest to `name`, "" when none is near.
std::string DidYouMean(std::string_view name, const std::vector<std::string_view>& candidates);

}  // namespace tessarlorn
