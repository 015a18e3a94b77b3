#include "samples/master_data.h"

#include <array>
#include <functional>
#include <string_view>

#include "samples/areas.h"
#include "samples/goods.h"
#include "samples/insert_rows.h"
#include "samples/outside_warehouses.h"

namespace tessarlorn::cli {
namespace {

constexpr int kAdministrator = 16394;
constexpr int kFirstClerk = kAdministrator + 1;
/// Of the employees the first ones are users as well, under the same number, so that the list finds a name for the
/// columns that are joined to employees but filled with users.
constexpr std::array<std::string_view, 18> kPeople = {
    "陈伟", "李娜", "王芳",   "刘洋", "赵敏",   "孙磊", "周静", "吴强",   "郑丽",
    "冯涛", "何婷", "欧阳明", "许波", "司马青", "林峰", "郭霞", "诸葛云", "唐宁",
};
constexpr int kClerks = 10;

constexpr int kMainStock = 201;
constexpr int kManagedStock = 202;
constexpr int kCourier = 303;

struct ShopRow {
  int id;
  std::string_view name;
  int type;
  int stock;
  int own_carrier = 0;
};
constexpr ShopRow kShops[] = {
    {101, "云杉家居旗舰店", 1, kMainStock},    {102, "云杉家居专卖店", 2, 203, kCourier},
    {103, "青禾母婴旗舰店", 1, kManagedStock}, {104, "山岚户外专营店", 3, kMainStock, kCourier},
    {105, "谷雨食品商城", 4, kManagedStock},   {106, "自营官网", 0, 203},
};

void FillPeople(Connection& connection) {
  FillIfEmpty(connection, "t_Emp", "FItemID,FNumber,FName", [](InsertRows& rows) {
    for (std::size_t i = 0; i < kPeople.size(); ++i) {
      rows.Add(kFirstClerk + static_cast<int>(i), "E" + std::to_string(1001 + i), kPeople[i]);
    }
  });
  FillIfEmpty(connection, "t_User", "FUserID,FName", [](InsertRows& rows) {
    rows.Add(kAdministrator, "系统管理员");
    for (int i = 0; i < kClerks; ++i) rows.Add(kFirstClerk + i, kPeople[static_cast<std::size_t>(i)]);
  });
  FillIfEmpty(connection, "t_Group", "FGroupID,FUserID", [](InsertRows& rows) {
    rows.Add(1, kAdministrator);
    for (int i = 0; i < kClerks; ++i) rows.Add(2, kFirstClerk + i);
  });
  // Each clerk sees two or three neighbouring shops, the last one none.
  FillIfEmpty(connection, "IC_WebShopAccessData", "FUserID,FWebShopID,FIsAccess", [](InsertRows& rows) {
    for (int i = 0; i + 1 < kClerks; ++i) {
      for (int shop = 0; shop < static_cast<int>(std::size(kShops)); ++shop) {
        const bool seen = shop == i % 6 || shop == (i + 1) % 6 || (i > 5 && shop == (i + 2) % 6);
        rows.Add(kFirstClerk + i, kShops[shop].id, seen ? 1 : 0);
      }
    }
  });
}

void FillStocks(Connection& connection) {
  FillIfEmpty(connection, "t_Stock", "FItemID,FNumber,FName,FIsStockMgr,FSPGroupID", [](InsertRows& rows) {
    rows.Add(kMainStock, "01", "中心仓", 0, 0);
    rows.Add(kManagedStock, "02", "立体仓", 1, 1);
    rows.Add(203, "03", "北方仓", 0, 0);
    rows.Add(outside_stock::kEast, "04", "外包仓", 0, 0);
    rows.Add(205, "05", "食品冷藏仓", 1, 2);
    rows.Add(outside_stock::kEastBad, "06", "外包次品仓", 0, 0);
    rows.Add(outside_stock::kSouth, "07", "外包南方仓", 0, 0);
    rows.Add(outside_stock::kClosed, "08", "外包旧仓", 0, 0);
  });
  FillIfEmpty(connection, "t_StockPlaceGroup", "FSPGroupID,FName,FDefaultSPID", [](InsertRows& rows) {
    rows.Add(1, "立体仓货位", 1001);
    rows.Add(2, "冷藏仓货位", 2001);
  });
  FillIfEmpty(connection, "t_StockPlace", "FSPID,FSPGroupID,FNumber,FName", [](InsertRows& rows) {
    for (int group = 1; group <= 2; ++group) {
      for (int i = 1; i <= 12; ++i) {
        const std::string number =
            std::string(1, static_cast<char>('A' + (i - 1) / 4)) + "-0" + std::to_string((i - 1) % 4 + 1);
        rows.Add(group * 1000 + i, group, number, (group == 1 ? "立体" : "冷藏") + number);
      }
    }
  });
}

void FillGoods(Connection& connection) {
  FillIfEmpty(connection, "t_MeasureUnit", "FMeasureUnitID,FItemID,FUnitGroupID,FNumber,FName,FCoefficient",
              [](InsertRows& rows) {
                for (const Unit& unit : Units()) {
                  rows.Add(unit.id, unit.id, unit.group, unit.number, unit.name, Fixed{unit.coefficient, 4});
                }
              });
  FillIfEmpty(connection, "t_ICItem",
              "FItemID,FNumber,FName,FModel,FUnitID,FSalePrice,FGrossWeight,FMaund,FBatchManager,FSerialClassID,"
              "FDefaultLoc,FSPID",
              [](InsertRows& rows) {
                for (const std::span<const Goods> part : {SampleGoods(), SamplePriceDifferences(), SamplePackages()}) {
                  for (const Goods& goods : part) {
                    const bool managed = goods.tracking == Tracking::kBatch;
                    rows.Add(goods.id, goods.number, goods.name, goods.model, goods.unit, Fixed{goods.price_cents, 2},
                             Fixed{goods.weight, 4}, goods.weight_unit, managed ? 1 : 0,
                             goods.tracking == Tracking::kSerial ? 1 : 0, managed ? kManagedStock : kMainStock,
                             managed ? 1001 + goods.id % 12 : 0);
                  }
                }
              });
  FillIfEmpty(connection, "ic_goodstomateriel", "FID,FWebGoodsCode,FMaterielCode,FIsPriceChange", [](InsertRows& rows) {
    for (const Goods& goods : SampleGoods()) rows.Add(goods.id, goods.number, goods.number, 0);
    for (const Goods& goods : SamplePriceDifferences()) rows.Add(goods.id, goods.number, goods.number, 1);
  });
  FillIfEmpty(connection, "t_AuxItem", "FItemID,FName", [](InsertRows& rows) {
    for (const Attribute& attribute : SampleAttributes()) rows.Add(attribute.id, attribute.name);
  });
  FillIfEmpty(connection, "IC_CDPSActivity", "FActivityID,FActivityName", [](InsertRows& rows) {
    rows.Add(1, "春季满减");
    rows.Add(2, "周年庆");
  });
  FillIfEmpty(connection, "IC_CDPSPromotion", "FPromotionID,FActivityID", [](InsertRows& rows) {
    for (int i = 1; i <= 4; ++i) rows.Add(i, (i + 1) / 2);
  });
}

void FillTrade(Connection& connection) {
  FillIfEmpty(connection, "IC_WebshopToStorage", "FID,FWebShopID,FWebShopName,FWebShopType,FStockID,FOwnLogisticsID",
              [](InsertRows& rows) {
                int key = 0;
                for (const ShopRow& shop : kShops) {
                  rows.Add(++key, shop.id, shop.name, shop.type, shop.stock, shop.own_carrier);
                }
              });
  FillIfEmpty(connection, "t_Currency", "FCurrencyID,FNumber,FName,FOperator,FExchangeRate", [](InsertRows& rows) {
    rows.Add(1, "CNY", "人民币", "*", Fixed{10000, 4});
    rows.Add(2, "USD", "美元", "*", Fixed{71200, 4});
    rows.Add(3, "JPY", "日元", "/", Fixed{206000, 4});
  });
  FillIfEmpty(connection, "IC_Logistics", "FItemID,FNumber,FName,FName_CHT,FIsElectronic,FIsDefault",
              [](InsertRows& rows) {
                rows.Add(301, "KD01", "迅风快递", "迅風快遞", 1, 1);
                rows.Add(302, "KD02", "邮政特快", "郵政特快", 1, 0);
                rows.Add(kCourier, "KD03", "千里速运", "千里速運", 1, 0);
                rows.Add(304, "KD04", "同城即达", "同城即達", 0, 0);
                rows.Add(305, "KD05", "安达物流", "安達物流", 0, 0);
                rows.Add(306, "", "本店自送", "本店自送", 0, 0);
              });
  FillIfEmpty(connection, "IC_JzService", "FCode,FName", [](InsertRows& rows) {
    rows.Add("JZ01", "送货上门");
    rows.Add("JZ02", "送货入户");
    rows.Add("JZ03", "上门安装");
    rows.Add("JZ04", "拆旧回收");
  });
  FillIfEmpty(connection, "IC_LogisticsTraceState", "FID,FName", [](InsertRows& rows) {
    int key = -1;
    for (const char* state : {"已揽收", "运输中", "派送中", "已签收", "疑难件", "退回中"}) rows.Add(++key, state);
  });
  FillIfEmpty(connection, "IC_Area", "FID,FParentID,FLevel,FName,FName_CHT", [](InsertRows& rows) {
    rows.Add(kCountryId, 0, 0, "中国", "中國");
    for (const Area& area : Areas()) {
      rows.Add(area.id, AreaParent(area.id), AreaLevel(area.id), area.name, area.name_traditional);
    }
  });
}

/// An account of all shops with each carrier that has electronic waybills, and some shops' own; one is switched off.
void FillAccounts(Connection& connection) {
  std::vector<int> districts;
  for (const Area& area : Areas()) {
    if (AreaLevel(area.id) == 3) districts.push_back(area.id);
  }
  FillIfEmpty(connection, "IC_LogisticsAccount",
              "FLogisticsID,FWebShopID,FAccount,FSecret,FCustomerCode,FMonthlyCode,FIsStarted,FTemplate,FSender,"
              "FSenderPhone,FSenderProvince,FSenderCity,FSenderDistrict,FSenderAddress",
              [&](InsertRows& rows) {
                const auto add = [&](int carrier, int shop, bool started, std::string_view sender) {
                  const std::string number = std::to_string(carrier) + (shop == 0 ? "" : "-" + std::to_string(shop));
                  const int district = districts[static_cast<std::size_t>(shop) % districts.size()];
                  const int city = AreaParent(district);
                  rows.Add(carrier, shop, "ACC" + number, "secret of " + number, "C" + number, "M" + number,
                           started ? 1 : 0, carrier == kCourier ? "100x150" : "76x130", sender,
                           "400-820-0" + std::to_string(100 + shop), AreaParent(city), city, district,
                           "物流园 " + std::to_string(1 + shop % 9) + " 号库");
                };
                for (const int carrier : {301, 302, kCourier}) add(carrier, 0, true, "云杉仓储");
                add(301, 101, true, "云杉家居旗舰店");
                add(kCourier, 102, true, "云杉家居专卖店");
                add(302, 105, false, "谷雨食品商城");
              });
}

/// Reads a table row by row; at least one row is given, of empty values where the table has none.
template <typename Value>
std::vector<Value> Read(Connection& connection, std::string_view query,
                        const std::function<Value(const Recordset&)>& read) {
  std::vector<Value> values;
  const RecordsetPtr rows = connection.Execute(query);
  for (; !rows->eof(); rows->MoveNext()) values.push_back(read(*rows));
  if (values.empty()) values.emplace_back();
  return values;
}

std::vector<int> ReadKeys(Connection& connection, std::string_view query) {
  return Read<int>(connection, query, [](const Recordset& row) { return row.Get(std::size_t{0}).ToInt32(); });
}

/// Physical goods without packages, or the items that stand for a difference in price.
std::vector<Item> ReadItems(Connection& connection, bool price_differences) {
  const std::string query = R"(
SELECT i.FItemID, i.FNumber, i.FName, i.FUnitID, i.FSalePrice, i.FBatchManager, i.FGrossWeight,
       ISNULL(w.FNumber, '*') AS FWeightUnit, ISNULL(u.FNumber, '*') AS FUnit
FROM t_ICItem i
LEFT JOIN t_MeasureUnit w ON i.FMaund = w.FMeasureUnitID
LEFT JOIN t_MeasureUnit u ON i.FUnitID = u.FMeasureUnitID
WHERE i.FNumber NOT LIKE '09.%' AND )" +
                            std::string(price_differences ? "" : "NOT ") + R"(EXISTS (
  SELECT 1 FROM ic_goodstomateriel g WHERE g.FMaterielCode = i.FNumber AND g.FIsPriceChange = 1)
ORDER BY i.FItemID
)";
  return Read<Item>(connection, query, [](const Recordset& row) {
    std::string unit = row.Get("FWeightUnit").ToText();
    if (unit == "*") unit = row.Get("FUnit").ToText();
    return Item{.id = row.Get("FItemID").ToInt32(),
                .number = row.Get("FNumber").ToText(),
                .name = row.Get("FName").ToText(),
                .unit = row.Get("FUnitID").ToInt32(),
                .price_cents = row.Get("FSalePrice").ToDecimal().ToScaled(2).value_or(0),
                .batch = row.Get("FBatchManager").ToInt32() == 1,
                .grams = row.Get("FGrossWeight").ToDecimal().ToScaled(unit == "G" ? 0 : 3).value_or(0)};
  });
}

std::vector<Stock> ReadStocks(Connection& connection) {
  return Read<Stock>(connection,
                     "SELECT FItemID, FIsStockMgr, FSPGroupID FROM t_Stock WHERE FItemID NOT IN (SELECT FStockID FROM "
                     "IC_WebtplToStorage WHERE FIsbad <> 0 OR FUnUsed = 1) ORDER BY FItemID",
                     [&](const Recordset& row) {
                       Stock stock{.id = row.Get("FItemID").ToInt32(), .places = {}};
                       if (row.Get("FIsStockMgr").ToInt32() == 1) {
                         stock.places = ReadKeys(connection, "SELECT FSPID FROM t_StockPlace WHERE FSPGroupID = " +
                                                                 row.Get("FSPGroupID").ToText() + " ORDER BY FSPID");
                       }
                       return stock;
                     });
}

}  // namespace

MasterData PrepareMasterData(Connection& connection) {
  FillPeople(connection);
  FillStocks(connection);
  FillGoods(connection);
  FillTrade(connection);
  FillAccounts(connection);
  FillOutsideWarehouses(connection);
  MasterData data;
  data.shops = Read<Shop>(
      connection, "SELECT FWebShopID, FWebShopType, FStockID FROM IC_WebshopToStorage ORDER BY FWebShopID",
      [](const Recordset& row) {
        return Shop{row.Get("FWebShopID").ToInt32(), row.Get("FWebShopType").ToInt32(), row.Get("FStockID").ToInt32()};
      });
  data.employees =
      Read<Employee>(connection, "SELECT FItemID, FNumber FROM t_Emp ORDER BY FItemID", [](const Recordset& row) {
        return Employee{row.Get("FItemID").ToInt32(), row.Get("FNumber").ToText()};
      });
  data.places =
      Read<Place>(connection,
                  "SELECT d.FID, d.FParentID AS FCity, c.FParentID AS FProvince FROM IC_Area d "
                  "INNER JOIN IC_Area c ON d.FParentID = c.FID WHERE d.FLevel = 3 ORDER BY d.FID",
                  [](const Recordset& row) {
                    return Place{row.Get("FProvince").ToInt32(), row.Get("FCity").ToInt32(), row.Get("FID").ToInt32()};
                  });
  data.stocks = ReadStocks(connection);
  data.outside_stocks = ReadKeys(
      connection,
      "SELECT FStockID FROM IC_WebtplToStorage WHERE FStockID <> 0 AND FUnUsed <> 1 AND FIsbad = 0 ORDER BY FID");
  data.items = ReadItems(connection, false);
  data.price_differences = ReadItems(connection, true);
  data.users = ReadKeys(connection, "SELECT FUserID FROM t_User ORDER BY FUserID");
  data.carriers = ReadKeys(connection, "SELECT FItemID FROM IC_Logistics WHERE FNumber <> '' ORDER BY FItemID");
  data.carrier_without_code =
      ReadKeys(connection, "SELECT FItemID FROM IC_Logistics WHERE FNumber = '' ORDER BY FItemID").front();
  data.courier = ReadKeys(connection, "SELECT FItemID FROM IC_Logistics WHERE FNumber = 'KD03'").front();
  data.electronic_carriers = ReadKeys(connection, "SELECT FItemID FROM IC_Logistics WHERE FIsElectronic = 1");
  data.currencies = ReadKeys(connection, "SELECT FCurrencyID FROM t_Currency ORDER BY FCurrencyID");
  data.promotions = ReadKeys(connection, "SELECT FPromotionID FROM IC_CDPSPromotion ORDER BY FPromotionID");
  data.attributes = ReadKeys(connection, "SELECT FItemID FROM t_AuxItem ORDER BY FItemID");
  data.trace_states = ReadKeys(connection, "SELECT FID FROM IC_LogisticsTraceState ORDER BY FID");
  data.packages = ReadKeys(connection, "SELECT FItemID FROM t_ICItem WHERE FNumber LIKE '09.%' ORDER BY FItemID");
  data.country = ReadKeys(connection, "SELECT FID FROM IC_Area WHERE FLevel = 0 ORDER BY FID").front();
  return data;
}

}  // namespace tessarlorn::cli
