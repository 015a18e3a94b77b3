#include "samples/settings.h"

#include <string>
#include <string_view>

#include "samples/grid_layout.h"
#include "samples/insert_rows.h"

namespace tessarlorn::cli {
namespace {

struct Switch {
  std::string_view category;
  std::string_view key;
  std::string_view value;
  std::string_view description;
};

constexpr Switch kSwitches[] = {
    {"EC", "WebShopAccess", "1", "按用户控制可见网店"},
    {"EC", "NotCheckRefundOnStatus", "0", "已发货及交易成功的订单不检查退款"},
    {"EC", "ECPickingGoods", "1", "启用配货检验"},
    {"EC", "PickByBatch", "0", "按批次配货"},
    {"EC", "PickGoodsCount", "20", "每次配货订单数"},
    {"EC", "ECWeightting", "1", "启用称重"},
    {"EC", "MarkBilling", "0", "启用开票标记"},
    {"EC", "AddressReachable", "1", "检查地址是否可达"},
    {"EC", "ThermalPrinting", "1", "使用热敏打印机"},
    {"EC", "TradeLog2001", "1", "记录日志:修改发货仓库"},
    {"EC", "TradeLog3003", "1", "记录日志:配货检验"},
    {"EC", "TradeLog3005", "1", "记录日志:返回上一步"},
    {"EC", "TradeLog3007", "1", "记录日志:费用发票"},
    {"EC", "TradeLog3008", "1", "记录日志:称重"},
    {"EC", "TradeLog3013", "1", "记录日志:取消配货检验"},
    {"EC", "TradeLog3014", "1", "记录日志:标记配货检验"},
};

struct Message {
  int id;
  int type;
  std::string_view name;
  /// "" = the same.
  std::string_view name_traditional = {};
};

constexpr Message kMessages[] = {
    {code::kShopOrder, 3811, "网店订单"},
    {code::kManualOrder, 3811, "手工订单"},
    {code::kSentOnline, 3813, "在线发货"},
    {code::kSentOffline, 3813, "线下发货"},
    {code::kExpress, 3814, "快递"},
    {code::kPost, 3814, "邮政"},
    {38143, 3814, "上门自提"},
    {code::kFixedPrice, 3815, "一口价"},
    {code::kPayOnDelivery, 3815, "货到付款"},
    {code::kPresale, 3815, "预售"},
    {38191, 3819, "等待买家付款"},
    {code::kPaid, 3819, "买家已付款"},
    {code::kShipped, 3819, "卖家已发货"},
    {code::kSucceeded, 3819, "交易成功"},
    {code::kClosed, 3819, "交易关闭"},
    {code::kServiceAsked, 843, "等待卖家同意", "等待賣家同意"},
    {84302, 843, "等待卖家收货", "等待賣家收貨"},
    {code::kServiceRefused, 843, "卖家拒绝", "賣家拒絕"},
    {84304, 843, "售后成功", "售後成功"},
    {84305, 843, "售后关闭", "售後關閉"},
};

/// How often a document may be printed; 0 = as often as you like.
struct PrintLimit {
  int id;
  std::string_view name;
  int limit;
  bool after_check;
};
constexpr PrintLimit kPrintLimits[] = {
    {10143011, "配货单", 2, false},
    {10143012, "发货单", 2, true},
    {10143013, "快递单", 3, true},
    {10143014, "发货清单", 0, false},
};

struct SynchSetting {
  std::string_view name;
  std::string_view value;
};
constexpr SynchSetting kSynchSettings[] = {
    {"DownloadWebTpls", "0"}, {"DownloadWebOrders", "1"}, {"DownloadIntervalMinutes", "10"}, {"UploadThreads", "4"}};

/// Upload tasks: who started them, and whether they are finished. The administrator has none under way.
struct UploadTask {
  std::string_view id;
  std::string_view user;
  bool finished;
  int orders;
  std::string_view started;
};
constexpr UploadTask kUploadTasks[] = {
    {"UP-20260629-01", "系统管理员", true, 48, "2026-06-29T18:02:11"},
    {"UP-20260630-01", "陈伟", true, 120, "2026-06-30T09:30:45"},
    {"UP-20260630-02", "李娜", false, 75, "2026-06-30T17:55:20"},
};

void FillTables(Connection& connection) {
  FillIfEmpty(connection, "ICPrintMaxCount", "FID,FName,FPrintControlOrNo,FPrintMaxCount,FPrintAfterCheck",
              [](InsertRows& rows) {
                for (const PrintLimit& limit : kPrintLimits) {
                  rows.Add(limit.id, limit.name, limit.limit > 0 ? 1 : 0, limit.limit, limit.after_check ? 1 : 0);
                }
              });
  FillIfEmpty(connection, "IC_SynchSetting", "FSettingName,FSettingValue", [](InsertRows& rows) {
    for (const SynchSetting& setting : kSynchSettings) rows.Add(setting.name, setting.value);
  });
  FillIfEmpty(connection, "IC_UploadWebOrderTaskFlow", "FTaskID,FUserName,FUpStatus,FOrderCount,FCreateDate",
              [](InsertRows& rows) {
                for (const UploadTask& task : kUploadTasks) {
                  rows.Add(task.id, task.user, task.finished ? 1 : 0, task.orders, task.started);
                }
              });
}

struct UserField {
  int page;
  std::string_view table;
  std::string_view name;
  std::string_view type;
  std::string_view caption;
  std::string_view caption_traditional;
};

constexpr UserField kUserFields[] = {
    {1, "IC_Web2ERPOrders", "FGiftCardText", "nvarchar(200)", "贺卡内容", "賀卡內容"},
    {2, "IC_Web2ERPOrdersEntry", "FEngraving", "nvarchar(50)", "刻字内容", "刻字內容"},
    {2, "IC_Web2ERPOrdersEntry", "FWrapping", "nvarchar(50)", "包装要求", "包裝要求"},
};

SqlParameter Text(const char* name, std::string_view value) { return {name, "nvarchar(255)", value}; }

}  // namespace

void WriteSettings(Connection& connection) {
  for (const UserField& field : kUserFields) {
    const std::string_view table = field.table;
    const std::string_view name = field.name;
    std::string text = "IF COL_LENGTH('";
    text.append(table).append("','").append(name).append("') IS NULL ALTER TABLE ").append(table);
    text.append(" ADD ").append(name).append(" ").append(field.type).append(" NULL");
    connection.Execute(text);
  }
  for (const Switch& item : kSwitches) {
    SqlParameter values[] = {Text("@category", item.category), Text("@key", item.key), Text("@value", item.value),
                             Text("@description", item.description)};
    connection.Execute({R"(
IF NOT EXISTS (SELECT 1 FROM t_SystemProfile WHERE FCategory=@category AND FKey=@key)
    INSERT INTO t_SystemProfile (FCategory,FKey,FValue,FDescription) VALUES (@category,@key,@value,@description)
)",
                        values});
  }
  for (const Message& message : kMessages) {
    SqlParameter values[] = {{"@id", "int", message.id},
                             {"@type", "int", message.type},
                             Text("@name", message.name),
                             Text("@traditional", message.name_traditional)};
    connection.Execute({R"(
IF NOT EXISTS (SELECT 1 FROM t_SubMessage WHERE FInterID=@id)
    INSERT INTO t_SubMessage (FInterID,FTypeID,FName,FName_CHT) VALUES (@id,@type,@name,@traditional)
)",
                        values});
  }
  int position = 1000;
  for (const UserField& field : kUserFields) {
    SqlParameter values[] = {{"@page", "int", field.page},    Text("@name", field.name),
                             Text("@caption", field.caption), Text("@traditional", field.caption_traditional),
                             Text("@table", field.table),     {"@position", "int", ++position}};
    connection.Execute({R"(
IF NOT EXISTS (SELECT 1 FROM ICClassTableInfo WHERE FClassTypeID=1014301 AND FPage=@page AND FKey=@name)
    INSERT INTO ICClassTableInfo (FClassTypeID,FPage,FKey,FCaption_CHS,FCaption_CHT,FFieldName,FTableName,FTabIndex,
                                  FNeedSave,FUserDefine)
    VALUES (1014301,@page,@name,@caption,@traditional,@name,@table,@position,1,1)
)",
                        values});
  }
  FillTables(connection);
  WriteGridLayout(connection);
}

}  // namespace tessarlorn::cli
