#include "hosts/cli/serving/serving.h"

#include <array>
#include <ctime>
#include <iostream>
#include <mutex>

#include "hosts/cli/console/usage_error.h"

namespace tessarlorn::cli {

void CheckAddress(const ServeOptions& options, const Address& address, const std::string& words) {
  if (options.certificate.empty() != options.key.empty()) {
    throw UsageError("--certificate and --key belong together");
  }
  if (address.is_loopback()) return;
  if (!options.allow_remote) {
    throw UsageError(words + " is reached from other machines: give --allow-remote if that is wanted");
  }
  if (options.certificate.empty() && !options.allow_plain) {
    throw UsageError("serving other machines wants --certificate and --key, or --allow-plain to do without TLS");
  }
}

void WriteLog(const std::string& line) {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  localtime_r(&now, &parts);
  std::array<char, 32> stamp{};
  const std::size_t size = std::strftime(stamp.data(), stamp.size(), "%Y-%m-%d %H:%M:%S ", &parts);
  WriteLogLine(std::string(stamp.data(), size) + line);
}

void WriteLogLine(const std::string& line) {
  static std::mutex mutex;
  const std::scoped_lock lock(mutex);
  std::cerr << line << '\n' << std::flush;
}

}  // namespace tessarlorn::cli
