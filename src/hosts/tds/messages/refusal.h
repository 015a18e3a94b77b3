// How requests are refused that no database could answer.
#pragma once

#include <string>

#include "hosts/tds/transport/protocol.h"
#include "platform/server_messages.h"
#include "tessarlorn/error.h"

namespace tessarlorn::tds {

/// @param text names what is not supported
[[noreturn]] inline void RaiseNotSupported(const std::string& text) {
  throw Error(error_number::kNotSupported, kServerName, text, {server_message::kNotSupported, "0A000"});
}

}  // namespace tessarlorn::tds
