// What can go wrong between the component and its server: each is one clear error within its time, the next call works
// as soon as the server does, and a call in a transaction leaves all or nothing.
#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <future>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>

#include "drivers/odbc/odbc_driver.h"
#include "frame/clsSaveData.h"
#include "platform/session.h"
#include "platform/text.h"
#include "samples/seed.h"
#include "schema/schema_files.h"
#include "siblings/siblings.h"
#include "support/batches.h"
#include "support/error_of.h"
#include "support/in_process_server.h"
#include "support/served_test.h"
#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

class FaultsTest : public ServedTest {
 protected:
  FaultsTest() {
    RegisterEmbeddedDriver();
    RegisterOdbcDriver();
    RegisterDefaultSiblings();
  }
  ~FaultsTest() override { SessionFactory::CloseIdle(); }
};

/// Takes connections and says nothing: it keeps them open, or ends them at once.
class RudeListener {
 public:
  explicit RudeListener(bool closes) : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(socket_, any, size), 0);
    EXPECT_EQ(listen(socket_, 5), 0);
    getsockname(socket_, any, &size);
    port_ = ntohs(address.sin_port);
    if (!closes) return;
    closing_ = std::thread([this] {
      for (int client = 0; (client = accept(socket_, nullptr, nullptr)) >= 0;) close(client);
    });
  }
  RudeListener(const RudeListener&) = delete;
  RudeListener& operator=(const RudeListener&) = delete;
  ~RudeListener() { Close(); }
  void Close() {
    if (socket_ < 0) return;
    shutdown(socket_, SHUT_RDWR);
    if (closing_.joinable()) closing_.join();
    close(socket_);
    socket_ = -1;
  }
  [[nodiscard]] std::string odbc() const {
    return "Driver=" + FreeTdsDriver() + ";Server=127.0.0.1;Port=" + std::to_string(port_) +
           ";TDS_Version=7.4;UID=ann;PWD=secret;LoginTimeout=1";
  }

 private:
  int socket_;
  int port_ = 0;
  std::thread closing_;
};

TEST_F(FaultsTest, AServerThatIsSilentOrGoesAtTheLoginOrRefusesIsGivenUp) {
  RudeListener silent(false);
  const Error error = ErrorOf([&] { OpenConnection(silent.odbc()); });
  EXPECT_EQ(error.number(), error_number::kTimeout);
  EXPECT_THAT(error.description(), testing::Not(testing::HasSubstr("secret")));
  silent.Close();
  EXPECT_EQ(ErrorOf([&] { OpenConnection(silent.odbc()); }).number(), error_number::kLoginRefused);
  const RudeListener closing(true);
  EXPECT_EQ(ErrorOf([&] { OpenConnection(closing.odbc()); }).number(), error_number::kLoginRefused);
}

TEST_F(FaultsTest, AServerThatFallsSilentIsGivenUpInEachCall) {
  ServedDatabase served;
  using Call = void (*)(std::unique_ptr<Connection>&);
  struct Case {
    const char* name;
    Call before;
    Call when_silent;
    std::int32_t number;
  };
  const Call begin = [](auto& connection) { connection->BeginTransaction(); };
  const Call read = [](auto& connection) { connection->Execute("select 1 as a"); };
  const Call hand_back = [](auto& connection) {
    connection->Execute("select 1 as a");
    EXPECT_TRUE(connection->Reset());
  };
  const Call close = [](auto& connection) { connection.reset(); };
  const Case cases[] = {
      {"batch", read, read, error_number::kTimeout},
      {"begin", read, begin, error_number::kTimeout},
      {"commit", begin, [](auto& connection) { connection->CommitTransaction(); }, error_number::kTimeout},
      {"rollback", begin, [](auto& connection) { connection->RollbackTransaction(); }, error_number::kTimeout},
      {"idle, a read", hand_back, read, error_number::kTimeout},
      {"idle, a write", hand_back, [](auto& connection) { connection->Execute("create table a (b int)"); },
       error_number::kTimeout},
      {"reset", begin, [](auto& connection) { EXPECT_FALSE(connection->Reset()); }, 0},
      {"close in a transaction", begin, close, 0},
  };
  std::vector<std::unique_ptr<Connection>> connections;
  for (const Case& one : cases) {
    connections.push_back(OpenConnection(served.odbc(";StatementTimeout=1;LoginTimeout=60")));
    one.before(connections.back());
  }
  kill(served.process(), SIGSTOP);
  waitpid(served.process(), nullptr, WUNTRACED);
  std::vector<std::future<std::int32_t>> numbers;
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    numbers.push_back(std::async(std::launch::async, [&one = cases[i], &connection = connections[i]] {
      return ErrorOf([&] { one.when_silent(connection); }).number();
    }));
  }
  // Who is still waiting then meets a server that answers, and no error.
  const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(15);
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    EXPECT_EQ(numbers[i].wait_until(patience), std::future_status::ready) << cases[i].name;
  }
  kill(served.process(), SIGCONT);
  for (std::size_t i = 0; i < std::size(cases); ++i) EXPECT_EQ(numbers[i].get(), cases[i].number) << cases[i].name;
  EXPECT_EQ(Answer(*OpenConnection(served.odbc()), "select 1 as a"), "a;1");
}

TEST_F(FaultsTest, CtrlCEndsTheCommandsBatch) {
  const std::string command = "TESSARLORN_DSN='Connect={" + ReplaceAll(Shared().odbc(), "}", "}}") + "}' '" +
                              TESSARLORN_COMMAND + "' sql \"waitfor delay '00:01:00'\"" +
                              " 2>/dev/null & sleep 1; kill -INT $!; wait $!";
  EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 130);
}

/// An embedded database that has trouble where a batch says so, "native|severity|text", and then takes back the
/// transaction, as a server does that chooses a deadlock's victim.
class FailingConnection final : public Connection {
 public:
  void BeginTransaction() override { database_->BeginTransaction(); }
  void CommitTransaction() override { database_->CommitTransaction(); }
  void RollbackTransaction() override { database_->RollbackTransaction(); }
  bool Reset() noexcept override { return database_->Reset(); }
  [[nodiscard]] bool usable() const noexcept override { return true; }
  void Cancel() noexcept override { database_->Cancel(); }

 protected:
  void Run(SqlCommand& command, bool, BatchSink& sink) override {
    const std::string_view text = command.is_procedure ? "" : command.text;
    const std::size_t bar = text.find('|');
    if (bar == std::string_view::npos) {
      command.is_procedure ? static_cast<void>(database_->Call(command.text, command.parameters, sink))
                           : database_->ExecuteAll(command, sink);
      return;
    }
    database_->Execute("if @@trancount > 0 rollback");
    sink.Transaction(TransactionEvent::kRolledBack);
    NativeError native;
    native.number = std::stoi(std::string(text));
    native.severity = std::stoi(std::string(text.substr(bar + 1)));
    throw Error(error_number::kStatementError, "failing", std::string(text.substr(text.rfind('|') + 1)), native);
  }

 private:
  std::unique_ptr<Connection> database_ = OpenConnection("Embedded=:memory:failing");
};

class FailingDriver final : public Driver {
 public:
  [[nodiscard]] std::vector<std::string> Keys() const override { return {"Failing"}; }
  [[nodiscard]] std::unique_ptr<Connection> Open(std::string_view) override {
    return std::make_unique<FailingConnection>();
  }
};

TEST_F(FaultsTest, AServersOwnTroubleKeepsItsNumberAndWordsAndLeavesNothing) {
  const auto keeper = OpenConnection("Embedded=:memory:failing");
  keeper->Execute("create table n (a int)");
  RegisterDriver(std::make_shared<FailingDriver>());
  const InProcessServer server("Failing=");
  const auto connection = OpenConnection(server.odbc_string());
  struct Case {
    const char* batch;
    std::int32_t number;
    std::int32_t native;
  };
  for (const Case& c : {Case{"1205|13|You are the deadlock victim", error_number::kAbortedDeadlock, 1205},
                        Case{"9002|17|The transaction log is full", error_number::kDatabaseFailure, 9002},
                        Case{"1105|17|The disk is full", error_number::kDatabaseFailure, 1105},
                        Case{"1222|16|Lock request time out period exceeded", error_number::kTimeout, 1222}}) {
    connection->BeginTransaction();
    connection->Execute("insert n values (1)");
    const Error error = ErrorOf([&] { connection->Execute(c.batch); });
    EXPECT_EQ(error.number(), c.number) << c.batch;
    EXPECT_EQ(error.native().number, c.native);
    EXPECT_TRUE(std::string(c.batch).ends_with(error.description())) << error.description();
    EXPECT_TRUE(connection->usable());
    EXPECT_EQ(ErrorOf([&] { connection->CommitTransaction(); }).native().number, 3902);
    EXPECT_EQ(Answer(*connection, "select count(*) as n from n"), "n;0");
  }
  connection->BeginTransaction();
  connection->Execute("insert n values (2)");
  connection->CommitTransaction();
  EXPECT_EQ(Answer(*keeper, "select a from n"), "a;2");
}

TEST_F(FaultsTest, AFullDiskIsAnErrorThatLosesNothing) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  rlimit small = before;
  small.rlim_cur = 400000;
  setrlimit(RLIMIT_FSIZE, &small);
  ServedDatabase served;  // takes the limit with it
  setrlimit(RLIMIT_FSIZE, &before);
  const auto connection = OpenConnection(served.odbc());
  connection->Execute("create table n (FText nvarchar(4000)) insert n values ('kept')");
  const Error error = ErrorOf([&] {
    connection->Execute(
        "declare @i int = 0 while @i < 2000 begin set @i += 1 insert n values (replicate('x', 4000)) end");
  });
  EXPECT_THAT(error.native().number, testing::AnyOf(1105, 823)) << error.what();
  EXPECT_EQ(error.number(), error_number::kDatabaseFailure);
  EXPECT_EQ(Answer(*OpenConnection(served.odbc()), "select FText from n where FText not like 'xx%'"), "FText;kept");
}

TEST_F(FaultsTest, ACallInATransactionLeavesAllOrNothingWhenTheServerIsKilled) {
  ServedDatabase served;
  {
    const auto connection = OpenConnection(served.odbc());
    ApplySchema(*connection);
    cli::Seed(*connection, {.orders = 600, .random_seed = 1}, {});
  }
  const std::string dsn = "Connect={" + ReplaceAll(served.odbc(), "}", "}}") + "};User=16394";
  const std::string state =
      "select (select count(*) from IC_Web2ERPOrders where FOrderStatus = 14) a, (select count(*) from "
      "IC_StockBillOrdersStatus) b";
  const std::string keys = KeysTo(600);
  // Killed at some moment of the call; not at all the last time.
  for (const int delay : {2, 5, 10, 20, 40, 0}) {
    OpenConnection(served.odbc())
        ->Execute("update IC_Web2ERPOrders set FOrderStatus = 6 delete from IC_StockBillOrdersStatus");
    std::thread killer;
    if (delay > 0) {
      killer = std::thread([&served, delay] {
        std::this_thread::sleep_for(std::chrono::milliseconds(delay));
        served.Stop();
      });
    }
    bool committed = false;
    const Error error = ErrorOf([&] {
      ContainerTransaction transaction;
      clsSaveData save;
      const Dictionary orders{{"sDSN", dsn}, {"FID", keys}};
      save.Delivery(&orders);
      save.UpdateDeliveryData(dsn, keys);
      transaction.Commit();
      committed = true;
    });
    if (delay > 0) {
      killer.join();
      served.Start();
    }
    SessionFactory::CloseIdle();
    EXPECT_TRUE(committed || delay > 0) << error.what();
    // A commit whose answer was lost may have been one.
    const std::string after = Answer(*OpenConnection(served.odbc()), state);
    if (committed) {
      EXPECT_EQ(after, "a|b;600|600");
    } else {
      EXPECT_THAT(after, testing::AnyOf("a|b;0|0", "a|b;600|600")) << delay << " " << error.what();
    }
  }
}

}  // namespace
}  // namespace tessarlorn
