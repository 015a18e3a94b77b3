#include "workbench/office.h"

#include <string>
#include <string_view>

#include "platform/text/text.h"
#include "workbench/statement.h"

namespace tessarlorn::workbench {
namespace {

constexpr std::int32_t kMostEntries = 500;

/// One of the two logs: l is its table.
struct Log {
  std::string_view kind;
  std::string_view columns;
  std::string_view table;
};
constexpr Log kOperations = {
    "operation",
    "CAST(l.FOPCode AS nvarchar(64)) AS FName, l.FItemID AS FEntryID, l.FUserIP AS FAddress, ISNULL(l.FOldValue, '') AS "
    "FOldValue, ISNULL(l.FNewValue, '') AS FNewValue",
    "IC_TradeLog"};
constexpr Log kFields = {
    "field",
    "l.FFieldName AS FName, ISNULL(l.FEntryID, 0) AS FEntryID, '' AS FAddress, '' AS FOldValue, ISNULL(l.FNewValue, '') "
    "AS FNewValue",
    "IC_TradeFieldLog"};

/// Adds the latest entries of a log that fulfil what is asked.
void AddLog(Statement& statement, const Log& log, const Asker& asker, const Dictionary& values) {
  const auto when = [&](std::string_view key, std::string_view condition) {
    if (values.Exists(key)) statement.Add(" AND ").Add(condition);
  };
  statement.Add("SELECT * FROM (SELECT TOP (@most) l.FID AS FKey, l.FOPTime AS FTime, '")
      .Add(log.kind)
      .Add("' AS FKind, l.FOrderFID, l.FOPUserID, ")
      .Add(log.columns)
      .Add(" FROM ")
      .Add(log.table)
      .Add(" l with(nolock) WHERE l.FOPTime IS NOT NULL");
  when("from", "l.FOPTime >= @from");
  when("to", "l.FOPTime <= @to");
  when("user", "l.FOPUserID = @user_asked");
  when("number",
       "l.FOrderFID IN (SELECT FID FROM IC_Web2ERPOrders with(nolock) WHERE FOrderID = @number UNION SELECT "
       "TRY_CAST(@number AS int))");
  // What was shown last stands behind what is asked for now: at one time operations come before fields.
  when("beforeTime", log.kind == "operation"
                         ? "(l.FOPTime < @before OR (l.FOPTime = @before AND @kind = 'operation' AND l.FID < @key))"
                         : "(l.FOPTime < @before OR (l.FOPTime = @before AND (@kind = 'operation' OR l.FID < @key)))");
  if (!asker.every_shop) {
    statement.Add(" AND EXISTS (SELECT 1 FROM IC_Web2ERPOrders t1 with(nolock) WHERE t1.FID = l.FOrderFID")
        .Add(OfShops(asker))
        .Add(")");
  }
  statement.Add(log.kind == "operation" ? (values.Exists("code") ? " AND l.FOPCode = @code" : "")
                                        : (values.Exists("field") ? " AND l.FFieldName = @field" : ""));
  statement.Add(" ORDER BY l.FOPTime DESC, l.FID DESC) ").Add(log.kind == "operation" ? "o" : "f");
}

}  // namespace

RecordsetPtr AskLog(Connection& connection, const Asker& asker, const Dictionary& values) {
  const std::int32_t most = values.GetValue("most", kMostEntries).ToInt32();
  if (most < 1 || most > kMostEntries) {
    throw WrongValue("most", "most is 1 to " + std::to_string(kMostEntries) + ", not " + std::to_string(most));
  }
  const std::string kind = values.GetValue("beforeKind", "operation").ToText();
  if (kind != kOperations.kind && kind != kFields.kind) {
    throw WrongValue("beforeKind", "beforeKind is operation or field");
  }
  const bool code = values.Exists("code");
  const bool field = values.Exists("field");
  Statement statement(
      "SELECT TOP (@most) x.FKey, x.FTime, x.FKind, x.FName, x.FOrderFID AS FOrder, ISNULL(h.FOrderID, '') AS FOrderID, "
      "x.FEntryID, x.FOPUserID AS FUserID, ISNULL(u.FName, '') AS FUserName, x.FAddress, x.FOldValue, x.FNewValue FROM "
      "(");
  // One that asks for a code wants operations, one that asks for a field wants fields.
  if (code || !field) AddLog(statement, kOperations, asker, values);
  if (code == field) statement.Add(" UNION ALL ");
  if (field || !code) AddLog(statement, kFields, asker, values);
  statement.Add(
      ") x LEFT JOIN IC_Web2ERPOrders h with(nolock) ON h.FID = x.FOrderFID LEFT JOIN t_User u with(nolock) ON "
      "u.FUserID = x.FOPUserID ORDER BY x.FTime DESC, x.FKind DESC, x.FKey DESC");
  return statement.Set("@most", "int", most)
      .Set("@from", "datetime", values.GetValue("from"))
      .Set("@to", "datetime", values.GetValue("to"))
      .Set("@user_asked", "int", values.GetValue("user"))
      .Set("@number", "nvarchar(1000)", values.GetValue("number"))
      .Set("@code", "int", values.GetValue("code"))
      .Set("@field", "nvarchar(64)", values.GetValue("field"))
      .Set("@before", "datetime", values.GetValue("beforeTime"))
      .Set("@kind", "nvarchar(20)", kind)
      .Set("@key", "int", values.GetValue("beforeKey", 0))
      .SetShops(asker)
      .Run(connection);
}

RecordsetPtr AskInvoices(Connection& connection, const Asker& asker, const Dictionary& values) {
  const std::string orders =
      "FROM IC_Web2ERPOrders t1 with(nolock) WHERE t1.FFeeBillNO = CAST(e.FinterID AS nvarchar(50))" +
      std::string(OfShops(asker)) + ")";
  Statement statement("SELECT TOP (200) e.FinterID AS FInterID, e.FBillNo, e.FDate, e.FAmount, (SELECT COUNT(*) ");
  statement.Add(orders).Add(" AS FOrders, (SELECT ISNULL(SUM(t1.FLogisticsCost), 0) ").Add(orders);
  statement.Add(" AS FCosts FROM ICExpenses e with(nolock) WHERE 1 = 1");
  if (!asker.every_shop) {
    // An invoice with hidden orders would be told with wrong costs.
    statement
        .Add(
            " AND NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrders t1 with(nolock) WHERE t1.FFeeBillNO = CAST(e.FinterID AS "
            "nvarchar(50))")
        .Add(ReplaceAll(OfShops(asker), " AND EXISTS", " AND NOT EXISTS"))
        .Add(")");
  }
  if (values.Exists("text")) statement.Add(" AND e.FBillNo LIKE @text ESCAPE '\\'");
  return statement.Add(" ORDER BY e.FDate DESC, e.FinterID DESC")
      .Set("@text", "nvarchar(4000)", "%" + EscapedForLike(values.GetValue("text").ToText()) + "%")
      .SetShops(asker)
      .Run(connection);
}

RecordsetPtr AskTasks(Connection& connection, const Asker& asker, const Dictionary&) {
  // The documents of a web-shop task are orders, some of hidden shops perhaps.
  const std::string documents =
      asker.every_shop ? "t.FTaskName" : "CASE t.FTaskType WHEN 130 THEN '' ELSE t.FTaskName END AS FTaskName";
  return Statement(
             "SELECT TOP (200) t.FRowID, t.FTaskId, t.FTaskType, " + documents +
             ", t.FWebTplType, ISNULL(f.FWebTplName, '') AS "
             "FProvider, t.FWebTplID, ISNULL(w.FWebtplName, '') AS FWarehouse, t.FProgressPer, t.FUserName, "
             "t.FRefreshTime, t.FStatus FROM TPLTaskFlow t with(nolock) LEFT JOIN IC_WebtplFlat f with(nolock) ON "
             "f.FWebTplType = t.FWebTplType LEFT JOIN IC_WebtplToStorage w with(nolock) ON w.FWebtplID = t.FWebTplID AND "
             "w.FWebtplType = t.FWebTplType ORDER BY t.FRowID DESC")
      .Run(connection);
}

RecordsetPtr AskPurchases(Connection& connection, const Asker&, const Dictionary&) {
  return Statement(
             "SELECT TOP (200) p.FInterID, p.FBillNo, p.FDate, p.FTplStatus, p.FTplFail, (SELECT COUNT(*) FROM "
             "POOrderEntry e with(nolock) WHERE e.FInterID = p.FInterID) AS FLines, (SELECT COUNT(*) FROM POOrderEntry e "
             "with(nolock) WHERE e.FInterID = p.FInterID AND e.FTplEStatus = '3') AS FSubmitted, p.FTplStock AS "
             "FWarehouse FROM POOrder p with(nolock) ORDER BY p.FDate DESC, p.FInterID DESC")
      .Run(connection);
}

RecordsetPtr AskSwitches(Connection& connection, const Asker&, const Dictionary&) {
  return Statement(
             "SELECT k.FCategory, k.FKey, p.FValue, ISNULL(p.FDescription, '') AS FDescription FROM (VALUES ('EC', "
             "'WebShopAccess'), ('EC', 'NotCheckRefundOnStatus'), ('EC', 'MarkBilling')) k(FCategory, FKey) LEFT JOIN "
             "t_SystemProfile p with(nolock) ON p.FCategory = k.FCategory AND p.FKey = k.FKey UNION ALL SELECT "
             "ISNULL(p.FCategory, ''), k.FKey, p.FValue, ISNULL(p.FDescription, '') FROM (VALUES ('ECPickingGoods'), "
             "('PickByBatch'), ('PickGoodsCount'), ('ECWeightting'), ('AddressReachable'), ('ThermalPrinting')) k(FKey) "
             "LEFT JOIN t_SystemProfile p with(nolock) ON p.FKey = k.FKey UNION ALL SELECT '', k.FKey, s.FSettingValue, "
             "'' FROM (VALUES ('DownloadWebTpls')) k(FKey) LEFT JOIN IC_SynchSetting s with(nolock) ON s.FSettingName = "
             "k.FKey")
      .Run(connection);
}

}  // namespace tessarlorn::workbench
