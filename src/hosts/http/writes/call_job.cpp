#include "hosts/http/writes/call_job.h"

#include <utility>

namespace tessarlorn::http {
namespace {

/// Nothing was done: False, 0, "" or Nothing.
bool DidNothing(const Variant& result, const Beside& beside) {
  if (beside.orders) return false;
  if (result.is_object()) return result.type_name() == "Nothing";
  if (const auto* text = result.get_if<std::string>()) return text->empty();
  return result.is_empty() || result.is_null() || result.ToDouble() == 0;
}

}  // namespace

Response ResponseTo(const Call& call, std::string answer) {
  Response response{.status = 200,
                    .headers = {{"Content-Type", std::string(MediaType(call.format))}, {"Cache-Control", "no-store"}},
                    .body = std::move(answer)};
  AddNotFound(response.headers, call);
  return response;
}

CallJob::CallJob(Host& host, Call call, JobOrder order)
    : RecordedJob(std::move(order)), host_(host), call_(std::move(call)) {}

RecordedJob::Made CallJob::Make(Connection& connection) {
  Variant result;
  Beside beside;
  MakeCall(host_, call_, &connection, result, beside);
  return {.record = {.name = call_.operation->name,
                     .orders = call_.access.orders,
                     .answer = AnswerText(call_.format, call_.columns, result, beside)},
          .changed = !DidNothing(result, beside),
          .dry = call_.dry_run};
}

Response CallJob::ResponseOf(std::string answer) const { return ResponseTo(call_, std::move(answer)); }

}  // namespace tessarlorn::http
