// The data of reports to the web shops: as items for a list of orders, or as rows of work tables, page by page.
#include "frame/call_frame.h"
#include "frame/key_list.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"
#include "upload/contracts.h"
#include "upload/upload_items.h"

namespace tessarlorn {
namespace {

constexpr std::string_view kLineColumns =
    "SELECT DISTINCT t1.FID,t1.FUpLoadStatus,t1.FOrderID,t3.FWebshopID,t1.FLogisticsID,t1.FLogisticsOrder,"
    "t2.FSiteOrderID,t2.FChildOrderID";

UploadQueries QueriesByKeys(std::string_view orders) {
  TextBuilder children;
  children.Line("Select FSiteOrderID, ");
  children.Line("(Select count(1) From  ");
  children.Line("(Select fchildorderid From IC_Web2ERPOrdersEntry t1  ");
  children.Line("Where t1.FSiteOrderID = t2.FSiteOrderID Group By t1.fchildorderid) t3) as Num ");
  children.Line("From IC_Web2ERPOrdersEntry t2 where t2.FID In (", orders, ") and t2.FSiteOrderID <> ''");
  TextBuilder lines;
  lines.Line(kLineColumns);
  lines.Line("FROM  IC_Web2ERPOrders t1 INNER JOIN IC_Web2ERPOrdersEntry t2 ON t1.FID = t2.FID ");
  lines.Line("INNER JOIN IC_Trade t3 on t2.FSiteOrderID = t3.FTID ");
  lines.Line("WHERE t2.FSiteOrderID <> '' AND t1.FID In (", orders, ")");
  return {.carriers = "Select FItemID,FNumber from IC_Logistics \r\n",
          .child_orders = children.GetText(),
          .lines = lines.GetText()};
}

/// The same, without waiting for the locks of others.
UploadQueries QueriesByPage(std::string_view page_table) {
  TextBuilder children;
  children.Line("Select FSiteOrderID, ");
  children.Line("(Select count(1) From  ");
  children.Line("(Select fchildorderid From IC_Web2ERPOrdersEntry t1 WITH(NOLOCK)  ");
  children.Line("Where t1.FSiteOrderID = t2.FSiteOrderID Group By t1.fchildorderid) t3) as Num ");
  children.Line("From IC_Web2ERPOrdersEntry t2 WITH(NOLOCK)  where t2.FID In ( select fid from ", page_table,
                " ) and t2.FSiteOrderID <> ''");
  TextBuilder lines;
  lines.Line(kLineColumns);
  lines.Line(
      "FROM  IC_Web2ERPOrders t1 WITH(NOLOCK)  INNER JOIN IC_Web2ERPOrdersEntry t2 WITH(NOLOCK)  ON t1.FID = t2.FID ");
  lines.Line("INNER JOIN IC_Trade t3 WITH(NOLOCK)  on t2.FSiteOrderID = t3.FTID ");
  lines.Line("WHERE t2.FSiteOrderID <> '' AND t1.FID In ( select fid from ", page_table, ")");
  return {.carriers = "Select FItemID,FNumber from IC_Logistics WITH(NOLOCK) \r\n",
          .child_orders = children.GetText(),
          .lines = lines.GetText()};
}

bool IsPageDone(Connection& connection, std::string_view page_table) {
  TextBuilder text;
  text.Line(" select count(1) as Fcount  from ", page_table, " where fstatus=1");
  return connection.Query(text.GetText())->Get("Fcount").ToInt32() > 0;
}

/// Inserts the item as a row that waits for its upload and has no error.
void AppendTaskRow(TextBuilder& text, std::string_view table, std::string_view task, const UploadItem& item) {
  text.Append(
      " INSERT INTO  {table}( FTaskID,FSiteOrderID,FChildIDs,FIsSplit,FWebshopID, FLogisticsNumber,FLogisticsOrder,"
      "FOrderID,FID,FUpStatus, FError) VALUES  ( '{task}','{site_order}','{child_orders}',{split},'{web_shop}',"
      "'{carrier}','{waybill}','{number}',{key},0,'')\r\n",
      {{"table", table},
       {"task", task},
       {"site_order", item.site_order},
       {"child_orders", item.child_orders},
       {"split", item.split ? "1" : "0"},
       {"web_shop", item.web_shop.ToText()},
       {"carrier", item.carrier_code.ToText()},
       {"waybill", item.waybill},
       {"number", item.order_number},
       {"key", item.order_key.ToText()}});
}

/// Copies the page's task rows into the persistent list, none twice, and marks its orders as done in the run.
std::string FinishPageText(std::string_view task_table, std::string_view page_table, std::string_view run_table) {
  TextBuilder text;
  text.Line(
      " INSERT INTO IC_UploadWebOrderIndicator(FTaskID,FSiteOrderID,FChildIDs,FIsSplit,FWebshopID, FLogisticsNumber,"
      "FLogisticsOrder,FOrderID,FID,FUpStatus, FError) ");
  text.Line(
      " select DISTINCT FTaskID,FSiteOrderID,FChildIDs,FIsSplit,FWebshopID, FLogisticsNumber,FLogisticsOrder,FOrderID,"
      "FID,FUpStatus, FError from  ",
      task_table, " t");
  text.Line(
      " WHERE NOT EXISTS (SELECT 1 FROM IC_UploadWebOrderIndicator s WHERE s.FTaskID=t.FTaskID and s.FID=t.fid AND "
      "s.FSiteOrderID=t.FSiteOrderID ");
  text.Line(
      " AND s.FChildIDs=t.FChildIDs AND s.FIsSplit=t.FIsSplit AND s.FLogisticsOrder=t.FLogisticsOrder AND "
      "s.FLogisticsNumber=t.FLogisticsNumber ) ");
  text.Line(" and t.FID In ( select fid from ", page_table, ")");
  text.Line(" UPDATE  t SET t.fstatus=1 from ", run_table, " t inner join ", page_table, " on t.fid=pageTable.fid");
  return text.GetText();
}

}  // namespace

Vector clsGetData::GetUploadDataByFID(std::string_view strDSN, std::string_view strFids) {
  constexpr const Contract& contract = kContract<&clsGetData::GetUploadDataByFID>;
  return CallForTexts(State(), contract, {strDSN, strFids}, [&](Connection& connection) {
    Vector items;
    for (UploadItem& item : CollectUploadItems(connection, QueriesByKeys(strFids))) {
      Dictionary entry;
      entry.SetValue("SiteOrderID", std::move(item.site_order));
      entry.SetValue("ChildIDs", std::move(item.child_orders));
      entry.SetValue("IsSplit", item.split);
      entry.SetValue("FWebshopID", std::move(item.web_shop));
      entry.SetValue("FLogisticsNumber", std::move(item.carrier_code));
      entry.SetValue("FLogisticsOrder", std::move(item.waybill));
      entry.SetValue("FOrderID", std::move(item.order_number));
      entry.SetValue("FID", std::move(item.order_key));
      items.Add(std::move(entry));
    }
    return items;
  });
}

bool clsGetData::GetUploadDataByTab(std::string_view strDSN, std::string_view pageTable, std::string_view strFids,
                                    std::string_view strTempTable, std::string_view sNewID) {
  constexpr const Contract& contract = kContract<&clsGetData::GetUploadDataByTab>;
  return CallForTexts(State(), contract, {strDSN, pageTable}, [&](Connection& connection) {
    if (IsPageDone(connection, pageTable)) return true;
    const std::vector<UploadItem> items = CollectUploadItems(connection, QueriesByPage(pageTable));
    ExecuteInBatches(connection, items, [&](TextBuilder& text, const UploadItem& item) {
      AppendTaskRow(text, strTempTable, sNewID, item);
    });
    connection.Execute(FinishPageText(strTempTable, pageTable, strFids));
    return true;
  });
}

}  // namespace tessarlorn
