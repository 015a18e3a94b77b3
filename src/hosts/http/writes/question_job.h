// A question of the workbench that changes orders.
#pragma once

#include <string>
#include <utility>

#include "hosts/http/writes/recorded_job.h"
#include "workbench/question.h"

namespace tessarlorn::http {

class QuestionJob final : public RecordedJob {
 public:
  QuestionJob(const workbench::Question& question, Dictionary values, JobOrder order)
      : RecordedJob(std::move(order)), question_(question), values_(std::move(values)) {}

  [[nodiscard]] bool alone() const override { return false; }

 protected:
  Made Make(Connection& connection) override;
  [[nodiscard]] Response ResponseOf(std::string answer) const override;

 private:
  const workbench::Question& question_;
  const Dictionary values_;
};

}  // namespace tessarlorn::http
