// The contracts of the operations of warehouse/.
#pragma once

#include "frame/keys.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/contract.h"

namespace tessarlorn {

namespace warehouse {

using enum ValueType;
using enum Standing;

inline constexpr Key kTplStock[] = {ConnectionKey("sDSN"),
                                    Mandatory("FWebtplType", kLong, kBareNumber, "The provider, its type number")};

inline constexpr Key kWebToStorage[] = {
    Optional("FStockID", kLong, kBareNumber, "", "The warehouse's stock, its id; an error without"),
};

inline constexpr Column kProviderColumns[] = {
    {"FWebTplName", kString, "Name of the provider"},
    {"FWebTplType", kLong, "Type number of the provider"},
};

inline constexpr Column kTplStockColumns[] = {
    {"FWebtplID", kString, "Id of the outside warehouse"},
    {"FWebtplName", kString, "Its name"},
};

inline constexpr Column kTplWarehouseColumns[] = {
    {"FWebtplType", kLong, "Type number of the provider"},
    {"FWebtplID", kString, "Id of the outside warehouse"},
    {"FStockID", kLong, "The stock that it handles"},
};

}  // namespace warehouse

template <>
inline constexpr Contract kContract<&clsSaveData::SubMitTplOrderTask> = {
    .name = "SubMitTplOrderTask",
    .source = "TessarLornPickingAndDelivery.clsSaveData.SubMitTplOrderTask",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory, .names = Names::kOrders},
                  {.name = "tplType", .stands = Standing::kNumber},
                  {.name = "sUserName", .stands = Standing::kQuoted},
                  {.name = "sWebTplID", .stands = Standing::kQuoted, .optional = true}},
    .help =
        "Queues a task for the orders of the list sFID at an outside warehouse and marks those in state 0 or "
        "2, or without an extension row, as submitted, in batches of 150; any other state stays, an empty one "
        "too. The task goes with the first batch; batches before a failing one stay. False, with nothing done, "
        "without sDsn or sFID.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::SubMitPorTask> = {
    .name = "SubMitPorTask",
    .source = "TessarLornPickingAndDelivery.clsSaveData.SubMitPorTask",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sTaskID", .stands = Standing::kQuoted},
                  {.name = "sInterFID", .stands = Standing::kQuoted, .need = Need::kMandatory},
                  {.name = "tplType", .stands = Standing::kNumber},
                  {.name = "sStockID", .stands = Standing::kQuoted},
                  {.name = "sUserName", .stands = Standing::kQuoted},
                  {.name = "sFiter", .stands = Standing::kSql},
                  {.name = "lTranType"}},
    .help =
        "Queues a task for the purchase orders (lTranType 71) or sales orders (81) of the list sInterFID and marks "
        "those of their lines as submitted that fulfil the SQL condition sFiter on t1. Always an empty text, which "
        "the command ends with status 1; nothing is done without sDsn or sInterFID.",
    .errors = "also for any other lTranType, whose task has type 0 and stays only without a transaction",
};
template <>
inline constexpr Contract kContract<&clsSaveData::ClearTplFieldInfo> = {
    .name = "ClearTplFieldInfo",
    .source = "TessarLornPickingAndDelivery.clsSaveData.ClearTplFieldInfo",
    .arguments = {{.name = "sDsn"}, {.name = "sBillNo", .stands = Standing::kQuoted}},
    .help =
        "Clears what the purchase order sBillNo and its lines keep of an outside warehouse. An empty number is "
        "a number like any other. True, also when there is no such order.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::DownloadWebTpls> = {
    .name = "DownloadWebTpls",
    .source = "TessarLornPickingAndDelivery.clsSaveData.DownloadWebTpls",
    .arguments = {{.name = "sDsn"}, {.name = "lScheme", .stands = Standing::kNumber}},
    .help =
        "Stores the scheme by which lists of warehouses are downloaded. True, also when the setting has no row and "
        "nothing is stored.",
};
template <>
inline constexpr Contract kContract<&clsGetData::GetTplCompany> = {
    .name = "GetTplCompany",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetTplCompany",
    .arguments = {{.name = "dctPara", .keys = kConnection}},
    .help = "The providers that have an outside warehouse, by type. Nothing without sDSN.",
    .columns = warehouse::kProviderColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetTplStock> = {
    .name = "GetTplStock",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetTplStock",
    .arguments = {{.name = "dctPara", .keys = warehouse::kTplStock}, {.name = "bIsBad"}},
    .help =
        "A provider's enabled warehouses, by id; with bIsBad True those for damaged goods as well. Nothing "
        "without sDSN or FWebtplType.",
    .columns = warehouse::kTplStockColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetTplCompanyNew> = {
    .name = "GetTplCompanyNew",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetTplCompany",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory}},
    .help = "All enabled warehouses, by provider type. Nothing without sDsn.",
    .columns = warehouse::kTplWarehouseColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetTplOrderInfo> = {
    .name = "GetTplOrderInfo",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetTplOrderInfo",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory, .names = Names::kOrders},
                  {.name = "dicWebToStorage", .keys = warehouse::kWebToStorage}},
    .help =
        "The keys, with commas between them, of those of the orders of the list sFID that have a line on a "
        "warehouse's stock and are not submitted, or may be again. An empty text without sDsn or sFID and when there "
        "is none.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetNotTplOrderInfo> = {
    .name = "GetNotTplOrderInfo",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetTplOrderInfo",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory, .names = Names::kOrders}},
    .help =
        "The keys, with commas between them, of those of the orders of the list sFID that have a line on a stock "
        "which no outside warehouse handles. An empty text without sDsn or sFID and when there is none.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetCancelTplOrderInfo> = {
    .name = "GetCancelTplOrderInfo",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetCancelTplOrderInfo",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory, .names = Names::kOrders},
                  {.name = "tplType", .stands = Standing::kNumber},
                  {.name = "tplStockID", .stands = Standing::kQuoted}},
    .help =
        "The keys, with commas between them, of those of the orders of the list sFID that may be taken back: "
        "in state 1, without a waybill, with every line on a stock of the warehouse tplStockID of provider "
        "type tplType, or of any with type 0. An order without lines is one of them. An empty text without "
        "sDsn or sFID and when there is none.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetCancelTplReturnOrderInfo> = {
    .name = "GetCancelTplReturnOrderInfo",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetCancelTplOrderInfo",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory, .names = Names::kOrderLines},
                  {.name = "tplType", .stands = Standing::kNumber},
                  {.name = "tplStockID", .stands = Standing::kQuoted}},
    .help =
        "The keys, with commas between them, of those of the order lines (FEntryID) of the list sFID that are "
        "on a stock of the warehouse. An empty text without sDsn or sFID and when there is none.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetFiltrationTPLOrder> = {
    .name = "GetFiltrationTPLOrder",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetFiltrationTPLOrder",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory, .names = Names::kOrders}},
    .help =
        "The keys, with commas between them, of those of the orders of the list sFID that are at an outside "
        "warehouse (state 1 or 3) with every line. A warehouse of stock 0 stands for no stock; an order "
        "without lines is one of them. An empty text without sDsn or sFID and when there is none.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetPurchaseTaskInfo> = {
    .name = "GetPurchaseTaskInfo",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetCancelTplOrderInfo",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "taskName", .stands = Standing::kQuoted},
                  {.name = "taskID", .stands = Standing::kQuoted},
                  {.name = "sWebTplType", .stands = Standing::kQuoted},
                  {.name = "sWebTplID", .stands = Standing::kQuoted}},
    .help =
        "-1 when a task has ended (state 2), otherwise 0: the task taskID or, when that is empty, the purchase "
        "task of the documents taskName at the warehouse. 0 without sDsn or either of the two.",
    .needs_latest = true,
};

}  // namespace tessarlorn
