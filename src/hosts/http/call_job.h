// A write call on the lane: it is made once under its key, and answered when the database has it.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "hosts/http/call.h"
#include "hosts/http/visit.h"
#include "hosts/http/write_lane.h"

namespace tessarlorn::http {

/// The answer to a call, or to one that was made before.
Response ResponseOf(const Call& call, std::string answer, bool replayed);

class CallJob final : public WriteJob {
 public:
  /// @param ended called once, before it answers or when it goes: whoever has the answer may call again
  CallJob(Host& host, Call call, std::unique_ptr<Visit> visit, Watchdog::Clock::time_point until,
          std::function<void()> ended);
  ~CallJob() override;

  void Run(Connection& connection) override;
  void Committed() override;
  void Failed(std::exception_ptr cause) override;
  [[nodiscard]] Watchdog::Clock::time_point until() const override { return until_; }
  [[nodiscard]] bool alone() const override { return call_.passes_sql; }
  /// The visit, for an answer of somebody else's.
  [[nodiscard]] std::unique_ptr<Visit> TakeVisit() { return std::move(visit_); }

 private:
  void End();

  Host& host_;
  Call call_;
  std::unique_ptr<Visit> visit_;
  Watchdog::Clock::time_point until_;
  std::function<void()> ended_;
  std::string answer_;
  bool replayed_ = false;
};

}  // namespace tessarlorn::http
