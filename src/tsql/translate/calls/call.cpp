#include "tsql/translate/calls/call.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"
#include "tsql/syntax/ast_walk.h"
#include "tsql/translate/calls/call_topics.h"
#include "tsql/translate/common/meaning.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

void Call::Require(std::size_t least, std::size_t most) const {
  if (count() >= least && count() <= most) return;
  const std::size_t wanted = count() < least ? least : most;
  SqlError error(174, "The " + name() + " function requires " + std::to_string(wanted) + " argument(s).", 15);
  error.set_line(line_);
  throw error;
}

void RaiseUnknownFunction(const std::string& name, std::uint32_t line) {
  SqlError error(195, "'" + name + "' is not a recognized built-in function name.", 15);
  error.set_line(line);
  throw error;
}

namespace {

/// Raises 4109.
void RequireNoWindowWithin(const Call& call) {
  const auto has_window = [](const Expression& expression) {
    const auto* inner = As<FunctionCall>(expression);
    return inner != nullptr && inner->window != nullptr;
  };
  for (const ExpressionPtr& argument : call.arguments()) {
    if (!AnyOperand(*argument, has_window)) continue;
    throw SqlError(4109, "Windowed functions cannot be used in the context of another windowed function or aggregate.",
                   15);
  }
}

}  // namespace

Typed TranslateCall(const Call& call) {
  if (!call.qualifier().empty()) return OwnCall(call);
  if (call.window() != nullptr || IsAggregate(call.name())) RequireNoWindowWithin(call);
  if (call.window() != nullptr) return WindowCall(call);
  if (IsAggregate(call.name())) return AggregateCall(call);
  for (const auto topic : {PlainCall, ConditionalCall, DateCall, NumberCall, TextCall, DigestCall, JsonCall,
                           SessionCall, ServerCall, PropertyCall}) {
    Typed value = topic(call);
    if (!value.sql.empty()) return value;
  }
  constexpr auto kWindowOnly =
      std::to_array<std::string_view>({"cume_dist", "dense_rank", "first_value", "lag", "last_value", "lead", "ntile",
                                       "percent_rank", "percentile_cont", "percentile_disc", "rank", "row_number"});
  if (std::find(kWindowOnly.begin(), kWindowOnly.end(), call.name()) != kWindowOnly.end()) {
    throw SqlError(10753, "The function '" + call.name() + "' must have an OVER clause.", 15);
  }
  constexpr auto kServerOnly = std::to_array<std::string_view>(
      {"columns_updated", "compress", "cursor_status", "decompress", "formatmessage", "string_split"});
  if (std::find(kServerOnly.begin(), kServerOnly.end(), call.name()) != kServerOnly.end()) {
    RaiseUnsupported("The function " + UpperCase(call.name()), call.line());
  }
  RaiseUnknownFunction(call.name(), call.line());
}

}  // namespace tessarlorn::tsql
