#include "tessarlorn/siblings.h"

#include <gmock/gmock.h>

#include "frame/identity.h"
#include "support/batches.h"
#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class SiblingsTest : public RecordingTest {
 protected:
  SiblingsTest() {
    AddDefaultSiblings(host_);
    save_.UpdateDeliveryData(kDsn, "");
    Events().clear();
  }
};

TEST_F(SiblingsTest, WritesOneRowForEachOrder) {
  EXPECT_TRUE(save_.WriteOPLog("12,15", "3005", "0", "it's", ""));
  EXPECT_THAT(OnlyEvent(), StartsWith("INSERT INTO IC_TradeLog "));
  EXPECT_THAT(OnlyEvent(),
              EndsWith("@user=16394 @code=3005 @address=10.0.0.5 @time=2024-05-06 07:08:09 @item=0 @old=it's "
                       "@new= @order0=12 @order1=15"));
  Events().clear();
  EXPECT_FALSE(save_.WriteOPLog("", "3005", "0", "", ""));
  EXPECT_TRUE(Events().empty());
  EXPECT_EQ(Raised([&] { save_.WriteOPLog("12); drop table x--", "3005", "0", "", ""); }),
            "13 TessarLornPickingAndDelivery");
}

TEST_F(SiblingsTest, WritesLongListsInParts) {
  for (const BatchCase& c : kBatchCases) {
    Events().clear();
    EXPECT_TRUE(save_.WriteOPLog(KeysTo(c.keys), "3005", "0", "", ""));
    EXPECT_EQ(CountsOf(" @order", Events()), c.blocks);
  }
}

TEST_F(SiblingsTest, WritesFieldValuesAsTheyAreAndCut) {
  EXPECT_TRUE(save_.WriteSaveOrderLog("", "3", "FShippingRem", "it's"));
  EXPECT_THAT(OnlyEvent(), StartsWith("INSERT INTO IC_TradeFieldLog "));
  EXPECT_THAT(OnlyEvent(), EndsWith("@order=NULL @entry=3 @field=FShippingRem @value=it's @user=16394"));
  Events().clear();
  // The last place is half of a character that takes two.
  EXPECT_TRUE(save_.WriteSaveOrderLog("1", "0", std::string(80, 'f'), std::string(1999, 'v') + "\U00020BB7"));
  EXPECT_THAT(OnlyEvent(),
              HasSubstr("@field=" + std::string(64, 'f') + " @value=" + std::string(1999, 'v') + " @user"));
}

TEST_F(SiblingsTest, ReadsTheLogSwitch) {
  EXPECT_FALSE(save_.IsLogEnable("3005"));
  EXPECT_THAT(OnlyEvent(), EndsWith("FCategory='EC' AND FKey=@key AND FValue='1' @key=TradeLog3005"));
  TheRecording().answer = [](std::string_view) { return TextRows({"n"}, {{"1"}}); };
  EXPECT_TRUE(save_.IsLogEnable("3005"));
}

TEST_F(SiblingsTest, RefusesWhatItCannotDo) {
  const auto call = [&](std::string_view component, std::string_view method, std::vector<Variant> arguments) {
    return Raised([&] { host_.CreateInstance(component)->Call(method, arguments); });
  };
  const std::string source = " TessarLornPickingAndDelivery";
  EXPECT_EQ(call("quorbase.securityinfo", "GetUserName", {}), "438" + source);
  EXPECT_EQ(call("QuorBase.SecurityInfo", "GetCurrentUserID", {"User=x"}), "13" + source);
  EXPECT_EQ(call("QuorBase.SecurityInfo", "GetCurrentUserID", {}), "450" + source);
  EXPECT_EQ(call("TessarMWebOrder.TessarMWebOrderUpdate", "Write", {}), "438" + source);
  EXPECT_EQ(call("TessarMWebOrder.TessarMWebOrderUpdate", "WriteOPLog", {"1", "2"}), "13" + source);
  // Outside a call there is no session to work on; on a fresh instance it is not open.
  EXPECT_EQ(call("TessarMWebOrder.TessarMWebOrderUpdate", "IsLogEnable", {"1"}), "91" + source);
  EXPECT_EQ(Raised([&] { clsSaveData(host_).IsLogEnable("1"); }), "91" + source);
}

}  // namespace
}  // namespace tessarlorn
