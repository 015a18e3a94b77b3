#include "workbench/orders.h"

#include <algorithm>
#include <array>
#include <string>

#include "platform/text/text.h"
#include "workbench/fields.h"
#include "workbench/statement.h"
#include "workbench/tabs.h"

namespace tessarlorn::workbench {
namespace {

/// A value that orders are compared with, by its key.
struct Comparison {
  std::string_view key;
  /// Names the parameter of that name.
  std::string_view condition;
  std::string_view type;
};

constexpr std::array kComparisons = {
    Comparison{"orderedFrom", "t1.FOrderDate >= @orderedFrom", "datetime"},
    Comparison{"orderedTo", "t1.FOrderDate <= @orderedTo", "datetime"},
    Comparison{"paidFrom", "t1.FSitePayDate >= @paidFrom", "datetime"},
    Comparison{"paidTo", "t1.FSitePayDate <= @paidTo", "datetime"},
    Comparison{"sentFrom", "t1.FSendDate >= @sentFrom", "datetime"},
    Comparison{"sentTo", "t1.FSendDate <= @sentTo", "datetime"},
    Comparison{"sentBy", "t1.FShippingMan = @sentBy", "int"},
    Comparison{"pickedFrom", "t1.FPickDate >= @pickedFrom", "datetime"},
    Comparison{"pickedTo", "t1.FPickDate <= @pickedTo", "datetime"},
    Comparison{"pickedBy", "t1.FPickMan = @pickedBy", "nvarchar(50)"},
    Comparison{"checkedFrom", "t1.FPIckingGoodsStatus = 1 AND t1.FOrderPickingDate >= @checkedFrom", "datetime"},
    Comparison{"checkedTo", "t1.FPIckingGoodsStatus = 1 AND t1.FOrderPickingDate <= @checkedTo", "datetime"},
    Comparison{"checkedBy", "t1.FPIckingGoodsStatus = 1 AND t1.FPickingGoodMan = @checkedBy", "int"},
    Comparison{"shop", "t1.FWebshopID = @shop", "int"},
    Comparison{"carrier", "t1.FLogisticsID = @carrier", "int"},
    Comparison{"warehouse",
               "EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEntry e with(nolock) WHERE e.FID = t1.FID AND e.FStockID = "
               "@warehouse)",
               "int"},
    Comparison{"orderType", "t1.FOrderType = @orderType", "int"},
    Comparison{"flag", "t1.FOrderFlag = @flag", "int"},
    Comparison{"lot", "t22.FLotNumber = @lot", "nvarchar(50)"},
    Comparison{"printedSlip", "ISNULL(t28.FIsPrintSend, 0) = @printedSlip", "int"},
    Comparison{"printedWaybill", "ISNULL(t28.FIsPrintExpress, 0) = @printedWaybill", "int"},
    Comparison{"checked", "t1.FPIckingGoodsStatus = @checked", "int"},
    Comparison{"weighed", "t1.FWeighttingStatus = @weighed", "int"},
    Comparison{"upload", "t1.FUpLoadStatus = @upload", "int"},
    Comparison{"reason", "t1.FReasonsForFailure = @reason", "nvarchar(1000)"},
    Comparison{
        "outside",
        "(t22.FTplStatus = CAST(@outside AS nvarchar(10)) OR (@outside = 0 AND ISNULL(t22.FTplStatus, '') = ''))",
        "int"},
    Comparison{"invoice", "t1.FFeeBillNO = CASE @invoice WHEN 0 THEN '' ELSE CAST(@invoice AS nvarchar(50)) END",
               "int"},
};

/// What one weighing has to be.
constexpr std::array kWeighings = {
    Comparison{"weighedFrom", "FOPTime >= @weighedFrom", "datetime"},
    Comparison{"weighedTo", "FOPTime <= @weighedTo", "datetime"},
    Comparison{"weighedBy", "FOPUserID = @weighedBy", "int"},
};

/// A text of which a part is enough.
constexpr std::array kParts = {
    Comparison{"buyer",
               "(t1.FBuyerNick LIKE @buyer ESCAPE '\\' OR t1.FBuyerName LIKE @buyer ESCAPE '\\' OR t1.FConsignee LIKE "
               "@buyer ESCAPE '\\')",
               "nvarchar(4000)"},
    Comparison{"waybill", "t1.FLogisticsOrder LIKE @waybill ESCAPE '\\'", "nvarchar(4000)"},
    Comparison{
        "text",
        "(t1.FBuyerMessage LIKE @text ESCAPE '\\' OR t1.FSellerMessage LIKE @text ESCAPE '\\' OR t1.FDeliveryRemark "
        "LIKE @text ESCAPE '\\' OR t1.FShippingRem LIKE @text ESCAPE '\\' OR t1.FPickRem LIKE @text ESCAPE '\\' OR "
        "t22.FItemSummary LIKE @text ESCAPE '\\')",
        "nvarchar(4000)"},
};

constexpr std::array<std::string_view, 11> kSortable = {"FID",        "FOrderID",        "FOrderDate",   "FSitePayDate",
                                                        "FSendDate",  "FAmount",         "FWeight",      "FConsignee",
                                                        "FBuyerNick", "FLogisticsOrder", "FSerialNumber"};

std::string OrderBy(const Dictionary& values) {
  const std::string sort = values.GetValue("sort", "FSitePayDate").ToText();
  const std::string direction = values.GetValue("descending", false).ToBool() ? " DESC" : "";
  // The place in a print run is a number, stored as a text.
  if (sort == "FSerialNumber") return "TRY_CAST(t22.FSerialNumber AS int)" + direction + ", t1.FID" + direction;
  if (std::find(kSortable.begin(), kSortable.end(), sort) == kSortable.end()) {
    throw WrongValue("sort", "sort is no column that orders can be sorted by: " + OnOneLine(sort) +
                                 DidYouMean(sort, {kSortable.begin(), kSortable.end()}));
  }
  const std::string second = sort == "FID" ? "" : ", t1.FID" + direction;
  return "t1." + sort + direction + second;
}

const Tab& RequireTab(const std::string& name) {
  if (const Tab* const tab = FindTab(name)) return *tab;
  std::vector<std::string_view> names;
  for (const Tab& tab : Tabs()) names.push_back(tab.name);
  throw WrongValue("tab", "tab is none of the list's tabs: " + OnOneLine(name) + DidYouMean(name, names));
}

std::string NameColumn(const Asker& asker) { return asker.language == "CHS" ? "FName" : "FName_CHT"; }

}  // namespace

RecordsetPtr AskTabs(Connection& connection, const Asker& asker, const Dictionary&) {
  return Statement(TabsStatement(OfShops(asker))).SetShops(asker).Run(connection);
}

RecordsetPtr AskOrders(Connection& connection, const Asker& asker, const Dictionary& values) {
  const std::int32_t most = values.GetValue("most", kMostOrders).ToInt32();
  if (most < 1 || most > kMostOrders) {
    throw WrongValue("most", "most is 1 to " + std::to_string(kMostOrders) + ", not " + std::to_string(most));
  }
  Statement statement(
      "SELECT TOP (@most) t1.FID FROM IC_Web2ERPOrders t1 with(nolock) LEFT JOIN IC_Web2ERPOrdersEx t22 with(nolock) ON "
      "t22.FID = t1.FID LEFT JOIN IC_StockBillOrdersStatus t23 with(nolock) ON t23.FID = t1.FID LEFT JOIN "
      "IC_PrintOrderInfo t28 with(nolock) ON t28.FID = t1.FID WHERE 1 = 1");
  statement.Set("@most", "int", most).SetShops(asker).Add(OfShops(asker));
  if (const Variant* const tab = values.Find("tab")) statement.Add(" AND ").Add(RequireTab(tab->ToText()).condition);
  const auto add = [&](const Comparison& comparison, Variant value) {
    statement.Add(" AND ").Add(comparison.condition);
    statement.Set("@" + std::string(comparison.key), std::string(comparison.type), std::move(value));
  };
  for (const Comparison& comparison : kComparisons) {
    const Variant* const value = values.Find(comparison.key);
    if (value == nullptr) continue;
    add(comparison, value->get_if<bool>() != nullptr ? Variant(value->ToBool() ? 1 : 0) : *value);
  }
  for (const Comparison& part : kParts) {
    const Variant* const value = values.Find(part.key);
    if (value != nullptr) add(part, "%" + EscapedForLike(value->ToText()) + "%");
  }
  if (const Variant* const fields = values.Find("fields")) {
    constexpr std::size_t kMostFields = 20;
    if (fields->ToVector()->size() > kMostFields) throw WrongValue("fields", "fields has more than 20 conditions");
    std::size_t place = 0;
    for (const Variant& field : *fields->ToVector()) {
      AddFieldCondition(statement, connection, field.ToText(), place++);
    }
  }
  std::string weighing;
  for (const Comparison& comparison : kWeighings) {
    const Variant* const value = values.Find(comparison.key);
    if (value == nullptr) continue;
    weighing.append(" AND ").append(comparison.condition);
    statement.Set("@" + std::string(comparison.key), std::string(comparison.type), *value);
  }
  if (!weighing.empty()) {
    statement.Add(" AND t1.FID IN (SELECT FOrderFID FROM IC_TradeLog with(nolock) WHERE FOPCode = 3008" + weighing +
                  ")");
  }
  return statement.Add(" ORDER BY ").Add(OrderBy(values)).Run(connection);
}

OperationCall CallForRows(const Dictionary& values) {
  const std::string list = KeyList(values);
  const bool locked = values.GetValue("locked", false).ToBool();
  return {.operation = "GetListData",
          .argument = "Filter",
          .values = {{"AdvancedFilter", " AND t1.FID IN (" + list + ")"}, {"IsLock", locked ? 1 : 0}}};
}

RecordsetPtr AskStates(Connection& connection, const Asker& asker, const Dictionary& values) {
  Statement statement("SELECT t1.FID, t1.FOrderStatus, t1.FOrderID FROM IC_Web2ERPOrders t1 WHERE t1.FID IN (" +
                      KeyList(values) + ")");
  return statement.Add(OfShops(asker)).SetShops(asker).Run(connection);
}

RecordsetPtr AskFind(Connection& connection, const Asker& asker, const Dictionary& values) {
  const std::string text(Trim(values.GetValue("text").ToText()));
  Statement statement(
      "SELECT TOP (20) t1.FID, t1.FOrderID, t1.FSiteOrderID, t1.FLogisticsOrder, "
      "ISNULL(CAST(t1.FUniqueCode AS nvarchar(30)), '') AS FUniqueCode, t1.FConsignee, t1.FOrderStatus FROM ("
      "SELECT FID, MIN(FRank) AS FRank FROM (");
  // Each number is looked for in its own index.
  statement.Add("SELECT FID, 1 AS FRank FROM IC_Web2ERPOrders with(nolock) WHERE FID = @number")
      .Add(" UNION ALL SELECT FID, 0 FROM IC_Web2ERPOrders with(nolock) WHERE FUniqueCode = @code")
      .Add(
          " UNION ALL SELECT FID, CASE WHEN FOrderID = @text THEN 0 ELSE 2 END FROM IC_Web2ERPOrders with(nolock) WHERE "
          "FOrderID LIKE @start ESCAPE '\\'")
      .Add(
          " UNION ALL SELECT FID, CASE WHEN FLogisticsOrder = @text THEN 0 ELSE 2 END FROM IC_Web2ERPOrders "
          "with(nolock) WHERE FLogisticsOrder LIKE @start ESCAPE '\\'")
      .Add(" UNION ALL SELECT FID, 1 FROM IC_Web2ERPOrdersEntry with(nolock) WHERE FSiteOrderID = @text")
      .Add(") t3 GROUP BY FID) t2 INNER JOIN IC_Web2ERPOrders t1 with(nolock) ON t1.FID = t2.FID WHERE 1 = 1")
      .Add(OfShops(asker))
      .Add(" ORDER BY t2.FRank, t1.FID DESC");
  const std::optional<std::int32_t> number = WholeNumber<std::int32_t>(text);
  return statement.Set("@text", "nvarchar(1000)", text)
      .Set("@start", "nvarchar(4000)", text.empty() ? "" : EscapedForLike(text) + "%")
      .Set("@number", "int", number ? Variant(*number) : Variant())
      .Set("@code", "decimal(23,0)", UniqueCodeOf(text))
      .SetShops(asker)
      .Run(connection);
}

RecordsetPtr AskParcels(Connection& connection, const Asker& asker, const Dictionary& values) {
  const std::shared_ptr<Vector> numbers = values.GetValue("numbers").ToVector();
  Statement statement;
  std::string texts;
  std::string codes;
  std::string keys;
  // A number is given once as what it is written as, and again as each number that it may be.
  const auto add = [](std::string& rows, std::size_t i, const std::string& parameter) {
    rows.append(rows.empty() ? "(" : ",(").append(std::to_string(i)).append(",").append(parameter).append(")");
  };
  for (std::size_t i = 0; i < numbers->size(); ++i) {
    const std::string place = std::to_string(i);
    const std::string text = numbers->At(i + 1).ToText();
    add(texts, i, "@n" + place);
    statement.Set("@n" + place, "nvarchar(1000)", text);
    if (const Variant code = UniqueCodeOf(text); !code.is_empty()) {
      add(codes, i, "@c" + place);
      statement.Set("@c" + place, "decimal(23,0)", code);
    }
    if (const std::optional<std::int32_t> key = WholeNumber<std::int32_t>(text)) {
      add(keys, i, "@k" + place);
      statement.Set("@k" + place, "int", *key);
    }
  }
  const auto among = [](const std::string& rows) {
    return " FROM (VALUES " + rows + ") n(FPlace, FValue) INNER JOIN ";
  };
  statement.Add(
      "WITH n AS (SELECT FPlace, FValue FROM (VALUES " + texts +
      ") v(FPlace, FValue)), f AS (SELECT FPlace, "
      "FID, MIN(FRank) AS FRank FROM (SELECT n.FPlace, o.FID, 0 AS FRank FROM n INNER JOIN IC_Web2ERPOrders o "
      "with(nolock) ON o.FOrderID = n.FValue UNION ALL SELECT n.FPlace, o.FID, 0 FROM n INNER JOIN "
      "IC_Web2ERPOrders o with(nolock) ON o.FLogisticsOrder = n.FValue UNION ALL SELECT n.FPlace, o.FID, 0 "
      "FROM n INNER JOIN IC_Web2ERPOrdersEntry o with(nolock) ON o.FSiteOrderID = n.FValue");
  if (!codes.empty()) {
    statement.Add(" UNION ALL SELECT n.FPlace, o.FID, 0" + among(codes) +
                  "IC_Web2ERPOrders o with(nolock) ON o.FUniqueCode = n.FValue");
  }
  if (!keys.empty()) {
    statement.Add(" UNION ALL SELECT n.FPlace, o.FID, 1" + among(keys) +
                  "IC_Web2ERPOrders o with(nolock) ON o.FID = n.FValue");
  }
  return statement
      .Add(
          ") m GROUP BY FPlace, FID) SELECT n.FValue AS FNumber, t1.FID, t1.FOrderID, t1.FOrderStatus, "
          "t1.FLogisticsOrder, t1.FWeight, t1.FLogisticsCost, t1.FConsignee FROM f INNER JOIN n ON n.FPlace = f.FPlace "
          "INNER JOIN IC_Web2ERPOrders t1 with(nolock) ON t1.FID = f.FID WHERE f.FRank = (SELECT MIN(FRank) FROM f b "
          "WHERE b.FPlace = f.FPlace)")
      .Add(OfShops(asker))
      .Add(" ORDER BY f.FPlace, t1.FID")
      .SetShops(asker)
      .Run(connection);
}

RecordsetPtr AskChoices(Connection& connection, const Asker& asker, const Dictionary&) {
  const std::string name = NameColumn(asker);
  Statement statement(
      "SELECT 'shop' AS FKind, t1.FWebShopID AS FID, '' AS FNumber, t1.FWebShopName AS FName FROM IC_WebshopToStorage t1 "
      "with(nolock) WHERE 1 = 1");
  statement.Add(OfShops(asker))
      .Add(" UNION ALL SELECT 'carrier', FItemID, FNumber, " + name + " FROM IC_Logistics with(nolock)")
      .Add(" UNION ALL SELECT 'warehouse', FItemID, FNumber, FName FROM t_Stock with(nolock)")
      .Add(" UNION ALL SELECT 'employee', FItemID, FNumber, FName FROM t_Emp with(nolock)")
      .Add(" UNION ALL SELECT 'user', FUserID, '', FName FROM t_User with(nolock)")
      .Add(" UNION ALL SELECT 'orderType', FInterID, '', " +
           (name == "FName" ? name : "CASE FName_CHT WHEN '' THEN FName ELSE FName_CHT END") +
           " FROM t_SubMessage with(nolock) WHERE FTypeID = (SELECT FTypeID FROM t_SubMessage WHERE FInterID = 38112)")
      .Add(" ORDER BY FKind, FNumber, FID");
  return statement.SetShops(asker).Run(connection);
}

}  // namespace tessarlorn::workbench
