#include "tessarlorn/session.h"

#include <algorithm>
#include <exception>
#include <new>
#include <utility>
#include <vector>

#include "platform/host_parts.h"
#include "platform/session_string.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

/// Parsed session strings that a thread remembers.
constexpr std::size_t kMostKnown = 64;

/// What a session string comes to.
struct Known {
  std::string database;
  SessionContext context;
};

struct Enlisted {
  std::string database;
  std::shared_ptr<Connection> connection;
  bool shared = true;
};

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

namespace {

DataSession*& CurrentOfThread() {
  thread_local DataSession* current = nullptr;
  return current;
}

}  // namespace

DataSession::~DataSession() { Reset(); }

Host& DataSession::host() const noexcept { return factory_.host_; }

DataSession* DataSession::Current() noexcept { return CurrentOfThread(); }

CurrentSession::CurrentSession(DataSession& session) : previous_(std::exchange(CurrentOfThread(), &session)) {}

CurrentSession::~CurrentSession() { CurrentOfThread() = previous_; }

void DataSession::Reset() noexcept {
  const bool shared = transaction_ == nullptr;
  factory_.Release(database_, alternate_, shared);
  factory_.Release(database_, connection_, shared);
}

void DataSession::OpenSession(std::string_view sDsn) {
  Reset();
  const Known& known = factory_.state_->Lookup(sDsn);
  transaction_ = factory_.Transaction();
  connection_ = factory_.Acquire(known.database, transaction_.get(), true);
  dsn_ = sDsn;
  database_ = known.database;
  context_ = known.context;
}

void DataSession::FollowTransaction() {
  if (!connection_) Raise(error_number::kObjectNotSet, "The data session is not open");
  std::shared_ptr<void> transaction = factory_.Transaction();
  const bool is_left_out = factory_.state_->in_transaction && !factory_.state_->IsEnlisted(connection_);
  if (transaction == transaction_ && !is_left_out) return;
  std::shared_ptr<Connection> connection = factory_.Acquire(database_, transaction.get(), true);
  Reset();
  connection_ = std::move(connection);
  transaction_ = std::move(transaction);
}

Connection& DataSession::GetConnection() {
  FollowTransaction();
  return *connection_;
}

Connection& DataSession::GetAlternateConnection() {
  FollowTransaction();
  if (!alternate_) alternate_ = factory_.Acquire(database_, transaction_.get(), false);
  return *alternate_;
}

SessionFactory& SessionFactory::ForThisThread(Host& host) {
  thread_local std::vector<std::unique_ptr<SessionFactory>> factories;
  for (const std::unique_ptr<SessionFactory>& factory : factories) {
    if (&factory->host_ == &host && !factory->alive_.expired()) return *factory;
  }
  std::erase_if(factories, [](const auto& factory) { return factory->alive_.expired(); });
  return *factories.emplace_back(new SessionFactory(host));
}

SessionFactory::SessionFactory(Host& host) : host_(host), alive_(host.parts_), state_(std::make_unique<State>()) {}

SessionFactory::~SessionFactory() = default;

std::shared_ptr<DataSession> SessionFactory::NewSession() {
  return std::shared_ptr<DataSession>(new DataSession(*this));
}

/// @param transaction the component container's, in which no connection of another is used; nullptr for none
/// @param joins the connection takes part in the transactions that there are
std::shared_ptr<Connection> SessionFactory::Acquire(const std::string& database, void* transaction, bool joins) {
  const bool enlist = joins && state_->in_transaction;
  if (enlist) {
    for (const Enlisted& entry : state_->enlisted) {
      if (entry.database == database) return entry.connection;
    }
  }
  std::shared_ptr<Connection> connection = transaction != nullptr ? nullptr : host_.parts_->idle.Take(database);
  if (!connection) connection = host_.OpenConnection(database);
  if (transaction != nullptr && joins) connection->Join(transaction);
  if (enlist) {
    connection->BeginTransaction();
    state_->enlisted.push_back({database, connection, transaction == nullptr});
  }
  return connection;
}

std::shared_ptr<void> SessionFactory::Transaction() const {
  return host_.parts_->transaction ? host_.parts_->transaction() : nullptr;
}

/// Gives up one hold of the connection; the last one puts a shared one to the idle ones.
void SessionFactory::Release(const std::string& database, std::shared_ptr<Connection>& connection,
                             bool shared) noexcept {
  const std::shared_ptr<Connection> held = std::exchange(connection, nullptr);
  if (!held || held.use_count() > 1 || !held->usable() || !shared) return;
  try {
    if (!held->Reset()) return;
    host_.parts_->idle.Put(database, held);
  } catch (...) {
    // The connection is closed instead of kept.
  }
}

ContainerTransaction::ContainerTransaction(Host& host) : factory_(SessionFactory::ForThisThread(host)) {
  SessionFactory::State& state = *factory_.state_;
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
  factory_.state_->in_transaction = false;
  std::vector<Enlisted> enlisted = std::exchange(factory_.state_->enlisted, {});
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
    factory_.Release(entry.database, entry.connection, entry.shared);
  }
  if (failure) std::rethrow_exception(failure);
}

}  // namespace tessarlorn
