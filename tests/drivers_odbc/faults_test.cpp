// What can go wrong between the component and its server: each is one clear error within its time, the next call works
// as soon as the server does, and a call in a transaction leaves all or nothing.
#include <arpa/inet.h>
#include <chrono>
#include <csignal>
#include <future>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>

#include "platform/text/text.h"
#include "support/batches.h"
#include "support/error_of.h"
#include "support/recording_driver.h"
#include "support/served_database.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/odbc_driver.h"
#include "tessarlorn/session.h"
#include "tessarlorn/siblings.h"
#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

class FaultsTest : public ServedTest {
 protected:
  ~FaultsTest() override { TestHost().CloseIdle(); }
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
  [[nodiscard]] std::string odbc() const { return OdbcString(port_, ";UID=ann;PWD=secret;LoginTimeout=1"); }

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
  const std::string dsn = "Connect={" + ReplaceAll(Shared().odbc(), "}", "}}") + "}";
  EXPECT_EQ(RunLine("TESSARLORN_DSN='" + dsn +
                    "' '" TESSARLORN_COMMAND "' sql \"waitfor delay '00:01:01'\" 2>/dev/null & "
                    "until grep -q 00:01:01 '" +
                    Shared().file("log") + "'; do sleep 0.01; done; kill -INT $!; wait $!")
                .status,
            130);
}

TEST_F(FaultsTest, AServersOwnTroubleKeepsItsNumberAndWords) {
  TestHost().AddDriver(std::make_shared<RecordingDriver>());
  NativeError trouble;
  TheRecording().answer = [&](std::string_view) -> RecordsetPtr {
    throw Error(error_number::kStatementError, "server", "Its own words", trouble);
  };
  const InProcessServer server("Recording=a");
  const auto connection = OpenConnection(server.odbc());
  for (const auto& [number, native, severity] : {std::tuple{error_number::kAbortedDeadlock, 1205, 13},
                                                 {error_number::kDatabaseFailure, 9002, 17},
                                                 {error_number::kDatabaseFailure, 1105, 17},
                                                 {error_number::kTimeout, 1222, 16}}) {
    trouble.number = native;
    trouble.severity = severity;
    const Error error = ErrorOf([&] { connection->Execute("select 1 as a"); });
    EXPECT_EQ(error.number(), number) << native;
    EXPECT_EQ(error.native().number, native);
    EXPECT_EQ(error.description(), "Its own words");
    EXPECT_TRUE(connection->usable());
  }
  TheRecording() = {};
}

TEST_F(FaultsTest, ACallInATransactionLeavesAllOrNothingWhenTheServerIsKilled) {
  ServedDatabase served({}, 600);
  const std::string dsn = "Connect={" + ReplaceAll(served.odbc(), "}", "}}") + "};User=16394";
  const std::string state =
      "select (select count(*) from IC_Web2ERPOrders where FOrderStatus = 14) a, (select count(*) from "
      "IC_StockBillOrdersStatus) b";
  const std::string keys = KeysTo(600);
  // Killed while that batch of the call runs; not at all the last time.
  for (const int last : {1, 2, 3, 5, 0}) {
    OpenConnection(served.odbc())
        ->Execute("update IC_Web2ERPOrders set FOrderStatus = 6 delete from IC_StockBillOrdersStatus");
    std::thread killer;
    int sent = 0;
    TestHost().ObserveStatements([&](std::string_view) {
      if (++sent == last) killer = std::thread([&served] { served.Stop(); });
    });
    bool committed = false;
    const Error error = ErrorOf([&] {
      ContainerTransaction transaction(TestHost());
      clsSaveData save{TestHost()};
      const Dictionary orders{{"sDSN", dsn}, {"FID", keys}};
      save.Delivery(&orders);
      save.UpdateDeliveryData(dsn, keys);
      transaction.Commit();
      committed = true;
    });
    TestHost().ObserveStatements({});
    if (last > 0) {
      ASSERT_TRUE(killer.joinable());
      killer.join();
      served.Start();
    }
    TestHost().CloseIdle();
    EXPECT_TRUE(committed || last > 0) << error.what();
    // A commit whose answer was lost may have been one.
    const std::string after = Answer(*OpenConnection(served.odbc()), state);
    if (committed) {
      EXPECT_EQ(after, "a|b;600|600");
    } else {
      EXPECT_THAT(after, testing::AnyOf("a|b;0|0", "a|b;600|600")) << last << " " << error.what();
    }
  }
}

}  // namespace
}  // namespace tessarlorn
