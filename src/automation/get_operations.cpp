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
             "SQL that begins with \" AND\"; the keys above but FOrderStatus and IsLock then do not count"),
    Optional("FCloseOrRefundStatus", kLong, "", "1 = normal orders, 2 = refunding or closed ones"),
    Optional("WebOrderMaxDisplayCount", kDouble, "0", "Most rows; 0 = all"),
};
constexpr std::array kEntry = {Mandatory("FID", kLong, "Order key")};
constexpr std::array kOrder = {ConnectionKey("sDSN"), Mandatory("FID", kLong, "Order key")};
constexpr std::array kOrders = {ConnectionKey("sDSN"), kOrdersKey};

constexpr std::array kConnection = {ConnectionKey("sDSN")};
constexpr std::array kBuyers = {
    ConnectionKey("sDSN"),
    Optional("FID", kString, "", "Order keys (FID), separated by commas; an error without any"),
};
constexpr std::array kPrintCount = {
    ConnectionKey("sDSN"),
    kOrdersKey,
    Optional("PrintID", kLong, "",
             "10143011 pick list, 10143012 delivery note, 10143013 waybill, 10143014 delivery list"),
};
constexpr std::array kTplStock = {ConnectionKey("sDSN"),
                                  Mandatory("FWebtplType", kLong, "The provider, its type number")};
constexpr std::array kWebToStorage = {
    Optional("FStockID", kLong, "", "The warehouse's stock, its id; an error without"),
};

constexpr std::array kOperations = {
    Bind<&clsGetData::TransMode>("TransMode", {},
                                 "The transaction mode that the class reports to its container: 2, each call runs "
                                 "in a transaction. Never raises."),
    Bind<&clsGetData::GetListData>(
        "GetListData", {{"sDsn"}, {"Filter", kListFilter}},
        "The orders that the filter lets through, one row each with display-ready status columns, by pay date and "
        "order number; only those of web shops that the acting user may see. Nothing without sDsn or Filter; an "
        "empty recordset when no order matches. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetListData."),
    Bind<&clsGetData::GetEntryData>(
        "GetEntryData", {{"sDsn"}, {"dctParameters", kEntry}},
        "The lines of an order with item, unit, warehouse, refund and after-sales data; gift lines come last. "
        "Nothing without sDsn or FID; an empty recordset for an order without lines. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetEntryData."),
    Bind<&clsGetData::GetTemplateData>(
        "GetTemplateData", {{"dctParam", kConnection}},
        "The fields of the order grid by page (1 header, 2 lines) and tab index, with captions in the caller's "
        "language. Nothing without sDSN. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetTemplateData."),
    Bind<&clsGetData::GetUserDefineFilterTemplate>(
        "GetUserDefineFilterTemplate", {{"sDsn"}},
        "The fields that a user-defined filter may use, by tab index, with captions in the caller's language. "
        "Nothing without sDsn. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetUserDefineFilterTemplate."),
    Bind<&clsGetData::GetListBySQL>(
        "GetListBySQL", {{"sDsn"}, {"sFKey"}},
        "The choices of a lookup field as display_id|display_id, cut at 1000 characters. sFKey is class type and "
        "field key, as 1014301_FStockID. Empty without sDsn or sFKey, for an unknown field and for one that has no "
        "list. Raises with Source TessarLornPickingAndDelivery.clsGetData.GetListBySQL, 9 for a key without _, 5 "
        "for a list without FROM."),
    Bind<&clsGetData::ExecuteSQL>(
        "ExecuteSQL", {{"sDsn"}, {"StrSql"}},
        "Runs SQL as it is and answers its first rows, detached from the connection; Nothing when it answers none. "
        "Errors come out as the database raised them; an empty connection string is one."),
    Bind<&clsGetData::GetWebShopData>(
        "GetWebShopData", {{"dctPara", kConnection}},
        "FID, FWebShopID and FWebShopName of all web shops. Nothing without sDSN. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetWebShopData."),
    Bind<&clsGetData::GetCommunicaInformation>(
        "GetCommunicaInformation", {{"dctPara", kBuyers}},
        "Names, mobile and e-mail of the buyers of orders, in no certain order. Nothing without sDSN; an empty "
        "recordset when no order matches. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetCommunicaInformation, also when FID is missing."),
    Bind<&clsGetData::GetMobileInformation>(
        "GetMobileInformation", {{"dctPara", kBuyers}},
        "What a text message to the buyers of orders needs: FBuyerName, FWebshopID, FWebShopName, FConsignee, "
        "FBuyerNick, FTelephone, FMobile, FSiteOrderID, FOrderID, FLogisticsID, FLogisticsName, FLogisticsOrder. "
        "Orders without a carrier or of an unknown shop are left out. Nothing without sDSN. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetMobileInformation, also when FID is missing."),
    Bind<&clsGetData::GetWebBillTitleData>(
        "GetWebBillTitleData", {{"PropsString"}},
        "The titles of the order states, by state. PropsString is the connection string. Nothing without it and on "
        "any error: it never raises."),
    Bind<&clsGetData::ExeP_WebBillTitleData>(
        "ExeP_WebBillTitleData", {{"PropsString"}},
        "Has the database refresh the titles of the order states. PropsString is the connection string. False "
        "without it and on any error: it never raises."),
    Bind<&clsGetData::bIsPickingGoods>(
        "bIsPickingGoods", {{"sDsn"}},
        "Whether the picking check is switched on (setting ECPickingGoods). False without sDsn or such a setting. "
        "Raises with Source bIsPickingGoods."),
    Bind<&clsGetData::bIsPickByBatch>(
        "bIsPickByBatch", {{"sDsn"}},
        "Whether picking is done by batch (setting PickByBatch). False without sDsn or such a setting. Raises with "
        "Source bIsPickByBatch."),
    Bind<&clsGetData::lPickGoodsCount>(
        "lPickGoodsCount", {{"sDsn"}},
        "Orders per picking run (setting PickGoodsCount), 20 when the setting is no number. 0 without sDsn. Raises "
        "with Source lPickGoodsCount, 3021 when there is no such setting."),
    Bind<&clsGetData::bExistStockPositionManager>(
        "bExistStockPositionManager", {{"dctPara", kOrders}},
        "The lines of orders that go to a warehouse with stock places, with the default places of warehouse and "
        "item; price-difference goods are left out. Nothing without sDSN or FID; an empty Vector when no line "
        "matches. Raises with Source ChangeAddess."),
    Bind<&clsGetData::bExistBatchOrSerialManagerItem>(
        "bExistBatchOrSerialManagerItem", {{"dctPara", kOrders}},
        "Whether a line of the orders has an item with batch or serial numbers. False without sDSN or FID. Raises "
        "with Source ChangeAddess."),
    Bind<&clsGetData::bExistBatchEmpty>(
        "bExistBatchEmpty", {{"dctPara", kOrders}},
        "Whether a line of the orders has an empty batch number; Null does not count. False without sDSN or FID. "
        "Raises with Source bExistBatchEmpty."),
    Bind<&clsGetData::GetBatchNo>(
        "GetBatchNo", {{"dctPara", kOrders}},
        "Item, batch number, warehouse and stock place of the lines of orders; one row with Nulls for an order "
        "without lines. Nothing without sDSN or FID. Raises with Source GetBatchNo."),
    Bind<&clsGetData::GetSumRecordsetDataForDelivery>(
        "GetSumRecordsetDataForDelivery", {{"dctParam", kOrders}},
        "FTotalAmount of each of the orders, in no certain order. Nothing without sDSN or FID. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetSumRecordsetDataForDelivery."),
    Bind<&clsGetData::GetPrintRecordsetForDelivery>(
        "GetPrintRecordsetForDelivery", {{"dctParam", kOrders}},
        "The header and line data of delivery notes, one row a line, with area names in the caller's language. "
        "Nothing without sDSN or FID. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetPrintRecordsetForDelivery."),
    Bind<&clsGetData::GetOverMaxPrintCountBillInfo>(
        "GetOverMaxPrintCountBillInfo", {{"dctPara", kPrintCount}},
        "Those of the orders that were printed as often as the type of print allows, or more, with their counter. "
        "An empty Vector without sDSN or FID, for any other type, and for one that is not limited. Raises with "
        "Source GetOverMaxPrintCountBillInfo."),
    Bind<&clsGetData::GetWeightByFID>(
        "GetWeightByFID", {{"dctPara", kOrder}},
        "FID and FWeight of an order, computed from its lines in the base unit of gross weights. Nothing without "
        "sDSN or FID; an empty recordset when the order has no lines. Raises with Source GetWeightByFID."),
    Bind<&clsGetData::NewGetWeightByFID>(
        "NewGetWeightByFID", {{"sDsn"}, {"sFID"}},
        "A Dictionary with FWeight, the order's weight in kg computed from its lines, 0 when it has none, and FID. "
        "Raises with Source NewGetWeightByFID, 11 when a unit has the coefficient 0."),
    Bind<&clsGetData::GetTotalLogisticsCosts>(
        "GetTotalLogisticsCosts", {{"dctPara", kOrders}},
        "The sum of the orders' logistics costs in the base currency. 0 without sDSN or FID and when no order "
        "matches. Raises with Source GetTotalLogisticsCosts."),
    Bind<&clsGetData::bIsWeightting>(
        "bIsWeightting", {{"sDsn"}},
        "Whether weighing is switched on (setting ECWeightting). False without sDsn or such a setting. Raises with "
        "Source bIsWeightting."),
    Bind<&clsGetData::bExistUpLoadBill>(
        "bExistUpLoadBill", {{"dctPara", kOrders}},
        "FOrderID and FUpLoadStatus of those of the orders that are marked as uploaded. Nothing without sDSN or "
        "FID; an empty recordset when none is. Raises with Source bExistUpLoadBill."),
    Bind<&clsGetData::GetUploadDataByFID>(
        "GetUploadDataByFID", {{"strDSN"}, {"strFids"}},
        "What is to be reported to the web shops about the orders of the list strFids: one Dictionary for each "
        "marketplace order, or for each of its lines when it was split, with SiteOrderID, ChildIDs, IsSplit, "
        "FWebshopID, FLogisticsNumber (the carrier's code), FLogisticsOrder, FOrderID and FID. It was split when "
        "its lines have three waybill numbers or more, one counted for each line, or when it has more child orders "
        "in the ERP than lines among these orders. An empty Vector without strDSN or strFids. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetUploadDataByFID."),
    Bind<&clsGetData::GetUploadDataByTab>(
        "GetUploadDataByTab", {{"strDSN"}, {"pageTable"}, {"strFids"}, {"strTempTable"}, {"sNewID"}},
        "Writes the reports of GetUploadDataByFID for the orders of one page as rows: pageTable is the page's work "
        "table, strFids the run's, both with the columns fid and fstatus; strTempTable takes the rows under task "
        "sNewID, in the columns of IC_UploadWebOrderIndicator, and from there they go into that table, none twice. "
        "The page's orders get fstatus 1 in the run's table; a page with an order of fstatus 1 is done. The page is "
        "joined as pageTable, so its name is that or is followed by that alias. True, with nothing done, for a page "
        "that is done; False without strDSN or pageTable. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetUploadDataByTab."),
    Bind<&clsGetData::isRunUploadOrder>(
        "isRunUploadOrder", {{"sDsn"}},
        "Whether the acting user has an upload task that is not finished. False without sDsn. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.isRunUploadOrder."),
    Bind<&clsGetData::GetSplitChrildOrderIDs>(
        "GetSplitChrildOrderIDs", {{"strDSN"}, {"FID"}, {"SiteOrderID"}, {"ChildOrderIDs"}},
        "Whether other orders than FID have lines of the marketplace order SiteOrderID; if so, the child orders of "
        "FID's lines go behind what ChildOrderIDs holds, with commas between them. False without strDSN or with FID "
        "0. Raises with Source TessarMWebOrder.TessarMWebOrderInfo.GetSortRs."),
    Bind<&clsGetData::CheckWebShopTypeSameByOrders>(
        "CheckWebShopTypeSameByOrders", {{"sDsn"}, {"strIDs"}, {"WebShopType"}},
        "Whether the orders of the list strIDs are all of web shops of one type, which WebShopType then is; True "
        "with 0 when none has a shop or strIDs is empty; on False it stays what it was. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.CheckWebShopTypeSameByOrders."),
    Bind<&clsGetData::GetWebShopType>(
        "GetWebShopType", {{"sDsn"}, {"sFWebshopID"}},
        "The type of a web shop. 0 without sDsn and when there is no such shop. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetWebShopType."),
    Bind<&clsGetData::bIsAddressReachable>(
        "bIsAddressReachable", {{"sDsn"}},
        "Whether addresses are to be checked (setting AddressReachable). False without sDsn or such a setting. "
        "Raises with Source bIsAddressReachable."),
    Bind<&clsGetData::GetNeedAddressReachableInfo>(
        "GetNeedAddressReachableInfo", {{"sDsn"}, {"sFID"}},
        "A Dictionary with FID and FOrderID, the keys and order numbers, with commas between them, of those of the "
        "orders of the list sFID that have a carrier and an address to be checked; empty texts when there is none. "
        "Nothing without sDsn or sFID. Raises with Source GetNeedAddressReachableInfo."),
    Bind<&clsGetData::GetNoAddressReachableInfo>(
        "GetNoAddressReachableInfo", {{"sDsn"}, {"sFID"}},
        "A Vector of Dictionaries with FID and FOrderID: those of the orders of the list sFID that have a carrier "
        "which does not serve their address. Nothing without sDsn or sFID. Raises with Source "
        "GetNoAddressReachableInfo."),
    Bind<&clsGetData::GetTplCompany>(
        "GetTplCompany", {{"dctPara", kConnection}},
        "Name and type of the providers that have an outside warehouse, by type. Nothing without sDSN. Raises with "
        "Source TessarLornPickingAndDelivery.clsGetData.GetTplCompany."),
    Bind<&clsGetData::GetTplStock>(
        "GetTplStock", {{"dctPara", kTplStock}, {"bIsBad"}},
        "Id and name of a provider's enabled warehouses; with bIsBad True those for damaged goods as well. Nothing "
        "without sDSN or FWebtplType. Raises with Source TessarLornPickingAndDelivery.clsGetData.GetTplStock."),
    Bind<&clsGetData::GetTplCompanyNew>(
        "GetTplCompanyNew", {{"sDsn"}},
        "A Vector of Dictionaries with FWebtplType, FWebtplID and FStockID: all enabled warehouses by provider "
        "type. Nothing without sDsn. Raises with Source TessarLornPickingAndDelivery.clsGetData.GetTplCompany."),
    Bind<&clsGetData::GetTplOrderInfo>(
        "GetTplOrderInfo", {{"sDsn"}, {"sFID"}, {"dicWebToStorage", kWebToStorage}},
        "The keys, with commas between them, of those of the orders of the list sFID that have a line on a "
        "warehouse's stock and are not submitted, or may be again. An empty text without sDsn or sFID and when "
        "there is none. Raises with Source TessarLornPickingAndDelivery.clsGetData.GetTplOrderInfo."),
    Bind<&clsGetData::GetNotTplOrderInfo>(
        "GetNotTplOrderInfo", {{"sDsn"}, {"sFID"}},
        "The keys, with commas between them, of those of the orders of the list sFID that have a line on a stock "
        "which no outside warehouse handles. An empty text without sDsn or sFID and when there is none. Raises with "
        "Source TessarLornPickingAndDelivery.clsGetData.GetTplOrderInfo."),
    Bind<&clsGetData::GetCancelTplOrderInfo>(
        "GetCancelTplOrderInfo", {{"sDsn"}, {"sFID"}, {"tplType"}, {"tplStockID"}},
        "The keys, with commas between them, of those of the orders of the list sFID that may be taken back from "
        "the warehouse tplStockID of provider type tplType (0: from any). An empty text without sDsn or sFID and "
        "when there is none. Raises with Source TessarLornPickingAndDelivery.clsGetData.GetCancelTplOrderInfo."),
    Bind<&clsGetData::GetCancelTplReturnOrderInfo>(
        "GetCancelTplReturnOrderInfo", {{"sDsn"}, {"sFID"}, {"tplType"}, {"tplStockID"}},
        "The keys, with commas between them, of those of the order lines of the list sFID that are on a stock of "
        "the warehouse. An empty text without sDsn or sFID and when there is none. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetCancelTplOrderInfo."),
    Bind<&clsGetData::GetFiltrationTPLOrder>(
        "GetFiltrationTPLOrder", {{"sDsn"}, {"sFID"}},
        "The keys, with commas between them, of those of the orders of the list sFID that are at an outside "
        "warehouse with every line. An empty text without sDsn or sFID and when there is none. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetFiltrationTPLOrder."),
    Bind<&clsGetData::GetPurchaseTaskInfo>(
        "GetPurchaseTaskInfo", {{"sDsn"}, {"taskName"}, {"taskID"}, {"sWebTplType"}, {"sWebTplID"}},
        "-1 when the task taskID or, when that is empty, the purchase task taskName at the warehouse has ended, "
        "otherwise 0; 0 without sDsn or either of the two. Raises with Source "
        "TessarLornPickingAndDelivery.clsGetData.GetCancelTplOrderInfo."),
    Bind<&clsGetData::bExistStock>(
        "bExistStock", {{"dctPara", kOrder}},
        "Whether a line of the order has no warehouse. False without sDSN or FID. Raises with Source ChangeAddess."),
    Bind<&clsGetData::CheckInnerInvoice>(
        "CheckInnerInvoice", {{"dctPara", kOrders}},
        "A Dictionary with ReturnBills, a Vector of Dictionaries with FID and FOrderID for those of the orders that "
        "are invoiced but not covered by an internal invoice, and FStatus, 1 when there are any, otherwise 0. "
        "Nothing without sDSN or FID. Raises with Source CheckInnerInvoice."),
    Bind<&clsGetData::GetIsMarkBilling>(
        "GetIsMarkBilling", {{"sDsn"}},
        "Whether billing is marked (setting MarkBilling of category EC). False without sDsn or such a setting. "
        "Raises with Source GetIsMarkBilling."),
    Bind<&clsGetData::bExistInvoice>(
        "bExistInvoice", {{"dctPara", kOrders}},
        "Whether any of the orders has a sales invoice. False without sDSN or FID. Raises with Source "
        "bExistInvoice."),
    Bind<&clsGetData::GetWebFIDByCostInoviceID>(
        "GetWebFIDByCostInoviceID", {{"sDsn"}, {"lInoviceID"}},
        "The key of the order that a cost invoice covers, -1 when it covers none or several. Raises with Source "
        "TessarMWebOrder.TessarMWebOrderInfo.GetWebFIDByInoviceID."),
    Bind<&clsGetData::GetTotalPriceChange>(
        "GetTotalPriceChange", {{"sDsn"}, {"sFIDs"}},
        "The sums of the price-difference lines of each order of the list sFIDs: amount, freight and discount. "
        "Nothing without sDsn; no row for an order without such lines. Raises with Source GetBatchNo, also when "
        "sFIDs is empty."),
};

}  // namespace

std::span<const Operation> GetOperations() { return kOperations; }

}  // namespace tessarlorn
