// Cancelling a running batch from any thread or a signal handler: a thread of its own calls ODBC for it.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "drivers/odbc/odbc_handle.h"

namespace tessarlorn::odbc {

/// What a connection and the watching thread share. ODBC's functions may not be called in a signal handler, so
/// Request() only leaves a note, and the watching thread cancels until the batch has ended.
class CancelState {
 public:
  /// The state of a new connection; the watching thread starts with the process's first.
  static std::shared_ptr<CancelState> Make();

  /// Asks for the end of the batch that is running. From any thread, or from a signal handler.
  void Request() noexcept;
  [[nodiscard]] bool requested() const noexcept { return requested_.load(); }

  /// The statement runs from now on; nullptr: none does, and the request is done with.
  void SetRunning(SQLHSTMT statement) noexcept;
  /// For the watching thread: cancels what is running if that was asked for; false when there is nothing to do.
  bool CancelRunning() noexcept;

 private:
  std::atomic<bool> requested_{false};
  std::mutex mutex_;
  SQLHSTMT running_ = nullptr;
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
