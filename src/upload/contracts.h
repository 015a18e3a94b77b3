// The contracts of the operations of upload/.
#pragma once

#include "frame/keys.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/contract.h"

namespace tessarlorn {

namespace upload {

using enum ValueType;
using enum Standing;

inline constexpr Key kUploadStatus[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("IsOfflineUpLoad", kLong, kNowhere, "0", "1 marks the orders as sent offline (send type 38132) as well"),
};

inline constexpr Key kFailure[] = {
    Naming(Names::kOrders, Optional("FailureFID", kLong, kBareNumber, "0", "Order key")),
    Optional("FailureInfo", kString, kStripped, "",
             "The web shop's reason; single quotes are removed without Escape=Yes"),
};

inline constexpr Key kUploadFailure[] = {
    ConnectionKey("sDSN"),
    Key{.name = "ErrInfo",
        .type = kVector,
        .need = Need::kGiven,
        .fallback = "",
        .help = "One Dictionary for each failed order",
        .item_keys = kFailure},
};

inline constexpr Column kUploadedColumns[] = {
    kOrderNumberColumn,
    {"FUpLoadStatus", kLong, "1 = uploaded"},
};

inline constexpr Column kReportColumns[] = {
    {"SiteOrderID", kString, "Number of the marketplace order"},
    {"ChildIDs", kString, "Its child order, for a split one; else empty"},
    {"IsSplit", kBoolean, "Whether the marketplace order was split"},
    {"FWebshopID", kLong, "Web shop id"},
    {"FLogisticsNumber", kString, "Code of the carrier; empty for an unknown carrier"},
    {"FLogisticsOrder", kString, "Logistics number"},
    kOrderNumberColumn,
    kOrderKeyColumn,
};

}  // namespace upload

template <>
inline constexpr Contract kContract<&clsSaveData::UploadStatus> = {
    .name = "UploadStatus",
    .source = "UploadStatus",
    .arguments = {{.name = "dctPara", .keys = upload::kUploadStatus}},
    .help =
        "Marks orders as uploaded to their web shop (transaction status 38193) and clears the reason of an "
        "earlier failure. False, with nothing done, without sDSN or FID; True when the update ran, also when "
        "no order matched.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::UploadStatusFailure> = {
    .name = "UploadStatusFailure",
    .source = "UploadStatusFailure",
    .arguments = {{.name = "dctPara", .keys = upload::kUploadFailure}},
    .help =
        "Marks orders as not uploaded, each with the web shop's reason. False, with nothing done, without sDSN or "
        "ErrInfo; True for an empty ErrInfo.",
    .errors = "13 when ErrInfo is no Vector of Dictionaries",
};
template <>
inline constexpr Contract kContract<&clsSaveData::UpLoadStatusForManualAndClosed> = {
    .name = "UpLoadStatusForManualAndClosed",
    .source = "UpLoadStatusForManualAndClosed",
    .arguments = {{.name = "sDsn"}},
    .help =
        "Marks every manual order and every closed transaction, with its lines, as uploaded. True, also when there "
        "is none.",
    .reaches_any_order = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::bExistUpLoadBill> = {
    .name = "bExistUpLoadBill",
    .source = "bExistUpLoadBill",
    .arguments = {{.name = "dctPara", .keys = kOrders}},
    .help =
        "Those of the orders that are marked as uploaded. Nothing without sDSN or FID; an empty recordset when "
        "none is.",
    .columns = upload::kUploadedColumns,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetUploadDataByFID> = {
    .name = "GetUploadDataByFID",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetUploadDataByFID",
    .arguments = {{.name = "strDSN", .need = Need::kMandatory},
                  {.name = "strFids", .stands = Standing::kKeyList, .need = Need::kMandatory, .names = Names::kOrders}},
    .help =
        "What is to be reported to the web shops about the orders of the list strFids: one Dictionary for each "
        "marketplace order, taken from its first line, or for each of its lines when it was split. It was "
        "split when its lines have three waybill numbers or more, one counted for each line, or when it has "
        "more child orders in the ERP than lines among these orders. Lines whose marketplace order is empty or "
        "unknown to IC_Trade are left out. An empty Vector without strDSN or strFids.",
    .columns = upload::kReportColumns,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetUploadDataByTab> = {
    .name = "GetUploadDataByTab",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetUploadDataByTab",
    .arguments = {{.name = "strDSN", .need = Need::kMandatory},
                  {.name = "pageTable", .stands = Standing::kName, .need = Need::kMandatory},
                  {.name = "strFids", .stands = Standing::kName},
                  {.name = "strTempTable", .stands = Standing::kName},
                  {.name = "sNewID", .stands = Standing::kQuoted}},
    .help =
        "Writes the reports of GetUploadDataByFID for the orders of one page as rows: pageTable is the page's "
        "work table, strFids the run's, both with the columns fid and fstatus; strTempTable takes the rows "
        "under task sNewID, in the columns of IC_UploadWebOrderIndicator, with FIsSplit 1 or 0, FUpStatus 0 "
        "and FError empty, and from there they go into that table, none twice. The page's orders get fstatus 1 "
        "in the run's table; a page with an order of fstatus 1 is done. The page is joined as pageTable, so "
        "its name is that or is followed by that alias. True, with nothing done, for a page that is done; "
        "False without strDSN or pageTable.",
    .reaches_any_order = true,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::isRunUploadOrder> = {
    .name = "isRunUploadOrder",
    .source = "TessarLornPickingAndDelivery.clsGetData.isRunUploadOrder",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory}},
    .help =
        "Whether the acting user has an upload task that is not finished, asked on the alternate connection. "
        "False without sDsn.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetSplitChrildOrderIDs> = {
    .name = "GetSplitChrildOrderIDs",
    .source = "TessarMWebOrder.TessarMWebOrderInfo.GetSortRs",
    .arguments = {{.name = "strDSN", .need = Need::kMandatory},
                  {.name = "FID", .stands = Standing::kNumber, .names = Names::kOrders},
                  {.name = "SiteOrderID", .stands = Standing::kQuoted},
                  {.name = "ChildOrderIDs"}},
    .help =
        "Whether other orders than FID have lines of the marketplace order SiteOrderID; if so, the child "
        "orders of FID's lines go behind what ChildOrderIDs holds, with commas between them; one comma at the "
        "end of the whole is dropped. False, with ChildOrderIDs as it was, without strDSN or with FID 0.",
    .reaches_any_order = true,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::CheckWebShopTypeSameByOrders> = {
    .name = "CheckWebShopTypeSameByOrders",
    .source = "TessarLornPickingAndDelivery.clsGetData.CheckWebShopTypeSameByOrders",
    .arguments = {{.name = "sDsn"},
                  {.name = "strIDs", .stands = Standing::kKeyList, .names = Names::kOrders},
                  {.name = "WebShopType"}},
    .help =
        "Whether the orders of the list strIDs are all of web shops of one type, which WebShopType then is; "
        "True with 0 when none has a shop or strIDs is empty; on False it stays what it was. Orders of several "
        "types are not uploaded together.",
};
template <>
inline constexpr Contract kContract<&clsGetData::GetWebShopType> = {
    .name = "GetWebShopType",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetWebShopType",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory}, {.name = "sFWebshopID", .stands = Standing::kQuoted}},
    .help = "The type of a web shop. 0 without sDsn and when there is no such shop.",
};

}  // namespace tessarlorn
