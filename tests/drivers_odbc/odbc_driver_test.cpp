// The driver on a served database, beside what all drivers do alike: logins, time-outs, cleaning, lost connections.
#include "drivers/odbc/odbc_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

#include "platform/session.h"
#include "platform/utf16.h"
#include "support/served_test.h"
#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class OdbcDriverTest : public ServedTest {
 protected:
  OdbcDriverTest() { RegisterOdbcDriver(); }
  ~OdbcDriverTest() override { SessionFactory::CloseIdle(); }

  static std::unique_ptr<Connection> Open(const std::string& more = "") { return OpenConnection(Shared().odbc(more)); }
  /// The number that an action raises, 0 for none.
  template <typename Action>
  static std::int32_t Number(const Action& action) {
    try {
      action();
    } catch (const Error& error) {
      EXPECT_EQ(error.source(), "TessarLorn ODBC driver");
      EXPECT_FALSE(error.description().empty());
      return error.number();
    }
    return 0;
  }
};

TEST_F(OdbcDriverTest, ARefusedLoginNamesTheFaultAndNoPassword) {
  const std::string driver = "Driver=" + FreeTdsDriver() + ";Server=127.0.0.1;TDS_Version=7.4";
  const std::pair<std::string, const char*> cases[] = {
      {driver + ";Port=" + std::to_string(Shared().port()), "Login failed for user 'ann'."},
      {Shared().odbc(";Database=elsewhere"), "Cannot open database"},
      {driver + ";Port=1", "Unable to connect"},
      {"Driver=no-such-driver", "no-such-driver"},
      {"DSN=no-such-source", "ata source"},
  };
  for (const auto& [text, wanted] : cases) {
    try {
      OpenConnection(text.find("UID=") == std::string::npos ? text + ";UID=ann;PWD=hidden-word" : text);
      ADD_FAILURE() << text << " opened";
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), error_number::kLoginRefused);
      EXPECT_THAT(error.description(), AllOf(HasSubstr(wanted), Not(HasSubstr("hidden-word"))));
    }
  }
}

TEST_F(OdbcDriverTest, APasswordMayHoldWhatTheStringIsMadeOf) {
  ServedDatabase served;
  const std::pair<const char*, const char*> cases[] = {{"a}b", "{a}}b}"}, {"a;b", "{a;b}"}, {"{a b", "{{a b}"}};
  for (const auto& [password, _] : cases) served.AddUser(password, password);
  served.Stop();
  served.Start();
  for (const auto& [password, in_string] : cases) {
    const auto connection = OpenConnection("Driver=" + FreeTdsDriver() + ";Server=127.0.0.1;TDS_Version=7.4;Port=" +
                                           std::to_string(served.port()) + ";UID=" + in_string + ";PWD=" + in_string);
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

TEST_F(OdbcDriverTest, ADeadIdleConnectionIsReplacedAndALostOneSaysSo) {
  ServedDatabase served;
  const auto restart = [&served] {
    served.Stop();
    served.Start();
  };
  const auto connection = OpenConnection(served.odbc());
  connection->Execute("create table lost (a int)");
  ASSERT_TRUE(connection->Reset());
  restart();
  EXPECT_EQ(Answer(*connection, "select a from lost"), "a") << "a first batch that reads";
  ASSERT_TRUE(connection->Reset());
  restart();
  EXPECT_EQ(Answer(*connection, "insert lost values (1) select a from lost"), "a;1") << "one that writes";
  ASSERT_TRUE(connection->Reset());
  restart();
  connection->BeginTransaction();
  connection->Execute("insert lost values (2)");
  restart();
  EXPECT_EQ(Number([&] { connection->Execute("insert lost values (3)"); }), error_number::kDatabaseFailure);
  EXPECT_FALSE(connection->usable());
  EXPECT_FALSE(connection->Reset());
  EXPECT_EQ(Answer(*OpenConnection(served.odbc()), "select a from lost"), "a;1") << "the transaction is gone whole";
}

TEST_F(OdbcDriverTest, AServerThatDiesOrEndsInABatchIsAnErrorAndTheNextCallWorks) {
  ServedDatabase served;
  const auto open = [&served] {
    auto session = SessionFactory::ForThisThread().NewSession();
    session->OpenSession(served.odbc());
    return session;
  };
  for (const int signal : {SIGKILL, SIGINT}) {
    auto session = open();
    std::thread killer([&served, signal] {
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      served.Stop(signal);
    });
    EXPECT_EQ(Number([&] { session->GetConnection().Execute("waitfor delay '00:01:00'"); }),
              error_number::kDatabaseFailure);
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

TEST_F(OdbcDriverTest, AHundredThousandRowsTakeLittleMoreThanTheirValues) {
  const auto connection = Open();
  connection->Execute(
      "create table wide (FID int not null primary key, FOrderID nvarchar(50), FAmount decimal(18,4), FDate datetime, "
      "FAddress nvarchar(255), FCode decimal(23,0), FFlag bit) declare @i int = 0 while @i < 1000 begin set @i += 1 "
      "insert wide values (@i, N'WB2026' + cast(@i as nvarchar(10)), @i * 1.25, '2026-11-03 10:20:30', "
      "N'广东省深圳市 road ' + cast(@i as nvarchar(10)), 20261103000000000000001, 1) end");
  const RecordsetPtr rows =
      connection->Execute("select a.* from wide a cross join (select top 100 FID as n from wide) b");
  ASSERT_EQ(rows->RecordCount(), 100000U);
  std::size_t values = 0;
  for (; !rows->eof(); rows->MoveNext()) {
    values += 4 + 8 + 8 + 16 + 1 + rows->GetText(1).size() + rows->GetText(4).size();
  }
  EXPECT_LT(rows->memory(), values * 3 / 2);
  rows->MoveFirst();
  EXPECT_EQ(rows->Get("FID").ToInt32(), 1);
}

}  // namespace
}  // namespace tessarlorn
