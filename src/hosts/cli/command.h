// The command `tessarlorn`: its words are read, one of its commands is run, and an exit status comes of it.
#pragma once

#include "hosts/cli/console/exit_status.h"

namespace tessarlorn::cli {

/// Works on the standard streams. Never throws. To be called once in a process, on its main thread.
ExitStatus RunCommand(int argc, const char* const* argv) noexcept;

}  // namespace tessarlorn::cli
