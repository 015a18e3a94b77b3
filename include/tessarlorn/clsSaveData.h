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

/// One call at a time, on the thread that made the instance. It may be used for any number of calls, with different
/// connection strings; each opens a session of its own and leaves it open until the next.
///
/// Operations with a mandatory parameter missing do nothing at all: no session, no error, the answer False. A
/// connection string under a key counts as missing when it is empty. Dictionary and Vector arguments may be nullptr,
/// which is Nothing. False never stands for a failure: that is raised as `Error`, with the database's number and
/// description and the Source that the operation names. Without one named, the Source is the operation's bare name.
///
/// Values go into the SQL as they are given. Texts stand between quotes there and are not escaped, unless the
/// connection string says `Escape=Yes`: then their single quotes are doubled, also those of texts that come out of the
/// database. The key does not change what is SQL: numbers, unique codes and lists of order keys ("12,15"), and the
/// condition sFiter. Nor does it change what the log operations get: the web-order component makes its own SQL.
class clsSaveData {
 public:
  explicit clsSaveData(Host& host);
  clsSaveData(const clsSaveData&) = delete;
  clsSaveData& operator=(const clsSaveData&) = delete;
  ~clsSaveData() = default;

  [[nodiscard]] TransactionMode TransMode() const noexcept { return TransactionMode::kRequired; }

  // Operation log. These three open no session: they work on the one that the instance's last operation opened, and
  // answer what the web-order component answers. Its errors, and 429 when there is none, come out unchanged.

  /// Records a new field value of an order, or of its line `EntryID` ("0": the order itself). FID may be "".
  bool WriteSaveOrderLog(std::string_view FID, std::string_view EntryID, std::string_view FieldName,
                         std::string_view Value);
  /// Records an operation: one row for each order of the list `sFID`, with the acting user, the client's address and
  /// the host's local time. ItemID is "0" for the whole order. Raises 5 when the client's address has no end.
  bool WriteOPLog(std::string_view sFID, std::string_view OPCode, std::string_view ItemID, std::string_view FOldValue,
                  std::string_view FNewValue);
  /// Whether operations of this code are to be logged.
  bool IsLogEnable(std::string_view OPCode);

  // Picking.

  /// Assigns the picker FPickManNumber (employee code) with the remark FPickRem and sets the orders FID waiting for
  /// delivery (status 6), whatever their status was. Needs sDSN and FID; an absent remark or picker is stored as "".
  bool ConfirmBill(const Dictionary* dctPara);
  /// Stores the picking check FPickingGoodsStatus (default 0) by the user FPickingGoodMan for the parcel
  /// FLogisticsOrder: its logistics number or, when it is numeric, its unique code as well. The host's local time is
  /// stored when the second key FPickingGoodsstatus (small s) is 1. The connection string is under sProps. Logged as
  /// 3003, for the first order found.
  bool SavePickingGoods(const Dictionary* dctPara);
  /// Marks the picking check of those of the orders FID as passed that are not, by user UserId. The connection string
  /// is under sDsn. Logged as 3014 for all of them, always and before the change.
  bool MarkPickingGoodsStatus(const Dictionary* dctPara);
  /// Takes the mark back from those that have it; logged as 3013 where that is enabled.
  bool ClearPickingGoodsStatus(const Dictionary* dctPara);

  // Batches and prints.

  /// Stores batch number, warehouse and stock place (FBatchNo, FStockID, SPID, without their single quotes) of the line
  /// FEntryID, default 0, for each Dictionary of the list. Each batch number goes to the field log before the batch
  /// runs. False without sDsn or entries.
  bool SaveBatchNo(std::string_view sDsn, const Vector* vctPara);
  /// Gives the orders of a print run a lot number (year, month and the run's number in the month: "20261112") and
  /// serial numbers from 1, their places in the list; a reprint gives new ones. The first value of each Dictionary is
  /// an order's FID. False, with no number taken, without sDsn or with vctOrderInfo Nothing; an empty list takes a
  /// number and is True. A number taken before an error is lost, unless the call runs in a transaction.
  bool SavePrintSerialNumber(std::string_view sDsn, const Vector* vctOrderInfo);
  /// The unique codes of the orders FID, numbered in the order of that list, five a line: the number in 3 columns, "-",
  /// the code in 10 to 20 columns (a longer one cut to 19 and ".."), "| ". Keys without an order are left out. ""
  /// without sDSN or FID. Source "TessarLornPickingAndDelivery.clsGetData.GetUniqueCodeIndex".
  std::string GetUniqueCodeIndex(const Dictionary* dctParam);

  // Delivery.

  /// Sets the orders FID delivered (status 14) by the acting user and closes their lines, whatever their status was.
  /// Needs sDSN and FID. Raises 6 "Overflow" when the user's id is beyond 16 bits.
  bool Delivery(const Dictionary* dctPara);
  /// Steps the orders FID back: with UpdateFlag True from delivered to 6 (lines open again, shipper cleared), otherwise
  /// to 2 (picker cleared, lines untouched), whatever their status was. Needs sDSN and FID; an absent UpdateFlag is
  /// False. Logged as 3005, before the change.
  bool BackToThePreviousStep(const Dictionary* dctPara);
  /// Queues the creation of stock bills for the orders; an order that is queued already is reset to waiting. An empty
  /// list queues nothing and is True. Batches before a failing one stay applied. Raises 13 for a key that is no number.
  /// Source "TessarLornPickingAndDelivery.clsSaveData.UpdateDeliveryData".
  bool UpdateDeliveryData(std::string_view sDsn, std::string_view sFID);

  // Logistics numbers, weights and costs.

  /// Sets the logistics cost of the orders FID to LogisticsCosts, in the order's currency, rounded to two decimals
  /// (half away from zero). Needs sDSN and FID. Each order's field log is written first. Raises 13, before anything is
  /// written, when LogisticsCosts is missing or no number. Source "Delivery".
  bool ModifyCost(const Dictionary* dctPara);
  /// Stores FLogisticsOrder, FWeight (kg) and FLogisticsCost of the order FID for each Dictionary of the list. Weight
  /// and cost count as the number with which their text begins, 0 when there is none. A number that is not empty goes
  /// to the field log. False for Nothing; an empty list changes nothing and is True. Source "Delivery".
  bool SetUpLogisticsNumberAndWeight(std::string_view sDsn, const Vector* vctPara);
  /// Stores logistics numbers: each entry's key is an order's FUniqueCode, its value the number. False without sDsn or
  /// entries. Nothing is logged. Source "Delivery".
  bool SetUpLogisticsNumber(std::string_view sDsn, const Dictionary* dctPara);
  /// Stores FWeight (kg), FLogisticsCost, FWeighttingMan and FWeighttingStatus of the order FID for each Dictionary of
  /// the list; a missing key is spliced as "". Each order is logged as 3008 before the batch runs. False for Nothing;
  /// an empty list changes nothing and is True.
  bool SaveLogWeight(std::string_view sDsn, const Vector* vctPara);
  /// Marks the orders FID as weighed by UserID and, with AsyncCreate True, queues their stock bills as
  /// UpdateDeliveryData does. Needs FID and AsyncCreate. Raises 13 for an AsyncCreate that is neither a Boolean nor a
  /// number, with the session open and nothing stored.
  /// Source "TessarLornPickingAndDelivery.clsSaveData.UpdateLogisticsWeightStatus".
  bool UpdateLogisticsWeightStatus(std::string_view sDsn, const Dictionary* dctPara);

  // Upload of delivery states to the web shops.

  /// Marks the orders FID as uploaded (transaction status 38193) and clears their failure; with IsOfflineUpLoad 1 also
  /// as sent offline (send type 38132). Needs sDSN and FID.
  bool UploadStatus(const Dictionary* dctPara);
  /// Marks orders as not uploaded, with the reason: ErrInfo is a Vector of Dictionaries with FailureFID (default 0) and
  /// FailureInfo, whose single quotes are removed. Needs sDSN and ErrInfo; an empty Vector changes nothing and is True.
  bool UploadStatusFailure(const Dictionary* dctPara);
  /// Marks every manual order and every closed transaction, with their lines, as uploaded: they never need it.
  bool UpLoadStatusForManualAndClosed(std::string_view sDsn);

  // Carriers.

  /// Records that the carrier serves the addresses of the orders sFID and remembers each complete address with its
  /// carrier as served, once a call; with lType 4 it sets those of the orders that have an extension row back to be
  /// checked instead. False without sDsn or sFID. Orders, then addresses, go in batches of 150; those before a failing
  /// one stay applied. Source "TessarLornPickingAndDelivery.clsSaveData.UpdateAddressReachableState".
  bool UpdateAddressReachableState(std::string_view sDsn, std::string_view sFID, std::int32_t lType);

  // Outside warehouses.

  /// Queues a task for the orders sFID at the warehouse sWebTplID of provider type tplType and marks those in state 0
  /// or 2 as submitted, and those without an extension row, which get one; any other state, an empty one too, stays.
  /// False without sDsn or sFID. The task goes with the first batch of 150 orders; batches before a failing one stay
  /// applied. Source "TessarLornPickingAndDelivery.clsSaveData.SubMitTplOrderTask".
  bool SubMitTplOrderTask(std::string_view sDsn, std::string_view sFID, std::int32_t tplType,
                          std::string_view sUserName, std::string_view sWebTplID = {});
  /// Queues the task sTaskID for the documents sInterFID and marks those of their lines as submitted that are not yet
  /// and fulfil sFiter, an SQL condition on the line t1. lTranType 71 are purchase orders, 81 sales orders; with any
  /// other the task has type 0 and stays, and the marking is refused by the database. Always "", with nothing done
  /// without sDsn or sInterFID. Source "TessarLornPickingAndDelivery.clsSaveData.SubMitPorTask".
  std::string SubMitPorTask(std::string_view sDsn, std::string_view sTaskID, std::string_view sInterFID,
                            std::int32_t tplType, std::string_view sStockID, std::string_view sUserName,
                            std::string_view sFiter, std::int32_t lTranType);
  /// Clears what the purchase order of this number and its lines keep of an outside warehouse. An empty number is a
  /// number like any other. Source "TessarLornPickingAndDelivery.clsSaveData.ClearTplFieldInfo".
  bool ClearTplFieldInfo(std::string_view sDsn, std::string_view sBillNo);
  /// Stores the scheme by which lists of warehouses are downloaded; True, with nothing stored, when the setting has no
  /// row. Source "TessarLornPickingAndDelivery.clsSaveData.DownloadWebTpls".
  bool DownloadWebTpls(std::string_view sDsn, std::int32_t lScheme);

  // Amendments.

  /// Replaces the seller's remark of the orders FID by FSellerMessage or, with a Mode other than 0, adds it behind the
  /// old one and a backslash; an absent or empty Mode replaces. Needs sDSN, FID and FSellerMessage. Each order's field
  /// log is written first. Raises 13 for a Mode that is no number, with the session open and nothing stored.
  bool OrderRemark(const Dictionary* dctPara);
  /// Replaces the delivery wishes of the orders FID by FDeliveryRemark, which it needs besides sDSN and FID. Each
  /// order's field log is written first. Source "OrderRemark".
  bool DeRemark(const Dictionary* dctPara);
  /// Replaces the delivery remark of the orders FID by FShippingRem or, with Mode 1, adds it behind the old one and a
  /// backslash. Needs sDSN, FID and FShippingRem. Each order's field log is written first. Raises 13 for a Mode that is
  /// no number, with the session open and nothing stored. Source "OrderRemark".
  bool DeliveryRemark(const Dictionary* dctPara);
  /// Stores consignee, postal code, telephone numbers and address of the order FID: FConsignee, FZipCode, FTelephone,
  /// FMobile, FDeliveryProvince, FDeliveryCity, FDeliveryDistrict, FDeliveryAddress; an absent one is stored as "". The
  /// order counts as changed here, its waybill number is cleared and the courier's own waybill is deleted, also when
  /// nothing differs. Needs sDSN and FID. All but FZipCode and FMobile go to the field log first.
  bool ChangeAddess(const Dictionary* dctPara);
  /// Moves all lines of the orders FID to the warehouse FStockID, without a stock place. Needs sDSN, FID and FStockID.
  /// Logged as 2001 where that is enabled, before the change: one row a line, with the names of both warehouses. The
  /// rows of orders before a failing one stay.
  bool ChangeStock(const Dictionary* dctPara);

  // Cost invoices.

  /// Links the orders FID to the cost invoice FCostInvoiceInterID; an absent one unlinks them. Needs sDSN and FID.
  /// Logged as 3007, always and before the change. Source "ChangeAddess".
  bool UpdateCostInvoiceStatus(const Dictionary* dctPara);
  /// Unlinks all orders from the cost invoices sFID. False without sDsn or sFID.
  /// Source "TessarLornPickingAndDelivery.clsSaveData.UpdateAfterDeleteBill".
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
