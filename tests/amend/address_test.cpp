#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

class AddressTest : public SampleTest {};

TEST_F(AddressTest, ChangeMakesTheWaybillVoid) {
  Run(R"(
insert into IC_Web2ERPOrders(FID,FConsignee,FZipCode,FMobile,FDeliveryProvince,FLogisticsOrder)
  values (1,'Wang','200000','139',31,'SF1'),(2,'Wang','200000','139',31,'SF2')
insert into IC_SfexpressLogisticsOrder(FID,FMailNo) values (1,'SF1'),(2,'SF2'))");
  const Dictionary keys = Keys("1", {{"FConsignee", "Li"},
                                     {"FZipCode", "210000"},
                                     {"FTelephone", "025"},
                                     {"FMobile", "138"},
                                     {"FDeliveryProvince", 32},
                                     {"FDeliveryCity", "3201"},
                                     {"FDeliveryDistrict", "320101"},
                                     {"FDeliveryAddress", "Street 1"}});
  EXPECT_TRUE(save().ChangeAddess(&keys));
  EXPECT_EQ(Read("select FConsignee,FZipCode,FTelephone,FMobile,FDeliveryProvince,FDeliveryCity,FDeliveryDistrict,"
                 "FDeliveryAddress,isnull(fisLocalChangeAddr,0),FLogisticsOrder from IC_Web2ERPOrders order by FID"),
            "Li|210000|025|138|32|3201|320101|Street 1|1||Wang|200000||139|31|0|0||0|SF2|");
  EXPECT_EQ(Read("select FID from IC_SfexpressLogisticsOrder"), "2|");
  EXPECT_EQ(Read("select FOrderFID,FEntryID,FFieldName,FNewValue from IC_TradeFieldLog order by FID"),
            "1|0|FConsignee|Li|1|0|FTelephone|025|1|0|FDeliveryProvince|32|1|0|FDeliveryCity|3201|"
            "1|0|FDeliveryDistrict|320101|1|0|FDeliveryAddress|Street 1|");
}

TEST_F(AddressTest, QuoteInAValueIsTheDatabasesError) {
  const Dictionary keys = Keys("1", {{"FDeliveryAddress", "King's Road"}});
  EXPECT_EQ(Raised([&] { save().ChangeAddess(&keys); }), "-2147217900 ChangeAddess");
}

}  // namespace
}  // namespace tessarlorn
