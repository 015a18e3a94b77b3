#include "support/sample_test.h"

namespace tessarlorn {
namespace {

class PrintDataTest : public SampleTest {
 protected:
  PrintDataTest() {
    Run("INSERT INTO IC_Area (FID, FName, FName_CHT) VALUES (1, N'广东', N'廣東'), (2, N'深圳', N'深圳市'), "
        "(3, N'罗湖', N'羅湖') "
        "INSERT INTO t_ICItem (FItemID, FNumber, FName, FModel) VALUES (1, 'A1', 'Tea', '250 g') "
        "INSERT INTO t_MeasureUnit (FMeasureUnitID, FItemID, FName) VALUES (4, 4, N'包') "
        "INSERT INTO IC_Web2ERPOrders (FID, FOrderID, FUniqueCode, FDeliveryProvince, FDeliveryCity, "
        "FDeliveryDistrict, FPrintPickCount, FPrintSendCount, FPrintExpressCount, FPrintSendList) "
        "VALUES (1, 'O1', 101, 1, 2, 3, 2, 3, 9, 1), (2, 'O2', 102, 0, 2, 0, 3, 4, 9, 0), "
        "(3, 'O3', 103, 0, 0, 0, 4, 2, 9, 2) "
        "INSERT INTO IC_Web2ERPOrdersEntry (FEntryID, FID, FItemID, FUnitID, FQuantity, FAmount) "
        "VALUES (22, 2, 1, 4, 1, 5), (21, 2, 1, 4, 2, 7.25), (11, 1, 1, 4, 1, 1.5) "
        "INSERT INTO ICPrintMaxCount (FID, FName, FPrintControlOrNo, FPrintMaxCount) "
        "VALUES (10143011, 'pick', 1, 3), (10143012, 'note', 1, 3), (10143013, 'waybill', 0, 1)");
  }
  /// The orders that were printed too often, with their counter.
  std::string OverMax(const Variant& type, const char* orders = "1,2,3") {
    Dictionary parameters{{"sDSN", dsn_}, {"FID", orders}};
    if (!type.is_empty()) parameters.SetValue("PrintID", type);
    return Told(get().GetOverMaxPrintCountBillInfo(&parameters));
  }
};

TEST_F(PrintDataTest, SumsOrders) {
  EXPECT_EQ(Told(get().GetSumRecordsetDataForDelivery(Keys("2,3")), {"FTotalAmount"}), "12.2500 | ");
}

TEST_F(PrintDataTest, ListsLinesByOrderWithAreasInTheCallersLanguage) {
  const char* const simplified = "1 11 广东 深圳 罗湖 | 2 21  深圳  | 2 22  深圳  | ";
  const char* const traditional = "1 11 廣東 深圳市 羅湖 | 2 21  深圳市  | 2 22  深圳市  | ";
  for (const auto& [language, expected] :
       {std::pair{"CHS", simplified}, {" chs ", simplified}, {"CHT", traditional}, {"ENG", traditional}}) {
    const Dictionary parameters{{"sDSN", database_.Dsn(16394, std::string("Language=") + language + ";")},
                                {"FID", "2,1"}};
    EXPECT_EQ(Told(get().GetPrintRecordsetForDelivery(&parameters),
                   {"FID", "FIndex", "FDeliveryProvince", "FDeliveryCity", "FDeliveryDistrict"}),
              expected)
        << language;
  }
}

TEST_F(PrintDataTest, ReportsOrdersAtTheLimitAndAbove) {
  EXPECT_EQ(OverMax(10143011),
            "FOrderID=O2 FUniqueCode=102 FPrintPickCount=3 FPrintMaxCount=3 | "
            "FOrderID=O3 FUniqueCode=103 FPrintPickCount=4 FPrintMaxCount=3 | ");
  for (const Variant& type : {Variant("10143012"), Variant(" 10143012"), Variant("10143012.0"), Variant(10143012.0)}) {
    EXPECT_EQ(OverMax(type),
              "FOrderID=O1 FUniqueCode=101 FPrintSendCount=3 FPrintMaxCount=3 | "
              "FOrderID=O2 FUniqueCode=102 FPrintSendCount=4 FPrintMaxCount=3 | ");
  }
  // Not limited, without a limit at all, and no such type.
  for (const Variant& type : {Variant(10143013), Variant(10143014), Variant(10143015), Variant("note"), Variant()}) {
    EXPECT_TRUE(OverMax(type).empty()) << type.ToText();
  }
  EXPECT_TRUE(OverMax(10143011, "").empty());
  Run("UPDATE ICPrintMaxCount SET FPrintMaxCount = 2 WHERE FID = 10143011");
  EXPECT_EQ(OverMax(10143011, "1"), "FOrderID=O1 FUniqueCode=101 FPrintPickCount=2 FPrintMaxCount=2 | ");
}

}  // namespace
}  // namespace tessarlorn
