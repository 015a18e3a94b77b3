// The driver on a served database: types, several results, errors, time-outs, cancelling, cleaning, lost connections.
#include "drivers/odbc/odbc_driver.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

#include "drivers_embedded/database_support.h"
#include "platform/session.h"
#include "platform/utf16.h"
#include "support/served_test.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class OdbcDriverTest : public ServedTest {
 protected:
  OdbcDriverTest() { RegisterOdbcDriver(); }
  ~OdbcDriverTest() override { SessionFactory::ForThisThread().CloseIdle(); }

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

TEST_F(OdbcDriverTest, ValuesKeepTypeAndValue) {
  struct Case {
    const char* expression;
    FieldType type;
    int size, precision, scale;
    const char* text;
  };
  const std::string longest(20000, 'y');
  const std::string long_literal = "cast('" + longest + "' as varchar(max))";
  const Case cases[] = {
      {"cast(1 as bit)", FieldType::kBit, 0, 0, 0, "True"},
      {"cast(255 as tinyint)", FieldType::kTinyInt, 0, 0, 0, "255"},
      {"cast(-32768 as smallint)", FieldType::kSmallInt, 0, 0, 0, "-32768"},
      {"cast(-2147483648 as int)", FieldType::kInt, 0, 0, 0, "-2147483648"},
      {"cast(9223372036854775807 as bigint)", FieldType::kBigInt, 0, 0, 0, "9223372036854775807"},
      {"cast(-99999999999999999999999999999999999.999 as decimal(38,3))", FieldType::kDecimal, 0, 38, 3,
       "-99999999999999999999999999999999999.999"},
      {"cast(-0.5 as decimal(18,4))", FieldType::kDecimal, 0, 18, 4, "-0.5000"},
      {"cast(0 as decimal(5,5))", FieldType::kDecimal, 0, 5, 5, "0.00000"},
      {"cast(-922337203685477.5808 as money)", FieldType::kMoney, 0, 19, 4, "-922337203685477.5808"},
      {"cast(0.5 as real)", FieldType::kReal, 0, 0, 0, "0.5"},
      {"1.7976931348623157e308", FieldType::kFloat, 0, 0, 0, nullptr},
      {"cast('0001-01-01' as date)", FieldType::kDate, 0, 0, 0, "0001-01-01 00:00:00"},
      {"cast('23:59:58.997' as time)", FieldType::kTime, 0, 0, 0, "1900-01-01 23:59:58"},
      {"cast('9999-12-31 23:59:59' as datetime)", FieldType::kDateTime, 0, 0, 0, "9999-12-31 23:59:59"},
      {"cast('ab' as char(4))", FieldType::kChar, 4, 0, 0, "ab  "},
      {"cast('x' as varchar(30))", FieldType::kVarChar, 30, 0, 0, "x"},
      {"cast(N'发' as nchar(2))", FieldType::kNChar, 2, 0, 0, "发 "},
      {"cast(N'发货😀' as nvarchar(50))", FieldType::kNVarChar, 50, 0, 0, "发货😀"},
      {"cast('' as nvarchar(50))", FieldType::kNVarChar, 50, 0, 0, ""},
      {"cast(N'😀😀😀' as nvarchar(max))", FieldType::kNVarChar, 0, 0, 0, "😀😀😀"},
      {long_literal.c_str(), FieldType::kVarChar, 0, 0, 0, longest.c_str()},
      {"cast('6F9619FF-8B86-D011-B42D-00C04FC964FF' as uniqueidentifier)", FieldType::kGuid, 0, 0, 0,
       "6F9619FF-8B86-D011-B42D-00C04FC964FF"},
      {"cast(null as int)", FieldType::kInt, 0, 0, 0, ""},
      {"cast(null as nvarchar(max))", FieldType::kNVarChar, 0, 0, 0, ""},
  };
  const auto connection = Open();
  for (const Case& one : cases) {
    SCOPED_TRACE(one.expression);
    // Alone in a block of rows, and behind a long column, where each value is read on its own.
    for (const char* before : {"", "cast('long' as varchar(max)) as l, "}) {
      const RecordsetPtr rows = connection->Execute(std::string("select ") + before + one.expression + " as FValue");
      const std::size_t at = rows->fields().size() - 1;
      const Field& field = rows->fields()[at];
      EXPECT_EQ(field.name, "FValue");
      EXPECT_EQ(field.type, one.type);
      EXPECT_EQ(field.size, one.size);
      EXPECT_EQ(field.precision, one.precision);
      EXPECT_EQ(field.scale, one.scale);
      if (one.text != nullptr) {
        EXPECT_EQ(rows->Get(at).ToText(), one.text);
      }
    }
  }
  const RecordsetPtr rows = connection->Execute(
      "select cast(0x00FF10 as varbinary(8)) as b, cast(replicate('z', 9000) as varbinary(max)) as m, "
      "1.7976931348623157e308 as f, cast('2026-11-03 10:20:30.007' as datetime) as d, cast(null as bit) as n");
  EXPECT_EQ(*rows->Get("b").get_if<Bytes>(), (Bytes{0, 0xff, 0x10}));
  EXPECT_EQ(rows->Get("f").ToDouble(), 1.7976931348623157e308);
  EXPECT_EQ(rows->Get("d").ToDateTime().ToString(true), "2026-11-03 10:20:30.007");
  EXPECT_TRUE(rows->Get("n").is_null());
}

TEST_F(OdbcDriverTest, ResultsComeInOrderAndAnErrorBehindThem) {
  const auto connection = Open();
  const auto run = [&](std::string_view batch) {
    std::vector<std::string> events;
    SetMessageObserver([&](std::string_view text) { events.push_back("says " + std::string(text)); });
    try {
      connection->ExecuteAll(batch, [&](const RecordsetPtr& rows) { events.push_back(TextOf(rows)); });
    } catch (const Error& error) {
      events.push_back("error " + std::to_string(error.native().number));
    }
    SetMessageObserver({});
    return events;
  };
  EXPECT_THAT(run("print 'one' create table #r (a int primary key) insert #r values (1),(2) select a from #r "
                  "update #r set a = 9 where a = 5 select 2 as b print 'two'"),
              ElementsAre("says one", "a;1;2", "b;2", "says two"));
  EXPECT_THAT(run("select 1 as a select 2 as b select cast('x' as int) as c select 3 as d"),
              ElementsAre("a;1", "b;2", "error 245"));
  EXPECT_THAT(run("insert #r values (1)"), ElementsAre("error 2627"));
  EXPECT_THAT(run("select 1 as a insert #r values (2) insert #r values (3)"), ElementsAre("a;1", "error 2627"));
  EXPECT_THAT(run("select count(*) as n from #r"), ElementsAre("n;3"));
  EXPECT_EQ(connection->Execute("declare @a int set @a = 1"), nullptr);
  EXPECT_EQ(TextOf(connection->Execute("insert #r values (7) select 1 as a select 2 as b")), "a;1");
  EXPECT_EQ(Number([&] { connection->Execute("select 1 as a select 1/0 as b"); }), error_number::kDataOverflow)
      << "an error behind the wanted result is raised as well";
  EXPECT_THROW(connection->ExecuteAll("select 1 as a select 2 as b", [](const RecordsetPtr&) { throw 1; }), int);
  EXPECT_EQ(Answer(*connection, "select 5 as a"), "a;5") << "what the sink throws leaves the connection in order";
}

TEST_F(OdbcDriverTest, ErrorsCarryTheNumbersOfEveryDriver) {
  const auto connection = Open();
  const std::pair<const char*, std::int32_t> cases[] = {
      {"selec 1", error_number::kStatementError},
      {"select * from nowhere", error_number::kNoSuchTable},
      {"select cast('x' as int) as a", error_number::kConversionFailed},
      {"select cast(300 as tinyint) as a", error_number::kDataOverflow},
      {"create table #e (a int not null) insert #e values (null)", error_number::kConstraintBroken},
      {"raiserror('own words', 16, 1)", error_number::kStatementError},
  };
  for (const auto& [batch, number] : cases) {
    EXPECT_EQ(Number([&] { connection->Execute(batch); }), number) << batch;
  }
  EXPECT_EQ(Answer(*connection, "select * from nowhere"), "error 208: Invalid object name 'nowhere'.");
}

TEST_F(OdbcDriverTest, ARefusedLoginNamesTheFaultAndNoPassword) {
  const std::string driver = "Driver=" + FreeTdsDriver() + ";Server=127.0.0.1;TDS_Version=7.4";
  const std::pair<std::string, const char*> cases[] = {
      {driver + ";Port=" + std::to_string(Shared().port()), "Login failed for user 'ann'."},
      {driver + ";Port=1", "Unable to connect"},
      {"Driver=no-such-driver", "no-such-driver"},
      {"DSN=no-such-source", "ata source"},
  };
  for (const auto& [text, wanted] : cases) {
    try {
      OpenConnection(text + ";UID=ann;PWD=hidden-word");
      ADD_FAILURE() << text << " opened";
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), error_number::kLoginRefused);
      EXPECT_THAT(error.description(), AllOf(HasSubstr(wanted), Not(HasSubstr("hidden-word"))));
    }
  }
}

TEST_F(OdbcDriverTest, TransactionsCommitAndRollBackWhole) {
  const auto connection = Open();
  const auto other = Open();
  connection->Execute("create table transactions (a int)");
  connection->BeginTransaction();
  EXPECT_EQ(Number([&] { connection->BeginTransaction(); }), error_number::kStatementError);
  connection->Execute("insert transactions values (1)");
  connection->RollbackTransaction();
  connection->BeginTransaction();
  connection->Execute("insert transactions values (2)");
  EXPECT_EQ(Answer(*other, "select a from transactions"), "a");
  connection->CommitTransaction();
  EXPECT_EQ(Answer(*other, "select a from transactions"), "a;2");
  EXPECT_EQ(Number([&] { connection->CommitTransaction(); }), error_number::kStatementError);
  connection->Execute("insert transactions values (3)");
  EXPECT_EQ(Answer(*other, "select a from transactions"), "a;2;3");
}

TEST_F(OdbcDriverTest, ResetHandsTheConnectionOutClean) {
  const auto connection = Open();
  connection->Execute("create table cleaned (a int)");
  connection->BeginTransaction();
  connection->Execute("insert cleaned values (1) select 1 as a into #kept set nocount on");
  ASSERT_TRUE(connection->Reset());
  EXPECT_EQ(Answer(*connection, "select count(*) as n, @@trancount as t from cleaned"), "n|t;0|0");
  EXPECT_THAT(Answer(*connection, "select * from #kept"), HasSubstr("error 208"));
  connection->Execute("begin tran insert cleaned values (2)");
  ASSERT_TRUE(connection->Reset());
  EXPECT_EQ(Answer(*connection, "select count(*) as n, @@trancount as t from cleaned"), "n|t;0|0");
  connection->Execute("set ansi_nulls on");
  EXPECT_FALSE(connection->Reset()) << "what nothing takes back ends the connection";
}

TEST_F(OdbcDriverTest, AStatementThatTakesTooLongEnds) {
  const auto connection = Open(";StatementTimeout=1");
  EXPECT_EQ(Number([&] { connection->Execute("waitfor delay '00:01:00'"); }), error_number::kTimeout);
}

TEST_F(OdbcDriverTest, AnotherThreadsCancelEndsTheBatch) {
  const auto connection = Open();
  std::thread canceller([&] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    connection->Cancel();
  });
  EXPECT_EQ(Number([&] { connection->Execute("waitfor delay '00:01:00'"); }), error_number::kCancelled);
  canceller.join();
  EXPECT_EQ(Answer(*connection, "select 1 as a"), "a;1");
  connection->Cancel();
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

TEST_F(OdbcDriverTest, AServerThatDiesInABatchIsAnErrorAndTheNextCallWorks) {
  ServedDatabase served;
  const auto open = [&served] {
    auto session = SessionFactory::ForThisThread().NewSession();
    session->OpenSession(served.odbc());
    return session;
  };
  auto session = open();
  std::thread killer([&served] {
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    served.Stop();
  });
  EXPECT_EQ(Number([&] { session->GetConnection().Execute("waitfor delay '00:01:00'"); }),
            error_number::kDatabaseFailure);
  killer.join();
  session = nullptr;
  EXPECT_EQ(Number(open), error_number::kLoginRefused);
  served.Start();
  EXPECT_EQ(Answer(open()->GetConnection(), "select 1 as a"), "a;1");
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
