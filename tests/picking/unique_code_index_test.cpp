#include <gmock/gmock.h>

#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

class UniqueCodeIndexTest : public SampleTest {
 protected:
  UniqueCodeIndexTest() {
    Run("INSERT INTO IC_Web2ERPOrders (FID, FUniqueCode) VALUES (1, 1234567), (2, 12345678901234567890), "
        "(3, 98765432109876543210987), (4, 12345678901), (5, NULL), (6, 20260101000000000061), (7, 1000000000)");
  }
  std::string Index(const char* orders) {
    return save().GetUniqueCodeIndex(Parameters{{"sDSN", dsn_}, {"FID", orders}});
  }
};

TEST_F(UniqueCodeIndexTest, NumbersFiveCodesALineInTheCallersOrder) {
  EXPECT_EQ(Index("7,2,5,1,3,6,4"),
            "  1-1000000000|   2-12345678901234567890|   3-          |   4-1234567   |   5-9876543210987654321..| \r\n"
            "  6-20260101000000000061|   7-12345678901| ");
  EXPECT_EQ(
      Index("4,3,2,1,7"),
      "  1-12345678901|   2-9876543210987654321..|   3-12345678901234567890|   4-1234567   |   5-1000000000| \r\n");
}

TEST_F(UniqueCodeIndexTest, LeavesUnknownOrdersOut) {
  EXPECT_EQ(Index("99,1,98"), "  1-1234567   | ");
  EXPECT_EQ(Index("99"), "");
  EXPECT_EQ(Index(""), "");
}

// The index shows 19 of 23 digits; the batch behind it must keep them all.
TEST_F(UniqueCodeIndexTest, KeepsAllDigitsInTheDatabase) {
  const std::vector<std::string> sent = StatementsOf([this] { Index("3"); });
  database_.connection().Execute(sent.front());
  const RecordsetPtr rows = database_.connection().Execute("select * from #temptable");
  EXPECT_EQ(rows->Get("FUniqueCode").ToText(), "98765432109876543210987");
  EXPECT_EQ(rows->fields()[1].precision, 23);
}

TEST_F(UniqueCodeIndexTest, NumbersMoreThanAThousand) {
  std::string keys;
  for (int i = 0; i < 1100; ++i) keys += (i > 0 ? "," : "") + std::to_string(i % 2 == 0 ? 7 : 1);
  const std::string index = Index(keys.c_str());
  EXPECT_TRUE(index.ends_with("1099-1000000000| 1100-1234567   | \r\n")) << index.substr(index.size() - 80);
}

}  // namespace
}  // namespace tessarlorn
