// clsSaveData: every operation that changes orders.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "tessarlorn/collections.h"
#include "tessarlorn/session.h"
#include "tessarlorn/transaction_mode.h"

namespace tessarlorn {

struct InstanceState;

/// One call at a time, on the thread that made the instance. Each call may have its own connection string: it opens a
/// session of its own, which stays open until the next call.
///
/// The contract of an operation (contract.h) says what it takes, needs, answers and raises; `tessarlorn ops NAME`
/// prints it. When something that it needs is missing, the operation does nothing and answers false or "". A failure
/// is raised as `Error`. A Dictionary or Vector may be nullptr.
///
/// Texts stand between quotes in the SQL. `Escape=Yes` in the connection string doubles their single quotes, also those
/// of texts from the database. What the contract calls bare is SQL, and is never escaped.
class clsSaveData {
 public:
  explicit clsSaveData(Host& host);
  clsSaveData(const clsSaveData&) = delete;
  clsSaveData& operator=(const clsSaveData&) = delete;
  ~clsSaveData() = default;

  [[nodiscard]] TransactionMode TransMode() const noexcept { return TransactionMode::kRequired; }

  // Operation log. These three open no session: they work on the one that the last operation opened. The web-order
  // component makes its own SQL of what they get.

  /// Records a new field value of an order or of one of its lines.
  bool WriteSaveOrderLog(std::string_view FID, std::string_view EntryID, std::string_view FieldName,
                         std::string_view Value);
  /// Records an operation on orders, with user, address and time.
  bool WriteOPLog(std::string_view sFID, std::string_view OPCode, std::string_view ItemID, std::string_view FOldValue,
                  std::string_view FNewValue);
  /// Whether operations of this code are to be logged.
  bool IsLogEnable(std::string_view OPCode);

  // Picking.

  /// Assigns a picker and sets orders waiting for delivery.
  bool ConfirmBill(const Dictionary* dctPara);
  /// Stores the result of the picking check of one parcel.
  bool SavePickingGoods(const Dictionary* dctPara);
  /// Marks the picking check of orders as passed.
  bool MarkPickingGoodsStatus(const Dictionary* dctPara);
  /// Takes that mark back.
  bool ClearPickingGoodsStatus(const Dictionary* dctPara);

  // Batches and prints.

  /// Stores batch number, warehouse and stock place of order lines.
  bool SaveBatchNo(std::string_view sDsn, const Vector* vctPara);
  /// Gives the orders of a print run a lot number, and each its place in it.
  bool SavePrintSerialNumber(std::string_view sDsn, const Vector* vctOrderInfo);
  /// The unique codes of orders as a numbered list for print.
  std::string GetUniqueCodeIndex(const Dictionary* dctParam);

  // Delivery.

  /// Sets orders delivered.
  bool Delivery(const Dictionary* dctPara);
  /// Steps orders back.
  bool BackToThePreviousStep(const Dictionary* dctPara);
  /// Queues the creation of stock bills for orders.
  bool UpdateDeliveryData(std::string_view sDsn, std::string_view sFID);

  // Logistics numbers, weights and costs.

  /// Sets the logistics cost of orders.
  bool ModifyCost(const Dictionary* dctPara);
  /// Stores logistics number, weight and cost of each order of the list.
  bool SetUpLogisticsNumberAndWeight(std::string_view sDsn, const Vector* vctPara);
  /// Stores logistics numbers: a key is an order's unique code, its value the number.
  bool SetUpLogisticsNumber(std::string_view sDsn, const Dictionary* dctPara);
  /// Stores what the scales said of each order of the list.
  bool SaveLogWeight(std::string_view sDsn, const Vector* vctPara);
  /// Marks orders as weighed and, when asked to, queues their stock bills.
  bool UpdateLogisticsWeightStatus(std::string_view sDsn, const Dictionary* dctPara);

  // Upload of delivery states to the web shops.

  /// Marks orders as uploaded.
  bool UploadStatus(const Dictionary* dctPara);
  /// Marks orders as not uploaded, each with the reason.
  bool UploadStatusFailure(const Dictionary* dctPara);
  /// Marks what never needs an upload as uploaded.
  bool UpLoadStatusForManualAndClosed(std::string_view sDsn);

  // Carriers.

  /// Records that the carrier serves the addresses of orders, or has them checked again.
  bool UpdateAddressReachableState(std::string_view sDsn, std::string_view sFID, std::int32_t lType);
  /// Sets the carrier of orders.
  bool SetUpLogisticsCompany(const Dictionary* dctPara);
  /// Stores the state of the electronic waybill of orders, and its number.
  bool UpdateEMSOrderStatus(const Dictionary* dctPara);
  /// Stores how many parcels the shipments of orders have.
  bool SetSFPackageQuantity(const Dictionary* dctPara);
  /// Stores for how much orders are insured.
  bool WriteInsuredAmount(const Dictionary* dctPara);
  /// Stores the home-delivery and installation services of orders.
  bool WriteJzservice(const Dictionary* dctPara);

  // Outside warehouses.

  /// Queues a task for orders at an outside warehouse and marks them as submitted.
  bool SubMitTplOrderTask(std::string_view sDsn, std::string_view sFID, std::int32_t tplType,
                          std::string_view sUserName, std::string_view sWebTplID = {});
  /// Queues a task for purchase or sales orders and marks their lines as submitted. The answer is always "".
  std::string SubMitPorTask(std::string_view sDsn, std::string_view sTaskID, std::string_view sInterFID,
                            std::int32_t tplType, std::string_view sStockID, std::string_view sUserName,
                            std::string_view sFiter, std::int32_t lTranType);
  /// Clears what a purchase order and its lines keep of an outside warehouse.
  bool ClearTplFieldInfo(std::string_view sDsn, std::string_view sBillNo);
  /// Stores the scheme by which lists of warehouses are downloaded.
  bool DownloadWebTpls(std::string_view sDsn, std::int32_t lScheme);

  // Amendments.

  /// Replaces or extends the seller's remark of orders.
  bool OrderRemark(const Dictionary* dctPara);
  /// Replaces the buyer's wishes for the delivery of orders.
  bool DeRemark(const Dictionary* dctPara);
  /// Replaces or extends the delivery remark of orders.
  bool DeliveryRemark(const Dictionary* dctPara);
  /// Stores consignee and address of an order.
  bool ChangeAddess(const Dictionary* dctPara);
  /// Moves all lines of orders to another warehouse.
  bool ChangeStock(const Dictionary* dctPara);

  // Cost invoices.

  /// Links orders to the cost invoice that covers them.
  bool UpdateCostInvoiceStatus(const Dictionary* dctPara);
  /// Unlinks all orders from cost invoices.
  bool UpdateAfterDeleteBill(std::string_view sDsn, std::string_view sFID);

 private:
  struct RemarkChange;
  bool ChangeRemark(const Dictionary* dctPara, const RemarkChange& change);
  struct PickingMark;
  bool ChangePickingMark(const Dictionary* dctPara, const PickingMark& mark);
  [[nodiscard]] InstanceState State() noexcept;

  Host& host_;
  SessionContext context_;
  std::shared_ptr<DataSession> session_;
};

}  // namespace tessarlorn
