// The record of calls that wrote something: what makes a repeated call the same call, and what events are made of.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/http/call.h"
#include "tessarlorn/connection.h"

namespace tessarlorn::http {

/// How long an answer is kept under its key.
inline constexpr int kRecordHours = 48;

/// The answer to an earlier call with the same key, nothing when there is none. Holds off others with the key until the
/// transaction ends. Raises Refusal 422 when that call asked for something else.
std::optional<std::string> FindRecordedAnswer(Connection& connection, const Call& call);

/// Notes a call in its own transaction. @param answer kept when the call has a key
void RecordCall(Connection& connection, const Call& call, const std::string& answer);

/// Notes a change of orders that no call of an operation made.
void RecordChange(Connection& connection, const Caller& caller, std::string_view what,
                  const std::vector<std::int32_t>& orders);

/// Removes records that are older than kRecordHours.
void SweepRecords(Connection& connection);

}  // namespace tessarlorn::http
