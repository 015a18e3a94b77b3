#include <gmock/gmock.h>

#include "support/batches.h"
#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

class ReachabilityTest : public SampleTest {
 protected:
  ReachabilityTest() {
    Run(R"(
insert into IC_Logistics(FItemID,FNumber) values (5,'SF'),(6,'')
insert into IC_Web2ERPOrders(FID,FOrderID,FLogisticsID,FDeliveryProvince,FDeliveryCity,FDeliveryDistrict)
  values (1,'A1',5,31,3101,310101),(2,'A2',5,31,3101,310101),(3,'A3',5,31,3101,0),(4,'A4',6,31,3101,310102),
         (5,'A5',5,32,3201,320101),(6,'A6',5,31,3101,310101),(7,'A7',0,31,3101,310103),(8,'A8',0,31,3101,310104)
insert into IC_Web2ERPOrdersEx(FID,FLotNumber,FAddressReachable)
  values (2,'L2',4),(3,'L3',1),(4,'L4',5),(5,'L5',2),(6,'L6',null),(8,'L8',2))");
  }
};

TEST_F(ReachabilityTest, ListsWhatIsToBeCheckedAndWhatIsNotServed) {
  const std::string all = "1,2,3,4,5,6,7,8";
  EXPECT_EQ(Told(get().GetNeedAddressReachableInfo(dsn_, all)), "FID=1,2,6 FOrderID=A1,A2,A6 ");
  EXPECT_EQ(Told(get().GetNeedAddressReachableInfo(dsn_, "3")), "FID= FOrderID= ");
  EXPECT_EQ(Told(get().GetNoAddressReachableInfo(dsn_, all)), "FID=5 FOrderID=A5 | ");
  EXPECT_EQ(Told(get().GetNoAddressReachableInfo(dsn_, "3")), "");
  EXPECT_FALSE(get().GetNoAddressReachableInfo(dsn_, ""));
}

TEST_F(ReachabilityTest, RecordsStatesAndRemembersCompleteAddressesOfCodedCarriers) {
  Run("insert into IC_SaveAddressReachableInfo(FDeliveryProvince,FDeliveryCity,FDeliveryDistrict,FNumber,FArrive) "
      "values ('32','3201','320101','SF',0),('32','3201','320101','YT',0)");
  EXPECT_TRUE(save().UpdateAddressReachableState(dsn_, "1,2,3,4,5,7", 1));
  EXPECT_EQ(Read("select FID,FOrderID,FLotNumber,FAddressReachable from IC_Web2ERPOrdersEx order by FID"),
            "1|||1|2|null|L2|1|3|null|L3|1|4|null|L4|1|5|null|L5|1|6|null|L6|null|7|||1|8|null|L8|2|");
  EXPECT_EQ(Read("select FDeliveryProvince,FDeliveryCity,FDeliveryDistrict,FNumber,FArrive "
                 "from IC_SaveAddressReachableInfo order by FDeliveryDistrict,FNumber"),
            "31|3101|310101|SF|1|32|3201|320101|SF|1|32|3201|320101|YT|0|");

  Run("delete from IC_Web2ERPOrdersEx where FID=7");
  EXPECT_TRUE(save().UpdateAddressReachableState(dsn_, "1,2,7", 4));
  EXPECT_EQ(Read("select FID,FAddressReachable from IC_Web2ERPOrdersEx where FID in (1,2,3,7) order by FID"),
            "1|4|2|4|3|1|");
}

TEST_F(ReachabilityTest, KeepsTheBatchesBeforeAFailingOne) {
  Run("delete from IC_Web2ERPOrdersEx");
  EXPECT_EQ(Raised([&] { save().UpdateAddressReachableState(dsn_, KeysTo(301, 160), 1); }),
            "-2147217900 TessarLornPickingAndDelivery.clsSaveData.UpdateAddressReachableState");
  EXPECT_EQ(Read("select count(*),max(FID) from IC_Web2ERPOrdersEx"), "150|150|");
  EXPECT_EQ(Read("select count(*) from IC_SaveAddressReachableInfo"), "0|");
}

TEST_F(ReachabilityTest, ReadsTheSwitch) {
  EXPECT_FALSE(get().bIsAddressReachable(dsn_));
  Run("insert into t_SystemProfile(FCategory,FKey,FValue) values ('EC','AddressReachable','1')");
  EXPECT_TRUE(get().bIsAddressReachable(dsn_));
}

class ReachabilityTextTest : public RecordingTest {
 protected:
  /// Answers the query of addresses with as many districts, and the first of them once more.
  static void AnswerDistricts(int count) {
    TheRecording().answer = [count](std::string_view text) {
      std::vector<std::string> districts;
      for (int i = 1; i <= count; ++i) districts.push_back(std::to_string(i));
      districts.push_back("1");
      std::vector<std::vector<const char*>> rows;
      if (text.find("t2.FNumber") != std::string_view::npos) {
        for (const std::string& district : districts) rows.push_back({"P", "C", district.c_str(), "SF"});
      }
      return TextRows({"FDeliveryProvince", "FDeliveryCity", "FDeliveryDistrict", "FNumber"}, rows);
    };
  }
};

TEST_F(ReachabilityTextTest, SendsOrdersAndAddressesInBatches) {
  for (const BatchCase& c : kBatchCases) {
    Events().clear();
    AnswerDistricts(c.keys);
    EXPECT_TRUE(save_.UpdateAddressReachableState(kDsn, KeysTo(c.keys), 1));
    EXPECT_EQ(CountsOf("INSERT INTO IC_Web2ERPOrdersEx(", Events()), c.blocks);
    EXPECT_EQ(CountsOf("insert IC_SaveAddressReachableInfo(", Events()), c.blocks);
    EXPECT_EQ(Events().size(), 2 * c.blocks.size() + 1);
  }
}

}  // namespace
}  // namespace tessarlorn
