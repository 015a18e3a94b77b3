#include "platform/clock.h"

#include <utility>

namespace tessarlorn {
namespace {

std::function<DateTime()>& Clock() {
  static std::function<DateTime()> clock;
  return clock;
}

}  // namespace

DateTime LocalNow() { return Clock() ? Clock()() : DateTime::Now(); }

void SetClock(std::function<DateTime()> clock) { Clock() = std::move(clock); }

}  // namespace tessarlorn
