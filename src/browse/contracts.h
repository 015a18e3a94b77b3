// The contracts of the operations of browse/.
#pragma once

#include "frame/keys.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/contract.h"

namespace tessarlorn {

namespace browse {

using enum ValueType;
using enum Standing;

inline constexpr Key kListFilter[] = {
    Optional("FOrderDateFrom", kDate, kQuoted, "", "Ordered at or after"),
    Optional("FOrderDateTo", kDate, kQuoted, "", "Ordered at or before"),
    Optional("FSitePayDateFrom", kDate, kQuoted, "", "Paid at or after"),
    Optional("FSitePayDateTo", kDate, kQuoted, "", "Paid at or before"),
    Optional("FShipDateFrom", kDate, kQuoted, "", "Reported as sent to the web shop at or after"),
    Optional("FShipDateTo", kDate, kQuoted, "", "Reported as sent to the web shop at or before"),
    Optional("FSendDateFrom", kDate, kQuoted, "", "Sent at or after"),
    Optional("FSendDateTo", kDate, kQuoted, "", "Sent at or before"),
    Optional("FOrderFlag", kString, kQuoted, "", "Flag of the order"),
    Optional("FUpLoadStatus", kLong, kBareNumber, "", "0 = not uploaded, 1 = uploaded, 2 = failed, 3 = uploading"),
    Optional("FSiteID", kString, kQuoted, "", "Web shop id (column FWebshopID)"),
    Optional("FOrderType", kLong, kBareNumber, "", "Order type id; 38112 = manual order"),
    Optional("FIsPrintSend", kLong, kBareNumber, "", "1 = delivery slip printed, 0 = not"),
    Optional("FIsPrintExpress", kLong, kBareNumber, "", "1 = waybill printed, 0 = not"),
    Optional("FLogisticsID", kString, kQuoted, "", "Carrier id"),
    Optional("FOrderStatus", kLong, kBareNumber, "",
             "2 = waiting for picking, 6 = waiting for delivery, 14 = delivered"),
    Optional("WaitingForDelivery", kLong, kNumber, "0",
             "Status whose orders are listed as well once their stock bill is queued; counts with FOrderStatus only"),
    Optional("IsLock", kLong, kNowhere, "0",
             "1 = locked, checked orders only, and FOrderStatus does not count; otherwise unlocked ones only"),
    Optional("FGoodsCount", kString, kSql, "", "SQL condition"),
    Optional("FEntryCount", kString, kSql, "", "SQL condition"),
    Optional("icboTpl", kString, kSql, "", "SQL condition"),
    Optional("icboCainiao", kString, kSql, "", "SQL condition"),
    Optional("OtherFilterOne", kString, kSql, "", "SQL condition"),
    Optional("FStockID", kString, kQuoted, "", "Name of a warehouse from which a line is delivered"),
    Optional(
        "AdvancedFilter", kString, kSql, "",
        "SQL that begins with \" AND\"; the keys above but FOrderStatus, WaitingForDelivery and IsLock then do not count. One with \"t20.\" "
        "is turned to upper case"),
    Optional("FCloseOrRefundStatus", kLong, kNowhere, "", "1 = normal orders, 2 = refunding or closed ones"),
    Optional("WebOrderMaxDisplayCount", kDouble, kNumber, "0", "Most rows; 0 = all"),
};

inline constexpr Key kEntry[] = {Naming(Names::kOrders, Given("FID", kLong, kBareNumber, "Order key"))};

inline constexpr Key kBuyers[] = {
    ConnectionKey("sDSN"),
    Naming(Names::kOrders,
           Optional("FID", kString, kKeyList, "", "Order keys (FID), separated by commas; an error without any")),
};

inline constexpr Column kTemplateColumns[] = {
    {"FPage", kLong, "1 = header, 2 = lines"},
    {"FCaption", kString, "Caption, in Traditional Chinese for CHT, otherwise in Simplified"},
    {"FFieldName", kString, "Field in the table"},
    {"FTableName", kString, "Table that the field is of"},
    {"FVisible", kLong, "1 = shown"},
    {"FTabIndex", kLong, "Place among the fields of the page"},
    {"FKey", kString, "Key of the field"},
    {"FCtlType", kLong, "Kind of control that edits it"},
    {"FClassTypeID", kLong, "Class type of the grid, 1014301"},
};

inline constexpr Column kFilterColumns[] = {
    {"FPage", kLong, "1 = header, 2 = lines"},
    {"FCaption", kString, "Caption, in Traditional Chinese for CHT, otherwise in Simplified"},
    {"FFieldName", kString, "Field in the table"},
    {"FCtlType", kLong, "Kind of control that edits it"},
    {"Fkey", kString, "Key of the field"},
    {"FTableName", kString, "Table that the field is of"},
};

inline constexpr Column kWebShopColumns[] = {
    {"FID", kLong, "Key of the row"},
    {"FWebShopID", kLong, "Web shop id"},
    {"FWebShopName", kString, "Its name"},
};

inline constexpr Column kContactColumns[] = {
    kOrderKeyColumn,
    {"FBuyerName", kString, "Buyer"},
    {"FBuyerNick", kString, "The buyer's name in the web shop"},
    {"FConsignee", kString, "Who receives the parcel"},
    {"FMobile", kString, "Mobile number"},
    {"FBuyerEMail", kString, "The buyer's e-mail address"},
};

inline constexpr Column kTextMessageColumns[] = {
    {"FBuyerName", kString, "Buyer"},
    {"FWebshopID", kLong, "Web shop id"},
    {"FWebShopName", kString, "Its name"},
    {"FConsignee", kString, "Who receives the parcel"},
    {"FBuyerNick", kString, "The buyer's name in the web shop"},
    {"FTelephone", kString, "Telephone number"},
    {"FMobile", kString, "Mobile number"},
    {"FSiteOrderID", kString, "Number of the marketplace order"},
    kOrderNumberColumn,
    {"FLogisticsID", kLong, "Carrier id"},
    {"FLogisticsName", kString, "Carrier, its Traditional Chinese name for CHT, otherwise its Simplified one"},
    {"FLogisticsOrder", kString, "Logistics number"},
};

}  // namespace browse

template <>
inline constexpr Contract kContract<&clsGetData::GetListData> = {
    .name = "GetListData",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetListData",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "Filter", .need = Need::kGiven, .keys = browse::kListFilter}},
    .help =
        "The orders that the filter lets through, one row each with display-ready status columns, by pay date "
        "and order number. Only those of web shops that the acting user may see, unless access control is off "
        "or the user is an administrator, which is asked on the alternate connection. Areas and carrier are "
        "named in Simplified Chinese for CHS, otherwise in Traditional. A date key takes a date or a text that "
        "reads as one; any other value goes into the statement as its text. User-defined columns stand behind "
        "the others. Nothing without sDsn or Filter; an empty recordset when no order matches.",
};
template <>
inline constexpr Contract kContract<&clsGetData::GetEntryData> = {
    .name = "GetEntryData",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetEntryData",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory}, {.name = "dctParameters", .keys = browse::kEntry}},
    .help =
        "The lines of an order with item, unit, warehouse, refund and after-sales data; gift lines come last, "
        "each group by line number. User-defined columns stand behind the others. Nothing without sDsn or FID; "
        "an empty recordset for an order without lines.",
};
template <>
inline constexpr Contract kContract<&clsGetData::GetTemplateData> = {
    .name = "GetTemplateData",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetTemplateData",
    .arguments = {{.name = "dctParam", .keys = kConnection}},
    .help = "The fields of the order grid by page (1 header, 2 lines) and tab index. Nothing without sDSN.",
    .columns = browse::kTemplateColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetUserDefineFilterTemplate> = {
    .name = "GetUserDefineFilterTemplate",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetUserDefineFilterTemplate",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory}},
    .help =
        "The fields that a user-defined filter may use, by tab index: the saved header fields and some of the "
        "lines and states. Nothing without sDsn.",
    .columns = browse::kFilterColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetListBySQL> = {
    .name = "GetListBySQL",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetListBySQL",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sFKey", .stands = Standing::kBareNumber, .need = Need::kMandatory}},
    .help =
        "The choices of a lookup field as display_id|display_id, cut at 1000 characters. sFKey is class type "
        "and field key, as 1014301_FStockID; what follows a second _ does not count, and the class type stands "
        "bare in the statement. Empty without sDsn or sFKey, for an unknown field and for one that has no list.",
    .errors = "9 for a key without _, 5 for a list without FROM in capitals",
};
template <>
inline constexpr Contract kContract<&clsGetData::ExecuteSQL> = {
    .name = "ExecuteSQL",
    .source = "",
    .arguments = {{.name = "sDsn"}, {.name = "StrSql", .stands = Standing::kSql}},
    .help =
        "Runs SQL as it is and answers its first rows, detached from the connection; Nothing when it answers none. "
        "Errors come out as the database raised them; an empty connection string is one.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetWebShopData> = {
    .name = "GetWebShopData",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetWebShopData",
    .arguments = {{.name = "dctPara", .keys = kConnection}},
    .help = "All web shops, by FID. Nothing without sDSN.",
    .columns = browse::kWebShopColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetCommunicaInformation> = {
    .name = "GetCommunicaInformation",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetCommunicaInformation",
    .arguments = {{.name = "dctPara", .keys = browse::kBuyers}},
    .help =
        "Names, mobile and e-mail of the buyers of orders, in no certain order. Nothing without sDSN; an empty "
        "recordset when no order matches.",
    .errors = "also when FID is missing",
    .columns = browse::kContactColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetMobileInformation> = {
    .name = "GetMobileInformation",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetMobileInformation",
    .arguments = {{.name = "dctPara", .keys = browse::kBuyers}},
    .help =
        "What a text message to the buyers of orders needs. Orders without a carrier or of an unknown shop are "
        "left out. Nothing without sDSN.",
    .errors = "also when FID is missing",
    .columns = browse::kTextMessageColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetWebBillTitleData> = {
    .name = "GetWebBillTitleData",
    .source = "",
    .arguments = {{.name = "PropsString", .need = Need::kMandatory}},
    .help =
        "The titles of the order states, by state: the first two columns of the table IC_WEBOrders_Status. "
        "PropsString is the connection string. Nothing without it and on any error: it never raises.",
};
template <>
inline constexpr Contract kContract<&clsGetData::ExeP_WebBillTitleData> = {
    .name = "ExeP_WebBillTitleData",
    .source = "",
    .arguments = {{.name = "PropsString", .need = Need::kMandatory}},
    .help =
        "Has the database refresh the titles of the order states. PropsString is the connection string. False "
        "without it and on any error: it never raises.",
    .needs_latest = true,
};

}  // namespace tessarlorn
