// Waiting for what happens elsewhere, in place of sleeping for a time that is hoped to be enough.
#pragma once

#include <chrono>
#include <thread>

namespace tessarlorn {

/// Whether the condition comes to hold within ten seconds.
template <typename Condition>
bool WaitUntil(const Condition& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

}  // namespace tessarlorn
