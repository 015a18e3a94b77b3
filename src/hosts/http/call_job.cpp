#include "hosts/http/call_job.h"

#include <utility>

#include "hosts/http/call_record.h"

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

Response ResponseOf(const Call& call, std::string answer, bool replayed) {
  Response response{.status = 200,
                    .headers = {{"Content-Type", std::string(MediaType(call.format))}, {"Cache-Control", "no-store"}},
                    .body = std::move(answer)};
  AddNotFound(response.headers, call);
  if (replayed) response.headers.emplace_back("Idempotency-Replayed", "true");
  return response;
}

CallJob::CallJob(Host& host, Call call, std::unique_ptr<Visit> visit, Watchdog::Clock::time_point until,
                 std::function<void()> ended)
    : host_(host), call_(std::move(call)), visit_(std::move(visit)), until_(until), ended_(std::move(ended)) {}

CallJob::~CallJob() { End(); }

void CallJob::End() {
  if (const std::function<void()> ended = std::exchange(ended_, {})) ended();
}

void CallJob::Run(Connection& connection) {
  if (Watchdog::Clock::now() >= until_) {
    throw Refusal({.status = 503, .detail = "the call waited too long for its turn", .retry_after = 1});
  }
  const WatchedBatches watched(visit_.get());
  replayed_ = false;
  if (!call_.key.empty()) {
    if (std::optional<std::string> answer = FindRecordedAnswer(connection, call_)) {
      answer_ = *std::move(answer);
      replayed_ = true;
      return;
    }
  }
  Variant result;
  Beside beside;
  MakeCall(host_, call_, &connection, result, beside);
  answer_ = AnswerText(call_.format, call_.columns, result, beside);
  if (call_.dry_run) return;
  if (!call_.key.empty() || !DidNothing(result, beside)) RecordCall(connection, call_, answer_);
}

void CallJob::Committed() {
  End();
  visit_->Answer(ResponseOf(call_, std::move(answer_), replayed_));
}

void CallJob::Failed(std::exception_ptr cause) {
  End();
  visit_->Fail(ProblemOfException(cause));
}

}  // namespace tessarlorn::http
