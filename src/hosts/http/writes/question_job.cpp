#include "hosts/http/writes/question_job.h"

#include "hosts/http/answers/answer.h"
#include "hosts/http/questions.h"

namespace tessarlorn::http {

RecordedJob::Made QuestionJob::Make(Connection& connection) {
  const RecordsetPtr rows = question_.ask(connection, AskerOf(caller()), values_);
  std::vector<std::int32_t> changed;
  for (; !rows->eof(); rows->MoveNext()) changed.push_back(rows->Get("FID").ToInt32());
  rows->MoveFirst();
  const bool any = !changed.empty();
  return {.record = {.name = question_.name,
                     .orders = std::move(changed),
                     .answer = AnswerText(AnswerFormat::kJson, {}, rows, {})},
          .changed = any};
}

Response QuestionJob::ResponseOf(std::string answer) const { return JsonResponse(std::move(answer)); }

}  // namespace tessarlorn::http
