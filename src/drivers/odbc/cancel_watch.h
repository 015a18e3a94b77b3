// Cancelling a running batch from any thread or a signal handler: a thread of its own calls ODBC for it.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

#include "drivers/odbc/odbc_handle.h"

namespace tessarlorn::odbc {

/// What a connection and the watching thread share. ODBC's functions may not be called in a signal handler, so
/// Request() only leaves a note, and the watching thread cancels until the call has ended.
class CancelState {
 public:
  /// The state of a new connection; the watching thread starts with the process's first.
  static std::shared_ptr<CancelState> Make();

  /// Asks for the end of the call that is running; does nothing between calls. From any thread, or from a signal
  /// handler.
  void Request() noexcept;
  [[nodiscard]] bool requested() const noexcept { return phase_.load() == Phase::kRequested; }

  /// A call that can be cancelled begins or ends; a request is done with then.
  void SetInCall(bool in_call) noexcept;
  /// The statement runs from now on; nullptr: none does.
  void SetRunning(SQLHSTMT statement) noexcept;
  /// For the watching thread: whether a call is to end. Cancels its statement if one is running.
  bool CancelRunning() noexcept;

 private:
  enum class Phase : std::uint8_t { kIdle, kInCall, kRequested };
  std::atomic<Phase> phase_{Phase::kIdle};
  static_assert(std::atomic<Phase>::is_always_lock_free);
  std::mutex mutex_;
  SQLHSTMT running_ = nullptr;
};

/// The connection is in a call that can be cancelled while it lives.
class CancellableCall {
 public:
  explicit CancellableCall(CancelState& state) : state_(state) { state_.SetInCall(true); }
  CancellableCall(const CancellableCall&) = delete;
  CancellableCall& operator=(const CancellableCall&) = delete;
  ~CancellableCall() { state_.SetInCall(false); }

 private:
  CancelState& state_;
};

/// A statement runs on the connection while it lives.
class RunningStatement {
 public:
  RunningStatement(CancelState& state, SQLHSTMT statement) : state_(state) { state_.SetRunning(statement); }
  RunningStatement(const RunningStatement&) = delete;
  RunningStatement& operator=(const RunningStatement&) = delete;
  ~RunningStatement() { state_.SetRunning(nullptr); }

 private:
  CancelState& state_;
};

}  // namespace tessarlorn::odbc
