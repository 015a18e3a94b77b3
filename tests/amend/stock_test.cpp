#include <algorithm>
#include <gmock/gmock.h>

#include "support/batches.h"
#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

class StockTest : public SampleTest {
 protected:
  StockTest() {
    Run(R"(
insert into t_Stock(FItemID,FName) values (10,'North'),(20,'South')
insert into IC_Web2ERPOrdersEntry(FEntryID,FID,FItemID,FStockID,FSPID)
  values (31,3,501,10,7),(32,3,502,0,8),(51,5,503,20,9),(61,6,504,10,7)
insert into t_SystemProfile(FCategory,FKey,FValue) values ('EC','TradeLog2001','1'))");
  }
};

TEST_F(StockTest, MovesLinesAndLogsEachWithBothWarehouses) {
  EXPECT_TRUE(save().ChangeStock(Keys("3,5", {{"FStockID", 20}})));
  EXPECT_EQ(Read("select FEntryID,FStockID,FSPID from IC_Web2ERPOrdersEntry order by FEntryID"),
            "31|20|0|32|20|0|51|20|0|61|10|7|");
  EXPECT_EQ(Read("select FOrderFID,FOPUserID,FOPCode,FUserIP,FItemID,FOldValue,FNewValue from IC_TradeLog order by "
                 "FOrderFID,FItemID"),
            "3|7|2001|10.0.0.5|501|North|South|3|7|2001|10.0.0.5|502|null|South|"
            "5|7|2001|10.0.0.5|503|South|South|");
  EXPECT_EQ(Read("select count(*) from IC_TradeLog where FOPTime = '2024-05-06 07:08:09'"), "3|");
}

TEST_F(StockTest, LogsNothingWhereTheCodeIsNotEnabled) {
  Run("update t_SystemProfile set FValue='0' where FKey='TradeLog2001'");
  EXPECT_TRUE(save().ChangeStock(Keys("3", {{"FStockID", "20"}})));
  EXPECT_EQ(Read("select FStockID from IC_Web2ERPOrdersEntry where FID=3"), "20|20|");
  EXPECT_EQ(Read("select count(*) from IC_TradeLog"), "0|");
}

TEST_F(StockTest, TellsWhetherALineHasNoWarehouse) {
  const std::pair<const char*, bool> cases[] = {{"3", true}, {"5", false}, {"99", false}};
  for (const auto& [order, answer] : cases) {
    EXPECT_EQ(get().bExistStock(Keys(order)), answer) << order;
  }
}

using StockTextTest = RecordingTest;

TEST_F(StockTextTest, AsksForTheClientOnlyWhenItIsLogged) {
  const Dictionary keys{{"sDSN", kDsn}, {"FID", "12"}, {"FStockID", "20"}};
  host_.SetReadTcp([](std::span<char> buffer, std::span<char>) {
    std::fill(buffer.begin(), buffer.end(), '1');
    return 1;
  });
  EXPECT_EQ(Raised([&] { save_.ChangeStock(&keys); }), "5 ChangeStock");
  EXPECT_THAT(Events(), testing::ElementsAre("IsLogEnable(2001)"));
  TheRecording().log_enabled = false;
  EXPECT_TRUE(save_.ChangeStock(&keys));
}

}  // namespace
}  // namespace tessarlorn
