// The machine's clock. That of the standard library ends in 2038 where its time_t has 32 bits, as on 32-bit Windows.
#pragma once

#include <cstdint>
#include <ctime>

namespace tessarlorn {

/// Milliseconds since 1970-01-01, in universal time.
std::int64_t UtcMilliseconds();
/// The local time at a moment that UtcMilliseconds() answered.
std::tm ToLocalTime(std::int64_t milliseconds);

}  // namespace tessarlorn
