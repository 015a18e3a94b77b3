#include "hosts/objects/recordset/row_order.h"

#include <gtest/gtest.h>

#include "objects/object_support.h"
#include "support/test_database.h"

namespace tessarlorn {
namespace {

TEST(RowOrderTest, SortsByFieldsInTheirTurn) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "1,2,3,4,5"},
      {" ", "1,2,3,4,5"},
      {"FBuyer", "4,3,2,5,1"},
      {"fbuyer desc", "1,5,2,3,4"},
      {"FCost, FID", "4,5,2,1,3"},
      {"FCost DESC,FID\tDESC", "3,1,2,5,4"},
      // Ties stay as they are.
      {"FPaid", "4,2,5,1,3"},
      {"FDate, FWeight DESC", "3,4,5,1,2"},
      {"[Remark, own], FID DESC", "5,2,4,3,1"},
      {"[FWeight] ASC", "4,1,2,3,5"},
      {"FData", "1,2,3,4,5"},
  };
  for (const auto& [order, keys] : cases) {
    const auto rows = Rows();
    Put(*rows, "Sort", {order});
    EXPECT_EQ(Keys(*rows), keys) << order;
  }
}

TEST(RowOrderTest, RefusesWhatCannotBeRead) {
  for (const char* const order : {",", "FID,", "FID DOWN", "FID DESC ASC", "[FID", "Remark, own"}) {
    const std::int32_t error = Number([&] { Put(*Rows(), "Sort", {order}); });
    EXPECT_EQ(error, std::string_view(order) == "Remark, own" ? 3265 : 3001) << order;
  }
}

/// What a client sorts stands as the database would have sorted it.
TEST(RowOrderTest, SortsAsTheDatabaseDoes) {
  const TestDatabase database(Reach::kInProcess);
  const auto connection = OpenConnection(database.string());
  connection->Execute(
      "CREATE TABLE t (FID int, name nvarchar(20), flag bit, cost decimal(9,2), at datetime, big bigint, data varbinary(4));"
      "INSERT t VALUES (1, N'b_a', 1, 2.5, '2024-01-02', 9000000000, 0x02), (2, N'B', 0, -1, NULL, 5, 0x01FF),"
      "(3, N'ba', NULL, 10, '1899-01-01', -9000000000, 0x), (4, N'张', 1, NULL, '2024-01-02 10:00', NULL, NULL),"
      "(5, NULL, 0, 9.99, '2023-12-31', 0, 0x01), (6, N'Ａ', 1, 2.5, '1900-01-01', 70, 0xFF),"
      "(7, N'b  ', 0, 3, '1900-01-02', 8, 0x0201), (8, N'É', 1, 4, '1900-01-03', 1, 0x03), (9, N'é ', 1, 4, NULL, 2, 0x04),"
      "(10, N'', 1, 4, NULL, 2, 0x05), (11, N'[', 1, 4, NULL, 2, 0x06), (12, N'~', 1, 4, NULL, 2, 0x07)");
  const auto rows = Rows(connection->Execute("SELECT * FROM t ORDER BY FID"));
  for (const char* const field : {"name", "flag", "cost", "at", "big", "data"}) {
    for (const char* const direction : {"", " DESC"}) {
      const std::string order = std::string(field) + direction + ", FID";
      Put(*rows, "Sort", {order});
      EXPECT_EQ(Keys(*rows), Keys(*Rows(connection->Execute("SELECT * FROM t ORDER BY " + order)))) << order;
    }
  }
}

}  // namespace
}  // namespace tessarlorn
