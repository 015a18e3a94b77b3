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

/// One call at a time, on the thread that made the instance. Each call may have its own connection string: it opens a
/// session of its own, which stays open until the next call.
///
/// The contract of an operation (contract.h) says what it takes, needs, answers and raises; `tessarlorn ops NAME`
/// prints it. When something that it needs is missing, the operation does nothing: no session, no error, the empty
/// answer. That is nullptr, std::nullopt, false, 0, "" or an empty Vector. A Dictionary may be nullptr. A failure is
/// raised as `Error`. Recordsets stand on their first row and stay attached to their connection, unless said otherwise.
///
/// Texts stand between quotes in the SQL. `Escape=Yes` in the connection string doubles their single quotes, also those
/// of texts from the database. What the contract calls bare is SQL, and is never escaped.
class clsGetData {
 public:
  explicit clsGetData(Host& host);
  clsGetData(const clsGetData&) = delete;
  clsGetData& operator=(const clsGetData&) = delete;
  ~clsGetData() = default;

  [[nodiscard]] TransactionMode TransMode() const noexcept { return TransactionMode::kRequired; }

  // Browsing.

  /// The orders that the filter lets through, one row each.
  RecordsetPtr GetListData(std::string_view sDsn, const Dictionary* Filter);
  /// The lines of an order.
  RecordsetPtr GetEntryData(std::string_view sDsn, const Dictionary* dctParameters);

  /// The fields of the order grid.
  RecordsetPtr GetTemplateData(const Dictionary* dctParam);
  /// The fields that a user-defined filter may use.
  RecordsetPtr GetUserDefineFilterTemplate(std::string_view sDsn);
  /// The choices of a lookup field, as "display_id|display_id".
  std::string GetListBySQL(std::string_view sDsn, std::string_view sFKey);
  /// Runs the client's own SQL, whatever it is; the recordset is detached from its connection. Errors come out as the
  /// driver raised them.
  RecordsetPtr ExecuteSQL(std::string_view sDsn, std::string_view StrSql);
  /// All web shops. The session of the call before is not reset.
  RecordsetPtr GetWebShopData(const Dictionary* dctPara);
  /// How to reach the buyers of orders.
  RecordsetPtr GetCommunicaInformation(const Dictionary* dctPara);
  /// What a text message to the buyers of orders needs.
  RecordsetPtr GetMobileInformation(const Dictionary* dctPara);
  /// The titles of the order states by state. Raises nothing.
  std::optional<Dictionary> GetWebBillTitleData(std::string_view PropsString);
  /// Has the database refresh those titles. Raises nothing.
  bool ExeP_WebBillTitleData(std::string_view PropsString);

  // Picking settings.

  /// Whether the picking check is switched on.
  bool bIsPickingGoods(std::string_view sDsn);
  /// Whether picking is done by batch.
  bool bIsPickByBatch(std::string_view sDsn);
  /// Orders per picking run.
  std::int32_t lPickGoodsCount(std::string_view sDsn);

  // Batches and stock places.

  /// The lines of orders that go to a warehouse with stock places, with their default places.
  std::optional<Vector> bExistStockPositionManager(const Dictionary* dctPara);
  /// Whether a line of the orders has an item with batch or serial numbers.
  bool bExistBatchOrSerialManagerItem(const Dictionary* dctPara);
  /// Whether a line of the orders has an empty batch number.
  bool bExistBatchEmpty(const Dictionary* dctPara);
  /// Item, batch number, warehouse and stock place of the lines of orders.
  RecordsetPtr GetBatchNo(const Dictionary* dctPara);

  // Pick lists.

  /// What a pick list prints, in the order in which a picker walks.
  RecordsetPtr GetPrintRecordsetForPick(const Dictionary* dctParam);

  // Checks before delivery.

  /// Those of the orders that are in refund, and why.
  std::optional<Vector> CheckReturnBills(const Dictionary* dctPara);
  /// What stops orders from being delivered, and the orders that may go.
  std::optional<Dictionary> CheckBillStatus(const Dictionary* dctPara);
  /// Those of the orders that are closed, wholly or in part.
  std::optional<Vector> CheckCloseBill(const Dictionary* dctPara);
  /// Those of the orders that are closed as a whole and not in refund.
  std::optional<Vector> CheckCloseBillOnly(const Dictionary* dctPara);

  // Delivery prints.

  /// The total amount of each of the orders.
  RecordsetPtr GetSumRecordsetDataForDelivery(const Dictionary* dctParam);
  /// What delivery notes print, one row a line.
  RecordsetPtr GetPrintRecordsetForDelivery(const Dictionary* dctParam);
  /// Those of the orders that were printed as often as the type of print allows, or more.
  Vector GetOverMaxPrintCountBillInfo(const Dictionary* dctPara);

  // Weights and costs.

  /// The weight of an order in the base unit of gross weights, computed from its lines.
  RecordsetPtr GetWeightByFID(const Dictionary* dctPara);
  /// The weight of an order in kg, computed from its lines.
  std::optional<Dictionary> NewGetWeightByFID(std::string_view sDsn, std::int32_t sFID);
  /// The sum of the orders' logistics costs in the base currency.
  double GetTotalLogisticsCosts(const Dictionary* dctPara);
  /// Whether weighing is switched on.
  bool bIsWeightting(std::string_view sDsn);

  // Upload of delivery states to the web shops.

  /// Those of the orders that are marked as uploaded.
  RecordsetPtr bExistUpLoadBill(const Dictionary* dctPara);
  /// What is to be reported to the web shops about orders, one Dictionary a report.
  Vector GetUploadDataByFID(std::string_view strDSN, std::string_view strFids);
  /// The same for one page of a long run, as rows of work tables.
  bool GetUploadDataByTab(std::string_view strDSN, std::string_view pageTable, std::string_view strFids,
                          std::string_view strTempTable, std::string_view sNewID);
  /// Whether the acting user has an upload task that is not finished.
  bool isRunUploadOrder(std::string_view sDsn);
  /// Whether other orders have lines of the same marketplace order. ChildOrderIDs is read and, if so, written.
  bool GetSplitChrildOrderIDs(std::string_view strDSN, std::int32_t FID, std::string_view SiteOrderID,
                              Variant& ChildOrderIDs);
  /// Whether orders are all of web shops of one type. WebShopType is written when they are.
  bool CheckWebShopTypeSameByOrders(std::string_view sDsn, std::string_view strIDs, std::int16_t& WebShopType);
  /// The type of a web shop.
  std::int16_t GetWebShopType(std::string_view sDsn, std::string_view sFWebshopID);

  // Carriers.

  /// Whether addresses are to be checked.
  bool bIsAddressReachable(std::string_view sDsn);
  /// Those of the orders that have a carrier and whose address is still to be checked.
  std::optional<Dictionary> GetNeedAddressReachableInfo(std::string_view sDsn, std::string_view sFID);
  /// Those of the orders that have a carrier which does not serve their address.
  std::optional<Vector> GetNoAddressReachableInfo(std::string_view sDsn, std::string_view sFID);
  /// The carriers to choose from.
  RecordsetPtr GetLogisticsCompany(const Dictionary* dctPara);
  /// The carriers whose electronic waybills are switched on for web shops.
  RecordsetPtr GetStartElectronicLogistics(const Dictionary* dctPara);
  /// Whether waybills go to a thermal printer.
  bool IsThermalPrinting(std::string_view sDsn);
  /// By which code the carrier of a shop's marketplace knows the shop.
  std::string GetJDCustomerCode(const Dictionary* dctPara);
  /// The account with a carrier, and the sender that its waybills name.
  std::optional<Dictionary> GetBigAccountInfo(const Dictionary* dctPara);
  /// The order of a parcel.
  std::optional<Dictionary> GetOrderInfoByLogisticsOrder(const Dictionary* dctPara);

  // Outside warehouses. Lists of keys are texts with commas between the keys, "" when there is none.

  /// The providers that have an outside warehouse.
  RecordsetPtr GetTplCompany(const Dictionary* dctPara);
  /// A provider's enabled warehouses.
  RecordsetPtr GetTplStock(const Dictionary* dctPara, bool bIsBad);
  /// All enabled warehouses by provider type.
  std::optional<Vector> GetTplCompanyNew(std::string_view sDsn);
  /// Those of the orders that can be submitted to the warehouse of a stock.
  std::string GetTplOrderInfo(std::string_view sDsn, std::string_view sFID, const Dictionary* dicWebToStorage);
  /// Those of the orders that have a line on a stock which no outside warehouse handles.
  std::string GetNotTplOrderInfo(std::string_view sDsn, std::string_view sFID);
  /// Those of the orders that may be taken back from a warehouse.
  std::string GetCancelTplOrderInfo(std::string_view sDsn, std::string_view sFID, std::int32_t tplType,
                                    std::string_view tplStockID);
  /// Those of the order lines that are on a stock of the warehouse.
  std::string GetCancelTplReturnOrderInfo(std::string_view sDsn, std::string_view sFID, std::int32_t tplType,
                                          std::string_view tplStockID);
  /// Those of the orders that are at an outside warehouse with every line.
  std::string GetFiltrationTPLOrder(std::string_view sDsn, std::string_view sFID);
  /// -1 when a task has ended, otherwise 0.
  std::int32_t GetPurchaseTaskInfo(std::string_view sDsn, std::string_view taskName, std::string_view taskID,
                                   std::string_view sWebTplType, std::string_view sWebTplID);

  // Amendments.

  /// Whether a line of the order has no warehouse.
  bool bExistStock(const Dictionary* dctPara);

  // Cost invoices.

  /// Those of the orders that are invoiced but not covered by an internal invoice.
  std::optional<Dictionary> CheckInnerInvoice(const Dictionary* dctPara);
  /// Whether billing is marked.
  bool GetIsMarkBilling(std::string_view sDsn);
  /// Whether any of the orders has a sales invoice.
  bool bExistInvoice(const Dictionary* dctPara);
  /// Key of the order that a cost invoice covers; -1 when it covers none, or several.
  std::int32_t GetWebFIDByCostInoviceID(std::string_view sDsn, std::int32_t lInoviceID);
  /// The sums of the price-difference lines of each of the orders.
  RecordsetPtr GetTotalPriceChange(std::string_view sDsn, std::string_view sFIDs);

 private:
  bool ReadSwitch(const Contract& contract, std::string_view dsn, std::string_view key);
  [[nodiscard]] InstanceState State() noexcept;

  Host& host_;
  SessionContext context_;
  std::shared_ptr<DataSession> session_;
};

}  // namespace tessarlorn
