#include "tessarlorn/session.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <mutex>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

#include "platform/session_string.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

/// Of one database string.
constexpr std::size_t kMostIdle = 16;
/// Parsed session strings that a thread remembers.
constexpr std::size_t kMostKnown = 64;

struct Hash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>{}(text); }
};
template <typename T>
using ByText = std::unordered_map<std::string, T, Hash, std::equal_to<>>;

/// What a session string comes to.
struct Known {
  std::string database;
  SessionContext context;
};

struct Enlisted {
  std::string database;
  std::shared_ptr<Connection> connection;
};

/// The connections that sessions gave back. They belong to no thread: one that ends would have to close its own where
/// the system lets it wait for nobody.
class IdleConnections {
 public:
  /// nullptr when there is none.
  std::shared_ptr<Connection> Take(const std::string& database) {
    const std::scoped_lock lock(mutex_);
    const auto found = idle_.find(database);
    while (found != idle_.end() && !found->second.empty()) {
      std::shared_ptr<Connection> connection = std::move(found->second.back());
      found->second.pop_back();
      if (connection->usable()) return connection;
    }
    return nullptr;
  }

  /// Keeps the connection, or closes it when there are enough.
  void Put(const std::string& database, std::shared_ptr<Connection> connection) {
    const std::scoped_lock lock(mutex_);
    auto& idle = idle_[database];
    if (idle.size() < kMostIdle) idle.push_back(std::move(connection));
  }

  void Close() noexcept {
    ByText<std::vector<std::shared_ptr<Connection>>> closing;
    const std::scoped_lock lock(mutex_);
    closing.swap(idle_);
  }

 private:
  std::mutex mutex_;
  ByText<std::vector<std::shared_ptr<Connection>>> idle_;
};

IdleConnections& TheIdle() {
  static IdleConnections idle;
  return idle;
}

}  // namespace

struct SessionFactory::State {
  ByText<Known> known;
  bool in_transaction = false;
  std::vector<Enlisted> enlisted;

  const Known& Lookup(std::string_view dsn) {
    const auto found = known.find(dsn);
    if (found != known.end()) return found->second;
    SessionString session = ParseSessionString(dsn);
    if (known.size() >= kMostKnown) known.clear();
    SessionContext context(session);
    return known.emplace(dsn, Known{std::move(session.database), std::move(context)}).first->second;
  }

  [[nodiscard]] bool IsEnlisted(const std::shared_ptr<Connection>& connection) const {
    return std::any_of(enlisted.begin(), enlisted.end(),
                       [&](const Enlisted& entry) { return entry.connection == connection; });
  }
};

SessionContext::SessionContext(const SessionString& session)
    : language_(session.language),
      caller_info_("User=" + std::to_string(session.user)),
      client_(session.client),
      escapes_texts_(session.escape) {}

DataSession::~DataSession() { Reset(); }

void DataSession::Reset() noexcept {
  factory_.Release(database_, alternate_);
  factory_.Release(database_, connection_);
}

void DataSession::OpenSession(std::string_view sDsn) {
  Reset();
  const Known& known = factory_.state_->Lookup(sDsn);
  connection_ = factory_.Acquire(known.database, true);
  dsn_ = sDsn;
  database_ = known.database;
  context_ = known.context;
}

Connection& DataSession::GetConnection() {
  if (!connection_) Raise(error_number::kObjectNotSet, "The data session is not open");
  if (factory_.state_->in_transaction && !factory_.state_->IsEnlisted(connection_)) {
    std::shared_ptr<Connection> enlisted = factory_.Acquire(database_, true);
    factory_.Release(database_, connection_);
    connection_ = std::move(enlisted);
  }
  return *connection_;
}

Connection& DataSession::GetAlternateConnection() {
  if (!connection_) Raise(error_number::kObjectNotSet, "The data session is not open");
  if (!alternate_) alternate_ = factory_.Acquire(database_, false);
  return *alternate_;
}

SessionFactory& SessionFactory::ForThisThread() {
  thread_local SessionFactory factory;
  return factory;
}

SessionFactory::SessionFactory() : state_(std::make_unique<State>()) {}

SessionFactory::~SessionFactory() = default;

std::shared_ptr<DataSession> SessionFactory::NewSession() {
  return std::shared_ptr<DataSession>(new DataSession(*this));
}

void SessionFactory::CloseIdle() noexcept { TheIdle().Close(); }

std::shared_ptr<Connection> SessionFactory::Acquire(const std::string& database, bool enlist) {
  enlist = enlist && state_->in_transaction;
  if (enlist) {
    for (const Enlisted& entry : state_->enlisted) {
      if (entry.database == database) return entry.connection;
    }
  }
  std::shared_ptr<Connection> connection = TheIdle().Take(database);
  if (!connection) connection = OpenConnection(database);
  if (enlist) {
    connection->BeginTransaction();
    state_->enlisted.push_back({database, connection});
  }
  return connection;
}

/// Gives up one hold of the connection; the last one puts it to the idle ones.
void SessionFactory::Release(const std::string& database, std::shared_ptr<Connection>& connection) noexcept {
  const std::shared_ptr<Connection> held = std::exchange(connection, nullptr);
  if (!held || held.use_count() > 1 || !held->usable() || !held->Reset()) return;
  try {
    TheIdle().Put(database, held);
  } catch (const std::bad_alloc&) {
    // The connection is closed instead of kept.
  }
}

ContainerTransaction::ContainerTransaction() {
  SessionFactory::State& state = *SessionFactory::ForThisThread().state_;
  if (state.in_transaction) {
    Raise(error_number::kInvalidArgument, "This thread is in a container's transaction already");
  }
  state.in_transaction = true;
}

ContainerTransaction::~ContainerTransaction() {
  if (ended_) return;
  try {
    End(false);
  } catch (...) {
    // The connection that could not roll back is dropped; the database rolls back by itself.
  }
}

void ContainerTransaction::Commit() { End(true); }

void ContainerTransaction::Rollback() { End(false); }

/// Ends the transaction of every connection; from the first that fails on, the others are rolled back.
void ContainerTransaction::End(bool commit) {
  if (ended_) Raise(error_number::kInvalidArgument, "The container's transaction has ended already");
  ended_ = true;
  SessionFactory& factory = SessionFactory::ForThisThread();
  factory.state_->in_transaction = false;
  std::vector<Enlisted> enlisted = std::exchange(factory.state_->enlisted, {});
  std::exception_ptr failure;
  for (Enlisted& entry : enlisted) {
    try {
      if (commit && !failure) {
        entry.connection->CommitTransaction();
      } else if (entry.connection->usable()) {
        entry.connection->RollbackTransaction();
      }
    } catch (...) {
      if (!failure) failure = std::current_exception();
    }
    factory.Release(entry.database, entry.connection);
  }
  if (failure) std::rethrow_exception(failure);
}

}  // namespace tessarlorn
