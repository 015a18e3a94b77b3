// What the command answers to the shell.
#pragma once

#include <cstdint>

namespace tessarlorn::cli {

enum class ExitStatus : std::uint8_t {
  /// It did its work.
  kDone = 0,
  /// The operation answered the empty result of its type: False, Nothing, 0 or "".
  kEmpty = 1,
  /// The command was called in a wrong way; nothing was done.
  kWrongCall = 2,
  /// The operation or the database raised an error.
  kRaised = 3,
  /// The result could not be written. What was called has been done.
  kNotWritten = 4,
  /// Ctrl-C.
  kInterrupted = 130,
};

}  // namespace tessarlorn::cli
