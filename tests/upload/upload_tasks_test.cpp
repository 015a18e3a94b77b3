#include <gmock/gmock.h>

#include "support/recording_driver.h"
#include "support/sample_test.h"
#include "tessarlorn/operations.h"

namespace tessarlorn {
namespace {

class UploadTasksTest : public SampleTest {
 protected:
  UploadTasksTest() {
    Run("INSERT INTO IC_WebshopToStorage (FID, FWebshopID, FWebShopName, FWebShopType) "
        "VALUES (1, 31, 'Tea', 2), (2, 32, 'Cups', 2), (3, 33, 'Pots', 5) "
        "INSERT INTO IC_Web2ERPOrders (FID, FWebshopID) VALUES (1, 31), (2, 32), (3, 33), (4, 99) "
        "INSERT INTO IC_Web2ERPOrdersEntry (FEntryID, FID, FSiteOrderID, FChildOrderID) "
        "VALUES (1, 1, 'S', 'c1'), (2, 1, 'S', 'c2'), (3, 2, 'S', 'c3'), (4, 3, 'W', 'c4')");
  }
  /// Through the table of operations, as every host calls.
  Variant Invoke(std::string_view name, std::vector<Variant>& arguments) {
    const Operation& operation = *FindOperation(name);
    arguments.insert(arguments.begin(), dsn_);
    return ServiceObject(host_, operation.service).Invoke(operation, arguments);
  }
};

TEST_F(UploadTasksTest, TellsWhetherShopsAreOfOneType) {
  using Case = std::tuple<const char*, bool, int>;
  for (const auto& [orders, same, type] : {Case{"1", true, 2}, Case{"1,2", true, 2}, Case{"3,4", true, 5},
                                           Case{"4", true, 0}, Case{"", true, 0}, Case{"2,3", false, 77}}) {
    std::vector<Variant> arguments = {orders, 77};
    EXPECT_EQ(Invoke("CheckWebShopTypeSameByOrders", arguments).ToBool(), same) << orders;
    EXPECT_EQ(arguments[2].type_name(), "Integer");
    EXPECT_EQ(arguments[2].ToInt32(), type) << orders;
  }
  EXPECT_EQ(get().GetWebShopType(dsn_, "33"), 5);
  EXPECT_EQ(get().GetWebShopType(dsn_, "99"), 0);
}

TEST_F(UploadTasksTest, AddsTheChildOrdersOfASplitOrder) {
  std::vector<Variant> arguments = {1, "S", Variant()};
  EXPECT_TRUE(Invoke("GetSplitChrildOrderIDs", arguments).ToBool());
  EXPECT_EQ(arguments[3].ToText(), "c1,c2");
  arguments = {2, "S", "c0,"};
  EXPECT_TRUE(Invoke("GetSplitChrildOrderIDs", arguments).ToBool());
  EXPECT_EQ(arguments[3].ToText(), "c0,c3");
  arguments = {3, "S", "c0,"};
  EXPECT_TRUE(Invoke("GetSplitChrildOrderIDs", arguments).ToBool());
  EXPECT_EQ(arguments[3].ToText(), "c0");
  for (const Variant& order : {Variant(3), Variant(0)}) {
    arguments = {order, "W", "as it was"};
    EXPECT_FALSE(Invoke("GetSplitChrildOrderIDs", arguments).ToBool());
    EXPECT_EQ(arguments[3].ToText(), "as it was");
  }
}

TEST_F(UploadTasksTest, FindsTheUsersUnfinishedTask) {
  Run("INSERT INTO t_User (FUserID, FName) VALUES (16395, 'Ann'), (16396, 'Bob') "
      "INSERT INTO IC_UploadWebOrderTaskFlow (FUserName, FUpStatus) VALUES ('Ann', 1), ('Ann', 0), ('Bob', 1)");
  EXPECT_TRUE(get().isRunUploadOrder(database_.Dsn(16395)));
  EXPECT_FALSE(get().isRunUploadOrder(database_.Dsn(16396)));
  EXPECT_FALSE(get().isRunUploadOrder(database_.Dsn(16397)));
}

using UploadTaskSessionTest = RecordingTest;

// The session's own connection is the idle one; the alternate one is opened.
TEST_F(UploadTaskSessionTest, AsksOnTheAlternateConnection) {
  EXPECT_FALSE(get_.isRunUploadOrder(kDsn));
  ASSERT_EQ(Events().size(), 2U);
  EXPECT_EQ(Events()[0], "open");
  EXPECT_TRUE(Events()[1].ends_with("fuserID= 16394) and FUpStatus=0 \r\n")) << Events()[1];
}

}  // namespace
}  // namespace tessarlorn
