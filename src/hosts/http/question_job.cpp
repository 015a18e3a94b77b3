#include "hosts/http/question_job.h"

#include <utility>
#include <vector>

#include "hosts/http/answer.h"
#include "hosts/http/call_record.h"
#include "hosts/http/house/resource.h"
#include "hosts/http/questions.h"

namespace tessarlorn::http {

void QuestionJob::End() {
  if (const std::function<void()> ended = std::exchange(ended_, {})) ended();
}

void QuestionJob::Run(Connection& connection) {
  const WatchedBatches watched(visit_.get());
  const RecordsetPtr rows = question_.ask(connection, AskerOf(caller_), values_);
  std::vector<std::int32_t> changed;
  for (; !rows->eof(); rows->MoveNext()) changed.push_back(rows->Get("FID").ToInt32());
  rows->MoveFirst();
  answer_ = AnswerText(AnswerFormat::kJson, {}, rows, {});
  if (!changed.empty()) RecordChange(connection, caller_, question_.name, changed);
}

void QuestionJob::Committed() {
  End();
  visit_->Answer(JsonResponse(std::move(answer_)));
}

void QuestionJob::Failed(std::exception_ptr cause) {
  End();
  visit_->Fail(ProblemOfException(cause));
}

}  // namespace tessarlorn::http
