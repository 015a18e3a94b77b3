#include <gmock/gmock.h>

#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using RemarksTest = RecordingTest;

TEST_F(RemarksTest, DeliveryRemarkIsAppendedWithModeOneOnly) {
  Dictionary parameters{{"sDSN", kDsn}, {"FID", "12,15"}, {"FShippingRem", "late"}, {"Mode", "1"}};
  EXPECT_TRUE(save_.DeliveryRemark(&parameters));
  EXPECT_THAT(Events(),
              ElementsAre("WriteSaveOrderLog(12,0,FShippingRem,late)", "WriteSaveOrderLog(15,0,FShippingRem,late)",
                          HasSubstr("\r\nSET    FShippingRem = FShippingRem + '\\late'\r\nWhere FID in (12,15)")));
  for (const Variant& mode : {Variant(0), Variant(""), Variant(true), Variant()}) {
    Events().clear();
    parameters.SetValue("Mode", mode);
    EXPECT_TRUE(save_.DeliveryRemark(&parameters));
    EXPECT_THAT(Events().back(), HasSubstr("\r\nSET    FShippingRem ='late'\r\n"));
  }
  Events().clear();
  parameters.SetValue("Mode", "append");
  EXPECT_EQ(Raised([&] { save_.DeliveryRemark(&parameters); }), "13 OrderRemark");
  EXPECT_TRUE(Events().empty());
}

class RemarkEffectsTest : public SampleTest {
 protected:
  RemarkEffectsTest() {
    Run("insert into IC_Web2ERPOrders(FID,FSellerMessage,FDeliveryRemark) values (1,'A','a'),(2,'','b'),(3,'C','c')");
  }
};

TEST_F(RemarkEffectsTest, SellersRemarkIsReplacedOrAppended) {
  const std::pair<Variant, const char*> cases[] = {{1, "A\\B|\\B|C|"}, {"2", "A\\B|\\B|C|"}, {true, "A\\B|\\B|C|"},
                                                   {0, "B|B|C|"},      {"0", "B|B|C|"},      {"", "B|B|C|"}};
  for (const auto& [mode, after] : cases) {
    Run("update IC_Web2ERPOrders set FSellerMessage = case FID when 1 then 'A' when 2 then '' else 'C' end");
    EXPECT_TRUE(save().OrderRemark(Keys("1,2", {{"FSellerMessage", "B"}, {"Mode", mode}})));
    EXPECT_EQ(Read("select FSellerMessage from IC_Web2ERPOrders order by FID"), after) << mode.ToText();
  }
  const Dictionary wrong = Keys("1", {{"FSellerMessage", "B"}, {"Mode", "behind"}});
  EXPECT_EQ(Raised([&] { save().OrderRemark(&wrong); }), "13 OrderRemark");
}

TEST_F(RemarkEffectsTest, WishesAreReplacedAndLogged) {
  EXPECT_TRUE(save().DeRemark(Keys("1,3", {{"FDeliveryRemark", "noon"}, {"Mode", 1}})));
  EXPECT_EQ(Read("select FDeliveryRemark from IC_Web2ERPOrders order by FID"), "noon|b|noon|");
  EXPECT_EQ(Read("select FOrderFID,FEntryID,FFieldName,FNewValue from IC_TradeFieldLog order by FOrderFID"),
            "1|0|FDeliveryRemark|noon|3|0|FDeliveryRemark|noon|");
  EXPECT_FALSE(save().DeRemark(Keys("1")));
}

}  // namespace
}  // namespace tessarlorn
