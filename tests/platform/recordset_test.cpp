#include "tessarlorn/recordset.h"

#include <gtest/gtest.h>
#include <limits>

#include "support/error_of.h"

namespace tessarlorn {
namespace {

Field Make(const char* name, FieldType type, int scale = 0) { return {.name = name, .type = type, .scale = scale}; }

TEST(RecordsetTest, GivesEachValueBackInTheTypeOfItsField) {
  Recordset rows({Make("FFlag", FieldType::kBit), Make("FSmall", FieldType::kSmallInt), Make("FID", FieldType::kInt),
                  Make("FBig", FieldType::kBigInt), Make("FWeight", FieldType::kFloat),
                  Make("FPrice", FieldType::kMoney, 4), Make("FCode", FieldType::kDecimal, 2),
                  Make("FTime", FieldType::kDateTime), Make("FName", FieldType::kNVarChar),
                  Make("FData", FieldType::kVarBinary)});
  const Decimal code = Decimal::Parse("-123456789012345678901234567890123456.78").value();
  const std::string long_text(1000, 'x');
  rows.BeginRow();
  rows.AppendInteger(1);
  rows.AppendInteger(-5);
  rows.AppendInteger(127);
  rows.AppendInteger(std::numeric_limits<std::int64_t>::min());
  rows.AppendDouble(0.25);
  rows.AppendScaled(-12'5000);
  rows.AppendDecimal(code);
  rows.AppendDateTime(DateTime::Parse("1899-12-31 23:00").value());
  rows.AppendText(long_text);
  rows.AppendBytes("\0\xFF", 2);
  rows.BeginRow();
  rows.AppendNull();
  rows.AppendInteger(300);
  rows.AppendInteger(128);
  rows.AppendInteger(7);
  rows.AppendInteger(2);
  rows.AppendInteger(3);
  rows.AppendNull();
  rows.AppendNull();
  rows.AppendText("");
  rows.AppendBytes("", 0);
  rows.Finish();

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
  Recordset rows(
      {Make("FID", FieldType::kInt), Make("FName", FieldType::kNVarChar), Make("FNote", FieldType::kNVarChar)});
  for (std::size_t row = 0; row < kRows; ++row) {
    rows.BeginRow();
    rows.AppendInteger(static_cast<std::int64_t>(row));
    rows.AppendText(text_of(row));
    rows.AppendText("end");
  }
  rows.Finish();
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
  Recordset rows({Make("FID", FieldType::kInt)});
  const auto number_of = [](const auto& action) { return ErrorOf(action).number(); };
  EXPECT_EQ(number_of([&] { (void)rows.Get(0); }), error_number::kNoCurrentRecord);
  EXPECT_EQ(number_of([&] { rows.MoveNext(); }), error_number::kNoCurrentRecord);
  rows.BeginRow();
  rows.AppendInteger(1);
  rows.Finish();
  EXPECT_EQ(number_of([&] { (void)rows.Get(1); }), error_number::kItemNotFound);
  EXPECT_EQ(number_of([&] { (void)rows.Get("FName"); }), error_number::kItemNotFound);
  EXPECT_EQ(number_of([&] { rows.MoveTo(2); }), error_number::kNoCurrentRecord);
}

}  // namespace
}  // namespace tessarlorn
