// The address of the client machine, as the platform's network library tells it.
#pragma once

#include <cstddef>
#include <functional>
#include <span>

namespace tessarlorn {

/// Fills `buffer` with the address, NUL-terminated, and answers 1; any other answer means that it is not known.
using ReadTcpFunction = std::function<int(std::span<char> buffer, std::span<char> unused)>;

/// Sets the function for the process. Without one, ReadTcp answers the client address of the thread's current session
/// (its session string's `Client=`), or 0 when that names none.
void SetReadTcp(ReadTcpFunction function);
int ReadTcp(std::span<char> buffer, std::span<char> unused);

}  // namespace tessarlorn
