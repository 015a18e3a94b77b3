// clsGetData: every operation that reads.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "frame/call_frame.h"
#include "frame/transaction_mode.h"
#include "platform/collections.h"
#include "platform/recordset.h"
#include "platform/session.h"

namespace tessarlorn {

/// One call at a time, on the thread that made the instance. It may be used for any number of calls, with different
/// connection strings; each opens a session of its own and leaves it open until the next.
///
/// Operations with a mandatory parameter missing do nothing at all: no session, no error, the empty answer (nullptr,
/// which is Nothing, False or 0). A connection string under a key counts as missing when it is empty. Dictionary
/// arguments may be nullptr, which is Nothing. A failure is raised as `Error`, with the database's number and
/// description and the operation's bare name as Source, unless another is named.
///
/// Recordsets stay attached to their connection, unless said otherwise, and stand on their first row. Values go into
/// the SQL as they are given, lists of order keys ("12,15") included; texts are not escaped.
class clsGetData {
 public:
  clsGetData();
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

  // Picking settings. False or 0 without sDsn.

  /// Whether the picking check is switched on.
  bool bIsPickingGoods(std::string_view sDsn);
  /// Whether picking is done by batch.
  bool bIsPickByBatch(std::string_view sDsn);
  /// Orders per picking run; 20 when the setting is no number. Raises 3021 when there is no such setting.
  std::int32_t lPickGoodsCount(std::string_view sDsn);

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

 private:
  bool ReadSwitch(std::string_view source, std::string_view dsn, std::string_view key);
  [[nodiscard]] InstanceState State() noexcept { return {context_, session_}; }

  SessionContext context_;
  std::shared_ptr<DataSession> session_;
};

}  // namespace tessarlorn
