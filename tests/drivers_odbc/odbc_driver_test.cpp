// The driver on a served database, beside what all drivers do alike: logins, time-outs, cleaning, lost connections.
#include "tessarlorn/odbc_driver.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sql.h>
#include <sqlext.h>
#include <thread>

#include "platform/unicode/utf16.h"
#include "support/error_of.h"
#include "support/served_database.h"
#include "tessarlorn/session.h"
#include "tsql/database_support.h"

namespace {

/// What connections were told of a distributed transaction, where a driver that knows them is asked for.
std::vector<SQLPOINTER>* enlistments = nullptr;

}  // namespace

/// In front of the one of ODBC.
extern "C" SQLRETURN SQLSetConnectAttr(SQLHDBC connection, SQLINTEGER attribute, SQLPOINTER value, SQLINTEGER length) {
  if (attribute == 1207 && enlistments != nullptr) {
    enlistments->push_back(value);
    return SQL_SUCCESS;
  }
  static const auto next = reinterpret_cast<decltype(&SQLSetConnectAttr)>(dlsym(RTLD_NEXT, "SQLSetConnectAttr"));
  return next(connection, attribute, value, length);
}

namespace tessarlorn {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class OdbcDriverTest : public ServedTest {
 protected:
  ~OdbcDriverTest() override { TestHost().CloseIdle(); }

  static std::unique_ptr<Connection> Open(const std::string& more = "") { return OpenConnection(Shared().odbc(more)); }
  /// The number that an action raises.
  template <typename Action>
  static std::int32_t Number(const Action& action) {
    const Error error = ErrorOf(action);
    EXPECT_EQ(error.source(), "TessarLorn ODBC driver");
    return error.number();
  }
};

TEST_F(OdbcDriverTest, TakesPartInADistributedTransactionUntilItCloses) {
  int transaction = 0;
  EXPECT_THAT(ErrorOf([&] { Open()->Join(&transaction); }).description(),
              HasSubstr("cannot take part in the container's transaction"));
  std::vector<SQLPOINTER> told;
  enlistments = &told;
  {
    const auto connection = Open();
    connection->Join(&transaction);
    EXPECT_EQ(Answer(*connection, "select 1 as a"), "a;1");
    EXPECT_THAT(told, ElementsAre(&transaction));
  }
  enlistments = nullptr;
  EXPECT_THAT(told, ElementsAre(&transaction, nullptr));
}

TEST_F(OdbcDriverTest, ARefusedLoginNamesTheFaultAndNoPassword) {
  const std::pair<std::string, const char*> cases[] = {
      {OdbcString(Shared().port(), ""), "Login failed for user 'ann'."},
      {Shared().odbc(";Database=elsewhere"), "Cannot open database"},
      {OdbcString(1, ""), "Unable to connect"},
      {"Driver=no-such-driver", "no-such-driver"},
      {"DSN=no-such-source", "ata source"},
  };
  for (const auto& [text, wanted] : cases) {
    const std::string with_user = text.find("UID=") == std::string::npos ? text + ";UID=ann;PWD=hidden-word" : text;
    const Error error = ErrorOf([&] { OpenConnection(with_user); });
    EXPECT_EQ(error.number(), error_number::kLoginRefused) << text;
    EXPECT_THAT(error.description(), AllOf(HasSubstr(wanted), Not(HasSubstr("hidden-word"))));
  }
}

TEST_F(OdbcDriverTest, APasswordMayHoldWhatTheStringIsMadeOf) {
  ServedDatabase served;
  const std::pair<const char*, const char*> cases[] = {{"a}b", "{a}}b}"}, {"a;b", "{a;b}"}, {"{a b", "{{a b}"}};
  for (const auto& [password, _] : cases) served.AddUser(password, password);
  served.Restart();
  for (const auto& [password, in_string] : cases) {
    const std::string user = std::string(";UID=") + in_string + ";PWD=" + in_string;
    const auto connection = OpenConnection(OdbcString(served.port(), user));
    EXPECT_EQ(Answer(*connection, "select 1 as a"), "a;1") << password;
  }
}

TEST_F(OdbcDriverTest, ATextThatWouldBeCutIsNotRun) {
  const auto connection = Open();
  connection->Execute("create table uncut (a int) insert uncut values (1),(2)");
  using std::string_view_literals::operator""sv;
  EXPECT_EQ(Number([&] { connection->Execute("delete from uncut \0 where a = 1"sv); }), error_number::kStatementError);
  EXPECT_EQ(Answer(*connection, "select a from uncut"), "a;1;2");
}

TEST_F(OdbcDriverTest, AStatementThatTakesTooLongEndsAsATimeOut) {
  const auto connection = Open(";StatementTimeout=1");
  connection->Cancel();
  EXPECT_EQ(Number([&] { connection->Execute("waitfor delay '00:01:00'"); }), error_number::kTimeout);
}

TEST_F(OdbcDriverTest, WhatNothingTakesBackEndsTheConnection) {
  const auto connection = Open();
  connection->Execute("set ansi_nulls on");
  EXPECT_FALSE(connection->Reset());
}

TEST_F(OdbcDriverTest, ADeadIdleConnectionIsReplacedBeforeItAnswers) {
  ServedDatabase served;
  const auto connection = OpenConnection(served.odbc());
  connection->Execute("create table lost (a int)");
  ASSERT_TRUE(connection->Reset());
  served.Restart();
  EXPECT_EQ(Answer(*connection, "select a from lost"), "a") << "a first batch that reads";
  ASSERT_TRUE(connection->Reset());
  served.Restart();
  EXPECT_EQ(Answer(*connection, "insert lost values (1) select a from lost"), "a;1") << "one that writes";
  ASSERT_TRUE(connection->Reset());
  int results = 0;
  const auto restart_when_answered = [&](const RecordsetPtr&) {
    ++results;
    served.Restart();
  };
  EXPECT_EQ(
      Number([&] { connection->ExecuteAll("select 1 as a while 1 = 1 print 'on and on'", restart_when_answered); }),
      error_number::kDatabaseFailure);
  EXPECT_EQ(results, 1) << "what has been answered is not asked again";
}

TEST_F(OdbcDriverTest, AConnectionThatIsLostInATransactionSaysSo) {
  ServedDatabase served;
  const auto connection = OpenConnection(served.odbc());
  connection->Execute("create table lost (a int) insert lost values (1)");
  ASSERT_TRUE(connection->Reset());
  served.Restart();
  connection->BeginTransaction();
  connection->Execute("insert lost values (2)");
  served.Restart();
  EXPECT_EQ(Number([&] { connection->Execute("insert lost values (3)"); }), error_number::kDatabaseFailure);
  EXPECT_FALSE(connection->usable());
  EXPECT_FALSE(connection->Reset());
  EXPECT_EQ(Answer(*OpenConnection(served.odbc()), "select a from lost"), "a;1") << "the transaction is gone whole";
}

TEST_F(OdbcDriverTest, AServerThatDiesOrEndsInABatchIsAnErrorAndTheNextCallWorks) {
  ServedDatabase served;
  const auto open = [&served] {
    auto session = SessionFactory::ForThisThread(TestHost()).NewSession();
    session->OpenSession(served.odbc());
    return session;
  };
  for (const int signal : {SIGKILL, SIGINT}) {
    auto session = open();
    const std::string batch = "waitfor delay '00:01:" + std::to_string(10 + signal) + "'";
    std::thread killer([&] {
      EXPECT_TRUE(served.WaitForLog(batch));
      served.Stop(signal);
    });
    EXPECT_EQ(Number([&] { session->GetConnection().Execute(batch); }), error_number::kDatabaseFailure);
    killer.join();
    EXPECT_FALSE(session->GetConnection().usable());
    EXPECT_THAT(Answer(session->GetConnection(), "select 1 as a"),
                HasSubstr("error 0: The connection to the server was lost"));
    session = nullptr;
    EXPECT_EQ(Number(open), error_number::kLoginRefused);
    served.Start();
    EXPECT_EQ(Answer(open()->GetConnection(), "select 1 as a"), "a;1");
  }
}

TEST_F(OdbcDriverTest, RowsBeforeAnErrorAreHandedOver) {
  const auto connection = Open();
  connection->Execute(
      "create table #n (n int) declare @i int = 0 while @i < 40 begin set @i += 1 insert #n values (@i) end");
  std::size_t rows = 0;
  EXPECT_EQ(Number([&] {
              connection->ExecuteAll("select replicate('x', 8000) as t, 1 / (n - 40) as q from #n",
                                     [&rows](const RecordsetPtr& part) { rows += part->RecordCount(); });
            }),
            error_number::kDataOverflow);
  EXPECT_GT(rows, 0U);
}

}  // namespace
}  // namespace tessarlorn
