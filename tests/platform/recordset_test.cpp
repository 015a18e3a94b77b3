#include "tessarlorn/recordset.h"

#include <gtest/gtest.h>
#include <limits>

#include "platform/recordset_builder.h"
#include "support/error_of.h"

namespace tessarlorn {
namespace {

Field Make(const char* name, FieldType type, int scale = 0) { return {.name = name, .type = type, .scale = scale}; }

TEST(RecordsetTest, GivesEachValueBackInTheTypeOfItsField) {
  RecordsetBuilder builder({Make("FFlag", FieldType::kBit), Make("FSmall", FieldType::kSmallInt),
                            Make("FID", FieldType::kInt), Make("FBig", FieldType::kBigInt),
                            Make("FWeight", FieldType::kFloat), Make("FPrice", FieldType::kMoney, 4),
                            Make("FCode", FieldType::kDecimal, 2), Make("FTime", FieldType::kDateTime),
                            Make("FName", FieldType::kNVarChar), Make("FData", FieldType::kVarBinary)});
  const Decimal code = Decimal::Parse("-123456789012345678901234567890123456.78").value();
  const std::string long_text(1000, 'x');
  builder.BeginRow();
  builder.AppendInteger(1);
  builder.AppendInteger(-5);
  builder.AppendInteger(127);
  builder.AppendInteger(std::numeric_limits<std::int64_t>::min());
  builder.AppendDouble(0.25);
  builder.AppendScaled(-12'5000);
  builder.AppendDecimal(code);
  builder.AppendDateTime(DateTime::Parse("1899-12-31 23:00").value());
  builder.AppendText(long_text);
  builder.AppendBytes("\0\xFF", 2);
  builder.BeginRow();
  builder.AppendNull();
  builder.AppendInteger(300);
  builder.AppendInteger(128);
  builder.AppendInteger(7);
  builder.AppendInteger(2);
  builder.AppendInteger(3);
  builder.AppendNull();
  builder.AppendNull();
  builder.AppendText("");
  builder.AppendBytes("", 0);
  const RecordsetPtr made = builder.Finish();
  Recordset& rows = *made;

  ASSERT_EQ(rows.RecordCount(), 2U);
  EXPECT_TRUE(rows.Get("fflag").holds<bool>());
  EXPECT_TRUE(rows.Get("FSmall").holds<std::int16_t>());
  for (const auto& [field, text] : {std::pair<const char*, std::string>{"FSmall", "-5"},
                                    {"FID", "127"},
                                    {"FBig", "-9223372036854775808"},
                                    {"FWeight", "0.25"},
                                    {"FPrice", "-12.5000"},
                                    {"FCode", code.ToString()},
                                    {"FTime", "1899-12-31 23:00:00"}}) {
    EXPECT_EQ(rows.Get(field).ToText(), text) << field;
  }
  EXPECT_EQ(rows.GetText(8), long_text);
  EXPECT_EQ(*rows.Get("FData").get_if<Bytes>(), (Bytes{0, 0xFF}));

  rows.MoveNext();
  EXPECT_TRUE(rows.Get("FFlag").is_null());
  EXPECT_TRUE(rows.IsNull(0));
  EXPECT_EQ(rows.Get("FID").ToInt32(), 128);
  EXPECT_TRUE(rows.Get("FBig").holds<std::int32_t>());
  EXPECT_TRUE(rows.Get("FWeight").holds<double>());
  EXPECT_EQ(rows.Get("FPrice").ToText(), "3.0000");
  EXPECT_EQ(rows.GetText(7), "");
  EXPECT_EQ(rows.Get("FName").ToText(), "");
  EXPECT_FALSE(rows.IsNull(8));
  EXPECT_THROW((void)rows.GetText(2), Error);
  rows.MoveFirst();
  EXPECT_EQ(rows.Get("FID").ToInt32(), 127);
}

/// Rows of uneven length over many chunks, one of them longer than a chunk.
TEST(RecordsetTest, KeepsRowsWholeAcrossChunks) {
  constexpr std::size_t kRows = 5000;
  constexpr std::size_t kLongRow = 1234;
  const auto text_of = [](std::size_t row) {
    return std::string(row == kLongRow ? 3'000'000 : row % 1500, static_cast<char>('a' + row % 26));
  };
  RecordsetBuilder builder(
      {Make("FID", FieldType::kInt), Make("FName", FieldType::kNVarChar), Make("FNote", FieldType::kNVarChar)});
  for (std::size_t row = 0; row < kRows; ++row) {
    builder.BeginRow();
    builder.AppendInteger(static_cast<std::int64_t>(row));
    builder.AppendText(text_of(row));
    builder.AppendText("end");
  }
  const RecordsetPtr made = builder.Finish();
  Recordset& rows = *made;
  ASSERT_EQ(rows.RecordCount(), kRows);
  for (std::size_t row = 0; !rows.eof(); rows.MoveNext(), ++row) {
    ASSERT_EQ(rows.Get(0).ToInt32(), static_cast<std::int32_t>(row));
    ASSERT_EQ(rows.GetText(1), text_of(row)) << row;
    ASSERT_EQ(rows.GetText(2), "end");
  }
  rows.MoveTo(kLongRow);
  EXPECT_EQ(rows.Get(0).ToInt32(), static_cast<std::int32_t>(kLongRow));
  EXPECT_LT(rows.memory(), std::size_t{13} << 20);
}

TEST(RecordsetTest, RefusesWhatIsNotThere) {
  RecordsetBuilder builder({Make("FID", FieldType::kInt)});
  Recordset& rows = builder.rows();
  const auto number_of = [](const auto& action) { return ErrorOf(action).number(); };
  EXPECT_EQ(number_of([&] { (void)rows.Get(0); }), error_number::kNoCurrentRecord);
  EXPECT_EQ(number_of([&] { rows.MoveNext(); }), error_number::kNoCurrentRecord);
  builder.BeginRow();
  builder.AppendInteger(1);
  builder.Finish();
  EXPECT_EQ(number_of([&] { (void)rows.Get(1); }), error_number::kItemNotFound);
  EXPECT_EQ(number_of([&] { (void)rows.Get("FName"); }), error_number::kItemNotFound);
  EXPECT_EQ(number_of([&] { rows.MoveTo(2); }), error_number::kNoCurrentRecord);
}

}  // namespace
}  // namespace tessarlorn
