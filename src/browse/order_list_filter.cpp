#include "browse/order_list_filter.h"

#include "frame/formats.h"
#include "frame/text_builder.h"

namespace tessarlorn {
namespace {

void AppendDates(TextBuilder& where, const Parameters& filter) {
  const struct {
    std::string_view key;
    std::string_view clause;
  } dates[] = {
      {"FOrderDateFrom", " AND t1.FOrderDate >='{value}'\r\n"},
      {"FOrderDateTo", " AND t1.FOrderDate <='{value}'\r\n"},
      {"FSitePayDateFrom", " AND t1.FSitePayDate >='{value}'\r\n"},
      {"FSitePayDateTo", " AND t1.FSitePayDate <='{value}'\r\n"},
      {"FShipDateFrom", " AND convert(varchar(20),t1.FOnlineSendDate,120) >='{value}'\r\n"},
      {"FShipDateTo", " AND convert(varchar(20),t1.FOnlineSendDate,120) <='{value}'\r\n"},
      {"FSendDateFrom", " AND convert(varchar(20),t1.FSendDate,120) >='{value}'\r\n"},
      {"FSendDateTo", " AND convert(varchar(20),t1.FSendDate,120) <='{value}'\r\n"},
  };
  for (const auto& date : dates) {
    if (filter.Has(date.key)) where.Append(date.clause, {{"value", FormatDateTime(filter.Value(date.key))}});
  }
}

void AppendValues(TextBuilder& where, const Parameters& filter) {
  const struct {
    std::string_view key;
    std::string_view clause;
  } values[] = {
      {"FOrderFlag", " AND t1.FOrderFlag ='{value}'\r\n"},
      {"FUpLoadStatus", " AND t1.FUpLoadStatus ={value}\r\n"},
      {"FSiteID", " AND t1.FWebshopID ='{value}'\r\n"},
      {"FOrderType", " AND t1.FOrderType ={value}\r\n"},
      {"FIsPrintSend", " AND isnull(t28.FIsPrintSend,0) ={value}\r\n"},
      {"FIsPrintExpress", " AND isnull(t28.FIsPrintExpress,0) ={value}\r\n"},
      {"FLogisticsID", " AND t14.FItemID ='{value}'\r\n"},
  };
  for (const auto& value : values) {
    if (filter.HasText(value.key)) where.Append(value.clause, {{"value", filter.Text(value.key)}});
  }
}

/// Orders in the asked status, and those that wait for delivery once their stock bill is queued; without a waiting
/// status the ones with a queued bill are hidden.
void AppendOrderStatus(TextBuilder& where, const Parameters& filter) {
  if (!filter.HasText("FOrderStatus")) return;
  const std::string status = filter.Text("FOrderStatus");
  if (filter.HasText("WaitingForDelivery") && !filter.IsNumber("WaitingForDelivery", 0)) {
    where.Append(
        " AND (t1.FOrderStatus ={status} OR (t1.FOrderStatus = {waiting}"
        " AND ISNULL(t23.FStockBillStatus,0) = 1))\r\n",
        {{"status", status}, {"waiting", filter.Text("WaitingForDelivery")}});
  } else {
    where.Line(" AND t1.FOrderStatus =", status);
    where.Line(" AND ISNULL(t23.FStockBillStatus,0) <> 1");
  }
}

/// Conditions that the client wrote itself, and the warehouse by its name.
void AppendConditions(TextBuilder& where, const Parameters& filter) {
  for (const char* key : {"FGoodsCount", "FEntryCount", "icboTpl", "icboCainiao", "OtherFilterOne"}) {
    if (filter.HasText(key)) where.Line(" AND ", filter.Text(key));
  }
  if (!filter.HasText("FStockID")) return;
  where.Append(R"(
AND EXISTS (
SELECT  1
From IC_Web2ERPOrdersEntry a
INNER JOIN t_Stock b ON a.FStockID = b.FItemID AND b.FName = '{warehouse}'
WHERE a.FID = t1.FID)
)"_sql,
               {{"warehouse", filter.Text("FStockID")}});
}

void AppendRefunds(TextBuilder& where, const Parameters& filter, const std::function<bool()>& refund_check_off) {
  if (filter.IsNumber("FCloseOrRefundStatus", 1)) {
    if (refund_check_off()) {
      where.Line(
          "  AND (t26.FRefundStatus IS NULL OR (t26.FRefundStatus = 1 AND (t26.FIsShowWaitVerifyTemp > 0 OR "
          "(t26.FIsShowWaitVerifyTemp = 0 AND t1.FTransactionStatus IN (38193,38194)))))");
    } else {
      where.Line("  AND (t26.FRefundStatus IS NULL OR (t26.FRefundStatus = 1 AND t26.FIsShowWaitVerifyTemp > 0))");
    }
  } else if (filter.IsNumber("FCloseOrRefundStatus", 2)) {
    where.Line(" AND t1.FOrderStatus > 1");
    where.Line(" AND (t26.FRefundStatus = 1 AND t26.FIsShowWaitVerifyTemp = 0 ");
    if (refund_check_off()) where.Line(" AND t1.FTransactionStatus NOT IN (38193,38194)");
    where.Line(" OR EXISTS(SELECT 1 FROM IC_Web2ERPOrdersEntry WHERE FID=t1.FID ");
    where.Line(" AND FStatus IN ('TRADE_CLOSED','TRADE_AUTOMATIC_CLOSED','TRADE_MANUAL_CLOSED')))");
  }
}

}  // namespace

std::string OrderFilterText(const Parameters& filter, const std::function<bool()>& refund_check_off) {
  const bool advanced = filter.HasText("AdvancedFilter");
  TextBuilder where;
  if (advanced) {
    where.Line(" where 1=1", filter.Text("AdvancedFilter"));
    AppendOrderStatus(where, filter);
  } else {
    where.Line(" where 1=1 ");
    AppendDates(where, filter);
    AppendValues(where, filter);
    if (!filter.HasText("IsLock") || filter.IsNumber("IsLock", 0)) AppendOrderStatus(where, filter);
    AppendConditions(where, filter);
  }
  if (filter.IsNumber("IsLock", 1)) {
    where.Line(" AND t1.FCheckStatus = 1 AND t1.FOrderStatus > 1 AND t22.FIsLock = 1 AND t22.FLockStatus = 2");
  } else {
    where.Line(" AND (t22.FIsLock = 0 OR t22.FIsLock IS NULL)");
  }
  AppendRefunds(where, filter, refund_check_off);
  return where.GetText();
}

}  // namespace tessarlorn
