// The contracts of the operations of delivery/.
#pragma once

#include "frame/keys.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/contract.h"

namespace tessarlorn {

namespace delivery {

using enum ValueType;
using enum Standing;

inline constexpr Key kStepBack[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("UpdateFlag", kBoolean, kNowhere, "False",
             "True = from delivered to 6, False = to 2, waiting for picking"),
};

inline constexpr Key kModifyCost[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("LogisticsCosts", kDouble, kNumber, "",
             "Logistics cost in the order's currency; an error when it is no number"),
};

inline constexpr Key kNumberAndWeight[] = {
    Optional("FLogisticsOrder", kString, kQuoted, "", "Logistics number"),
    Optional("FWeight", kString, kNumber, "0", "Weight in kg; the number with which the text begins"),
    Optional("FLogisticsCost", kString, kNumber, "0", "Logistics cost; the number with which the text begins"),
    Naming(Names::kOrders, Unchecked("FID", kLong, kBareNumber, "Order key")),
};

inline constexpr Key kLogWeight[] = {
    Unchecked("FWeight", kDouble, kBareNumber, "Weight in kg"),
    Unchecked("FLogisticsCost", kDouble, kBareNumber, "Logistics cost in the order's currency"),
    Unchecked("FWeighttingMan", kLong, kBareNumber, "Id of the user who weighed"),
    Unchecked("FWeighttingStatus", kLong, kBareNumber, "1 = weighed"),
    Naming(Names::kOrders, Unchecked("FID", kLong, kBareNumber, "Order key")),
};

inline constexpr Key kWeightStatus[] = {
    kOrdersKey,
    Unchecked("UserID", kLong, kBareNumber, "Id of the user who weighed"),
    Given("AsyncCreate", kBoolean, kNowhere, "True queues the orders' stock bills as well"),
};

inline constexpr Key kPrintCount[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("PrintID", kLong, kNowhere, "",
             "10143011 pick list, 10143012 delivery note, 10143013 waybill, 10143014 delivery list"),
};

inline constexpr Key kBillStatus[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("FOrderStatus", kLong, kNowhere, "", "The state that the orders are to be in: 2, 6 or 14; none = any"),
};

inline constexpr Column kReturnColumns[] = {
    kOrderKeyColumn,
    kOrderNumberColumn,
    {"FSiteOrderID", kString, "Number of the marketplace order"},
    {"FReason", kString,
     "Line numbers with commas between them, and the state of their service in the caller's language; the next state "
     "behind a semicolon"},
};

inline constexpr Column kBillStatusColumns[] = {
    {"Closed", kString, "Numbers of the orders that are closed, with commas between them"},
    {"Refund", kString, "Those in refund"},
    {"Unchecked", kString, "Those that are not checked"},
    {"Locked", kString, "Those that are locked"},
    {"WrongStatus", kString, "Those in another state than FOrderStatus"},
    {"Pass", kString, "Keys of the orders with none of these, with commas between them"},
};

inline constexpr Column kCloseColumns[] = {
    kOrderKeyColumn,
    kOrderNumberColumn,
    {"FCloseType", kLong, "1 = closed, 2 = some of its lines are"},
};

inline constexpr Column kTotalColumns[] = {{"FTotalAmount", kDecimal, "Sum of the amounts of an order's lines"}};

inline constexpr Column kPrintColumns[] = {
    kOrderKeyColumn,
    {"FBuyerName", kString, "Buyer"},
    {"FSendDate", kDate, "When the order was sent"},
    {"FUniqueCode", kDecimal, "Unique code of the order"},
    {"FConsignee", kString, "Who receives the parcel"},
    {"FMobile", kString, "Mobile number"},
    {"FTelephone", kString, "Telephone number"},
    {"FDeliveryAddress", kString, "Street and house"},
    {"FZipCode", kString, "Postal code"},
    {"FName", kString, "Name of the item"},
    {"FModel", kString, "Model of the item"},
    {"FUnitName", kString, "Unit of the quantity"},
    {"FQuantity", kDecimal, "Quantity"},
    {"FPrice", kDecimal, "Price of one unit"},
    {"FAmount", kDecimal, "Amount of the line"},
    {"FDiscountFee", kDecimal, "Discount of the line"},
    {"FSiteOrderID", kString, "Number of the marketplace order"},
    {"FIndex", kLong, "Line key"},
    {"FDeliveryProvince", kString, "Name of the province; Null without one"},
    {"FDeliveryCity", kString, "Name of the city; Null without one"},
    {"FDeliveryDistrict", kString, "Name of the district; Null without one"},
};

inline constexpr Column kWeightColumns[] = {
    kOrderKeyColumn,
    {"FWeight", kDecimal, "Weight in the base unit of gross weights"},
};

inline constexpr Column kKilogramColumns[] = {
    {"FWeight", kDouble, "Weight in kg; a line without a gross weight adds nothing"},
    kOrderKeyColumn,
};

}  // namespace delivery

template <>
inline constexpr Contract kContract<&clsSaveData::Delivery> = {
    .name = "Delivery",
    .source = "Delivery",
    .arguments = {{.name = "dctPara", .keys = kOrders}},
    .help =
        "Sets orders delivered (status 14) by the acting user and closes their lines, whatever their status was. "
        "False, with nothing done, without sDSN or FID; True when the update ran, also when no order matched.",
    .errors = "6 when the user's id is beyond 16 bits",
};
template <>
inline constexpr Contract kContract<&clsSaveData::BackToThePreviousStep> = {
    .name = "BackToThePreviousStep",
    .source = "BackToThePreviousStep",
    .arguments = {{.name = "dctPara", .keys = delivery::kStepBack}},
    .help =
        "Steps orders back, whatever their status was: from delivered to waiting for delivery, with lines open "
        "again and no shipper, or to waiting for picking, without a picker. Logged as 3005 where enabled, "
        "before the change. False, with nothing done, without sDSN or FID.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::UpdateDeliveryData> = {
    .name = "UpdateDeliveryData",
    .source = "TessarLornPickingAndDelivery.clsSaveData.UpdateDeliveryData",
    .arguments = {{.name = "sDsn"}, {.name = "sFID", .stands = Standing::kNumber, .names = Names::kOrders}},
    .help =
        "Queues the creation of stock bills for the orders of the list sFID, in batches of 150; a queued order "
        "is reset to waiting. Batches before a failing one stay. True, also for an empty list.",
    .errors = "13 for a key that is no number",
};
template <>
inline constexpr Contract kContract<&clsSaveData::ModifyCost> = {
    .name = "ModifyCost",
    .source = "Delivery",
    .arguments = {{.name = "dctPara", .keys = delivery::kModifyCost}},
    .help =
        "Sets the logistics cost of orders, rounded to two decimals (half away from zero), and records it in "
        "their field log first. False, with nothing done, without sDSN or FID.",
    .errors = "13 when the cost is missing or no number, with nothing stored",
};
template <>
inline constexpr Contract kContract<&clsSaveData::SetUpLogisticsNumberAndWeight> = {
    .name = "SetUpLogisticsNumberAndWeight",
    .source = "Delivery",
    .arguments = {{.name = "sDsn"}, {.name = "vctPara", .keys = delivery::kNumberAndWeight}},
    .help =
        "Stores logistics number, weight and cost of each order of the Vector; numbers that are not empty go "
        "to the field log. False for Nothing, True for an empty Vector, with nothing done.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::SetUpLogisticsNumber> = {
    .name = "SetUpLogisticsNumber",
    .source = "Delivery",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "dctPara", .stands = Standing::kQuoted, .any_key = true, .names = Names::kUniqueCode}},
    .help =
        "Stores logistics numbers: each key is an order's unique code (FUniqueCode), its value the number. "
        "Nothing is logged. False, with nothing done, without sDsn or entries.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::SaveLogWeight> = {
    .name = "SaveLogWeight",
    .source = "SaveLogWeight",
    .arguments = {{.name = "sDsn"}, {.name = "vctPara", .keys = delivery::kLogWeight}},
    .help =
        "Stores weight, cost, weigher and weighing status of each order of the Vector; each is logged as 3008 "
        "where enabled, before the change. False for Nothing, True for an empty Vector, with nothing done.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::UpdateLogisticsWeightStatus> = {
    .name = "UpdateLogisticsWeightStatus",
    .source = "TessarLornPickingAndDelivery.clsSaveData.UpdateLogisticsWeightStatus",
    .arguments = {{.name = "sDsn"}, {.name = "dctPara", .keys = delivery::kWeightStatus}},
    .help =
        "Marks orders as weighed and, on request, queues the creation of their stock bills in batches of 150. False, "
        "with nothing done, without FID or AsyncCreate.",
    .errors =
        "13 for a key that is no number, and for an AsyncCreate that is neither a Boolean nor a number, with "
        "nothing stored",
};
template <>
inline constexpr Contract kContract<&clsGetData::GetSumRecordsetDataForDelivery> = {
    .name = "GetSumRecordsetDataForDelivery",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetSumRecordsetDataForDelivery",
    .arguments = {{.name = "dctParam", .keys = kOrders}},
    .help = "The total amount of each of the orders, in no certain order. Nothing without sDSN or FID.",
    .columns = delivery::kTotalColumns,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetPrintRecordsetForDelivery> = {
    .name = "GetPrintRecordsetForDelivery",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetPrintRecordsetForDelivery",
    .arguments = {{.name = "dctParam", .keys = kOrders}},
    .help =
        "The header and line data of delivery notes, one row a line, by order and line. Areas are named in "
        "Simplified Chinese for CHS, otherwise in Traditional. Nothing without sDSN or FID.",
    .columns = delivery::kPrintColumns,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetOverMaxPrintCountBillInfo> = {
    .name = "GetOverMaxPrintCountBillInfo",
    .source = "GetOverMaxPrintCountBillInfo",
    .arguments = {{.name = "dctPara", .keys = delivery::kPrintCount}},
    .help =
        "Those of the orders that were printed as often as the type of print allows, or more: a Vector of "
        "Dictionaries with FOrderID, FUniqueCode, FPrintMaxCount and the counter of the type, FPrintPickCount, "
        "FPrintSendCount, FPrintExpressCount or FPrintSendList. An empty Vector without sDSN or FID, for any "
        "other type, and for one that is not limited.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetWeightByFID> = {
    .name = "GetWeightByFID",
    .source = "GetWeightByFID",
    .arguments = {{.name = "dctPara", .keys = kOrder}},
    .help =
        "The weight of an order, computed from its lines. Nothing without sDSN or FID; an empty recordset when "
        "the order has no lines.",
    .columns = delivery::kWeightColumns,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::NewGetWeightByFID> = {
    .name = "NewGetWeightByFID",
    .source = "NewGetWeightByFID",
    .arguments = {{.name = "sDsn"}, {.name = "sFID", .stands = Standing::kNumber, .names = Names::kOrders}},
    .help = "The order's weight computed from its lines, 0 when it has none.",
    .errors = "11 when a unit that has to be converted has the coefficient 0",
    .columns = delivery::kKilogramColumns,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetTotalLogisticsCosts> = {
    .name = "GetTotalLogisticsCosts",
    .source = "GetTotalLogisticsCosts",
    .arguments = {{.name = "dctPara", .keys = kOrders}},
    .help =
        "The sum of the orders' logistics costs in the base currency. 0 without sDSN or FID and when no order "
        "matches.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::bIsWeightting> = {
    .name = "bIsWeightting",
    .source = "bIsWeightting",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory}},
    .help = "Whether weighing is switched on (setting ECWeightting). False without sDsn or such a setting.",
};

template <>
inline constexpr Contract kContract<&clsGetData::CheckReturnBills> = {
    .name = "CheckReturnBills",
    .source = "CheckReturnBills",
    .arguments = {{.name = "dctPara", .keys = kOrders}},
    .help =
        "Those of the orders that are in refund: a line that is not closed (by hand, or by the shop as TRADE_CLOSED) "
        "has a refund asked for and not refused. None with the setting NotCheckRefundOnStatus. Nothing without sDSN or "
        "FID; an empty Vector when no order is in refund.",
    .columns = delivery::kReturnColumns,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::CheckBillStatus> = {
    .name = "CheckBillStatus",
    .source = "CheckReturnBills",
    .arguments = {{.name = "dctPara", .keys = delivery::kBillStatus}},
    .help =
        "What stops orders from being delivered. An order is closed when its transaction is (38195) or when it has "
        "lines and each is closed, by hand or by the shop (TRADE_CLOSED); in refund as CheckReturnBills says; "
        "unchecked when FCheckStatus is not 1; locked when its extension says so. An order can stand under several. "
        "Nothing without sDSN or FID.",
    .errors = "13 for an FOrderStatus that is no number",
    .columns = delivery::kBillStatusColumns,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::CheckCloseBill> = {
    .name = "CheckCloseBill",
    .source = "CheckCloseBill",
    .arguments = {{.name = "dctPara", .keys = kOrders}},
    .help =
        "Those of the orders that are closed or have a closed line; CheckBillStatus says what closed is. Nothing "
        "without sDSN or FID; an empty Vector when there is none.",
    .columns = delivery::kCloseColumns,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::CheckCloseBillOnly> = {
    .name = "CheckCloseBillOnly",
    .source = "CheckCloseBillOnly",
    .arguments = {{.name = "dctPara", .keys = kOrders}},
    .help =
        "Those of the orders that are closed as a whole and not in refund as well. Nothing without sDSN or FID; an "
        "empty Vector when there is none.",
    .columns = delivery::kCloseColumns,
    .needs_latest = true,
};

}  // namespace tessarlorn
