// A question of the workbench that changes orders, on the lane of the writes.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "hosts/http/access/caller.h"
#include "hosts/http/visit.h"
#include "hosts/http/write_lane.h"
#include "workbench/question.h"

namespace tessarlorn::http {

class QuestionJob final : public WriteJob {
 public:
  /// @param ended called once, before it answers or when it goes
  QuestionJob(const workbench::Question& question, Dictionary values, Caller caller, std::unique_ptr<Visit> visit,
              Watchdog::Clock::time_point until, std::function<void()> ended)
      : question_(question),
        values_(std::move(values)),
        caller_(std::move(caller)),
        visit_(std::move(visit)),
        until_(until),
        ended_(std::move(ended)) {}
  ~QuestionJob() override { End(); }

  void Run(Connection& connection) override;
  void Committed() override;
  void Failed(std::exception_ptr cause) override;
  [[nodiscard]] Watchdog::Clock::time_point until() const override { return until_; }
  [[nodiscard]] bool alone() const override { return false; }
  /// The visit, for an answer of somebody else's.
  [[nodiscard]] std::unique_ptr<Visit> TakeVisit() { return std::move(visit_); }

 private:
  void End();

  const workbench::Question& question_;
  Dictionary values_;
  Caller caller_;
  std::unique_ptr<Visit> visit_;
  Watchdog::Clock::time_point until_;
  std::function<void()> ended_;
  std::string answer_;
};

}  // namespace tessarlorn::http
