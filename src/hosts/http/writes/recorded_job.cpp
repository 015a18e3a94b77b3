#include "hosts/http/writes/recorded_job.h"

#include <utility>

#include "hosts/http/answers/problem.h"

namespace tessarlorn::http {

void MarkReplayed(Response& response) { response.headers.emplace_back("Idempotency-Replayed", "true"); }

void RecordedJob::End() {
  if (const std::function<void()> ended = std::exchange(order_.ended, {})) ended();
}

void RecordedJob::Run(Connection& connection) {
  if (Watchdog::Clock::now() >= order_.until) {
    throw Refusal({.status = 503, .detail = "the call waited too long for its turn", .retry_after = 1});
  }
  const WatchedBatches watched(order_.visit.get());
  replayed_ = false;
  if (!order_.key.empty()) {
    if (std::optional<std::string> answer = FindRecordedAnswer(connection, order_.caller, order_.key)) {
      answer_ = *std::move(answer);
      replayed_ = true;
      return;
    }
  }
  Made made = Make(connection);
  const bool recorded = made.changed || !order_.key.empty();
  if (recorded && !made.dry) RecordCall(connection, order_.caller, order_.key, made.record);
  answer_ = std::move(made.record.answer);
}

void RecordedJob::Committed() {
  End();
  Response response = ResponseOf(std::move(answer_));
  if (replayed_) MarkReplayed(response);
  order_.visit->Answer(std::move(response));
}

void RecordedJob::Failed(std::exception_ptr cause) {
  End();
  order_.visit->Fail(ProblemOfException(cause));
}

}  // namespace tessarlorn::http
