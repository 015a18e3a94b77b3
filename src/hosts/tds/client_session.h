// One client: its login, its requests, its connection to the database.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "hosts/tds/limits.h"
#include "hosts/tds/login_gate.h"
#include "hosts/tds/messages/bulk_load.h"
#include "hosts/tds/messages/login.h"
#include "hosts/tds/messages/reply.h"
#include "hosts/tds/messages/rpc.h"
#include "hosts/tds/transport/channel.h"
#include "hosts/tds/transport/tls.h"
#include "hosts/tds/transport/watcher.h"
#include "hosts/tds/users.h"
#include "tessarlorn/host.h"

namespace tessarlorn::tds {

/// What all clients of a server share. Used by all their threads.
struct Service {
  explicit Service(Host& opens) : host(&opens) {}

  /// Opens the connections.
  Host* host;
  /// Each client has a connection of its own.
  std::string database_string;
  Users users;
  /// Nothing when the server has no certificate.
  std::shared_ptr<const TlsContext> tls;
  /// A client that cannot encrypt is refused.
  bool tls_required = false;
  Limits limits;
  /// Takes lines for the log; called by several threads.
  std::function<void(const std::string&)> log;
  /// Statements are logged, too.
  bool verbose = false;
  std::shared_ptr<LoginGate> gate = std::make_shared<LoginGate>();
};

/// Runs on one thread, but for Stop() and what the watcher calls.
class ClientSession final : public Watched {
 public:
  /// @param peer names the client in the log; @param watcher may be nullptr: then a running batch cannot be cancelled
  ClientSession(ByteStream& stream, const Service& service, std::string peer, Watcher* watcher);

  /// The client's whole life: raises nothing, logs what ends it. At its end the connection to the database is closed.
  void Run() noexcept;
  /// The server ends: the running batch is cancelled, and the client is told when it can be.
  void Stop() noexcept;

  /// Whether its login is done. May be called from any thread.
  [[nodiscard]] bool logged_in() const noexcept { return logged_in_.load(); }
  /// Whether it has not sent its login yet. May be called from any thread.
  [[nodiscard]] bool is_silent() const noexcept { return is_silent_.load(); }

  [[nodiscard]] pollfd watched() const noexcept override;
  void Look(bool hung_up) noexcept override;
  void CancelIfWanted() noexcept override;

 private:
  /// False when the client was refused or went away.
  bool LogIn();
  bool AnswerPreLogin(std::string_view payload, const Deadline& deadline);
  bool Admit(const Login& login);
  bool RefuseOld();
  /// Whether user and password are right. After failed logins it waits.
  bool CheckPassword(const Login& login);
  bool OpenDatabase(const Login& login);
  /// The error that is being handled, as the client is told of it: never in the words of the C++ library.
  Error HandledError() const;
  bool Refuse(const Login& login, const ServerMessage& message, const std::string& why);
  void Serve();
  void Answer(const Message& request);
  void AnswerBatch(Reply& reply, std::string_view payload);
  void AnswerCalls(Reply& reply, std::string_view payload);
  /// False when the request was broken off.
  bool AnswerCall(Reply& reply, Call& call);
  /// Inserts the rows of a bulk load: all or none.
  void AnswerBulkLoad(Reply& reply, const std::string& payload, BulkTarget target);
  void AnswerTransaction(Reply& reply, std::string_view payload);
  void ResetConnection();
  /// Runs a batch or procedure; its failure is the sink's, too.
  bool RunCommand(BatchSink& sink, SqlCommand& command);
  /// Whether the request was broken off; an attention is answered.
  bool EndInterrupted(Reply& reply);
  void SayGoodbye();
  void Log(const std::string& line) const;

  ByteStream& stream_;
  const Service& service_;
  std::string peer_;
  Watcher* watcher_;
  Channel channel_;
  std::unique_ptr<Connection> connection_;
  PreparedStatements prepared_;
  TransactionState transaction_;
  // The batch before asked for a bulk load, whose rows come now.
  std::optional<BulkTarget> bulk_;
  TdsVersion version_;
  std::atomic<bool> logged_in_{false};
  std::atomic<bool> is_silent_{true};
  std::atomic<Interruption> interruption_{Interruption::kNone};
  // What the watcher waits for, 0 when nothing.
  std::atomic<short> watched_events_{0};
};

}  // namespace tessarlorn::tds
