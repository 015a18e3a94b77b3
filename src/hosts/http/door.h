// The outside door: it answers requests over HTTP by calling operations, for callers it knows.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <span>
#include <string>
#include <utility>

#include "hosts/http/access/logins.h"
#include "hosts/http/answers/documents.h"
#include "hosts/http/call.h"
#include "hosts/http/events.h"
#include "hosts/http/identity.h"
#include "hosts/http/metrics.h"
#include "hosts/http/replica.h"
#include "hosts/http/visit.h"
#include "hosts/http/workers.h"
#include "hosts/http/writes/recorded_job.h"
#include "hosts/http/writes/write_lane.h"

namespace tessarlorn::http {

struct DoorOptions {
  /// The connection string of the database.
  std::string database = {};
  /// That of a copy of it which takes reads, "" for none.
  std::string replica = {};
  /// Of a replica that is further behind, reads go to the database.
  std::chrono::seconds longest_lag{5};
  /// Threads that make reads: more than calls of one caller, so that one with slow clients does not hold all.
  unsigned readers = 24;
  /// Threads that make writes.
  unsigned writers = 1;
  /// Whether writes share commits: for a database in this process with one writer, and one thread.
  bool shares_commits = false;
  /// Calls that may wait for a thread, reads and writes each.
  std::size_t waiting = 256;
  /// Calls of one caller at once.
  std::size_t calls_per_caller = 16;
  /// Rows of one answer.
  std::size_t rows = 1'000'000;
  /// For one call, with its time of waiting.
  std::chrono::milliseconds time{60'000};
  SessionTimes sessions = {};
  /// The files of the workbench; may be none.
  std::span<const PageFile> page = {};
  /// Takes a line of JSON for each request; may be empty.
  std::function<void(const std::string&)> log = {};
};

/// Whether the database has the indexes that the workbench's questions name. One that an earlier version made has not.
bool HasItsIndexes(Connection& connection);

/// Used by several threads at once. Goes when the server that uses it has ended, and before that server goes.
class Door {
 public:
  /// Raises what the database raises when it cannot be reached, and 0x80040E37 when it has no tables of the door.
  Door(Host& host, DoorOptions options);
  Door(const Door&) = delete;
  Door& operator=(const Door&) = delete;
  ~Door();

  /// Takes a request; does not wait.
  void Handle(std::unique_ptr<Exchange> exchange);
  /// The answer to a request that cannot be read, which is logged and counted here.
  Response Refused(int status, std::string_view why);
  /// Ends what would not end by itself: the streams of events. The server is about to end.
  void Stop();
  /// Tells how many connections there are.
  void set_connections(std::function<std::size_t()> count) { connections_ = std::move(count); }

 private:
  /// Keeps a call's place, and its key, while it is under way.
  class Place;
  using VisitPtr = std::unique_ptr<Visit>;
  /// On a worker. It may take the visit; one that it leaves unanswered fails with what it raises.
  using Handler = void (Door::*)(VisitPtr&);

  void Route(VisitPtr visit);
  void Post(Workers& workers, VisitPtr visit, Handler handler);
  void HandleCall(VisitPtr& visit);
  void HandleQuestion(VisitPtr& visit);
  void HandleResource(VisitPtr& visit);
  void HandleLogin(VisitPtr& visit);
  void HandleLogout(VisitPtr& visit);
  void HandleMe(VisitPtr& visit);
  void HandleEvents(VisitPtr& visit);
  void HandleMetrics(VisitPtr& visit);
  void HandleDocument(VisitPtr& visit);
  void HandleReady(VisitPtr& visit);
  using PlacePtr = std::shared_ptr<Place>;
  /// Takes the visit and the place.
  JobOrder OrderFor(const Caller& caller, const RequestKey& key, VisitPtr& visit, PlacePtr& place) const;
  void PostWrite(std::unique_ptr<RecordedJob> job);
  /// The place is given up before the last of the answer: whoever has the answer may call again.
  void Read(Call& call, Visit& visit, PlacePtr& place);
  void ReadFrom(const Call& call, Visit& visit, PlacePtr& place);
  /// Raises Refusal 401 and 403.
  Caller CallerOf(const Request& request);
  [[nodiscard]] bool Knows(const Request& request);
  /// The same as CallerOf, and notes who it is for the log.
  Caller FindCaller(Visit& visit);
  void Sweep();

  Host& host_;
  const DoorOptions options_;
  const std::string session_;
  const Documents documents_;
  Metrics metrics_;
  VisitLog visit_log_;
  std::function<std::size_t()> connections_ = [] { return std::size_t{0}; };
  Callers callers_;
  std::mutex mutex_;
  std::map<std::string, std::size_t> running_;               // calls of each caller
  std::set<std::pair<std::string, std::string>> under_way_;  // caller and key
  std::unique_ptr<Replica> replica_;
  std::condition_variable stop_sweeping_;
  bool stopping_ = false;
  Watchdog dog_;
  Events events_;
  WriteLane writes_;
  Workers reads_;
  // Whose hashes take long, and whose clients may.
  Workers logins_;
  Workers streams_;
  std::thread sweeper_;
};

}  // namespace tessarlorn::http
