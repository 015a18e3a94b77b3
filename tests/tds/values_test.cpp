#include "hosts/tds/messages/values.h"

#include <gtest/gtest.h>

#include "hosts/tds/messages/login.h"
#include "platform/recordset_builder.h"
#include "platform/text/text.h"
#include "support/sample_database.h"
#include "tds/tds_support.h"
#include "tessarlorn/error.h"

namespace tessarlorn::tds {
namespace {

std::string Hex(std::string_view bytes) { return HexText(bytes.data(), bytes.size()); }

class ValuesTest : public testing::Test {
 protected:
  /// Type and value of the one column that the query answers, as hexadecimal digits; C stands for the collation.
  std::string TypeAndValue(const std::string& query, TdsVersion version = TdsVersion()) {
    const RecordsetPtr rows = database_.connection().Execute(query);
    const RowWriter row_writer(*rows, false, version);
    TdsWriter writer(version);
    row_writer.WriteTypeAndValue(writer, *rows, 0);
    std::string text = Hex(writer.bytes());
    const std::string collation = Hex(CollationFor(version));
    if (const std::size_t at = text.find(collation); at != std::string::npos) text.replace(at, collation.size(), "C");
    return text;
  }

  SampleDatabase database_;
};

TEST_F(ValuesTest, KeepTypeAndValue) {
  using Case = std::pair<const char*, const char*>;
  for (const auto& [expression, bytes] : {
           Case{"cast(1 as bit)", "68010101"},
           Case{"cast(255 as tinyint)", "260101FF"},
           Case{"cast(-2 as smallint)", "260202FEFF"},
           Case{"cast(-42 as int)", "260404D6FFFFFF"},
           Case{"cast(-9223372036854775808 as bigint)", "2608080000000000000080"},
           Case{"cast(null as int)", "260400"},
           Case{"cast(2.5 as real)", "6D040400002040"},
           Case{"cast(0.1 as float)", "6D08089A9999999999B93F"},
           Case{"cast(-9999999999999999999999999999.9999999999 as decimal(38,10))",
                "6A11260A1100FFFFFFFF3F228A097AC4865AA84C3B4B"},
           Case{"cast(1.23 as decimal(9,2))", "6A05090205017B000000"},
           Case{"cast(null as decimal(20,2))", "6A0D140200"},
           Case{"cast(-1 as money)", "6E0808FFFFFFFFF0D8FFFF"},
           Case{"cast('2024-02-29' as date)", "280380460B"},
           Case{"cast('12:34:56.789' as time)", "290304952CB302"},
           Case{"cast('2024-02-29 12:34:56.789' as datetime2(3))", "2A0307952CB30280460B"},
           Case{"cast('1899-12-31 23:59:59.999' as datetime2(3))", "2A0307FF5B26055A950A"},
           Case{"cast('9999-12-31 23:59:59.999' as datetime2(3))", "2A0307FF5B2605DAB937"},
           Case{"cast('0001-01-01' as datetime2)", "2A030700000000000000"},
           Case{"cast('2024-02-29 07:04:56.789 -05:30' as datetimeoffset)", "2B0309952CB30280460BB6FE"},
           Case{"cast('6F9619FF-8B86-D011-B42D-00C04FC964FF' as uniqueidentifier)",
                "241010FF19966F868B11D0B42D00C04FC964FF"},
           Case{"cast(N'中😀' as nvarchar(10))", "E71400C06002D4E3DD800DE"},
           Case{"cast(null as nvarchar(10))", "E71400CFFFF"},
           Case{"cast('ab' as nchar(3))", "EF0600C0600610062002000"},
           Case{"cast('ab' as varchar(10))", "A70A00C02006162"},
           Case{"cast(N'中中' as varchar(4))", "A70600C0600E4B8ADE4B8AD"},
           Case{"cast('a' as nvarchar(max))", "E7FFFFCFEFFFFFFFFFFFFFF02000000610000000000"},
           Case{"cast('' as varchar(max))", "A7FFFFCFEFFFFFFFFFFFFFF00000000"},
           Case{"cast(null as nvarchar(max))", "E7FFFFCFFFFFFFFFFFFFFFF"},
           Case{"cast(0x0001FF as varbinary(10))", "A50A0003000001FF"},
       }) {
    EXPECT_EQ(TypeAndValue(std::string("select ") + expression + " v"), bytes) << expression;
  }
}

TEST_F(ValuesTest, OlderClientsGetWhatTheyKnow) {
  using Case = std::tuple<const char*, TdsVersion, const char*>;
  for (const auto& [expression, version, bytes] : {
           Case{"cast(N'中' as varchar(4))", kTds73b, "E70800C02002D4E"},
           Case{"cast('2024-02-29' as date)", kTds72,
                "E71400C14003200300032003400"
                "2D00300032002D0032003900"},
           Case{"cast('23:59:59.999' as time)", kTds71, "E71800C1800320033003A00350039003A00350039002E00390039003900"},
           Case{"cast('2024-02-29 12:34:56.790' as datetime)", kTds72,
                "6F080825B10000"
                "2D5ACF00"},
           Case{"cast('1899-12-31 23:59:59.999' as datetime2(3))", kTds71, "6F0808FFFFFFFFFF818B01"},
           Case{"cast('a' as varchar(max))", kTds72, "E7FFFFCFEFFFFFFFFFFFFFF02000000610000000000"},
           Case{"cast('a' as nvarchar(max))", kTds71, "E7401FC02006100"},
           Case{"cast(null as varbinary(max))", kTds71, "A5401FFFFF"},
       }) {
    EXPECT_EQ(TypeAndValue(std::string("select ") + expression + " v", version), bytes) << expression;
  }
  const RecordsetPtr rows =
      database_.connection().Execute("select cast('a' as nvarchar(max)) a, cast(null as varbinary(max)) b");
  const RowWriter row_writer(*rows, false, kTds71);
  TdsWriter writer(kTds71);
  row_writer.WriteColumns(writer);
  row_writer.WriteRow(writer, *rows);
  const std::string pointer(48, '0');
  EXPECT_EQ(Hex(writer.bytes()),
            "810200"
            "0000080063FFFFFF7F0408D000000000016100"
            "0000090022FFFFFF7F0000016200"
            "D110" +
                pointer +
                "020000006100"
                "00");
}

TEST_F(ValuesTest, AValueThatDoesNotFitIsAnErrorBehindWholeRows) {
  RecordsetBuilder builder({{.name = "v", .type = FieldType::kNVarChar, .size = 10}});
  builder.BeginRow();
  builder.AppendText(std::string(4001, 'x'));
  Recordset& rows = builder.rows();
  const RowWriter row_writer(rows, true, TdsVersion());
  TdsWriter writer;
  writer.U8(7);
  EXPECT_THROW(row_writer.WriteRow(writer, rows), Error);
  EXPECT_EQ(Hex(writer.bytes()), "07");
}

TEST_F(ValuesTest, RowsWithNullsHaveAMapForWhoKnowsIt) {
  const RecordsetPtr rows = database_.connection().Execute(
      "select cast(1 as tinyint) a, cast(null as tinyint) b union all select cast(2 as tinyint), cast(3 as tinyint)");
  for (const auto& [version, bytes] : {std::pair{kTds73b, "D2020101D101020103"}, {kTds73, "D1010100D101020103"}}) {
    const RowWriter row_writer(*rows, false, version);
    TdsWriter writer(version);
    for (rows->MoveFirst(); !rows->eof(); rows->MoveNext()) row_writer.WriteRow(writer, *rows);
    EXPECT_EQ(Hex(writer.bytes()), bytes);
  }
}

}  // namespace
}  // namespace tessarlorn::tds
