#include "tessarlorn/connection.h"

#include <thread>
#include <utility>

#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

std::atomic<Connection*>*& RunningSlot() {
  thread_local std::atomic<Connection*>* slot = nullptr;
  return slot;
}

/// Shows the connection in the thread's slot while a batch runs.
class Running {
 public:
  explicit Running(Connection* connection)
      : slot_(RunningSlot()), connection_(connection), previous_(std::exchange(Current(), connection)) {
    Swap(previous_, connection_);
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() {
    Swap(connection_, previous_);
    Current() = previous_;
  }

 private:
  static Connection*& Current() {
    thread_local Connection* current = nullptr;
    return current;
  }
  /// Waits for a handler on another thread that has taken the one out to put it back.
  void Swap(Connection* from, Connection* to) noexcept {
    for (Connection* seen = from; slot_ != nullptr && !slot_->compare_exchange_weak(seen, to); seen = from) {
      std::this_thread::yield();
    }
  }

  std::atomic<Connection*>* slot_;
  Connection* connection_;
  Connection* previous_;
};

/// Hands results to a function.
class ResultsOnly final : public BatchSink {
 public:
  explicit ResultsOnly(const ResultSink& sink) : sink_(sink) {}
  void Rows(RecordsetPtr rows) override { sink_(std::move(rows)); }

 private:
  const ResultSink& sink_;
};

/// Keeps the first result.
class FirstResult final : public BatchSink {
 public:
  void Rows(RecordsetPtr rows) override {
    if (first == nullptr) first = std::move(rows);
  }
  RecordsetPtr first;
};

/// Keeps the last rows of the first result, and hands the others on.
class AnswerRows final : public BatchSink {
 public:
  explicit AnswerRows(AnswerSink* parts) : parts_(parts) {}
  [[nodiscard]] bool takes_parts() const override { return parts_ != nullptr; }
  void PartOfRows(Recordset& rows) override { parts_->PartOfAnswer(rows); }
  void Rows(RecordsetPtr rows) override {
    if (last == nullptr) last = std::move(rows);
  }
  RecordsetPtr last;

 private:
  AnswerSink* parts_;
};

AnswerSink*& AnswerSinkOfThread() {
  thread_local AnswerSink* sink = nullptr;
  return sink;
}

BatchWatcher*& WatcherSlot() {
  thread_local BatchWatcher* watcher = nullptr;
  return watcher;
}

/// Tells the thread's watcher of a batch: its text, and how long it takes.
class Watching {
 public:
  explicit Watching(std::string_view text) : watcher_(WatcherSlot()) {
    if (watcher_ == nullptr) return;
    watcher_->Statement(text);
    began_ = std::chrono::steady_clock::now();
  }
  Watching(const Watching&) = delete;
  Watching& operator=(const Watching&) = delete;
  ~Watching() {
    if (watcher_ != nullptr) watcher_->Ran(std::chrono::steady_clock::now() - began_);
  }

 private:
  BatchWatcher* watcher_;
  std::chrono::steady_clock::time_point began_;
};

}  // namespace

AnswerInParts::AnswerInParts(AnswerSink& sink) noexcept : before_(std::exchange(AnswerSinkOfThread(), &sink)) {}

AnswerInParts::~AnswerInParts() { AnswerSinkOfThread() = before_; }

WatchedBatches::WatchedBatches(BatchWatcher* watcher) noexcept : before_(std::exchange(WatcherSlot(), watcher)) {}

WatchedBatches::~WatchedBatches() { WatcherSlot() = before_; }

BatchWatcher* WatcherOfThread() noexcept { return WatcherSlot(); }

void BatchSink::Message(std::string_view text, const NativeError& /*about*/) {
  if (observers_ != nullptr && observers_->messages) observers_->messages(text);
}

void ShowRunningConnection(std::atomic<Connection*>* slot) { RunningSlot() = slot; }

void Connection::RunObserved(SqlCommand& command, bool first_only, BatchSink& sink) {
  if (observers_ != nullptr && observers_->statements) observers_->statements(command.text);
  sink.observers_ = observers_;
  const Watching watching(command.text);
  const Running running(this);
  Run(command, first_only, sink);
}

void Connection::Join(void* /*transaction*/) {
  Raise(error_number::kNotSupported, "This kind of database cannot take part in the container's transaction");
}

RecordsetPtr Connection::Execute(SqlCommand command) {
  FirstResult sink;
  RunObserved(command, true, sink);
  return std::move(sink.first);
}

RecordsetPtr Connection::ExecuteAnswer(SqlCommand command) {
  AnswerRows sink(AnswerSinkOfThread());
  RunObserved(command, true, sink);
  return std::move(sink.last);
}

RecordsetPtr Connection::Query(const SqlCommand& command) {
  RecordsetPtr rows = Execute(command);
  if (rows == nullptr) {
    Raise(error_number::kObjectClosed, "Operation is not allowed when the object is closed: the batch answers no rows");
  }
  return rows;
}

void Connection::ExecuteAll(SqlCommand command, const ResultSink& sink) {
  ResultsOnly results(sink);
  ExecuteAll(command, results);
}

void Connection::ExecuteAll(SqlCommand command, BatchSink& sink) { RunObserved(command, false, sink); }

std::int32_t Connection::Call(std::string_view procedure, std::span<SqlParameter> parameters, BatchSink& sink) {
  SqlCommand command = SqlCommand::Procedure(procedure, parameters);
  RunObserved(command, false, sink);
  return command.status;
}

}  // namespace tessarlorn
