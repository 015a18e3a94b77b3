#include "hosts/cli/output/result_writer.h"

#include <gmock/gmock.h>
#include <sstream>

#include "hosts/calls/wrong_call.h"
#include "hosts/cli/console/display_width.h"
#include "platform/recordset_builder.h"
#include "tessarlorn/collections.h"
#include "tessarlorn/recordset.h"

namespace tessarlorn::cli {
namespace {

/// Numbers, Chinese text, null and what needs quoting.
RecordsetPtr Orders() {
  RecordsetBuilder rows({{.name = "FID", .type = FieldType::kInt},
                         {.name = "店铺"},
                         {.name = "Cost", .type = FieldType::kDecimal, .precision = 28, .scale = 2},
                         {.name = "Sent", .type = FieldType::kDateTime},
                         {.name = "Day", .type = FieldType::kDate},
                         {.name = "Ok", .type = FieldType::kBit}});
  const DateTime sent = DateTime::Parse("2024-05-06 07:08:09").value();
  rows.BeginRow();
  rows.AppendInteger(7);
  rows.AppendText("上海, \"A\"");
  rows.AppendDecimal(Decimal::Parse("12345678901234567890123456.78").value());
  rows.AppendDateTime(sent);
  rows.AppendDateTime(DateTime::Parse("2024-05-06").value());
  rows.AppendInteger(1);
  rows.BeginRow();
  rows.AppendInteger(12345);
  rows.AppendText("");
  rows.AppendDecimal(Decimal::Parse("0.50").value());
  rows.AppendNull();
  rows.AppendNull();
  rows.AppendInteger(0);
  return rows.Finish();
}

std::string Write(const OutputLayout& layout, const std::vector<Variant>& results) {
  std::ostringstream out;
  const auto writer = MakeResultWriter(layout, out);
  for (const Variant& result : results) writer->Write(result);
  return out.str();
}

TEST(ResultWriterTest, AlignsTablesByWhatATerminalShows) {
  EXPECT_EQ(Write({}, {Orders()}),
            "  FID  店铺                                Cost  Sent                 Day         Ok\n"
            "-----  ---------  -----------------------------  -------------------  ----------  -----\n"
            "    7  上海, \"A\"  12345678901234567890123456.78  2024-05-06 07:08:09  2024-05-06  True\n"
            "12345                                      0.50  NULL                 NULL        False\n"
            "(2 rows)\n");
  EXPECT_EQ(Write({}, {Dictionary{{"FWeight", 1.25}, {"List", Vector{1, Null{}}}}}),
            "Key      Value\n-------  --------\nFWeight  1.25\nList     [1,null]\n(2 rows)\n");
  EXPECT_EQ(Write({}, {true, std::shared_ptr<Recordset>(), 1.5}), "True\nNothing\n1.5\n");
  EXPECT_EQ(Write({}, {Vector{"a\nb\x1b[2J"}}), "Item\n-------\na b [2J\n(1 row)\n");
}

TEST(ResultWriterTest, FitsTablesToTheTerminal) {
  const std::string narrow = Write({.format = OutputFormat::kTable, .width = 20, .columns = {}}, {Orders()});
  EXPECT_NE(narrow.find("    7  上海, \"A\"\n"), std::string::npos) << narrow;
  EXPECT_NE(narrow.find("(2 rows; 2 of 6 columns fit here"), std::string::npos) << narrow;
  EXPECT_EQ(Write({.format = OutputFormat::kTable, .width = 80, .columns = {}}, {Vector{std::string(41, 'x')}}),
            "Item\n" + std::string(40, '-') + "\n" + std::string(38, 'x') + "..\n(1 row)\n");
  EXPECT_EQ(CutToWidth("上海市黄浦区", 8), "上海市..");
  EXPECT_EQ(CutToWidth("上海市黄浦区", 7), "上海..");
  EXPECT_EQ(CutToWidth("上海市黄", 8), "上海市黄");
}

TEST(ResultWriterTest, QuotesCsv) {
  EXPECT_EQ(Write({.format = OutputFormat::kCsv, .width = 0, .columns = {}}, {Orders(), "a\nb"}),
            "FID,店铺,Cost,Sent,Day,Ok\r\n"
            "7,\"上海, \"\"A\"\"\",12345678901234567890123456.78,2024-05-06T07:08:09,2024-05-06,true\r\n"
            "12345,\"\",0.50,,,false\r\n"
            "\r\nResult\r\n\"a\nb\"\r\n");
}

TEST(ResultWriterTest, WritesJsonWithEveryDigit) {
  const OutputLayout json{.format = OutputFormat::kJson, .width = 0, .columns = {}};
  EXPECT_EQ(Write(json, {Orders()}),
            "[\n"
            R"(  {"FID":7,"店铺":"上海, \"A\"","Cost":12345678901234567890123456.78,"Sent":"2024-05-06T07:08:09",)"
            R"("Day":"2024-05-06","Ok":true},)"
            "\n"
            R"(  {"FID":12345,"店铺":"","Cost":0.50,"Sent":null,"Day":null,"Ok":false})"
            "\n]\n");
  EXPECT_EQ(Write(json, {false, 0.1 + 0.2, std::shared_ptr<Vector>(), "a\xff\x01"}),
            "false\n0.30000000000000004\nnull\n\"a\xEF\xBF\xBD\\u0001\"\n");
}

TEST(ResultWriterTest, ShowsTheColumnsAskedForAndRenamesDoubledOnesInJsonOnly) {
  EXPECT_EQ(Write({.format = OutputFormat::kCsv, .width = 0, .columns = {"ok", "FID", "fid"}}, {Orders()}),
            "Ok,FID,FID\r\ntrue,7,7\r\nfalse,12345,12345\r\n");
  const std::vector<std::string> doubled = {"FID", "fid"};
  EXPECT_EQ(Write({.format = OutputFormat::kTable, .width = 0, .columns = doubled}, {Orders()}),
            "  FID    FID\n-----  -----\n    7      7\n12345  12345\n(2 rows)\n");
  EXPECT_EQ(Write({.format = OutputFormat::kJson, .width = 0, .columns = doubled}, {Orders()}),
            "[\n  {\"FID\":7,\"FID_2\":7},\n  {\"FID\":12345,\"FID_2\":12345}\n]\n");
  EXPECT_THAT([] { Write({.format = OutputFormat::kJson, .width = 0, .columns = {"Costs"}}, {Orders()}); },
              testing::ThrowsMessage<WrongCall>("the result has no column Costs; did you mean Cost?"));
}

}  // namespace
}  // namespace tessarlorn::cli
