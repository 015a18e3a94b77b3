#include "hosts/http/writes/write_lane.h"

#include <optional>
#include <utility>

#include "hosts/calls/save_point.h"
#include "hosts/http/transport/signals.h"

namespace tessarlorn::http {

WriteLane::WriteLane(Host& host, Watchdog& dog, LaneOptions options)
    : host_(host), options_(std::move(options)), jobs_(options_.most_waiting) {
  for (unsigned i = 0; i < options_.threads; ++i) threads_.emplace_back([this, &dog] { Run(dog); });
}

WriteLane::~WriteLane() {
  jobs_.End();
  for (std::thread& thread : threads_) thread.join();
}

bool WriteLane::Post(Job& job) { return jobs_.Post(job); }

void WriteLane::Run(Watchdog& dog) {
  BlockSignals();
  Watchdog::Thread self(dog);
  while (std::optional<Job> first = jobs_.Take()) {
    if (options_.shares_commits && !(*first)->alone()) {
      for (Job& job : RunGroup(*std::move(first), self)) RunAlone(std::move(job), self);
    } else {
      RunAlone(*std::move(first), self);
    }
    self.Allow(Watchdog::Clock::time_point::max());
  }
}

std::vector<WriteLane::Job> WriteLane::RunGroup(Job first, Watchdog::Thread& self) {
  const Watchdog::Clock::time_point closes = Watchdog::Clock::now() + options_.group_time;
  std::vector<Job> done;
  std::vector<Job> alone;
  try {
    ContainerTransaction transaction(host_);
    TransactionConnection connection(host_, options_.dsn);
    for (Job job = std::move(first); job != nullptr;) {
      self.Allow(job->until());
      try {
        BehindSavePoint(connection.get(), "one_call", [&] { job->Run(connection.get()); });
        done.push_back(std::move(job));
      } catch (const TransactionLost&) {
        alone.push_back(std::move(job));
        throw;
      } catch (const std::exception&) {
        // What others did before it may have been in its way, unless there were none.
        if ((done.empty() && alone.empty()) || Watchdog::Clock::now() >= job->until()) {
          job->Failed(std::current_exception());
        } else {
          alone.push_back(std::move(job));
        }
      }
      const bool open = done.size() + alone.size() < options_.group && Watchdog::Clock::now() < closes;
      std::optional<Job> next;
      if (open) next = jobs_.TakeIf([](const Job& waiting) { return !waiting->alone(); });
      job = next ? *std::move(next) : nullptr;
    }
    self.Allow(Watchdog::Clock::time_point::max());
    transaction.Commit();
  } catch (const std::exception&) {
    // The transaction came to nothing, and so did what each did in it.
    if (first != nullptr) alone.push_back(std::move(first));
    for (Job& job : done) alone.push_back(std::move(job));
    return alone;
  }
  for (const Job& job : done) job->Committed();
  return alone;
}

void WriteLane::RunAlone(Job job, Watchdog::Thread& self) {
  self.Allow(job->until());
  try {
    ContainerTransaction transaction(host_);
    TransactionConnection connection(host_, options_.dsn);
    job->Run(connection.get());
    self.Allow(Watchdog::Clock::time_point::max());
    transaction.Commit();
  } catch (const std::exception&) {
    job->Failed(std::current_exception());
    return;
  }
  job->Committed();
}

}  // namespace tessarlorn::http
