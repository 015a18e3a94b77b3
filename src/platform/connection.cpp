#include "platform/connection.h"

#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/error.h"
#include "platform/text.h"

namespace tessarlorn {
namespace {

StatementObserver& Observer() {
  static StatementObserver observer;
  return observer;
}

MessageObserver& Messages() {
  static MessageObserver observer;
  return observer;
}

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

struct DriverRegistry {
  std::mutex mutex;
  std::map<std::string, std::shared_ptr<Driver>> drivers;
};

DriverRegistry& TheDrivers() {
  static DriverRegistry registry;
  return registry;
}

}  // namespace

void SetStatementObserver(StatementObserver observer) { Observer() = std::move(observer); }

void SetMessageObserver(MessageObserver observer) { Messages() = std::move(observer); }

void ReportMessage(std::string_view message) {
  if (Messages()) Messages()(message);
}

void BatchSink::Message(std::string_view text, const NativeError& /*about*/) { ReportMessage(text); }

void ShowRunningConnection(std::atomic<Connection*>* slot) { RunningSlot() = slot; }

RecordsetPtr Connection::Execute(std::string_view text) {
  if (Observer()) Observer()(text);
  const Running running(this);
  FirstResult sink;
  Run(text, true, sink);
  return std::move(sink.first);
}

RecordsetPtr Connection::Query(std::string_view text) {
  RecordsetPtr rows = Execute(text);
  if (rows == nullptr) {
    Raise(error_number::kObjectClosed, "Operation is not allowed when the object is closed: the batch answers no rows");
  }
  return rows;
}

void Connection::ExecuteAll(std::string_view text, const ResultSink& sink) {
  ResultsOnly results(sink);
  ExecuteAll(text, results);
}

void Connection::ExecuteAll(std::string_view text, BatchSink& sink) {
  if (Observer()) Observer()(text);
  const Running running(this);
  Run(text, false, sink);
}

void RegisterDriver(std::shared_ptr<Driver> driver) {
  DriverRegistry& registry = TheDrivers();
  const std::vector<std::string> prefixes = driver->Prefixes();
  const std::scoped_lock lock(registry.mutex);
  for (const std::string& prefix : prefixes) registry.drivers.insert_or_assign(LowerCase(prefix), driver);
}

std::unique_ptr<Connection> OpenConnection(std::string_view database_string) {
  const std::size_t equals = database_string.find('=');
  if (equals == std::string_view::npos) {
    Raise(error_number::kLoginRefused, "The database string does not begin with Key=: no driver can be chosen");
  }
  const std::string_view prefix = Trim(database_string.substr(0, equals));
  std::shared_ptr<Driver> driver;
  {
    DriverRegistry& registry = TheDrivers();
    const std::scoped_lock lock(registry.mutex);
    const auto found = registry.drivers.find(LowerCase(prefix));
    if (found != registry.drivers.end()) driver = found->second;
  }
  if (!driver) {
    Raise(error_number::kLoginRefused, "No driver for database strings that begin with " + std::string(prefix) + "=");
  }
  return driver->Open(database_string);
}

}  // namespace tessarlorn
