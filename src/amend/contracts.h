// The contracts of the operations of amend/.
#pragma once

#include "frame/keys.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/clsSaveData.h"
#include "tessarlorn/contract.h"

namespace tessarlorn {

namespace amend {

using enum ValueType;
using enum Standing;

inline constexpr Key kOrderRemark[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Given("FSellerMessage", kString, kQuoted, "The remark"),
    Optional("Mode", kLong, kNowhere, "0", "0 replaces the old remark, any other number adds the new one behind it"),
};

inline constexpr Key kWishes[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Given("FDeliveryRemark", kString, kQuoted, "The wishes"),
};

inline constexpr Key kDeliveryRemark[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Given("FShippingRem", kString, kQuoted, "The remark"),
    Optional("Mode", kLong, kNowhere, "0", "1 adds the remark behind the old one, anything else replaces it"),
};

inline constexpr Key kAddress[] = {
    ConnectionKey("sDSN"),
    kOrderKey,
    Optional("FConsignee", kString, kQuoted, "", "Who receives the parcel"),
    Optional("FZipCode", kString, kQuoted, "", "Postal code"),
    Optional("FTelephone", kString, kQuoted, "", "Telephone number"),
    Optional("FMobile", kString, kQuoted, "", "Mobile number"),
    Optional("FDeliveryProvince", kLong, kQuoted, "", "Province, its id"),
    Optional("FDeliveryCity", kLong, kQuoted, "", "City, its id"),
    Optional("FDeliveryDistrict", kLong, kQuoted, "", "District, its id"),
    Optional("FDeliveryAddress", kString, kQuoted, "", "Street and house"),
};

inline constexpr Key kChangeStock[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Mandatory("FStockID", kLong, kBareNumber, "The new warehouse, its id"),
};

inline constexpr Key kCostInvoice[] = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("FCostInvoiceInterID", kLong, kQuoted, "",
             "Key of the cost invoice, a number; without one the orders are unlinked"),
};

inline constexpr Column kInnerInvoiceColumns[] = {
    {"FStatus", kLong, "1 when ReturnBills has an order, otherwise 0"},
    {"ReturnBills", kVector, "The orders", kOrderNames},
};

inline constexpr Column kPriceChangeColumns[] = {
    kOrderKeyColumn,
    {"FTotalPriceChange", kDecimal, "Sum of the amounts, in the order's currency"},
    {"FTotalFreight", kDecimal, "Sum of the freight"},
    {"FEntryBillDiscountFee", kDecimal, "Sum of the discounts"},
};

}  // namespace amend

template <>
inline constexpr Contract kContract<&clsSaveData::OrderRemark> = {
    .name = "OrderRemark",
    .source = "OrderRemark",
    .arguments = {{.name = "dctPara", .keys = amend::kOrderRemark}},
    .help =
        "Replaces or extends the seller's remark of orders and records it in their field log first. An added "
        "remark stands behind the old one and a backslash. False, with nothing done, without sDSN, FID or "
        "FSellerMessage.",
    .errors = "13 when Mode is no number, with nothing stored",
};
template <>
inline constexpr Contract kContract<&clsSaveData::DeRemark> = {
    .name = "DeRemark",
    .source = "OrderRemark",
    .arguments = {{.name = "dctPara", .keys = amend::kWishes}},
    .help =
        "Replaces the buyer's wishes for the delivery of orders and records them in their field log first. "
        "False, with nothing done, without sDSN, FID or FDeliveryRemark.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::DeliveryRemark> = {
    .name = "DeliveryRemark",
    .source = "OrderRemark",
    .arguments = {{.name = "dctPara", .keys = amend::kDeliveryRemark}},
    .help =
        "Replaces or extends the delivery remark of orders and records it in their field log first. An added "
        "remark stands behind the old one and a backslash. False, with nothing done, without sDSN, FID or "
        "FShippingRem.",
    .errors = "13 when Mode is no number, with nothing stored",
};
template <>
inline constexpr Contract kContract<&clsSaveData::ChangeAddess> = {
    .name = "ChangeAddess",
    .source = "ChangeAddess",
    .arguments = {{.name = "dctPara", .keys = amend::kAddress}},
    .help =
        "Stores consignee and address of an order, clears its waybill number and deletes the courier's own "
        "waybill, also when nothing differs. The order counts as changed here. All but FZipCode and FMobile go "
        "to its field log first. False, with nothing done, without sDSN or FID; True when the update ran, also "
        "when no order matched.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::ChangeStock> = {
    .name = "ChangeStock",
    .source = "ChangeStock",
    .arguments = {{.name = "dctPara", .keys = amend::kChangeStock}},
    .help =
        "Moves all lines of orders to another warehouse, without a stock place; logged as 2001 where enabled, "
        "before the change: one row a line, with the names of both warehouses. The rows of orders before a "
        "failing one stay. False, with nothing done, without sDSN, FID or FStockID.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::UpdateCostInvoiceStatus> = {
    .name = "UpdateCostInvoiceStatus",
    .source = "ChangeAddess",
    .arguments = {{.name = "dctPara", .keys = amend::kCostInvoice}},
    .help =
        "Links orders to the cost invoice that covers them; logged as 3007, always and before the change. "
        "False, with nothing done, without sDSN or FID; True when the update ran, also when no order matched.",
};
template <>
inline constexpr Contract kContract<&clsSaveData::UpdateAfterDeleteBill> = {
    .name = "UpdateAfterDeleteBill",
    .source = "TessarLornPickingAndDelivery.clsSaveData.UpdateAfterDeleteBill",
    .arguments =
        {{.name = "sDsn", .need = Need::kMandatory},
         {.name = "sFID", .stands = Standing::kKeyList, .need = Need::kMandatory, .names = Names::kCostInvoices}},
    .help =
        "Unlinks all orders from the cost invoices of the list sFID. False, with nothing done, without sDsn or sFID.",
};
template <>
inline constexpr Contract kContract<&clsGetData::bExistStock> = {
    .name = "bExistStock",
    .source = "ChangeAddess",
    .arguments = {{.name = "dctPara", .keys = kOrder}},
    .help = "Whether a line of the order has no warehouse. False without sDSN or FID.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::CheckInnerInvoice> = {
    .name = "CheckInnerInvoice",
    .source = "CheckInnerInvoice",
    .arguments = {{.name = "dctPara", .keys = kOrders}},
    .help =
        "Those of the orders that are invoiced but not covered by an internal invoice. Nothing without sDSN or "
        "FID.",
    .columns = amend::kInnerInvoiceColumns,
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetIsMarkBilling> = {
    .name = "GetIsMarkBilling",
    .source = "GetIsMarkBilling",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory}},
    .help = "Whether billing is marked (setting MarkBilling of category EC). False without sDsn or such a setting.",
};
template <>
inline constexpr Contract kContract<&clsGetData::bExistInvoice> = {
    .name = "bExistInvoice",
    .source = "bExistInvoice",
    .arguments = {{.name = "dctPara", .keys = kOrders}},
    .help =
        "Whether any of the orders has a sales invoice for goods that left by a stock bill of the order "
        "itself. False without sDSN or FID.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetWebFIDByCostInoviceID> = {
    .name = "GetWebFIDByCostInoviceID",
    .source = "TessarMWebOrder.TessarMWebOrderInfo.GetWebFIDByInoviceID",
    .arguments = {{.name = "sDsn"}, {.name = "lInoviceID", .stands = Standing::kNumber, .names = Names::kCostInvoices}},
    .help = "The key of the order that a cost invoice covers, -1 when it covers none or several.",
    .needs_latest = true,
};
template <>
inline constexpr Contract kContract<&clsGetData::GetTotalPriceChange> = {
    .name = "GetTotalPriceChange",
    .source = "GetBatchNo",
    .arguments = {{.name = "sDsn", .need = Need::kMandatory},
                  {.name = "sFIDs", .stands = Standing::kKeyList, .names = Names::kOrders}},
    .help =
        "The sums of the price-difference lines of each order of the list sFIDs. Nothing without sDsn; no row "
        "for an order without such lines.",
    .errors = "also when sFIDs is empty",
    .columns = amend::kPriceChangeColumns,
};

}  // namespace tessarlorn
