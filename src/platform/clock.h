// The host's clock, replaceable for tests.
#pragma once

#include <functional>

#include "tessarlorn/date_time.h"

namespace tessarlorn {

/// Local date and time, by the host's clock unless a test set another.
DateTime LocalNow();
/// For the whole process; an empty function goes back to the host's clock. Not while other threads read the clock.
void SetClock(std::function<DateTime()> clock);

}  // namespace tessarlorn
