#include "hosts/cli/console/interrupt.h"

#include <atomic>
#include <csignal>
#include <cstdlib>

#include "hosts/cli/console/exit_status.h"
#include "tessarlorn/connection.h"
#include "tessarlorn/error.h"

namespace tessarlorn::cli {
namespace {

std::atomic<Connection*> running{nullptr};
std::atomic<bool> interrupted{false};
std::atomic<bool> deferred{false};
static_assert(std::atomic<Connection*>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

// On Windows this runs on a thread of its own.
extern "C" void HandleInterrupt(int signal) {
  std::signal(signal, HandleInterrupt);
  if (deferred.load() && !interrupted.exchange(true)) return;
  Connection* const connection = running.exchange(nullptr);
  if (connection == nullptr || interrupted.exchange(true)) std::_Exit(static_cast<int>(ExitStatus::kInterrupted));
  connection->Cancel();
  running.store(connection);
}

}  // namespace

void CatchInterrupts() {
  ShowRunningConnection(&running);
  std::signal(SIGINT, HandleInterrupt);
}

bool WasInterrupted() noexcept { return interrupted.load(); }

DeferInterrupt::DeferInterrupt() noexcept { deferred.store(true); }

DeferInterrupt::~DeferInterrupt() { deferred.store(false); }

void RaiseIfInterrupted() {
  if (WasInterrupted()) Raise(error_number::kCancelled, "The command was interrupted");
}

}  // namespace tessarlorn::cli
