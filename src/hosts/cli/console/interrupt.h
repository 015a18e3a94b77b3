// Ctrl-C: ends the batch that is running; a second one ends the process.
#pragma once

namespace tessarlorn::cli {

/// From now on, on the calling thread's batches: the first Ctrl-C cancels the running batch, which then raises
/// `error_number::kCancelled`. Where no batch runs it ends the process with status 130, and so does a second one.
/// The thread must be the only one that runs batches.
void CatchInterrupts();

/// Whether Ctrl-C was pressed while a batch ran.
bool WasInterrupted() noexcept;

/// Raises `error_number::kCancelled` once Ctrl-C was pressed while a batch ran: for what is still to be done when it
/// met the end of that batch, where there was nothing left to cancel.
void RaiseIfInterrupted();

/// While it lives, the first Ctrl-C ends nothing by itself: what is under way asks with RaiseIfInterrupted.
class DeferInterrupt {
 public:
  DeferInterrupt() noexcept;
  DeferInterrupt(const DeferInterrupt&) = delete;
  DeferInterrupt& operator=(const DeferInterrupt&) = delete;
  ~DeferInterrupt();
};

}  // namespace tessarlorn::cli
