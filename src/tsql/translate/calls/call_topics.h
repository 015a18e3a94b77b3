// The functions of Transact-SQL by topic. Each answers a value without SQL when the function is none of its own.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tsql/translate/calls/call.h"

namespace tessarlorn::tsql {

/// Any call. Raises 195 for an unknown function.
Typed TranslateCall(const Call& call);
[[noreturn]] void RaiseUnknownFunction(const std::string& name, std::uint32_t line);

// aggregate_calls.cpp, window_calls.cpp
Typed AggregateCall(const Call& call);
/// STDEV, VAR, their like and CHECKSUM_AGG, with `over` behind the call; no SQL for others. Raises 8117.
Typed Statistic(const Call& call, const Typed& value, const std::string& over);
Typed WindowCall(const Call& call);

// plain_calls.cpp: functions that one row function answers, most of those on texts among them
Typed PlainCall(const Call& call);

// The other topics, each in a file of its name
Typed ConditionalCall(const Call& call);
Typed DateCall(const Call& call);
Typed DigestCall(const Call& call);
Typed JsonCall(const Call& call);
Typed NumberCall(const Call& call);
Typed TextCall(const Call& call);
/// Functions of the session and of the server; the variables @@NAME.
Typed SessionCall(const Call& call);
Typed ServerCall(const Call& call);
/// SERVERPROPERTY, OBJECTPROPERTY and their like.
Typed PropertyCall(const Call& call);
/// A scalar function of the database. Raises 4121.
Typed OwnCall(const Call& call);
/// Raises 208, 11726, and where it may not stand 11719 and its like.
Typed NextValueOf(Translation& translation, const NextValue& next);
Typed GlobalValue(Parameters& parameters, const std::string& name, std::uint32_t line);

}  // namespace tessarlorn::tsql
