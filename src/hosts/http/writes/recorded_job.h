// A write on the lane that is made once under its key, and answered when the database has it.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "hosts/http/call.h"
#include "hosts/http/visit.h"
#include "hosts/http/writes/call_record.h"
#include "hosts/http/writes/write_lane.h"

namespace tessarlorn::http {

/// What every write on the lane goes with.
struct JobOrder {
  Caller caller;
  RequestKey key;
  std::unique_ptr<Visit> visit;
  Watchdog::Clock::time_point until;
  /// Called once, before the answer or when the job goes: whoever has the answer may call again.
  std::function<void()> ended;
};

/// Says that the answer is that of an earlier call.
void MarkReplayed(Response& response);

class RecordedJob : public WriteJob {
 public:
  explicit RecordedJob(JobOrder order) : order_(std::move(order)) {}
  ~RecordedJob() override { End(); }

  void Run(Connection& connection) final;
  void Committed() final;
  void Failed(std::exception_ptr cause) final;
  [[nodiscard]] Watchdog::Clock::time_point until() const final { return order_.until; }
  /// The visit, for an answer of somebody else's.
  [[nodiscard]] std::unique_ptr<Visit> TakeVisit() { return std::move(order_.visit); }

 protected:
  struct Made {
    CallRecord record;
    /// Whether it changed anything: else it is recorded only under a key.
    bool changed = true;
    /// Whether all of it is taken back again: then it is not recorded.
    bool dry = false;
  };
  virtual Made Make(Connection& connection) = 0;
  [[nodiscard]] virtual Response ResponseOf(std::string answer) const = 0;
  [[nodiscard]] const Caller& caller() const noexcept { return order_.caller; }

 private:
  void End();

  JobOrder order_;
  std::string answer_;
  bool replayed_ = false;
};

}  // namespace tessarlorn::http
