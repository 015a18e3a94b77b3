// clsGetData: every operation that reads.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tessarlorn/collections.h"
#include "tessarlorn/recordset.h"
#include "tessarlorn/session.h"
#include "tessarlorn/transaction_mode.h"

namespace tessarlorn {

struct Contract;
struct InstanceState;

/// One call at a time, on the thread that made the instance. It may be used for any number of calls, with different
/// connection strings; each opens a session of its own and leaves it open until the next.
///
/// Operations with a mandatory parameter missing do nothing at all: no session, no error, the empty answer (nullptr,
/// which is Nothing, False, 0, "" or an empty Vector). A connection string under a key counts as missing when it is
/// empty. Dictionary arguments may be nullptr, which is Nothing. A failure is raised as `Error`, with the database's
/// number and description and the operation's bare name as Source, unless another is named.
///
/// Recordsets stay attached to their connection, unless said otherwise, and stand on their first row.
///
/// Values go into the SQL as they are given. Texts stand between quotes there and are not escaped, unless the
/// connection string says `Escape=Yes`: then their single quotes are doubled, also those of texts that come out of the
/// database. The key does not change what is SQL: numbers and lists of order keys ("12,15"); StrSql; in the order
/// list's filter AdvancedFilter, FGoodsCount, FEntryCount, icboTpl, icboCainiao and OtherFilterOne; the class type in
/// sFKey; names of work tables; the names and lists of fields in ICClassTableInfo.
class clsGetData {
 public:
  explicit clsGetData(Host& host);
  clsGetData(const clsGetData&) = delete;
  clsGetData& operator=(const clsGetData&) = delete;
  ~clsGetData() = default;

  [[nodiscard]] TransactionMode TransMode() const noexcept { return TransactionMode::kRequired; }

  // Browsing.

  /// The orders that the filter lets through, one row each, by pay date and local order number; only those of web shops
  /// that the acting user may see, unless access control is off or the user is an administrator, which is asked on the
  /// alternate connection of the operation's own session. Nothing without sDsn; with Filter Nothing, Nothing after the
  /// session is open. Country, province, city, district and carrier are named in the caller's language: CHS, otherwise
  /// CHT.
  ///
  /// A text that reads as a date is formatted as one in the eight date keys; any other value is spliced as its text.
  /// With AdvancedFilter (SQL that begins with " AND") the other plain keys do not count; an advanced filter that
  /// mentions "t20." is turned to upper case as a whole.
  /// Source "TessarLornPickingAndDelivery.clsGetData.GetListData".
  RecordsetPtr GetListData(std::string_view sDsn, const Dictionary* Filter);
  /// The lines of the order FID, gift lines last, each group by line number; with the user-defined line fields behind
  /// the fixed ones. Nothing without sDsn or the key FID.
  /// Source "TessarLornPickingAndDelivery.clsGetData.GetEntryData".
  RecordsetPtr GetEntryData(std::string_view sDsn, const Dictionary* dctParameters);

  /// The fields of the order grid by page (1 header, 2 lines) and tab index: FPage, FCaption in the caller's language
  /// (CHT, otherwise CHS), FFieldName, FTableName, FVisible, FTabIndex, FKey, FCtlType, FClassTypeID. Needs sDSN.
  /// Source "TessarLornPickingAndDelivery.clsGetData.GetTemplateData".
  RecordsetPtr GetTemplateData(const Dictionary* dctParam);
  /// The fields that a user-defined filter may use, by tab index: the saved header fields and some of the lines and
  /// states. Captions as in GetTemplateData. Nothing without sDsn.
  /// Source "TessarLornPickingAndDelivery.clsGetData.GetUserDefineFilterTemplate".
  RecordsetPtr GetUserDefineFilterTemplate(std::string_view sDsn);
  /// The choices of a lookup field, as "display_id|display_id". sFKey is class type and field key, "1014301_FStockID";
  /// what follows a second "_" does not count. "" without sDsn or sFKey, for an unknown field, and for one that has no
  /// list. The database cuts the list at 1000 characters. Raises 9 for a key without "_", 5 for a list that has no FROM
  /// in capitals. Source "TessarLornPickingAndDelivery.clsGetData.GetListBySQL".
  std::string GetListBySQL(std::string_view sDsn, std::string_view sFKey);
  /// Runs the client's own SQL, whatever it is. The recordset is detached from its connection; Nothing when the SQL
  /// answers no rows. Errors come out as the driver raised them, its Source included; without sDsn that is the error of
  /// an empty connection string.
  RecordsetPtr ExecuteSQL(std::string_view sDsn, std::string_view StrSql);
  /// FID, FWebShopID, FWebShopName of all web shops, by FID. Needs sDSN. The session of the call before is not reset.
  /// Source "TessarLornPickingAndDelivery.clsGetData.GetWebShopData".
  RecordsetPtr GetWebShopData(const Dictionary* dctPara);
  /// FID, names, mobile and e-mail of the buyers of the orders FID, in no certain order. Needs sDSN; without FID the
  /// database refuses the statement. Source "TessarLornPickingAndDelivery.clsGetData.GetCommunicaInformation".
  RecordsetPtr GetCommunicaInformation(const Dictionary* dctPara);
  /// What a text message to the buyers of the orders FID needs: buyer, shop, consignee, order numbers, carrier (named
  /// in the caller's language: CHT, otherwise CHS) and waybill. Orders without a carrier or of an unknown shop are left
  /// out. Needs sDSN; without FID the database refuses the statement. Source
  /// "TessarLornPickingAndDelivery.clsGetData.GetMobileInformation".
  RecordsetPtr GetMobileInformation(const Dictionary* dctPara);
  /// The titles of the order states by state, both as the table IC_WEBOrders_Status has them in its first two columns.
  /// Nothing without PropsString, which is the connection string, and on any error: it raises none.
  std::optional<Dictionary> GetWebBillTitleData(std::string_view PropsString);
  /// Has the database refresh those titles. False without PropsString and on any error: it raises none.
  bool ExeP_WebBillTitleData(std::string_view PropsString);

  // Picking settings. False or 0 without sDsn.

  /// Whether the picking check is switched on.
  bool bIsPickingGoods(std::string_view sDsn);
  /// Whether picking is done by batch.
  bool bIsPickByBatch(std::string_view sDsn);
  /// Orders per picking run; 20 when the setting is no number. Raises 3021 when there is no such setting.
  std::int32_t lPickGoodsCount(std::string_view sDsn);

  // Batches and stock places.

  /// The lines of the orders FID that go to a warehouse with stock places, price-difference goods left out: FEntryID,
  /// FStockID, FStockName, FDefaultStockPlaceGroupID (the group's default place, in spite of its name),
  /// FDefaultStockPlaceGroupName, FDefaultStockPlaceName, FDefaultItemStockPlaceID (the item's own place when this is
  /// its own warehouse, else 0). Nothing without sDSN or FID; empty when no line matches. Source "ChangeAddess".
  std::optional<Vector> bExistStockPositionManager(const Dictionary* dctPara);
  /// Whether a line of the orders FID has an item with batch or serial numbers. Needs sDSN and FID. Source
  /// "ChangeAddess".
  bool bExistBatchOrSerialManagerItem(const Dictionary* dctPara);
  /// Whether a line of the orders FID, of whatever item, has an empty batch number; one that is Null does not count.
  /// Needs sDSN and FID.
  bool bExistBatchEmpty(const Dictionary* dctPara);
  /// Item, batch number, warehouse and stock place of the lines of the orders FID; an order without lines has one row
  /// with Nulls. Needs sDSN and FID.
  RecordsetPtr GetBatchNo(const Dictionary* dctPara);

  // Delivery prints.

  /// FTotalAmount of each of the orders FID, in no certain order. Needs sDSN and FID.
  /// Source "TessarLornPickingAndDelivery.clsGetData.GetSumRecordsetDataForDelivery".
  RecordsetPtr GetSumRecordsetDataForDelivery(const Dictionary* dctParam);
  /// Header and line data of delivery notes, one row a line, by order and line. Province, city and district are named
  /// in the caller's language: CHS, otherwise CHT; Null where the order has none. Needs sDSN and FID. Source
  /// "TessarLornPickingAndDelivery.clsGetData.GetPrintRecordsetForDelivery".
  RecordsetPtr GetPrintRecordsetForDelivery(const Dictionary* dctParam);
  /// Those of the orders FID that were printed as often as the type of print allows, or more: FOrderID, FUniqueCode,
  /// the type's counter under its column name, FPrintMaxCount. PrintID is the type, a number or a text that reads as
  /// one: 10143011 pick list, 10143012 delivery note, 10143013 waybill, 10143014 delivery list. Empty without sDSN or
  /// FID, for any other type, and for one that is not limited.
  Vector GetOverMaxPrintCountBillInfo(const Dictionary* dctPara);

  // Weights and costs.

  /// FID and FWeight of one order, computed from its lines in the base unit of gross weights. Needs sDSN and FID.
  RecordsetPtr GetWeightByFID(const Dictionary* dctPara);
  /// FWeight, the order's computed weight in kg as a double, and FID. 0 when the order has no lines; lines without a
  /// gross weight add nothing. Raises 11 when a unit that has to be converted has the coefficient 0.
  std::optional<Dictionary> NewGetWeightByFID(std::string_view sDsn, std::int32_t sFID);
  /// Sum of the logistics costs of the orders FID in the base currency, 0 when there are none. Needs sDSN and FID.
  double GetTotalLogisticsCosts(const Dictionary* dctPara);
  /// Whether weighing is switched on. False without sDsn.
  bool bIsWeightting(std::string_view sDsn);

  // Upload of delivery states to the web shops.

  /// FOrderID and FUpLoadStatus of those of the orders FID that are marked as uploaded. Needs sDSN and FID.
  RecordsetPtr bExistUpLoadBill(const Dictionary* dctPara);
  /// What is to be reported about the orders strFids, one Dictionary a report: SiteOrderID, ChildIDs, IsSplit,
  /// FWebshopID, FLogisticsNumber (the carrier's code, "" for an unknown carrier), FLogisticsOrder, FOrderID, FID.
  /// A marketplace order is split when it has three waybill numbers or more, one counted for each of its lines also
  /// where they repeat, or more child orders, in all ERP orders, than lines among these: then each line is a report
  /// with its child order in ChildIDs; else the first line stands for the whole. Lines whose marketplace order is empty
  /// or unknown to IC_Trade are left out. Empty without strDSN or strFids. Source
  /// "TessarLornPickingAndDelivery.clsGetData.GetUploadDataByFID".
  Vector GetUploadDataByFID(std::string_view strDSN, std::string_view strFids);
  /// The same for one page of a long run: the orders in the column fid of the work table pageTable. The reports go as
  /// rows under task sNewID into the work table strTempTable, FIsSplit 1 or 0, FUpStatus 0 and FError empty, and from
  /// there into IC_UploadWebOrderIndicator, none twice; then the page's orders get fstatus 1 in the run's table, which
  /// is named in strFids. A page of which an order has fstatus 1 in pageTable is done: nothing happens, and it is True.
  /// The SQL joins the page as `pageTable`: the table has that name, or its name is followed by that alias
  /// ("Page7 pageTable"). False without strDSN or pageTable. Braces in strDSN mean what they mean in any connection
  /// string; no object is kept for what stands in them.
  /// Source "TessarLornPickingAndDelivery.clsGetData.GetUploadDataByTab".
  bool GetUploadDataByTab(std::string_view strDSN, std::string_view pageTable, std::string_view strFids,
                          std::string_view strTempTable, std::string_view sNewID);
  /// Whether the acting user has an upload task that is not finished, asked on the alternate connection. False without
  /// sDsn. Source "TessarLornPickingAndDelivery.clsGetData.isRunUploadOrder".
  bool isRunUploadOrder(std::string_view sDsn);
  /// Whether other orders than FID have lines of the marketplace order SiteOrderID. If so, the child orders of FID's
  /// own lines, with commas between them, go behind what ChildOrderIDs holds; one comma at the end of the whole is
  /// dropped. False, ChildOrderIDs untouched, without strDSN or with FID 0. Source
  /// "TessarMWebOrder.TessarMWebOrderInfo.GetSortRs".
  bool GetSplitChrildOrderIDs(std::string_view strDSN, std::int32_t FID, std::string_view SiteOrderID,
                              Variant& ChildOrderIDs);
  /// Whether the orders strIDs are all of web shops of one type, which WebShopType then is; 0 when none of them has a
  /// shop, or strIDs is empty. False, WebShopType untouched, for several types: such orders are not uploaded together.
  /// Source "TessarLornPickingAndDelivery.clsGetData.CheckWebShopTypeSameByOrders".
  bool CheckWebShopTypeSameByOrders(std::string_view sDsn, std::string_view strIDs, std::int16_t& WebShopType);
  /// Type of a web shop, 0 when there is none of that key. 0 without sDsn.
  /// Source "TessarLornPickingAndDelivery.clsGetData.GetWebShopType".
  std::int16_t GetWebShopType(std::string_view sDsn, std::string_view sFWebshopID);

  // Carriers.

  /// Whether addresses are to be checked. False without sDsn.
  bool bIsAddressReachable(std::string_view sDsn);
  /// Those of the orders sFID that have a carrier and whose address is still to be checked, an order without extension
  /// row being one: their keys under FID and their order numbers under FOrderID, each as one text with commas between
  /// them, "" when there is none. Nothing without sDsn or sFID.
  std::optional<Dictionary> GetNeedAddressReachableInfo(std::string_view sDsn, std::string_view sFID);
  /// Those of the orders sFID that have a carrier which does not serve their address: a Dictionary with FID and
  /// FOrderID each. Nothing without sDsn or sFID.
  std::optional<Vector> GetNoAddressReachableInfo(std::string_view sDsn, std::string_view sFID);

  // Outside warehouses. Lists of keys are texts with commas between the keys, "" when there is none; and without sDsn
  // or sFID.

  /// FWebTplName and FWebTplType of the providers that have a warehouse, by type. Needs sDSN.
  /// Source "TessarLornPickingAndDelivery.clsGetData.GetTplCompany".
  RecordsetPtr GetTplCompany(const Dictionary* dctPara);
  /// FWebtplID and FWebtplName of the enabled warehouses of the provider FWebtplType; with bIsBad also those for
  /// damaged goods. Needs sDSN and FWebtplType. Source "TessarLornPickingAndDelivery.clsGetData.GetTplStock".
  RecordsetPtr GetTplStock(const Dictionary* dctPara, bool bIsBad);
  /// All enabled warehouses by provider type: a Dictionary with FWebtplType, FWebtplID and FStockID each. Nothing
  /// without sDsn. Source "TessarLornPickingAndDelivery.clsGetData.GetTplCompany".
  std::optional<Vector> GetTplCompanyNew(std::string_view sDsn);
  /// Those of the orders sFID that have a line on the stock FStockID and are not submitted, or may be again. Without
  /// FStockID the database refuses the query. Source "TessarLornPickingAndDelivery.clsGetData.GetTplOrderInfo".
  std::string GetTplOrderInfo(std::string_view sDsn, std::string_view sFID, const Dictionary* dicWebToStorage);
  /// Those of the orders sFID that have a line on a stock which no outside warehouse handles.
  /// Source "TessarLornPickingAndDelivery.clsGetData.GetTplOrderInfo".
  std::string GetNotTplOrderInfo(std::string_view sDsn, std::string_view sFID);
  /// Those of the orders sFID that may be taken back: in state 1, without a waybill, every line on a stock of the
  /// warehouse tplStockID of provider type tplType or, with type 0, of any. An order without lines is one of them.
  /// Source "TessarLornPickingAndDelivery.clsGetData.GetCancelTplOrderInfo".
  std::string GetCancelTplOrderInfo(std::string_view sDsn, std::string_view sFID, std::int32_t tplType,
                                    std::string_view tplStockID);
  /// Those of the order lines sFID (FEntryID) that are on a stock of the warehouse.
  /// Source "TessarLornPickingAndDelivery.clsGetData.GetCancelTplOrderInfo".
  std::string GetCancelTplReturnOrderInfo(std::string_view sDsn, std::string_view sFID, std::int32_t tplType,
                                          std::string_view tplStockID);
  /// Those of the orders sFID that are at an outside warehouse (state 1 or 3) with every line; a warehouse of stock 0
  /// stands for no stock. An order without lines is one of them.
  /// Source "TessarLornPickingAndDelivery.clsGetData.GetFiltrationTPLOrder".
  std::string GetFiltrationTPLOrder(std::string_view sDsn, std::string_view sFID);
  /// -1 when the task has ended (state 2), otherwise 0: the task taskID or, when that is empty, a purchase task
  /// taskName (the list of its documents) at the warehouse. 0 without sDsn or either of the two. Source
  /// "TessarLornPickingAndDelivery.clsGetData.GetCancelTplOrderInfo".
  std::int32_t GetPurchaseTaskInfo(std::string_view sDsn, std::string_view taskName, std::string_view taskID,
                                   std::string_view sWebTplType, std::string_view sWebTplID);

  // Amendments.

  /// Whether a line of the order FID has no warehouse. Needs sDSN and FID. Source "ChangeAddess".
  bool bExistStock(const Dictionary* dctPara);

  // Cost invoices.

  /// Those of the orders FID that are invoiced but not covered by an internal invoice: a Dictionary with FID and
  /// FOrderID each in the Vector ReturnBills, and FStatus, 1 when there are any, otherwise 0. Needs sDSN and FID.
  std::optional<Dictionary> CheckInnerInvoice(const Dictionary* dctPara);
  /// Whether billing is marked; the setting counts in the category EC only. False without sDsn.
  bool GetIsMarkBilling(std::string_view sDsn);
  /// Whether any of the orders FID has a sales invoice for goods that left by a stock bill of the order itself. Needs
  /// sDSN and FID.
  bool bExistInvoice(const Dictionary* dctPara);
  /// Key of the order that the cost invoice covers; -1 when it covers none, or several.
  /// Source "TessarMWebOrder.TessarMWebOrderInfo.GetWebFIDByInoviceID".
  std::int32_t GetWebFIDByCostInoviceID(std::string_view sDsn, std::int32_t lInoviceID);
  /// FID, FTotalPriceChange, FTotalFreight and FEntryBillDiscountFee: the sums of the price-difference lines of each of
  /// the orders, in the order's currency; no row for an order without such lines. Nothing without sDsn; an empty list
  /// the database refuses. Source "GetBatchNo".
  RecordsetPtr GetTotalPriceChange(std::string_view sDsn, std::string_view sFIDs);

 private:
  bool ReadSwitch(const Contract& contract, std::string_view dsn, std::string_view key);
  [[nodiscard]] InstanceState State() noexcept;

  Host& host_;
  SessionContext context_;
  std::shared_ptr<DataSession> session_;
};

}  // namespace tessarlorn
