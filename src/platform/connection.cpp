#include "tessarlorn/connection.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <thread>
#include <utility>

#include "platform/text.h"
#include "tessarlorn/error.h"

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

/// Where the value ends that begins at `start`: behind its closing quote or brace, both of which are doubled within;
/// `start` itself for one without, or that is not closed.
std::size_t EndOfQuoted(std::string_view text, std::size_t start) {
  if (start >= text.size() || std::string_view("{\"'").find(text[start]) == std::string_view::npos) return start;
  const char close = text[start] == '{' ? '}' : text[start];
  for (std::size_t at = text.find(close, start + 1); at != std::string_view::npos; at = text.find(close, at + 2)) {
    if (at + 1 == text.size() || text[at + 1] != close) return at + 1;
  }
  return start;
}

/// The keys of a database string of any kind, in their order.
std::vector<std::string_view> KeysOf(std::string_view text) {
  std::vector<std::string_view> keys;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = text.find_first_of("=;", start);
    if (end == std::string_view::npos) break;
    if (text[end] == '=') {
      const std::string_view key = Trim(text.substr(start, end - start));
      if (!key.empty()) keys.push_back(key);
      start = EndOfQuoted(text, std::min(text.find_first_not_of(" \t", end + 1), text.size()));
    } else {
      start = end;
    }
    const std::size_t next = text.find(';', start);
    if (next == std::string_view::npos) break;
    start = next + 1;
  }
  return keys;
}

}  // namespace

void SetStatementObserver(StatementObserver observer) { Observer() = std::move(observer); }

void SetMessageObserver(MessageObserver observer) { Messages() = std::move(observer); }

void ReportMessage(std::string_view message) {
  if (Messages()) Messages()(message);
}

void BatchSink::Message(std::string_view text, const NativeError& /*about*/) { ReportMessage(text); }

void ShowRunningConnection(std::atomic<Connection*>* slot) { RunningSlot() = slot; }

RecordsetPtr Connection::Execute(SqlCommand command) {
  if (Observer()) Observer()(command.text);
  const Running running(this);
  FirstResult sink;
  Run(command, true, sink);
  return std::move(sink.first);
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

void Connection::ExecuteAll(SqlCommand command, BatchSink& sink) {
  if (Observer()) Observer()(command.text);
  const Running running(this);
  Run(command, false, sink);
}

std::int32_t Connection::Call(std::string_view procedure, std::span<SqlParameter> parameters, BatchSink& sink) {
  SqlCommand command = SqlCommand::Procedure(procedure, parameters);
  if (Observer()) Observer()(procedure);
  const Running running(this);
  Run(command, false, sink);
  return command.status;
}

void RegisterDriver(std::shared_ptr<Driver> driver) {
  DriverRegistry& registry = TheDrivers();
  const std::vector<std::string> keys = driver->Keys();
  const std::scoped_lock lock(registry.mutex);
  for (const std::string& key : keys) registry.drivers.insert_or_assign(LowerCase(key), driver);
}

std::string DecidingKey(std::string_view database_string) {
  DriverRegistry& registry = TheDrivers();
  const std::scoped_lock lock(registry.mutex);
  std::string decides;
  for (const std::string_view key : KeysOf(database_string)) {
    if (EqualsIgnoreCase(key, "Provider")) return std::string(key);
    if (decides.empty() && registry.drivers.contains(LowerCase(key))) decides = key;
  }
  return decides;
}

std::unique_ptr<Connection> OpenConnection(std::string_view database_string) {
  const std::vector<std::string_view> keys = KeysOf(database_string);
  if (keys.empty()) Raise(error_number::kLoginRefused, "The database string has no Key=: no driver can be chosen");
  const std::string key = DecidingKey(database_string);
  std::shared_ptr<Driver> driver;
  {
    DriverRegistry& registry = TheDrivers();
    const std::scoped_lock lock(registry.mutex);
    const auto found = registry.drivers.find(LowerCase(key));
    if (found != registry.drivers.end()) driver = found->second;
  }
  if (!driver) {
    Raise(error_number::kLoginRefused,
          "No driver for database strings with " +
              (key.empty() ? std::string(keys.front()) + "= and no key of a driver" : key + "="));
  }
  return driver->Open(database_string);
}

}  // namespace tessarlorn
