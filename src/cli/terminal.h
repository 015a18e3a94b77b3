// What is known of the streams that the command was given: whether a person sees them, and how wide.
#pragma once

#include <cstddef>

namespace tessarlorn::cli {

bool IsOutputTerminal() noexcept;
bool IsErrorTerminal() noexcept;

/// Columns of the terminal that standard output goes to, 80 when it does not tell, 0 when it is no terminal.
std::size_t OutputWidth() noexcept;

}  // namespace tessarlorn::cli
