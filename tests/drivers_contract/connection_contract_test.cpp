// What every driver's connections do alike: embedded; over ODBC on a served database, or the server that the
// environment names; over what stands in for ADO on the embedded one.
#include <atomic>
#include <gmock/gmock.h>
#include <thread>

#include "support/error_of.h"
#include "support/test_database.h"
#include "support/wait_until.h"
#include "tessarlorn/connection.h"
#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class ConnectionContract : public testing::TestWithParam<Reach> {
 protected:
  [[nodiscard]] std::unique_ptr<Connection> Open() const { return OpenConnection(database_.string()); }

  /// The connection as its next user gets it: one that cannot be made clean is thrown away.
  void HandOn() {
    if (connection_->Reset()) return;
    connection_.reset();
    connection_ = Open();
  }

  /// Every result, message and error, in order.
  std::vector<std::string> EventsOf(std::string_view batch) {
    std::vector<std::string> events;
    TestHost().ObserveMessages([&](std::string_view text) { events.push_back("says " + std::string(text)); });
    const Error error = ErrorOf(
        [&] { connection_->ExecuteAll(batch, [&](const RecordsetPtr& rows) { events.push_back(TextOf(rows)); }); });
    if (error.number() != 0) events.push_back("error " + std::to_string(error.native().number));
    TestHost().ObserveMessages({});
    return events;
  }

  const TestDatabase database_{GetParam()};
  std::unique_ptr<Connection> connection_ = Open();
};

TEST_P(ConnectionContract, ResultsComeInOrderAndAnErrorBehindThem) {
  EXPECT_THAT(EventsOf("print 'one' create table #r (a int primary key) insert #r values (1),(2) select a from #r "
                       "update #r set a = 9 where a = 5 select 2 as b print 'two'"),
              ElementsAre("says one", "a;1;2", "b;2", "says two"));
  EXPECT_THAT(EventsOf("print ''"), ElementsAre("says  "));
  EXPECT_THAT(EventsOf("select 1 as a select 2 as b select cast('x' as int) as c select 3 as d"),
              ElementsAre("a;1", "b;2", "error 245"));
  EXPECT_THAT(EventsOf("insert #r values (1)"), ElementsAre("error 2627"));
  EXPECT_THAT(EventsOf("select 1 as a insert #r values (2) insert #r values (3)"), ElementsAre("a;1", "error 2627"));
  EXPECT_THAT(EventsOf("select count(*) as n from #r"), ElementsAre("n;3"));
  connection_->Execute("create procedure p_says as print 'before' select 1 as a print 'behind'");
  EXPECT_THAT(EventsOf("exec p_says"), ElementsAre("says before", "a;1", "says behind"));
  EXPECT_EQ(connection_->Execute("declare @a int set @a = 1"), nullptr);
  EXPECT_EQ(connection_->Execute(""), nullptr);
  EXPECT_EQ(TextOf(connection_->Execute("insert #r values (7) select 1 as a select 2 as b")), "a;1");
  EXPECT_EQ(ErrorOf([&] { connection_->Execute("select 1 as a select 1/0 as b"); }).number(),
            error_number::kDataOverflow)
      << "an error behind the wanted result is raised as well";
  EXPECT_THROW(connection_->ExecuteAll("select 1 as a select 2 as b", [](const RecordsetPtr&) { throw 1; }), int);
  EXPECT_EQ(Answer(*connection_, "select 5 as a"), "a;5") << "what the sink throws leaves the connection in order";
}

TEST_P(ConnectionContract, ManyRowsComeWhole) {
  const RecordsetPtr rows = connection_->Execute(
      "with n(i) as (select 1 union all select i + 1 from n where i < 2500) select i from n option (maxrecursion 0)");
  ASSERT_EQ(rows->RecordCount(), 2500U);
  for (int i = 1; i <= 2500; ++i, rows->MoveNext()) ASSERT_EQ(rows->Get(0).ToInt32(), i);
}

TEST_P(ConnectionContract, ErrorsCarryTheNumbersOfEveryDriver) {
  const std::pair<const char*, std::int32_t> cases[] = {
      {"selec 1", error_number::kStatementError},
      {"select * from nowhere", error_number::kNoSuchTable},
      {"select cast('x' as int) as a", error_number::kConversionFailed},
      {"select cast(300 as tinyint) as a", error_number::kDataOverflow},
      {"create table #e (a int not null) insert #e values (null)", error_number::kConstraintBroken},
      {"raiserror('own words', 16, 1)", error_number::kStatementError},
  };
  for (const auto& [batch, number] : cases) {
    const Error error = ErrorOf([&, text = batch] { connection_->Execute(text); });
    EXPECT_EQ(error.number(), number) << batch;
    EXPECT_THAT(error.source(), HasSubstr("TessarLorn"));
  }
  EXPECT_EQ(Answer(*connection_, "select * from nowhere"), "error 208: Invalid object name 'nowhere'.");
}

TEST_P(ConnectionContract, TransactionsCommitAndRollBackWhole) {
  const auto other = Open();
  connection_->Execute("create table transactions (a int)");
  connection_->BeginTransaction();
  connection_->Execute("insert transactions values (1)");
  connection_->RollbackTransaction();
  connection_->BeginTransaction();
  connection_->Execute("insert transactions values (2) begin tran insert transactions values (3)");
  connection_->CommitTransaction();
  EXPECT_EQ(Answer(*other, "select a from transactions"), "a;2;3") << "the batch's own level is committed as well";
  connection_->Execute("insert transactions values (4)");
  EXPECT_EQ(Answer(*other, "select a from transactions"), "a;2;3;4");
}

TEST_P(ConnectionContract, TransactionsDoNotNestAndTheLostAreNoCommit) {
  connection_->Execute("create table lost (a int)");
  const auto expect = [](const Error& error, std::int32_t native, const char* text) {
    EXPECT_EQ(error.number(), error_number::kStatementError);
    EXPECT_EQ(error.native().number, native);
    EXPECT_EQ(error.native().sqlstate, "42000");
    EXPECT_EQ(error.description(), text);
  };
  const auto begin = [&] { connection_->BeginTransaction(); };
  const auto commit = [&] { connection_->CommitTransaction(); };
  constexpr const char* kOpen = "New transaction is not allowed because there is another transaction open.";
  constexpr const char* kNone =
      "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION: the transaction was ended before.";
  expect(ErrorOf(commit), 3902, kNone);
  begin();
  expect(ErrorOf(begin), 3988, kOpen);
  connection_->RollbackTransaction();
  connection_->RollbackTransaction();
  connection_->Execute("begin tran insert lost values (1)");
  expect(ErrorOf(begin), 3988, kOpen);
  connection_->RollbackTransaction();
  // A batch that ends the transaction, or dooms it, leaves nothing to commit.
  for (const char* batch :
       {"insert lost values (2) rollback",
        "set xact_abort on insert lost values (3) begin try select 1/0 as a end try begin catch end catch"}) {
    begin();
    ErrorOf([&] { connection_->Execute(batch); });
    expect(ErrorOf(commit), 3902, kNone);
  }
  EXPECT_EQ(Answer(*connection_, "select count(*) as n, @@trancount as t from lost"), "n|t;0|0");
}

TEST_P(ConnectionContract, ResetHandsTheConnectionOutClean) {
  connection_->Execute("create table cleaned (a int)");
  connection_->BeginTransaction();
  connection_->Execute("insert cleaned values (1) select 1 as a into [#Kept Rows] set nocount on");
  HandOn();
  EXPECT_EQ(Answer(*connection_, "select count(*) as n, @@trancount as t from cleaned"), "n|t;0|0");
  EXPECT_THAT(Answer(*connection_, "select * from [#Kept Rows]"), HasSubstr("error 208"));
  connection_->Execute("begin tran insert cleaned values (2)");
  HandOn();
  EXPECT_EQ(Answer(*connection_, "select count(*) as n, @@trancount as t from cleaned"), "n|t;0|0");
}

TEST_P(ConnectionContract, ThreadsCancelWhatIsRunningAndNothingLater) {
  const auto other = Open();
  connection_->Cancel();
  HandOn();
  std::atomic<bool> ended{false};
  Error cancelled(0, "", "");
  std::thread running([&] {
    cancelled = ErrorOf([&] { other->Execute("waitfor delay '00:01:00'"); });
    ended = true;
  });
  // One that comes before the batch meets nothing.
  std::thread cancelling([&] {
    EXPECT_TRUE(WaitUntil([&] {
      other->Cancel();
      return ended.load();
    }));
  });
  EXPECT_EQ(Answer(*connection_, "waitfor delay '00:00:00.200' select 1 as a"), "a;1") << "it is not the one";
  cancelling.join();
  running.join();
  EXPECT_EQ(cancelled.number(), error_number::kCancelled);
  EXPECT_EQ(cancelled.native().sqlstate, "HY008");
  EXPECT_EQ(Answer(*other, "select 2 as a"), "a;2");
}

TEST_P(ConnectionContract, ValuesKeepTypeAndValue) {
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
      {"cast('0100-01-01' as date)", FieldType::kDate, 0, 0, 0, "0100-01-01 00:00:00"},
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
  for (const Case& one : cases) {
    SCOPED_TRACE(one.expression);
    // Alone in a block of rows, and behind a long column, where each value is read on its own.
    for (const char* before : {"", "cast('long' as varchar(max)) as l, "}) {
      const RecordsetPtr rows = connection_->Execute(std::string("select ") + before + one.expression + " as FValue");
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
  const RecordsetPtr rows = connection_->Execute(
      "select cast(0x00FF10 as varbinary(8)) as b, cast(replicate('z', 9000) as varbinary(max)) as m, "
      "1.7976931348623157e308 as f, cast('2026-11-03 10:20:30.007' as datetime) as d, cast(null as bit) as n");
  EXPECT_EQ(*rows->Get("b").get_if<Bytes>(), (Bytes{0, 0xff, 0x10}));
  EXPECT_EQ(rows->Get("f").ToDouble(), 1.7976931348623157e308);
  EXPECT_EQ(rows->Get("d").ToDateTime().ToString(true), "2026-11-03 10:20:30.007");
  EXPECT_TRUE(rows->Get("n").is_null());
}

TEST_P(ConnectionContract, ParametersGoBesideTheTextAndComeBack) {
  const std::string longest(20000, 'y');
  SqlParameter parameters[] = {
      {"@bit", "bit", true},
      {"@tiny", "tinyint", 255},
      {"@int", "int", -2147483647},
      {"@big", "bigint", std::int64_t{-9223372036854775807}},
      {"@real", "real", 0.5},
      {"@float", "float", 1.7976931348623157e308},
      {"@decimal", "decimal(38,3)", Decimal::Parse("-99999999999999999999999999999999999.999").value()},
      {"@money", "money", Decimal::Parse("-922337203685477.5808").value()},
      {"@date", "date", DateTime::Parse("2024-02-29").value()},
      {"@time", "time", DateTime::Parse("23:59:58.997").value()},
      {"@moment", "datetime", DateTime::Parse("2026-11-03 10:20:30.007").value()},
      {"@text", "nvarchar(50)", "it's 发货😀 ? {x}"},
      {"@plain", "varchar(30)", ""},
      {"@long", "nvarchar(max)", longest},
      {"@bytes", "varbinary(8)", Bytes{0, 0xff, 0x10}},
      {"@guid", "uniqueidentifier", "6F9619FF-8B86-D011-B42D-00C04FC964FF"},
      {"@none", "int", Null{}},
  };
  std::string text = "select ";
  std::vector<std::string> sent;
  for (SqlParameter& parameter : parameters) {
    sent.push_back(Shown(parameter.value));
    text += (&parameter == parameters ? "" : ", ") + parameter.name + " as v";
    parameter.is_output = true;
  }
  const RecordsetPtr rows = connection_->Query({text, parameters});
  for (std::size_t i = 0; i < sent.size(); ++i) {
    EXPECT_EQ(Shown(rows->Get(i)), sent[i]) << parameters[i].name;
    EXPECT_EQ(Shown(parameters[i].value), sent[i]) << parameters[i].name << " back";
  }
  connection_->Execute(
      "create procedure p_sum @a int, @b int = 5, @sum bigint output as "
      "begin set @sum = @a + @b; return 7 end");
  SqlParameter sum[] = {{"@sum", "bigint", Null{}, true}, {"@a", "int", 3}};
  struct : BatchSink {
    void Rows(RecordsetPtr) override {}
  } sink;
  EXPECT_EQ(connection_->Call("p_sum", sum, sink), 7);
  EXPECT_EQ(Shown(sum[0].value), "8");
  SqlParameter wrong[] = {{"@n", "int", "seven"}};
  EXPECT_NE(ErrorOf([&] { connection_->Execute({"select @n", wrong}); }).number(), 0);
  connection_->Execute("drop procedure p_sum");
}

TEST(DecidingKey, IsFoundWhereverItStands) {
  const TestDatabase registers_drivers(Reach::kInProcess);
  const std::pair<const char*, const char*> cases[] = {
      {"Timeout=5;Embedded=orders.db", "Embedded"},
      {"Persist Security Info=True;Password=\"a;Embedded=\"\"b\";Provider=MSOLEDBSQL", "Provider"},
      {"Driver={SQL Server};provider = MSDASQL", "provider"},
      {"App='Embedded=x;';Embedded=y.db", "Embedded"},
      {"PWD={a}};Embedded=b};Server=s", ""},
      {"PWD=\"a;Embedded=b.db", "Embedded"},
      {"orders.db", ""},
#ifdef TESSARLORN_HAS_ODBC
      {"Server=db1;App={Provider=x;DSN=y};DRIVER=FreeTDS", "DRIVER"},
#endif
  };
  for (const auto& [string, key] : cases) EXPECT_EQ(TestHost().DecidingKey(string), key) << string;
}

std::string NameOf(const testing::TestParamInfo<Reach>& reach) {
  constexpr const char* kNames[] = {"embedded", "odbc", "ado"};
  return kNames[static_cast<std::size_t>(reach.param)];
}

constexpr Reach kReaches[] = {Reach::kInProcess,
#ifdef TESSARLORN_HAS_ADO
                              Reach::kOverAdo,
#endif
#ifdef TESSARLORN_HAS_ODBC
                              Reach::kOverOdbc
#endif
};
INSTANTIATE_TEST_SUITE_P(Drivers, ConnectionContract, testing::ValuesIn(kReaches), NameOf);

}  // namespace
}  // namespace tessarlorn
