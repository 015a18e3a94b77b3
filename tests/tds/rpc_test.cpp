#include "hosts/tds/messages/rpc.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tds/tds_support.h"
#include "tessarlorn/error.h"

namespace tessarlorn::tds {
namespace {

SqlParameter Text(const std::string& value, const std::string& name = "") { return {name, "nvarchar(4000)", value}; }

SqlParameter Number(std::int32_t value, const std::string& name = "", bool output = false) {
  return {name, "int", value, output};
}

/// "procedure(@name=value, …)", an output with a mark behind it.
std::string TextOf(Call call, PreparedStatements& prepared) {
  const DatabaseCall taken = TakeCall(call, prepared);
  std::string text;
  for (const SqlParameter& parameter : taken.parameters) {
    if (!text.empty()) text += ", ";
    if (!parameter.name.empty()) text += parameter.name + "=";
    text += parameter.value.ToText() + (parameter.is_output ? "!" : "");
  }
  return taken.procedure + "(" + text + ")";
}

std::string TextOf(const Call& call) {
  PreparedStatements prepared;
  return TextOf(call, prepared);
}

TEST(Rpc, TakesProceduresByNameOnly) {
  EXPECT_EQ(TextOf({KnownProcedure::kNone, "dbo.[odd ]]name]", {Text("'x"), Number(1, "@n", true)}}),
            "[dbo].[odd ]]name]('x, @n=1!)");
  EXPECT_EQ(TextOf({KnownProcedure::kNone, "..sp_columns", {}}), "[sp_columns]()");
  for (const char* name : {"p; drop table x", "p 1", "[p", "", "a.", "p]"}) {
    EXPECT_THROW(TextOf({KnownProcedure::kNone, name, {}}), Error) << name;
  }
  for (const char* name : {"@a=1;drop table x--", "a", "@", "@a b"}) {
    EXPECT_THROW(TextOf({KnownProcedure::kNone, "p", {Number(1, name)}}), Error) << name;
  }
}

TEST(Rpc, KeepsPreparedStatementsByHandle) {
  PreparedStatements prepared;
  const auto prepare = [&](Call call) { return TakeCall(call, prepared).handle; };
  const auto handle =
      prepare({KnownProcedure::kPrepare, "", {Number(0, "", true), Text("@a int"), Text("select @a"), Number(1)}});
  ASSERT_TRUE(handle);
  const Call execute{KnownProcedure::kExecute, "", {Number(*handle), Number(5)}};
  EXPECT_EQ(TextOf(execute, prepared), "sp_executesql(select @a, @a int, 5)");
  TextOf({KnownProcedure::kUnprepare, "", {Number(*handle)}}, prepared);
  EXPECT_THROW(TextOf(execute, prepared), Error);
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
