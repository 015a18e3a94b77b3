// Where writes are made: calls that wait for the one writer share a commit, each behind a save point of its own.
#pragma once

#include <chrono>
#include <cstddef>
#include <exception>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "hosts/http/waiting_line.h"
#include "hosts/http/workers.h"
#include "tessarlorn/connection.h"
#include "tessarlorn/host.h"

namespace tessarlorn::http {

/// A write. Its functions are called on a thread of the lane, one after the other.
class WriteJob {
 public:
  WriteJob() = default;
  WriteJob(const WriteJob&) = delete;
  WriteJob& operator=(const WriteJob&) = delete;
  virtual ~WriteJob() = default;

  /// Does its work in the transaction of the connection. What it raises ends it, and takes back what it did. Called
  /// once more, alone in a transaction, when it raised behind others, or when their transaction came to nothing.
  virtual void Run(Connection& connection) = 0;
  /// What it did is committed.
  virtual void Committed() = 0;
  virtual void Failed(std::exception_ptr cause) = 0;
  /// Whether it may end the transaction, and has to have its own.
  [[nodiscard]] virtual bool alone() const = 0;
  /// When it may not wait any longer.
  [[nodiscard]] virtual Watchdog::Clock::time_point until() const = 0;
};

struct LaneOptions {
  /// The session string of the database, for a session of the lane's own.
  std::string dsn;
  unsigned threads = 1;
  /// Whether jobs share commits. Only where a commit that raises has surely not been made: its jobs are run again.
  bool shares_commits = false;
  std::size_t most_waiting = 256;
  /// How many jobs share a commit at most, and for how long others are taken in.
  std::size_t group = 32;
  std::chrono::milliseconds group_time{20};
};

/// Used by several threads at once.
class WriteLane {
 public:
  using Job = std::unique_ptr<WriteJob>;

  WriteLane(Host& host, Watchdog& dog, LaneOptions options);
  WriteLane(const WriteLane&) = delete;
  WriteLane& operator=(const WriteLane&) = delete;
  /// Waits for what is running; what waits is dropped.
  ~WriteLane();

  /// Takes the job; false, and leaves it, when too many wait.
  bool Post(Job& job);
  [[nodiscard]] std::size_t waiting() const { return jobs_.size(); }

 private:
  void Run(Watchdog& dog);
  /// Runs jobs in one transaction. Answers those that have to run alone.
  std::vector<Job> RunGroup(Job first, Watchdog::Thread& self);
  void RunAlone(Job job, Watchdog::Thread& self);

  Host& host_;
  const LaneOptions options_;
  WaitingLine<Job> jobs_;
  std::vector<std::thread> threads_;
};

}  // namespace tessarlorn::http
