#include "hosts/tds/client_session.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <new>
#include <utility>

#include "hosts/tds/messages/call_reply.h"
#include "hosts/tds/messages/refusal.h"
#include "hosts/tds/messages/tds_reader.h"
#include "hosts/tds/messages/transaction_request.h"
#include "hosts/tds/transport/socket.h"
#include "platform/server_messages.h"
#include "platform/text/text.h"

namespace tessarlorn::tds {
namespace {

constexpr const char* kOldVersionText = "TDS 7.1 to 7.4 is wanted; the client speaks an older version.";

ServerMessage LoginError(std::int32_t number, std::uint8_t severity, std::string text) {
  return {number, 1, severity, 1, std::move(text)};
}

/// What a client sent, for the log.
std::string Shown(std::string_view text) {
  constexpr std::size_t kMostShown = 2000;
  return OnOneLine(text.substr(0, kMostShown));
}

/// What is run, for the log: a batch, or a procedure with the texts that it is given.
std::string LogLine(const SqlCommand& command) {
  std::string line(command.text);
  for (const SqlParameter& parameter : command.parameters) {
    const auto* bytes = parameter.value.get_if<Bytes>();
    line.append(&parameter == command.parameters.data() ? " " : ", ");
    line += bytes == nullptr ? parameter.value.ToText() : "0x" + HexText(bytes->data(), bytes->size());
  }
  return Shown(line);
}

/// Counts the rows of a bulk load, and keeps its first error.
class BulkSink final : public BatchSink {
 public:
  /// @param transactions is told what becomes of the client's transaction; nullptr when that is none of the client's
  explicit BulkSink(BatchSink* transactions) : transactions_(transactions) {}

  void Rows(RecordsetPtr /*rows*/) override {}
  void RowCount(std::int64_t rows) override { rows_ += rows; }
  void Message(std::string_view /*text*/, const NativeError& /*about*/) override {}
  bool StatementFailed(const Error& error) override {
    if (!error_) error_ = error;
    return true;
  }
  void Transaction(TransactionEvent event) override {
    if (transactions_ != nullptr) transactions_->Transaction(event);
  }

  [[nodiscard]] std::int64_t rows() const noexcept { return rows_; }
  [[nodiscard]] const std::optional<Error>& error() const noexcept { return error_; }

 private:
  BatchSink* transactions_;
  std::int64_t rows_ = 0;
  std::optional<Error> error_;
};

/// While it lives, the watcher looks after the client.
class BeingWatched {
 public:
  BeingWatched(Watcher* watcher, Watched& client) : watcher_(watcher), client_(client) {
    if (watcher_ != nullptr) watcher_->Add(client_);
  }
  BeingWatched(const BeingWatched&) = delete;
  BeingWatched& operator=(const BeingWatched&) = delete;
  ~BeingWatched() {
    if (watcher_ != nullptr) watcher_->Remove(client_);
  }

 private:
  Watcher* watcher_;
  Watched& client_;
};

}  // namespace

ClientSession::ClientSession(ByteStream& stream, const Service& service, std::string peer, Watcher* watcher)
    : stream_(stream),
      service_(service),
      peer_(std::move(peer)),
      watcher_(watcher),
      channel_(stream, kLoginMessageLimit) {}

void ClientSession::Log(const std::string& line) const {
  if (service_.log) service_.log(peer_ + ": " + line);
}

pollfd ClientSession::watched() const noexcept {
  const short events = watched_events_.load();
  return {events == 0 ? -1 : stream_.descriptor(), events, 0};
}

void ClientSession::Look(bool hung_up) noexcept {
  const Arrival arrival = channel_.Look(hung_up);
  if (arrival == Arrival::kNothing) return;
  watched_events_.store(arrival == Arrival::kFull ? POLLRDHUP : 0);
  if (arrival == Arrival::kFull) return;
  // Whatever comes when the server ends, that is the reason.
  auto before = Interruption::kNone;
  interruption_.compare_exchange_strong(
      before, arrival == Arrival::kAttention ? Interruption::kAttention : Interruption::kGone);
}

void ClientSession::CancelIfWanted() noexcept {
  if (interruption_.load() != Interruption::kNone && connection_ != nullptr) connection_->Cancel();
}

void ClientSession::Stop() noexcept { interruption_.store(Interruption::kShutdown); }

void ClientSession::Run() noexcept {
  std::string end;
  try {
    if (LogIn()) Serve();
  } catch (const ProtocolError& error) {
    end = std::string("dropped: ") + error.what();
  } catch (const std::exception& error) {
    end = std::string("failed: ") + error.what();
  }
  if (!end.empty()) Log(end);
  // What the client left open is rolled back now.
  connection_.reset();
  if (logged_in_.exchange(false)) service_.gate->Leave();
}

bool ClientSession::AnswerPreLogin(std::string_view payload, const Deadline& deadline) {
  const Encryption wanted = ReadPreLogin(payload);
  Encryption answer = Encryption::kNotSupported;
  if (service_.tls != nullptr) {
    if (wanted == Encryption::kNotSupported) {
      answer = service_.tls_required ? Encryption::kRequired : Encryption::kNotSupported;
    } else {
      answer = wanted == Encryption::kOff && !service_.tls_required ? Encryption::kOff : Encryption::kOn;
    }
  }
  TdsWriter writer;
  WritePreLogin(writer, answer);
  channel_.Send(writer.bytes(), true);
  if (answer == Encryption::kRequired) throw ProtocolError("the client does not encrypt");
  if (answer == Encryption::kNotSupported) {
    if (wanted == Encryption::kOn || wanted == Encryption::kRequired) {
      throw ProtocolError("the client wants encryption, and the server has no certificate");
    }
    return false;
  }
  channel_.StartTls(*service_.tls, deadline);
  return answer == Encryption::kOff;
}

bool ClientSession::LogIn() {
  const Deadline deadline(service_.limits.login);
  bool only_login_is_encrypted = false;
  for (bool first = true;; first = false) {
    const std::optional<Message> message = channel_.Receive(deadline);
    if (!message) return false;
    if (message->fate != Fate::kWhole) throw ProtocolError("a message before the login is too long, or was taken back");
    if (message->type == PacketType::kPreLogin && first) {
      only_login_is_encrypted = AnswerPreLogin(message->payload, deadline);
      continue;
    }
    is_silent_.store(false);
    if (message->type == PacketType::kOldLogin) return RefuseOld();
    if (message->type != PacketType::kLogin7) throw ProtocolError("a request before the login");
    if (first && service_.tls_required) throw ProtocolError("the client does not encrypt");
    if (only_login_is_encrypted) channel_.EndTls();
    return Admit(ReadLogin(message->payload));
  }
}

bool ClientSession::RefuseOld() {
  Log(std::string("refused: ") + kOldVersionText);
  TdsWriter writer(TdsVersion(0));
  WriteOldRefusal(writer, kOldVersionText);
  channel_.Send(writer.bytes(), true);
  return false;
}

bool ClientSession::Refuse(const Login& login, const ServerMessage& message, const std::string& why) {
  if (const auto line = service_.gate->Line("refused user '" + Shown(login.user) + "': " + why)) Log(*line);
  TdsWriter writer(version_);
  writer.Put(message);
  if (message.number == server_message::kCannotOpenDatabase) {
    writer.Put(LoginError(18456, 14, "Login failed for user '" + login.user + "'."));
  }
  writer.Put(Done{Token::kDone, kDoneError, 0, 0});
  channel_.Send(writer.bytes(), true);
  return false;
}

bool ClientSession::CheckPassword(const Login& login) {
  const std::string address = peer_.substr(0, peer_.rfind(':'));
  const std::chrono::milliseconds delay = service_.gate->Delay(login.user, address);
  if (delay.count() > 0) {
    const std::string text = "after failed logins by user '" + Shown(login.user) + "' or from this address it waits " +
                             std::to_string(delay.count()) + " ms";
    if (const auto line = service_.gate->Line(text)) Log(*line);
    service_.gate->Wait(delay);
  }
  const bool right = service_.users.Check(login.user, login.password);
  if (right) {
    service_.gate->NoteSuccess(login.user);
  } else {
    service_.gate->NoteFailure(login.user, address);
  }
  return right;
}

bool ClientSession::OpenDatabase(const Login& login) {
  constexpr std::int32_t kTooMany = 17809;
  constexpr std::uint8_t kTooManySeverity = 20;
  if (!service_.gate->Enter(service_.limits.connections)) {
    const std::string all = std::to_string(service_.limits.connections);
    return Refuse(login,
                  LoginError(kTooMany, kTooManySeverity,
                             "Could not connect because the maximum number of '" + all +
                                 "' user connections has already been reached."),
                  "there are " + all + " clients already");
  }
  try {
    connection_ = service_.host->OpenConnection(service_.database_string);
  } catch (const std::exception&) {
    const Error error = HandledError();
    // The driver's words do not say it when the process has no descriptor left.
    const Descriptor spare(open("/dev/null", O_RDONLY | O_CLOEXEC));
    const bool short_of_files = spare.get() < 0 && (errno == EMFILE || errno == ENFILE);
    const std::string why = short_of_files ? "Could not connect: the server has too many open files." : error.what();
    service_.gate->Leave();
    return Refuse(login,
                  short_of_files ? LoginError(kTooMany, kTooManySeverity, why)
                                 : LoginError(server_message::kCannotOpenDatabase, 11, why),
                  why);
  }
  logged_in_.store(true);
  return true;
}

Error ClientSession::HandledError() const {
  try {
    throw;
  } catch (const ProtocolError&) {
    throw;
  } catch (const Error& error) {
    return error;
  } catch (const std::bad_alloc&) {
    Log("inner error: no memory");
    return {error_number::kDatabaseFailure,
            kServerName,
            "There is insufficient system memory to run this query.",
            {server_message::kOutOfMemory, "HY001", 17}};
  } catch (const std::exception& error) {
    Log(std::string("inner error: ") + error.what());
    return {error_number::kDatabaseFailure,
            kServerName,
            "An internal error ended the request; the server's log says which.",
            {server_message::kInternalError, "HY000", 16}};
  }
}

bool ClientSession::Admit(const Login& login) {
  version_ = login.version;
  if (!version_.is_served()) {
    return Refuse(login, LoginError(kOldVersion, kOldVersionSeverity, kOldVersionText), kOldVersionText);
  }
  if (login.integrated) {
    return Refuse(login, LoginError(18452, 14, "Login failed. The server knows users by name and password only."),
                  "integrated login is not supported");
  }
  if (!CheckPassword(login)) {
    return Refuse(login, LoginError(18456, 14, "Login failed for user '" + login.user + "'."),
                  "unknown user or wrong password");
  }
  if (!login.database.empty() && !EqualsIgnoreCase(login.database, kDatabaseName)) {
    return Refuse(
        login,
        LoginError(server_message::kCannotOpenDatabase, 11,
                   "Cannot open database \"" + login.database + "\" requested by the login. The login failed."),
        "unknown database '" + Shown(login.database) + "'");
  }
  if (!OpenDatabase(login)) return false;
  TdsWriter writer(version_);
  WriteLoginAnswer(writer, login);
  writer.Put(Done{});
  channel_.Send(writer.bytes(), true);
  channel_.set_packet_size(login.packet_size);
  channel_.set_message_limit(service_.limits.message);
  if (service_.verbose) {
    Log("user '" + Shown(login.user) + "' from " + Shown(login.host) + ", program '" + Shown(login.application) + "'");
  }
  return true;
}

void ClientSession::Serve() {
  for (;;) {
    if (interruption_.load() == Interruption::kShutdown) return SayGoodbye();
    const std::optional<Message> request = channel_.Receive(Deadline(service_.limits.idle));
    if (interruption_.load() == Interruption::kShutdown) return SayGoodbye();
    if (!request) return;
    Answer(*request);
    if (interruption_.load() == Interruption::kGone) {
      Log("dropped: the client went away while a batch was running");
      return;
    }
  }
}

void ClientSession::SayGoodbye() {
  TdsWriter writer(version_);
  writer.Put(LoginError(6005, 14, "SHUTDOWN is in progress."));
  writer.Put(Done{Token::kDone, kDoneError, 0, 0});
  channel_.Send(writer.bytes(), true);
}

void ClientSession::ResetConnection() {
  transaction_.open = 0;
  prepared_.Clear();
  if (!connection_->Reset()) connection_ = service_.host->OpenConnection(service_.database_string);
}

void ClientSession::Answer(const Message& request) {
  const bool call = request.type == PacketType::kRpc;
  Reply reply(channel_, transaction_, interruption_, call ? Token::kDoneInProcedure : Token::kDone, version_);
  const bool keeps_transaction = (request.status & kResetKeepingTransaction) != 0 && transaction_.open != 0;
  if (!keeps_transaction && (request.status & (kResetConnection | kResetKeepingTransaction)) != 0) {
    ResetConnection();
    if (version_.is_72()) reply.Tokens().PutEnvironmentBytes(Environment::kResetAcknowledged, "", "");
  }
  const std::optional<BulkTarget> bulk = std::exchange(bulk_, std::nullopt);
  try {
    if (request.fate == Fate::kTakenBack) return reply.FinishBroken();
    if (request.fate == Fate::kTooLong) {
      RaiseNotSupported("The request has more than " + std::to_string(service_.limits.message) + " bytes.");
    }
    if (keeps_transaction) RaiseNotSupported("A connection is not reset while its transaction goes on.");
    switch (request.type) {
      case PacketType::kSqlBatch:
        AnswerBatch(reply, request.payload);
        break;
      case PacketType::kBulkLoad:
        if (!bulk) RaiseNotSupported("Rows of a bulk load came without an INSERT BULK before them.");
        AnswerBulkLoad(reply, request.payload, *bulk);
        break;
      case PacketType::kRpc:
        return AnswerCalls(reply, request.payload);
      case PacketType::kTransactionManager:
        AnswerTransaction(reply, request.payload);
        break;
      case PacketType::kAttention:
        return reply.AcknowledgeAttention();
      default:
        throw ProtocolError("a request of a type that does not belong here");
    }
  } catch (const std::exception&) {
    reply.Fail(HandledError());
    if (call) return reply.FinishCall(true);
  }
  if (!EndInterrupted(reply)) reply.Finish();
}

bool ClientSession::EndInterrupted(Reply& reply) {
  auto reason = Interruption::kAttention;
  if (interruption_.compare_exchange_strong(reason, Interruption::kNone)) {
    reply.FinishBroken();
    reply.AcknowledgeAttention();
    return true;
  }
  return reason != Interruption::kNone;
}

void ClientSession::AnswerCalls(Reply& reply, std::string_view payload) {
  TdsReader reader(payload);
  SkipHeaders(reader, version_);
  CallReader calls(reader, version_);
  for (bool last = false; !last;) {
    if (EndInterrupted(reply)) return;
    // What cannot be read hides what follows.
    last = true;
    try {
      Call call = calls.Next();
      last = calls.at_end();
      if (!call.is_unwanted && !AnswerCall(reply, call)) return;
    } catch (const std::exception&) {
      reply.Fail(HandledError());
    }
    reply.FinishCall(last);
  }
}

bool ClientSession::AnswerCall(Reply& reply, Call& call) {
  const std::string handle_name = call.parameters.empty() ? "" : call.parameters[0].name;
  DatabaseCall own = TakeCall(call, prepared_);
  SqlCommand command = SqlCommand::Procedure(own.procedure, own.parameters);
  const bool done = own.procedure.empty() || RunCommand(reply, command);
  const bool broken_off = EndInterrupted(reply);
  if (own.handle && (broken_off || reply.failed())) {
    prepared_.Remove(*own.handle);
    own.handle.reset();
  }
  constexpr std::int32_t kFailed = -6;
  if (done && !broken_off) WriteCallEnd(reply, own, reply.failed() ? kFailed : command.status, handle_name);
  return !broken_off;
}

bool ClientSession::RunCommand(BatchSink& sink, SqlCommand& command) {
  if (service_.verbose) Log(LogLine(command));
  if (channel_.TakeAttention()) {
    interruption_.store(Interruption::kAttention);
    return false;
  }
  try {
    watched_events_.store(POLLIN | POLLRDHUP);
    const BeingWatched watched(watcher_, *this);
    if (command.is_procedure) {
      command.status = connection_->Call(command.text, command.parameters, sink);
    } else {
      connection_->ExecuteAll(command, sink);
    }
    return true;
  } catch (const std::exception&) {
    const Error error = HandledError();
    if (interruption_.load() == Interruption::kNone) sink.StatementFailed(error);
    return false;
  }
}

void ClientSession::AnswerBatch(Reply& reply, std::string_view payload) {
  TdsReader reader(payload);
  SkipHeaders(reader, version_);
  const std::string text = TextOfUtf16Bytes(reader.Bytes(reader.left()));
  bulk_ = ReadBulkInsert(text);
  if (bulk_) return;
  SqlCommand batch(text);
  RunCommand(reply, batch);
}

void ClientSession::AnswerBulkLoad(Reply& reply, const std::string& payload, BulkTarget target) {
  // Inside a transaction of the client's a save point takes back what a failing load has done.
  const bool own = transaction_.open == 0;
  BulkSink sink(own ? nullptr : &reply);
  const auto run = [&](SqlCommand command) { return RunCommand(sink, command) && !sink.error(); };
  // Values for an identity column come only when they are to be kept.
  target.defaults.assign(target.columns.size(), false);
  std::string identity = "SET IDENTITY_INSERT " + target.table;
  bool has_identity = false;
  std::array<SqlParameter, 1> table{{{"@table", "nvarchar(776)", target.table}}};
  const RecordsetPtr columns = connection_->Query(
      SqlCommand("SELECT QUOTENAME(c.name) AS n, d.COLUMN_DEFAULT AS d, c.is_identity AS i FROM sys.columns c JOIN"
                 " INFORMATION_SCHEMA.COLUMNS d ON d.COLUMN_NAME = c.name AND d.TABLE_NAME = OBJECT_NAME(c.object_id)"
                 " WHERE c.object_id = OBJECT_ID(@table)",
                 table));
  for (; !columns->eof(); columns->MoveNext()) {
    for (std::size_t i = 0; i < target.columns.size(); ++i) {
      if (!EqualsIgnoreCase(columns->GetText(0), target.columns[i])) continue;
      target.defaults[i] = !columns->IsNull(1);
      has_identity = has_identity || columns->Get(2).ToInt32() != 0;
    }
  }
  TdsReader reader(payload);
  BulkRows rows(reader, version_, target);
  bool done = run(own ? "BEGIN TRANSACTION" : "SAVE TRANSACTION [bulk load]");
  if (done && has_identity) done = run(identity + " ON");
  try {
    while (done && rows.Next()) done = run(rows.insertion());
  } catch (const std::exception&) {
    done = false;
    sink.StatementFailed(HandledError());
  }
  if (done && has_identity) done = run(identity + " OFF");
  if (done && own) done = run("COMMIT TRANSACTION");
  if (done) return reply.RowCount(sink.rows());
  if (sink.error()) reply.Fail(*sink.error());
  if (has_identity) connection_->ExecuteAll(identity + " OFF", sink);
  connection_->ExecuteAll(
      own ? "IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION" : "IF XACT_STATE() = 1 ROLLBACK TRANSACTION [bulk load]", sink);
}

void ClientSession::AnswerTransaction(Reply& reply, std::string_view payload) {
  TdsReader reader(payload);
  SkipHeaders(reader, version_);
  const std::string text = TransactionRequestText(reader);
  SqlCommand batch(text);
  RunCommand(reply, batch);
}

}  // namespace tessarlorn::tds
