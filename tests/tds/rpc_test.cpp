#include "hosts/tds/messages/rpc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/error.h"
#include "tds/tds_support.h"

namespace tessarlorn::tds {
namespace {

Parameter Text(const std::string& value, const std::string& name = "") {
  Parameter parameter;
  parameter.name = name;
  parameter.type = "nvarchar(4000)";
  parameter.text = value;
  parameter.literal = TextLiteral(value);
  return parameter;
}

Parameter Number(std::int64_t value, const std::string& name = "", bool output = false) {
  Parameter parameter;
  parameter.name = name;
  parameter.type = "int";
  parameter.number = value;
  parameter.literal = std::to_string(value);
  parameter.is_output = output;
  return parameter;
}

std::string TextOf(const Call& call) {
  PreparedStatements prepared;
  return MakeCallText(call, prepared).text;
}

TEST(Rpc, WritesValuesAsLiterals) {
  EXPECT_EQ(TextOf({KnownProcedure::kExecuteSql, "", {Text("select @a, '@b'"), Text("@a int"), Number(7, "@a")}}),
            "EXEC sp_executesql N'select @a, ''@b''', N'@a int', @a=7");
  EXPECT_EQ(TextOf({KnownProcedure::kExecuteSql, "", {Text("select 1")}}), "EXEC sp_executesql N'select 1'");
  EXPECT_EQ(TextOf({KnownProcedure::kNone, "dbo.[odd ]]name]", {Text("'; drop table x --"), Number(1, "@n", true)}}),
            "DECLARE @tds_0 int = 1\nDECLARE @tds_status int = 0\n"
            "EXEC @tds_status = [dbo].[odd ]]name] N'''; drop table x --', @n=@tds_0 OUTPUT\n"
            "SELECT @tds_status AS [$tds_output], @tds_0");
}

TEST(Rpc, TakesNoNameForText) {
  EXPECT_THAT(TextOf({KnownProcedure::kNone, "..sp_columns", {}}), testing::HasSubstr("= [sp_columns]"));
  for (const char* name : {"p; drop table x", "p 1", "[p", "", "a.", "p]"}) {
    EXPECT_THROW(TextOf({KnownProcedure::kNone, name, {}}), Error) << name;
  }
  for (const char* name : {"@a=1;drop table x--", "a", "@", "@a b"}) {
    EXPECT_THROW(TextOf({KnownProcedure::kNone, "p", {Number(1, name)}}), Error) << name;
  }
}

TEST(Rpc, KeepsPreparedStatementsByHandle) {
  PreparedStatements prepared;
  const CallText made = MakeCallText(
      {KnownProcedure::kPrepare, "", {Number(0, "", true), Text("@a int"), Text("select @a"), Number(1)}}, prepared);
  ASSERT_TRUE(made.handle);
  EXPECT_EQ(made.text, "");
  const Call execute{KnownProcedure::kExecute, "", {Number(*made.handle), Number(5)}};
  EXPECT_EQ(MakeCallText(execute, prepared).text, "EXEC sp_executesql N'select @a', N'@a int', 5");
  MakeCallText({KnownProcedure::kUnprepare, "", {Number(*made.handle)}}, prepared);
  EXPECT_THROW(MakeCallText(execute, prepared), Error);
}

TEST(Rpc, KeepsPreparedStatementsWithinBounds) {
  PreparedStatements prepared;
  const Prepared large{std::string(std::size_t{20} << 20, 'x'), ""};
  const std::int32_t first = prepared.Add(large);
  EXPECT_THROW(prepared.Add(large), Error);
  prepared.Remove(first);
  EXPECT_THROW(prepared.Remove(first), Error);
  EXPECT_NO_THROW(prepared.Add(large));
  prepared.Clear();
  EXPECT_NO_THROW(prepared.Add(large));
}

std::vector<Call> ReadAll(std::string_view bytes) {
  TdsReader reader(bytes);
  std::vector<Call> calls;
  for (CallReader call_reader(reader, TdsVersion()); !call_reader.at_end();) calls.push_back(call_reader.Next());
  return calls;
}

TEST(Rpc, ReadsCallsAndRefusesCutOnes) {
  TdsWriter writer;
  writer.U16(2);
  writer.Text("p1");
  writer.U16(0);
  writer.U8(0);
  writer.U8(1);
  writer.Bytes(std::string("\x26\x04\x04\x07\0\0\0", 7));
  writer.U8(0xfe);
  writer.U16(0xffff);
  writer.U16(10);
  writer.U16(0);
  const std::vector<Call> calls = ReadAll(writer.bytes());
  ASSERT_EQ(calls.size(), 2U);
  EXPECT_EQ(calls[0].name, "p1");
  ASSERT_EQ(calls[0].parameters.size(), 1U);
  EXPECT_TRUE(calls[0].parameters[0].is_output);
  EXPECT_FALSE(calls[0].is_unwanted);
  EXPECT_EQ(calls[1].procedure, KnownProcedure::kExecuteSql);
  EXPECT_TRUE(calls[1].is_unwanted);
  // Cut behind the first call, before or behind its separator, it is a request of its own.
  for (std::size_t size = 0; size < writer.size(); ++size) {
    if (size == 8 || size == 17 || size == 18) continue;
    EXPECT_THROW((void)ReadAll(std::string_view(writer.bytes()).substr(0, size)), ProtocolError) << size;
  }
}

}  // namespace
}  // namespace tessarlorn::tds
