// The platform's per-call database session, its context, and the per-thread factory that makes it.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tessarlorn/host.h"

namespace tessarlorn {

struct SessionString;

/// Who is calling, and in which language.
class SessionContext {
 public:
  SessionContext() = default;
  explicit SessionContext(const SessionString& session);

  /// The language code as the session string has it, "CHS" when it has none; callers trim and upper-case it.
  [[nodiscard]] const std::string& GetLanguage() const noexcept { return language_; }
  /// The text from which the security component tells the user: `User=16394`.
  [[nodiscard]] const std::string& GetCallerInfo() const noexcept { return caller_info_; }
  /// The client address that the session string names, "" when none.
  [[nodiscard]] const std::string& client() const noexcept { return client_; }
  /// Whether single quotes are doubled in the texts that operations put between quotes (`Escape=Yes`).
  [[nodiscard]] bool escapes_texts() const noexcept { return escapes_texts_; }

 private:
  std::string language_ = "CHS";
  std::string caller_info_ = "User=0";
  std::string client_;
  bool escapes_texts_ = false;
};

class SessionFactory;

/// A database session, made by `SessionFactory::NewSession` and used on that thread only.
class DataSession {
 public:
  DataSession(const DataSession&) = delete;
  DataSession& operator=(const DataSession&) = delete;
  ~DataSession();

  /// Gives the connections back to the factory. The session may be opened again.
  void Reset() noexcept;
  /// Binds the session to a session string; the connection is opened, or taken from the idle ones, at once.
  /// Raises what ParseSessionString and the driver raise.
  void OpenSession(std::string_view sDsn);
  /// Default context before OpenSession.
  [[nodiscard]] const SessionContext& GetContext() const noexcept { return context_; }
  /// "" before OpenSession.
  [[nodiscard]] const std::string& GetDsn() const noexcept { return dsn_; }
  /// The connection of the container's transaction, where there is one. Raises 91 when the session is not open.
  [[nodiscard]] Connection& GetConnection();
  /// A second connection to the same database, outside any transaction of the container. Raises 91 when not open.
  [[nodiscard]] Connection& GetAlternateConnection();
  /// Whose drivers open the connections.
  [[nodiscard]] Host& host() const noexcept;

  /// The session on which neighbours work: the one of the call that is under way on this thread, or nullptr.
  [[nodiscard]] static DataSession* Current() noexcept;

 private:
  friend class SessionFactory;
  explicit DataSession(SessionFactory& factory) : factory_(factory) {}
  /// Sees to it that the connections are those of the transactions in which the thread works now. Raises 91 when the
  /// session is not open.
  void FollowTransaction();

  SessionFactory& factory_;
  std::string dsn_;
  std::string database_;
  SessionContext context_;
  std::shared_ptr<Connection> connection_;
  std::shared_ptr<Connection> alternate_;
  /// The component container's in which the connections were opened, or nullptr.
  std::shared_ptr<void> transaction_;
};

/// Makes sessions; one per thread and host, created on first use. The connections that sessions gave back are handed
/// out again for the same database string, clean and to any thread, so that a session does not cost a login.
class SessionFactory {
 public:
  static SessionFactory& ForThisThread(Host& host);
  ~SessionFactory();

  [[nodiscard]] std::shared_ptr<DataSession> NewSession();

 private:
  friend class DataSession;
  friend class ContainerTransaction;
  struct State;
  explicit SessionFactory(Host& host);
  std::shared_ptr<Connection> Acquire(const std::string& database, void* transaction, bool joins);
  void Release(const std::string& database, std::shared_ptr<Connection>& connection, bool shared) noexcept;
  /// The component container's, or nullptr.
  [[nodiscard]] std::shared_ptr<void> Transaction() const;

  Host& host_;
  /// Tells when the host is gone.
  std::weak_ptr<void> alive_;
  std::unique_ptr<State> state_;
};

/// While it lives, `session` is the thread's current one.
class CurrentSession {
 public:
  explicit CurrentSession(DataSession& session);
  CurrentSession(const CurrentSession&) = delete;
  CurrentSession& operator=(const CurrentSession&) = delete;
  ~CurrentSession();

 private:
  DataSession* previous_;
};

/// The transaction of a component container around calls on this thread. Every session of the host that is opened while
/// it lives works on one connection per database string, in a transaction. Destroyed without Commit() it rolls back.
class ContainerTransaction {
 public:
  /// Raises when this thread already has one.
  explicit ContainerTransaction(Host& host);
  ContainerTransaction(const ContainerTransaction&) = delete;
  ContainerTransaction& operator=(const ContainerTransaction&) = delete;
  ~ContainerTransaction();

  /// Raises what the database raises, and when the transaction was ended before.
  void Commit();
  void Rollback();

 private:
  void End(bool commit);

  SessionFactory& factory_;
  bool ended_ = false;
};

}  // namespace tessarlorn
