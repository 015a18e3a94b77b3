#include <algorithm>
#include <utility>

#include "support/sample_test.h"

namespace tessarlorn {
namespace {

class ProvidersTest : public SampleTest {
 protected:
  ProvidersTest() {
    Run(R"(
insert into IC_WebtplFlat(FID,FWebTplName,FWebTplType) values (1,'Swift',4),(2,'Harbour',3),(3,'Idle',5)
insert into IC_WebtplToStorage(FID,FWebtplID,FWebtplName,FWebtplType,FtplCategory,FStockID,FUnUsed,FIsbad)
  values (1,'W2','Two',3,'A',20,0,0),(2,'W1','One',3,'A',10,0,0),(3,'W3','Bad',3,'A',30,0,1),
         (4,'W4','Off',3,'A',40,1,0),(5,'W5','Five',4,'B',50,0,0))");
  }
};

TEST_F(ProvidersTest, ListsProvidersWithAWarehouseByType) {
  EXPECT_EQ(Told(get().GetTplCompany(Parameters{{"sDSN", dsn_}}), {"FWebTplName"}), "Harbour | Swift | ");
}

TEST_F(ProvidersTest, ListsEnabledWarehousesAndDamagedGoodsOnRequest) {
  Dictionary keys{{"sDSN", dsn_}, {"FWebtplType", 3}};
  EXPECT_EQ(Told(get().GetTplStock(&keys, false), {"FWebtplID"}), "W1 | W2 | ");
  EXPECT_EQ(Told(get().GetTplStock(&keys, true), {"FWebtplName"}), "One | Two | Bad | ");
  keys.SetValue("FWebtplType", "");
  EXPECT_EQ(get().GetTplStock(&keys, true), nullptr);
}

TEST_F(ProvidersTest, ListsEveryEnabledWarehouseWithItsStock) {
  const Vector warehouses = get().GetTplCompanyNew(dsn_).value();
  std::vector<std::string> found;
  for (const Variant& warehouse : warehouses) found.push_back(Told(warehouse));
  ASSERT_EQ(found.size(), 4U);
  EXPECT_EQ(found.back(), "FWebtplType=4 FWebtplID=W5 FStockID=50 ");
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found.front(), "FWebtplType=3 FWebtplID=W1 FStockID=10 ");
}

}  // namespace
}  // namespace tessarlorn
