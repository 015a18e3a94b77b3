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
std::optional<std::string> FindRecordedAnswer(Connection& connection, const Caller& caller, const RequestKey& key);

/// A call that changed something, or one with a key.
struct CallRecord {
  /// Name of the operation or question.
  std::string_view name;
  /// The orders that it changed.
  std::vector<std::int32_t> orders;
  std::string answer;
};

/// Notes a call in its own transaction. The answer is kept when there is a key.
void RecordCall(Connection& connection, const Caller& caller, const RequestKey& key, const CallRecord& record);

/// Removes records that are older than kRecordHours.
void SweepRecords(Connection& connection);

}  // namespace tessarlorn::http
