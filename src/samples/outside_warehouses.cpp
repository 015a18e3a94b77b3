#include "samples/outside_warehouses.h"

#include <span>
#include <string>
#include <string_view>

#include "samples/insert_rows.h"

namespace tessarlorn::cli {
namespace {

constexpr int kNorthernNetwork = 1;
constexpr int kHarbour = 2;
/// Has no warehouse yet.
constexpr int kNewcomer = 3;
/// Where all of the documents go to, which are the first provider's.
constexpr std::string_view kDocumentWarehouse = "WH-E1";

struct Warehouse {
  std::string_view id;
  std::string_view name;
  int provider;
  std::string_view category;
  int stock;
  bool unused = false;
  bool bad = false;
};
constexpr Warehouse kWarehouses[] = {
    {"WH-E1", "北网华东仓", kNorthernNetwork, "标准仓", outside_stock::kEast},
    {"WH-E1-B", "北网华东次品仓", kNorthernNetwork, "次品仓", outside_stock::kEastBad, false, true},
    {"WH-E0", "北网华东旧仓", kNorthernNetwork, "标准仓", outside_stock::kClosed, true},
    {"GZ01", "港通华南仓", kHarbour, "标准仓", outside_stock::kSouth},
    {"GZ02", "港通保税仓", kHarbour, "保税仓", 0},
};

struct Document {
  int key;
  std::string_view number;
  std::string_view day;
  /// FTplStatus; its lines have their own.
  std::string_view state;
};
constexpr Document kPurchases[] = {
    {1, "CG260601001", "2026-06-01", ""}, {2, "CG260612004", "2026-06-12", "3"}, {3, "CG260625002", "2026-06-25", ""}};
constexpr Document kSales[] = {{1, "XD260603001", "2026-06-03", ""}, {2, "XD260620003", "2026-06-20", "3"}};

struct DocumentLine {
  int document;
  int line;
  int item;
  int quantity;
  std::string_view state;
  std::string_view failure;
};
/// The second purchase is submitted as a whole, the third in part.
constexpr DocumentLine kPurchaseLines[] = {
    {1, 1, 1001, 40, "", ""},   {1, 2, 1003, 60, "0", "仓库未维护该商品"},
    {2, 1, 1007, 200, "3", ""}, {2, 2, 1008, 30, "3", ""},
    {3, 1, 1014, 80, "3", ""},  {3, 2, 1016, 120, "", ""},
};
constexpr DocumentLine kSalesLines[] = {{1, 1, 1001, 5, "", ""}, {1, 2, 1005, 12, "0", ""}, {2, 1, 1009, 4, "3", ""}};

struct Task {
  std::string_view id;
  int type;
  std::string_view documents;
  int progress;
  std::string_view user;
  std::string_view time;
  int state;
};
constexpr Task kTasks[] = {
    {"CG-20260612-0004", 120, "2", 100, "李娜", "2026-06-12T10:21:07", 2},
    {"CG-20260625-0002", 120, "3", 0, "王芳", "2026-06-25T16:40:52", 0},
    {"XD-20260620-0003", 160, "2", 100, "李娜", "2026-06-20T09:05:33", 2},
};

/// What a document or a line in that state knows of its provider and the warehouse.
std::string ProviderOf(std::string_view state) { return state == "3" ? std::to_string(kNorthernNetwork) : ""; }
std::string_view WarehouseOf(std::string_view state) { return state == "3" ? kDocumentWarehouse : ""; }

void FillDocuments(Connection& connection, std::string_view table, std::span<const Document> documents) {
  FillIfEmpty(connection, table, "FInterID,FBillNo,FDate,FTplStatus,FTplflat,FTplStock", [&](InsertRows& rows) {
    for (const Document& document : documents) {
      rows.Add(document.key, document.number, document.day, document.state, ProviderOf(document.state),
               WarehouseOf(document.state));
    }
  });
}

void FillLines(Connection& connection, std::string_view table, std::span<const DocumentLine> lines) {
  FillIfEmpty(connection, table, "FInterID,FEntryID,FItemID,FQty,FTplEStatus,FTplEFail,FTplEflat,FTplEStock",
              [&](InsertRows& rows) {
                for (const DocumentLine& line : lines) {
                  rows.Add(line.document, line.line, line.item, line.quantity, line.state, line.failure,
                           ProviderOf(line.state), WarehouseOf(line.state));
                }
              });
}

}  // namespace

void FillOutsideWarehouses(Connection& connection) {
  FillIfEmpty(connection, "IC_WebtplFlat", "FID,FWebTplName,FWebTplType", [](InsertRows& rows) {
    rows.Add(1, "北网仓配", kNorthernNetwork);
    rows.Add(2, "港通供应链", kHarbour);
    rows.Add(3, "新联云仓", kNewcomer);
  });
  FillIfEmpty(connection, "IC_WebtplToStorage",
              "FID,FWebtplID,FWebtplName,FWebtplType,FtplCategory,FStockID,FUnUsed,FIsbad", [](InsertRows& rows) {
                int key = 0;
                for (const Warehouse& warehouse : kWarehouses) {
                  rows.Add(++key, warehouse.id, warehouse.name, warehouse.provider, warehouse.category, warehouse.stock,
                           warehouse.unused ? 1 : 0, warehouse.bad ? 1 : 0);
                }
              });
  FillDocuments(connection, "POOrder", kPurchases);
  FillLines(connection, "POOrderEntry", kPurchaseLines);
  FillDocuments(connection, "SEOrder", kSales);
  FillLines(connection, "SEOrderEntry", kSalesLines);
  FillIfEmpty(connection, "TPLTaskFlow",
              "FTaskId,FTaskType,FTaskName,FWebTplType,FWebTplID,FProgressPer,FUserName,FRefreshTime,FStatus,FPriority",
              [](InsertRows& rows) {
                for (const Task& task : kTasks) {
                  rows.Add(task.id, task.type, task.documents, kNorthernNetwork, kDocumentWarehouse, task.progress,
                           task.user, task.time, task.state, 10);
                }
              });
}

}  // namespace tessarlorn::cli
