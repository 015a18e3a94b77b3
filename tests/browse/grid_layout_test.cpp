#include <gmock/gmock.h>

#include "support/recording_driver.h"
#include "support/sample_test.h"

namespace tessarlorn {
namespace {

class GridLayoutTest : public SampleTest {
 protected:
  void AddField(int type, int page, const std::string& key, int position, const std::string& more = "1, '', '', ''") {
    Run("INSERT INTO ICClassTableInfo (FClassTypeID, FPage, FKey, FCaption_CHS, FCaption_CHT, FTabIndex, FNeedSave, "
        "FLookUpList, FSRCFieldName, FDSPFieldName) VALUES (" +
        std::to_string(type) + ", " + std::to_string(page) + ", '" + key + "', '" + key + " simplified', '" + key +
        " traditional', " + std::to_string(position) + ", " + more + ")");
  }
  std::string Language(const char* language) { return database_.Dsn(16394, std::string("Language=") + language + ";"); }
  static std::string Captions(const RecordsetPtr& rows) { return Told(rows, {"FCaption"}); }
};

TEST_F(GridLayoutTest, ListsFieldsByPageAndPositionInTheCallersLanguage) {
  AddField(1014301, 2, "FItemName", 1);
  AddField(1014301, 1, "FOrderID", 7);
  AddField(1014301, 1, "FID", 3);
  AddField(1014302, 1, "FOther", 1);
  EXPECT_EQ(Captions(get().GetTemplateData(Parameters{{"sDSN", Language("ENG")}})),
            "FID simplified | FOrderID simplified | FItemName simplified | ");
  EXPECT_EQ(Captions(get().GetTemplateData(Parameters{{"sDSN", Language(" cht")}})),
            "FID traditional | FOrderID traditional | FItemName traditional | ");
}

TEST_F(GridLayoutTest, OffersSavedHeaderFieldsAndSomeOthersForFilters) {
  AddField(1014301, 1, "FOrderID", 9);
  AddField(1014301, 1, "FID", 1);
  AddField(1014301, 1, "FTextMulti", 2);
  AddField(1014301, 1, "FUnsaved", 3, "0, '', '', ''");
  AddField(1014301, 1, "FLotNumber", 4, "0, '', '', ''");
  AddField(1014301, 2, "FPrice", 5);
  AddField(1014301, 2, "FBarCode", 6);
  AddField(1014302, 1, "FNumber", 7);
  EXPECT_EQ(Captions(get().GetUserDefineFilterTemplate(Language("CHT"))),
            "FLotNumber traditional | FBarCode traditional | FOrderID traditional | ");
  EXPECT_EQ(get().GetUserDefineFilterTemplate(""), nullptr);
}

TEST_F(GridLayoutTest, ListsTheChoicesOfALookupField) {
  Run("INSERT INTO t_Stock (FItemID, FName) VALUES (1, 'Main'), (2, 'Shop')");
  AddField(1014301, 2, "FStockID", 1, "1, 'SELECT FItemID, FName FROM t_Stock WHERE FItemID < 9', 'FItemID', 'FName'");
  AddField(1014301, 2, "FNone", 2, "1, 'SELECT FItemID FROM t_Stock WHERE FItemID > 9', 'FItemID', 'FName'");
  AddField(1014301, 2, "FBlank", 3, "1, '  ', 'FItemID', 'FName'");
  AddField(1014301, 2, "FSmall", 4, "1, 'select FItemID from t_Stock', 'FItemID', 'FName'");
  EXPECT_EQ(get().GetListBySQL(dsn_, "1014301_FStockID"), "Main_1|Shop_2");
  EXPECT_EQ(get().GetListBySQL(dsn_, "1014301_FStockID_2"), "Main_1|Shop_2");
  for (const char* nothing : {"1014301_FNone", "1014301_FBlank", "1014301_FUnknown", "1014301_", "0_FStockID", ""}) {
    EXPECT_EQ(get().GetListBySQL(dsn_, nothing), "") << nothing;
  }
  const std::string source = " TessarLornPickingAndDelivery.clsGetData.GetListBySQL";
  EXPECT_EQ(Raised([&] { get().GetListBySQL(dsn_, "1014301"); }), "9" + source);
  EXPECT_EQ(Raised([&] { get().GetListBySQL(dsn_, "1014301_FSmall"); }), "5" + source);
}

TEST_F(GridLayoutTest, CutsALongListAtAThousandCharacters) {
  Run("DECLARE @i int = 1000 WHILE @i < 1100 BEGIN INSERT INTO t_Stock (FItemID, FName) VALUES (@i, 'Warehouse') "
      "SET @i = @i + 1 END");
  AddField(1014301, 2, "FStockID", 1, "1, 'SELECT * FROM t_Stock', 'FItemID', 'FName'");
  const std::string list = get().GetListBySQL(dsn_, "1014301_FStockID");
  EXPECT_EQ(list.size(), 999U);
  EXPECT_TRUE(list.starts_with("Warehouse_1000|Warehouse_1001|"));
  EXPECT_TRUE(list.ends_with("|Warehouse_1064|Warehouse_1065|Warehouse")) << list.substr(960);
}

}  // namespace
}  // namespace tessarlorn
