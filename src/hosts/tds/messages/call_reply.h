// The end of a call's answer: return status and output values.
#pragma once

#include "hosts/tds/messages/reply.h"
#include "hosts/tds/messages/rpc.h"

namespace tessarlorn::tds {

/// @param call as it was run: its outputs have their values now
void WriteCallEnd(Reply& reply, const DatabaseCall& call, std::int32_t status, const std::string& handle_name);

}  // namespace tessarlorn::tds
