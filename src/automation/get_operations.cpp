#include "automation/binding.h"
#include "automation/keys.h"

namespace tessarlorn {
namespace {

using enum ValueType;

constexpr std::array kListFilter = {
    Optional("FOrderDateFrom", kDate, "", "Ordered at or after"),
    Optional("FOrderDateTo", kDate, "", "Ordered at or before"),
    Optional("FSitePayDateFrom", kDate, "", "Paid at or after"),
    Optional("FSitePayDateTo", kDate, "", "Paid at or before"),
    Optional("FShipDateFrom", kDate, "", "Reported as sent to the web shop at or after"),
    Optional("FShipDateTo", kDate, "", "Reported as sent to the web shop at or before"),
    Optional("FSendDateFrom", kDate, "", "Sent at or after"),
    Optional("FSendDateTo", kDate, "", "Sent at or before"),
    Optional("FOrderFlag", kString, "", "Flag of the order"),
    Optional("FUpLoadStatus", kLong, "", "0 = not uploaded, 1 = uploaded, 2 = failed, 3 = uploading"),
    Optional("FSiteID", kString, "", "Web shop id (column FWebshopID)"),
    Optional("FOrderType", kLong, "", "Order type id; 38112 = manual order"),
    Optional("FIsPrintSend", kLong, "", "1 = delivery slip printed, 0 = not"),
    Optional("FIsPrintExpress", kLong, "", "1 = waybill printed, 0 = not"),
    Optional("FLogisticsID", kString, "", "Carrier id"),
    Optional("FOrderStatus", kLong, "", "2 = waiting for picking, 6 = waiting for delivery, 14 = delivered"),
    Optional("WaitingForDelivery", kLong, "0",
             "Status whose orders are listed as well once their stock bill is queued"),
    Optional("IsLock", kLong, "0", "1 = locked, checked orders only; otherwise unlocked ones only"),
    Optional("FGoodsCount", kString, "", "SQL condition"),
    Optional("FEntryCount", kString, "", "SQL condition"),
    Optional("icboTpl", kString, "", "SQL condition"),
    Optional("icboCainiao", kString, "", "SQL condition"),
    Optional("OtherFilterOne", kString, "", "SQL condition"),
    Optional("FStockID", kString, "", "Name of a warehouse from which a line is delivered"),
    Optional("AdvancedFilter", kString, "",
             "SQL that begins with \" AND\"; the keys above but FOrderStatus and IsLock then "
             "do not count"),
    Optional("FCloseOrRefundStatus", kLong, "", "1 = normal orders, 2 = refunding or closed ones"),
    Optional("WebOrderMaxDisplayCount", kDouble, "0", "Most rows; 0 = all"),
};
constexpr std::array kEntry = {Mandatory("FID", kLong, "Order key")};
constexpr std::array kOrder = {ConnectionKey("sDSN"), Mandatory("FID", kLong, "Order key")};
constexpr std::array kOrders = {ConnectionKey("sDSN"), kOrdersKey};

constexpr std::array kOperations = {
    Bind<&clsGetData::TransMode>("TransMode", {},
                                 "The transaction mode that the class reports to its container: 2, each call runs in a "
                                 "transaction. Never raises."),
    Bind<&clsGetData::GetListData>(
        "GetListData", {{"sDsn"}, {"Filter", kListFilter}},
        "The orders that the filter lets through, one row each with display-ready status columns, by pay date and order "
        "number; only those of web shops that the acting user may see. Nothing without sDsn or Filter; an empty recordset "
        "when no order matches. Raises with Source TessarLornPickingAndDelivery.clsGetData.GetListData."),
    Bind<&clsGetData::GetEntryData>(
        "GetEntryData", {{"sDsn"}, {"dctParameters", kEntry}},
        "The lines of an order with item, unit, warehouse, refund and after-sales data; gift lines come last. Nothing "
        "without sDsn or FID; an empty recordset for an order without lines. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetEntryData."),
    Bind<&clsGetData::bIsPickingGoods>(
        "bIsPickingGoods", {{"sDsn"}},
        "Whether the picking check is switched on (setting ECPickingGoods). False without sDsn or such a setting. Raises "
        "with Source bIsPickingGoods."),
    Bind<&clsGetData::bIsPickByBatch>(
        "bIsPickByBatch", {{"sDsn"}},
        "Whether picking is done by batch (setting PickByBatch). False without sDsn or such a setting. Raises with Source "
        "bIsPickByBatch."),
    Bind<&clsGetData::lPickGoodsCount>(
        "lPickGoodsCount", {{"sDsn"}},
        "Orders per picking run (setting PickGoodsCount), 20 when the setting is no number. 0 without sDsn. Raises with "
        "Source lPickGoodsCount, 3021 when there is no such setting."),
    Bind<&clsGetData::GetWeightByFID>(
        "GetWeightByFID", {{"dctPara", kOrder}},
        "FID and FWeight of an order, computed from its lines in the base unit of gross weights. Nothing without sDSN or "
        "FID; an empty recordset when the order has no lines. Raises with Source GetWeightByFID."),
    Bind<&clsGetData::NewGetWeightByFID>(
        "NewGetWeightByFID", {{"sDsn"}, {"sFID"}},
        "A Dictionary with FWeight, the order's weight in kg computed from its lines, 0 when it has none, and FID. Raises "
        "with Source NewGetWeightByFID, 11 when a unit has the coefficient 0."),
    Bind<&clsGetData::GetTotalLogisticsCosts>(
        "GetTotalLogisticsCosts", {{"dctPara", kOrders}},
        "The sum of the orders' logistics costs in the base currency. 0 without sDSN or FID and when no order matches. "
        "Raises with Source GetTotalLogisticsCosts."),
    Bind<&clsGetData::bIsWeightting>(
        "bIsWeightting", {{"sDsn"}},
        "Whether weighing is switched on (setting ECWeightting). False without sDsn or such a setting. Raises with Source "
        "bIsWeightting."),
    Bind<&clsGetData::bExistUpLoadBill>(
        "bExistUpLoadBill", {{"dctPara", kOrders}},
        "FOrderID and FUpLoadStatus of those of the orders that are marked as uploaded. Nothing without sDSN or FID; an "
        "empty recordset when none is. Raises with Source bExistUpLoadBill."),
};

}  // namespace

std::span<const Operation> GetOperations() { return kOperations; }

}  // namespace tessarlorn
