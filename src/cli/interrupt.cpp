#include "cli/interrupt.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#ifdef _WIN32
#include <windows.h>
#endif

#include "cli/exit_status.h"
#include "platform/connection.h"
#include "platform/error.h"

namespace tessarlorn::cli {
namespace {

std::atomic<Connection*> running{nullptr};
std::atomic<bool> interrupted{false};
static_assert(std::atomic<Connection*>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

#ifdef _WIN32

HANDLE batch_thread = nullptr;

/// Windows runs the handler on a thread of its own. While this lives the thread of the batches stands still, as it does
/// elsewhere, so that its connection cannot go away.
class Standstill {
 public:
  Standstill() noexcept {
    SuspendThread(batch_thread);
    // It stands only once it has a context to show.
    CONTEXT context{};
    context.ContextFlags = CONTEXT_CONTROL;
    GetThreadContext(batch_thread, &context);
  }
  Standstill(const Standstill&) = delete;
  Standstill& operator=(const Standstill&) = delete;
  ~Standstill() { ResumeThread(batch_thread); }
};

#endif

extern "C" void HandleInterrupt(int signal) {
  std::signal(signal, SIG_DFL);
#ifdef _WIN32
  const Standstill standstill;
#endif
  Connection* const connection = running.load();
  if (connection == nullptr) std::_Exit(static_cast<int>(ExitStatus::kInterrupted));
  interrupted.store(true);
  connection->Cancel();
}

}  // namespace

void CatchInterrupts() {
  ShowRunningConnection(&running);
#ifdef _WIN32
  batch_thread = OpenThread(THREAD_SUSPEND_RESUME | THREAD_GET_CONTEXT, FALSE, GetCurrentThreadId());
#endif
  std::signal(SIGINT, HandleInterrupt);
}

bool WasInterrupted() noexcept { return interrupted.load(); }

void RaiseIfInterrupted() {
  if (WasInterrupted()) Raise(error_number::kCancelled, "The command was interrupted");
}

}  // namespace tessarlorn::cli
