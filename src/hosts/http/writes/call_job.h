// A call of an operation that writes.
#pragma once

#include <string>

#include "hosts/http/writes/recorded_job.h"

namespace tessarlorn::http {

Response ResponseTo(const Call& call, std::string answer);

class CallJob final : public RecordedJob {
 public:
  CallJob(Host& host, Call call, JobOrder order);

  [[nodiscard]] bool alone() const override { return call_.passes_sql; }

 protected:
  Made Make(Connection& connection) override;
  [[nodiscard]] Response ResponseOf(std::string answer) const override;

 private:
  Host& host_;
  const Call call_;
};

}  // namespace tessarlorn::http
