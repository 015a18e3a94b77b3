// What a process holds, as the system tells it.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <random>
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

inline int OfEnvironment(const char* name, int otherwise) {
  const char* const value = std::getenv(name);
  return value == nullptr ? otherwise : std::stoi(value);
}

inline std::string Garbage(std::mt19937& random) {
  std::string bytes(random() % 3000, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

/// Runs rounds of clients that come and go, as many as the process needs to have all its memory, which are numbered up
/// to 0, and more for TESSARLORN_SOAK_SECONDS, in which it does not grow.
template <typename Round>
void ExpectSteadyMemory(pid_t process, const Round& come_and_go) {
  for (int round = -4; round <= 0; ++round) come_and_go(round);
  const std::size_t before = ResidentMemory(process);
  const auto until =
      std::chrono::steady_clock::now() + std::chrono::seconds(OfEnvironment("TESSARLORN_SOAK_SECONDS", 0));
  int rounds = 0;
  do {
    come_and_go(++rounds);
  } while (rounds < 3 || std::chrono::steady_clock::now() < until);
  const std::size_t after = ResidentMemory(process);
  EXPECT_LT(after, before + kGrowth);
  std::printf("%d rounds, memory %zu, before %zu\n", rounds, after, before);
}

}  // namespace tessarlorn
