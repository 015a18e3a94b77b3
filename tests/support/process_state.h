// What a process holds, as the system tells it.
#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/types.h>
#include <unistd.h>

namespace tessarlorn {

/// Bytes of memory that the process holds.
inline std::size_t ResidentMemory(pid_t process) {
  std::ifstream in("/proc/" + std::to_string(process) + "/statm");
  std::size_t total = 0;
  std::size_t resident = 0;
  in >> total >> resident;
  return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

/// How many descriptors ("fd") or threads ("task") it has.
inline std::size_t Entries(pid_t process, const std::string& kind) {
  const std::filesystem::directory_iterator entries("/proc/" + std::to_string(process) + "/" + kind);
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

/// What the memory may grow by while clients come and go: on a busy machine more of them are there at once than before.
/// The sanitizers keep what was freed.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr std::size_t kGrowth = std::size_t{1} << 30;
#else
inline constexpr std::size_t kGrowth = std::size_t{32} << 20;
#endif

}  // namespace tessarlorn
