#include "hosts/calls/wrong_call.h"

#include "platform/text/text.h"

namespace tessarlorn {

std::string DidYouMean(std::string_view name, const std::vector<std::string_view>& candidates) {
  const std::string_view nearest = Nearest(name, candidates);
  return nearest.empty() ? "" : "; did you mean " + std::string(nearest) + "?";
}

}  // namespace tessarlorn
