#include "platform/clock.h"

#ifdef _WIN32
#include <sys/timeb.h>
#else
#include <chrono>
#endif

namespace tessarlorn {

#ifdef _WIN32

std::int64_t UtcMilliseconds() {
  struct __timeb64 now {};
  _ftime64_s(&now);
  return std::int64_t{now.time} * 1000 + now.millitm;
}

std::tm ToLocalTime(std::int64_t milliseconds) {
  const __time64_t seconds = milliseconds / 1000;
  std::tm local{};
  _localtime64_s(&local, &seconds);
  return local;
}

#else

std::int64_t UtcMilliseconds() {
  const auto since = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(since).count();
}

std::tm ToLocalTime(std::int64_t milliseconds) {
  static_assert(sizeof(std::time_t) == 8);
  const std::time_t seconds = milliseconds / 1000;
  std::tm local{};
  localtime_r(&seconds, &local);
  return local;
}

#endif

}  // namespace tessarlorn
