// What can go wrong between the component and its server: each is one clear error within its time, the next call works
// as soon as the server does, and a call in a transaction leaves all or nothing.
#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>

#include "cli/schema_files.h"
#include "cli/seed/seed.h"
#include "drivers/odbc/odbc_driver.h"
#include "drivers_embedded/database_support.h"
#include "frame/clsSaveData.h"
#include "platform/session.h"
#include "platform/text.h"
#include "siblings/siblings.h"
#include "support/batches.h"
#include "support/in_process_server.h"
#include "support/recording_driver.h"
#include "support/served_test.h"

namespace tessarlorn {
namespace {

class FaultsTest : public ServedTest {
 protected:
  FaultsTest() {
    RegisterOdbcDriver();
    RegisterDefaultSiblings();
  }
  ~FaultsTest() override { SessionFactory::ForThisThread().CloseIdle(); }

  /// The error that an action raises.
  template <typename Action>
  static Error ErrorOf(const Action& action) {
    try {
      action();
    } catch (const Error& error) {
      return error;
    }
    return {0, "", "none"};
  }
};

/// Takes connections and says nothing.
class SilentListener {
 public:
  SilentListener() : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const any = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(socket_, any, size), 0);
    EXPECT_EQ(listen(socket_, 5), 0);
    getsockname(socket_, any, &size);
    port_ = ntohs(address.sin_port);
  }
  SilentListener(const SilentListener&) = delete;
  SilentListener& operator=(const SilentListener&) = delete;
  ~SilentListener() { Close(); }
  void Close() {
    if (socket_ >= 0) close(socket_);
    socket_ = -1;
  }
  [[nodiscard]] std::string odbc() const {
    return "Driver=" + FreeTdsDriver() + ";Server=127.0.0.1;Port=" + std::to_string(port_) +
           ";TDS_Version=7.4;UID=ann;PWD=secret;LoginTimeout=1";
  }

 private:
  int socket_;
  int port_ = 0;
};

TEST_F(FaultsTest, AServerThatIsSilentAtTheLoginOrRefusesIsGivenUp) {
  SilentListener listener;
  const Error silent = ErrorOf([&] { OpenConnection(listener.odbc()); });
  EXPECT_THAT(silent.number(), testing::AnyOf(error_number::kTimeout, error_number::kLoginRefused));
  EXPECT_THAT(silent.description(), testing::Not(testing::HasSubstr("secret")));
  listener.Close();
  EXPECT_EQ(ErrorOf([&] { OpenConnection(listener.odbc()); }).number(), error_number::kLoginRefused);
}

TEST_F(FaultsTest, AServerThatFallsSilentInABatchIsGivenUp) {
  ServedDatabase served;
  const auto connection = OpenConnection(served.odbc(";StatementTimeout=1"));
  kill(served.process(), SIGSTOP);
  waitpid(served.process(), nullptr, WUNTRACED);
  const Error error = ErrorOf([&] { connection->Execute("select 1 as a"); });
  kill(served.process(), SIGCONT);
  EXPECT_THAT(error.number(), testing::AnyOf(error_number::kTimeout, error_number::kDatabaseFailure)) << error.what();
  EXPECT_EQ(Answer(*OpenConnection(served.odbc()), "select 1 as a"), "a;1");
}

/// Fails each batch as its text says: "native|severity|text".
class FailingConnection final : public RecordingConnection {
 protected:
  void Run(std::string_view text, bool, BatchSink&) override {
    const std::size_t bar = text.find('|');
    if (bar == std::string_view::npos) return;
    NativeError native;
    native.number = std::stoi(std::string(text));
    native.severity = std::stoi(std::string(text.substr(bar + 1)));
    throw Error(error_number::kStatementError, "failing", std::string(text.substr(text.rfind('|') + 1)), native);
  }
};

class FailingDriver final : public Driver {
 public:
  [[nodiscard]] std::vector<std::string> Prefixes() const override { return {"Failing"}; }
  [[nodiscard]] std::unique_ptr<Connection> Open(std::string_view) override {
    return std::make_unique<FailingConnection>();
  }
};

TEST_F(FaultsTest, AServersOwnTroubleKeepsItsNumberAndWords) {
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
    const Error error = ErrorOf([&] { connection->Execute(c.batch); });
    EXPECT_EQ(error.number(), c.number) << c.batch;
    EXPECT_EQ(error.native().number, c.native);
    EXPECT_TRUE(std::string(c.batch).ends_with(error.description())) << error.description();
    EXPECT_TRUE(connection->usable());
  }
  EXPECT_EQ(connection->Execute("goes on"), nullptr);
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
    SessionFactory::ForThisThread().CloseIdle();
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
