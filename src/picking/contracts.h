// The contracts of the operations of picking/.
#pragma once

#include "frame/keys.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/contract.h"

namespace tessarlorn {

namespace picking {

using enum ValueType;
using enum Standing;

inline constexpr Key kConfirmBill[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("FPickManNumber", kString, kQuoted, "", "The picker's employee code"),
    Optional("FPickRem", kString, kQuoted, "", "Picking remark"),
};

inline constexpr Key kPickingGoods[] = {
    ConnectionKey("sProps"),
    Naming(Names::kWaybill, Optional("FLogisticsOrder", kString, kQuoted, "",
                                     "The parcel's logistics number or, all in digits, the order's unique code")),
    Optional("FPickingGoodsStatus", kLong, kNumber, "0", "1 = check passed, 0 = not passed"),
    Unchecked("FPickingGoodMan", kLong, kBareNumber, "Id of the user who checked"),
    Optional("FPickingGoodsstatus", kLong, kNowhere, "", "With a small s: 1 stores the time of the check as well"),
};

inline constexpr Key kPickingMark[] = {
    ConnectionKey("sDsn"),
    kOrdersKey,
    Unchecked("UserId", kLong, kBareNumber, "Id of the user who checked"),
};

inline constexpr Key kBatch[] = {
    Optional("FBatchNo", kString, kStripped, "",
             "Batch number; single quotes are removed without Escape=Yes, here and below"),
    Optional("FStockID", kLong, kStripped, "", "Warehouse; an absent one is stored as none, like all of these"),
    Optional("SPID", kLong, kStripped, "", "Stock place"),
    Naming(Names::kOrderLines, Optional("FEntryID", kLong, kBareNumber, "0", "Line key")),
};

inline constexpr Key kPickList[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("Mode", kLong, kNowhere, "0", "1 collects what all the orders need, any other number lists their lines"),
};

inline constexpr Key kPrinted[] = {Naming(
    Names::kOrders, Unchecked("FID", kLong, kBareNumber, "Order key; the first value counts, whatever its name"))};

inline constexpr Column kStockPlaceColumns[] = {
    {"FEntryID", kLong, "Line key"},
    {"FStockID", kLong, "Warehouse, its id"},
    {"FStockName", kString, "Its name"},
    {"FDefaultStockPlaceGroupID", kLong, "Default stock place of the warehouse's group, in spite of the name"},
    {"FDefaultStockPlaceGroupName", kString, "Name of the group"},
    {"FDefaultStockPlaceName", kString, "Name of the default stock place"},
    {"FDefaultItemStockPlaceID", kLong, "The item's own stock place when this is its own warehouse, else 0"},
};

/// Those of Mode 0.
inline constexpr Column kPickListColumns[] = {
    kOrderKeyColumn,
    kOrderNumberColumn,
    {"FUniqueCode", kDecimal, "Unique code of the order"},
    {"FLotNumber", kString, "Print run that the order is in; Null without header extension"},
    {"FSerialNumber", kString, "Its place in that run"},
    {"FWebShopName", kString, "Web shop"},
    {"FConsignee", kString, "Who receives the parcel"},
    {"FBuyerMessage", kString, "What the buyer wishes"},
    {"FSellerMessage", kString, "Remark of the seller"},
    {"FPickRem", kString, "Remark for the picker"},
    {"FLogisticsName", kString, "Carrier, in the caller's language; Null without one"},
    {"FEntryID", kLong, "Line key"},
    {"FIndex", kLong, "Line number in the order"},
    {"FNumber", kString, "Number of the item"},
    {"FItemName", kString, "Name of the item"},
    {"FModel", kString, "Model of the item"},
    {"FAttrName", kString, "Auxiliary attribute, such as a colour; Null without one"},
    {"FBarCode", kString, "Bar code of the goods"},
    {"FQuantity", kDecimal, "Quantity"},
    {"FUnitName", kString, "Its unit"},
    {"FBatchNo", kString, "Batch number"},
    {"FIsFree", kLong, "1 = gift"},
    {"FMealName", kString, "Set meal that the line is part of"},
    {"FStockID", kLong, "Warehouse, its id"},
    {"FStockName", kString, "Its name"},
    {"FSPNumber", kString, "Number of the stock place; Null without one"},
    {"FSPName", kString, "Its name"},
};

inline constexpr Column kBatchColumns[] = {
    kOrderKeyColumn,
    {"FItemID", kLong, "Item, its id"},
    {"FEntryID", kLong, "Line key"},
    {"FItemName", kString, "Name of the item"},
    {"FNumber", kString, "Number of the item"},
    {"FBatchNo", kString, "Batch number"},
    {"FName", kString, "Name of the warehouse"},
    {"FStockID", kLong, "Warehouse, its id"},
    {"FSPID", kLong, "Stock place, its id"},
    {"FSPName", kString, "Name of the stock place"},
};

}  // namespace picking

template <>
inline constexpr Contract kContract<&clsSaveData::ConfirmBill> = {
    .name = "ConfirmBill",
    .source = "ConfirmBill",
    .arguments = {{.name = "dctPara", .keys = picking::kConfirmBill}},
    .help =
        "Assigns a picker and sets orders waiting for delivery (status 6), whatever their status was. False, with "
        "nothing done, without sDSN or FID; True when the update ran, also when no order matched.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::SavePickingGoods> = {
    .name = "SavePickingGoods",
    .source = "SavePickingGoods",
    .arguments = {{.name = "dctPara", .keys = picking::kPickingGoods}},
    .help =
        "Stores the result of the picking check of one parcel, found by its logistics number or unique code; "
        "logged as 3003, for the first order found. False, with nothing done, without sProps; True when the "
        "update ran, also when no order matched.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::MarkPickingGoodsStatus> = {
    .name = "MarkPickingGoodsStatus",
    .source = "MarkPickingGoodsStatus",
    .arguments = {{.name = "dctPara", .keys = picking::kPickingMark}},
    .help =
        "Marks the picking check of orders as passed; orders that are marked already stay as they are. Logged "
        "as 3014, for all of them, always and before the change. False, with nothing done, without sDsn or FID.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::ClearPickingGoodsStatus> = {
    .name = "ClearPickingGoodsStatus",
    .source = "ClearPickingGoodsStatus",
    .arguments = {{.name = "dctPara", .keys = picking::kPickingMark}},
    .help =
        "Takes the mark of the picking check back; orders without it stay as they are. Logged as 3013 where enabled. "
        "False, with nothing done, without sDsn or FID.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::SaveBatchNo> = {
    .name = "SaveBatchNo",
    .source = "SaveBatchNo",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "vctPara", .need = Need::kGiven, .keys = picking::kBatch}},
    .help =
        "Stores batch number, warehouse and stock place of each order line of the Vector; batch numbers go to the "
        "field log first. False, with nothing done, without sDsn or entries.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::SavePrintSerialNumber> = {
    .name = "SavePrintSerialNumber",
    .source = "SavePrintSerialNumber",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "vctOrderInfo", .need = Need::kGiven, .keys = picking::kPrinted}},
    .help =
        "Gives the orders of a print run a new lot number (year, month and the run's number in the month, as "
        "20261112) and serial numbers from 1, in the order of the Vector; a reprint gives new ones. A lot "
        "number that is taken before an error is lost, unless the call runs in a transaction. False, with "
        "nothing done, without sDsn or for Nothing; an empty Vector uses up a lot number and is True.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::GetUniqueCodeIndex> = {
    .name = "GetUniqueCodeIndex",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetUniqueCodeIndex",
    .arguments = {{.name = "dctParam", .keys = kOrders}},
    .help =
        "The unique codes of orders, numbered in the order of FID, five a line: the number in 3 columns, -, "
        "the code in 10 to 20 columns (a longer one cut to 19 and ..), |. A key without an order is left out. "
        "Empty without sDSN or FID.",
};
template <>
inline constexpr Contract kContract<&clsGetData::bIsPickingGoods> = {
    .name = "bIsPickingGoods",
    .source = "bIsPickingGoods",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory}},
    .help = "Whether the picking check is switched on (setting ECPickingGoods). False without sDsn or such a setting.",
};
template <>
inline constexpr Contract kContract<&clsGetData::bIsPickByBatch> = {
    .name = "bIsPickByBatch",
    .source = "bIsPickByBatch",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory}},
    .help = "Whether picking is done by batch (setting PickByBatch). False without sDsn or such a setting.",
};
template <>
inline constexpr Contract kContract<&clsGetData::lPickGoodsCount> = {
    .name = "lPickGoodsCount",
    .source = "lPickGoodsCount",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory}},
    .help = "Orders per picking run (setting PickGoodsCount), 20 when the setting is no number. 0 without sDsn.",
    .errors = "3021 when there is no such setting",
};
template <>
inline constexpr Contract kContract<&clsGetData::bExistStockPositionManager> = {
    .name = "bExistStockPositionManager",
    .source = "ChangeAddess",
    .arguments = {{.name = "dctPara", .keys = kOrders}},
    .help =
        "The lines of orders that go to a warehouse with stock places, with their default places; "
        "price-difference goods are left out. Nothing without sDSN or FID; an empty Vector when no line "
        "matches.",
    .columns = picking::kStockPlaceColumns,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::bExistBatchOrSerialManagerItem> = {
    .name = "bExistBatchOrSerialManagerItem",
    .source = "ChangeAddess",
    .arguments = {{.name = "dctPara", .keys = kOrders}},
    .help = "Whether a line of the orders has an item with batch or serial numbers. False without sDSN or FID.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::bExistBatchEmpty> = {
    .name = "bExistBatchEmpty",
    .source = "bExistBatchEmpty",
    .arguments = {{.name = "dctPara", .keys = kOrders}},
    .help = "Whether a line of the orders has an empty batch number; Null does not count. False without sDSN or FID.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetBatchNo> = {
    .name = "GetBatchNo",
    .source = "GetBatchNo",
    .arguments = {{.name = "dctPara", .keys = kOrders}},
    .help =
        "Item, batch number, warehouse and stock place of the lines of orders; one row with Nulls for an order "
        "without lines. Nothing without sDSN or FID.",
    .columns = picking::kBatchColumns,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetPrintRecordsetForPick> = {
    .name = "GetPrintRecordsetForPick",
    .source = "TessarLornPickingAndDelivery.clsGetData.GetPrintRecordsetForPick",
    .arguments = {{.name = "dctParam", .keys = picking::kPickList}},
    .help =
        "What a pick list prints, in walking order: warehouse, place, item, print run and serial number, order, line. "
        "The place is the line's own, else the item's usual one when that is in the line's warehouse, else the default "
        "of the warehouse. Left out are lines closed by hand, lines with a refund under way (asked for and not "
        "refused), and price-difference goods; lines that the shop closed or that are delivered are printed again. With "
        "Mode 1 one row for each place, item, attribute, unit and batch of all the orders. It has the columns below "
        "but those of orders and lines, the quantities summed, and FOrders (Long), the number of orders, and "
        "FSerialNumbers (String), their serial numbers by print run with commas between them. Nothing without sDSN or "
        "FID.",
    .errors = "13 for a Mode that is no number",
    .columns = picking::kPickListColumns,
    .needs_latest = true,
};

}  // namespace tessarlorn
