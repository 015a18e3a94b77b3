#include <gmock/gmock.h>

#include "support/sample_test.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;

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
  /// The numbers of the orders that were printed too often, with their counter.
  std::vector<std::string> OverMax(const Variant& type, const char* orders = "1,2,3") {
    Dictionary parameters{{"sDSN", dsn_}, {"FID", orders}};
    if (!type.is_empty()) parameters.SetValue("PrintID", type);
    std::vector<std::string> found;
    for (const Variant& order : get().GetOverMaxPrintCountBillInfo(&parameters)) {
      const Dictionary& entry = *order.ToDictionary();
      EXPECT_EQ(entry.size(), 4U);
      found.push_back(entry.GetValue("FOrderID").ToText() + " " + entry.GetValue("FUniqueCode").ToText() + " " +
                      entry.At(3).first + " " + entry.At(3).second.ToText() + " of " +
                      entry.GetValue("FPrintMaxCount").ToText());
    }
    return found;
  }
};

TEST_F(PrintDataTest, SumsOrders) {
  const Dictionary parameters{{"sDSN", dsn_}, {"FID", "2,3"}};
  const RecordsetPtr sums = get().GetSumRecordsetDataForDelivery(&parameters);
  ASSERT_EQ(sums->RecordCount(), 1U);
  EXPECT_EQ(sums->Get("FTotalAmount").ToText(), "12.2500");
}

TEST_F(PrintDataTest, ListsLinesByOrderWithAreasInTheCallersLanguage) {
  struct Case {
    const char* language;
    std::vector<std::string> rows;
  };
  for (const auto& [language, expected] : {Case{"CHS", {"1/11 广东 深圳 罗湖", "2/21  深圳 ", "2/22  深圳 "}},
                                           Case{" chs ", {"1/11 广东 深圳 罗湖", "2/21  深圳 ", "2/22  深圳 "}},
                                           Case{"CHT", {"1/11 廣東 深圳市 羅湖", "2/21  深圳市 ", "2/22  深圳市 "}},
                                           Case{"ENG", {"1/11 廣東 深圳市 羅湖", "2/21  深圳市 ", "2/22  深圳市 "}}}) {
    const Dictionary parameters{{"sDSN", database_.Dsn(16394, std::string("Language=") + language + ";")},
                                {"FID", "2,1"}};
    std::vector<std::string> found;
    const RecordsetPtr rows = get().GetPrintRecordsetForDelivery(&parameters);
    for (; !rows->eof(); rows->MoveNext()) {
      found.push_back(rows->Get("FID").ToText() + "/" + rows->Get("FIndex").ToText() + " " +
                      rows->Get("FDeliveryProvince").ToText() + " " + rows->Get("FDeliveryCity").ToText() + " " +
                      rows->Get("FDeliveryDistrict").ToText());
    }
    EXPECT_EQ(found, expected) << language;
  }
}

TEST_F(PrintDataTest, ReportsOrdersAtTheLimitAndAbove) {
  EXPECT_THAT(OverMax(10143011), ElementsAre("O2 102 FPrintPickCount 3 of 3", "O3 103 FPrintPickCount 4 of 3"));
  for (const Variant& type : {Variant("10143012"), Variant(" 10143012"), Variant("10143012.0"), Variant(10143012.0)}) {
    EXPECT_THAT(OverMax(type), ElementsAre("O1 101 FPrintSendCount 3 of 3", "O2 102 FPrintSendCount 4 of 3"));
  }
  // Not limited, without a limit at all, and no such type.
  for (const Variant& type : {Variant(10143013), Variant(10143014), Variant(10143015), Variant("note"), Variant()}) {
    EXPECT_TRUE(OverMax(type).empty()) << type.ToText();
  }
  EXPECT_TRUE(OverMax(10143011, "").empty());
  Run("UPDATE ICPrintMaxCount SET FPrintMaxCount = 2 WHERE FID = 10143011");
  EXPECT_THAT(OverMax(10143011, "1"), ElementsAre("O1 101 FPrintPickCount 2 of 2"));
}

}  // namespace
}  // namespace tessarlorn
