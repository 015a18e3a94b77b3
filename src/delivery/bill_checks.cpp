// What is looked at before parcels leave: closed orders, refunds, unchecked and locked ones.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "delivery/contracts.h"
#include "frame/identity.h"
#include "frame/order_call.h"
#include "frame/results.h"
#include "frame/text_builder.h"
#include "tessarlorn/clsGetData.h"

namespace tessarlorn {
namespace {

/// On a line t2 with its refund request t3.
constexpr std::string_view kLineIsOpen = "t2.FRowClosed <> 1 AND t2.FStatus <> 'TRADE_CLOSED'";
constexpr std::string_view kRefundIsAsked = "t2.FRefundStatus - ISNULL(t3.FIsRefuse, 0) = 1";

/// Refunds stop an order unless the switch says otherwise.
constexpr std::string_view kRefundsCount =
    "NOT EXISTS (SELECT 1 FROM t_SystemProfile with(nolock) WHERE FCategory = 'EC' AND FKey = 'NotCheckRefundOnStatus' "
    "AND FValue = '1')";

/// How much of an order is closed.
enum class Closing : std::uint8_t { kNone, kWhole, kPart };

struct CheckedOrder {
  Variant key;
  Variant number;
  std::int32_t status = 0;
  Closing closing = Closing::kNone;
  bool refund = false;
  bool unchecked = false;
  bool locked = false;
};

/// The orders by their keys. An order without lines is closed by its transaction only.
std::vector<CheckedOrder> ReadOrders(const OrderCall& call) {
  TextBuilder text;
  text.Append(
      R"(
SELECT  t1.FID ,
        t1.FOrderID ,
        t1.FOrderStatus ,
        t1.FCheckStatus ,
        ISNULL(t5.FIsLock, 0) AS FIsLock ,
        CASE WHEN t1.FTransactionStatus = 38195 OR t4.FOpenLines = 0 THEN 1
             WHEN t4.FOpenLines < t4.FLines THEN 2 ELSE 0 END AS FCloseType ,
        CASE WHEN t4.FRefundLines > 0 AND {refunds_count} THEN 1 ELSE 0 END AS FInRefund
FROM    IC_Web2ERPOrders t1 with(nolock)
        LEFT JOIN (SELECT  t2.FID ,
                           COUNT(1) AS FLines ,
                           SUM(CASE WHEN {open} THEN 1 ELSE 0 END) AS FOpenLines ,
                           SUM(CASE WHEN {open} AND {asked} THEN 1 ELSE 0 END) AS FRefundLines
                   FROM    IC_Web2ERPOrdersEntry t2 with(nolock)
                           LEFT JOIN IC_RefundInfo t3 with(nolock) ON t2.FRefundFID = t3.FID
                   WHERE   t2.FID IN ( {FID})
                   GROUP BY t2.FID) t4 ON t1.FID = t4.FID
        LEFT JOIN IC_Web2ERPOrdersEx t5 with(nolock) ON t1.FID = t5.FID
WHERE   t1.FID IN ( {FID})
ORDER BY t1.FID
)"_sql,
      {{"refunds_count", kRefundsCount}, {"open", kLineIsOpen}, {"asked", kRefundIsAsked}, {"FID", call.orders}});
  std::vector<CheckedOrder> orders;
  const RecordsetPtr rows = call.connection.Query(text.GetText());
  for (; !rows->eof(); rows->MoveNext()) {
    orders.push_back({.key = rows->Get("FID"),
                      .number = rows->Get("FOrderID"),
                      .status = rows->Get("FOrderStatus").ToInt32(),
                      .closing = static_cast<Closing>(rows->Get("FCloseType").ToInt32()),
                      .refund = rows->Get("FInRefund").ToInt32() == 1,
                      .unchecked = rows->Get("FCheckStatus").ToInt32() != 1,
                      .locked = rows->Get("FIsLock").ToInt32() == 1});
  }
  return orders;
}

template <typename Wanted>
std::optional<Vector> ClosedOrders(const OrderCall& call, const Wanted& wanted) {
  std::optional<Vector> bills(std::in_place);
  for (const CheckedOrder& order : ReadOrders(call)) {
    if (!wanted(order)) continue;
    const auto type = static_cast<std::int32_t>(order.closing);
    bills->Add(Dictionary{{"FID", order.key}, {"FOrderID", order.number}, {"FCloseType", type}});
  }
  return bills;
}

/// Line numbers by the state of their service, in the order in which the states come.
class Reason {
 public:
  void Add(const std::string& state, const Variant& line) {
    auto part = std::find_if(parts_.begin(), parts_.end(), [&](const auto& known) { return known.first == state; });
    if (part == parts_.end()) part = parts_.insert(part, {state, ""});
    AddToList(part->second, line.ToText());
  }
  /// "1,2 state;3 other state"
  [[nodiscard]] std::string Text() const {
    std::string text;
    for (const auto& [state, lines] : parts_)
      text.append(text.empty() ? "" : ";").append(lines).append(" ").append(state);
    return text;
  }

 private:
  std::vector<std::pair<std::string, std::string>> parts_;
};

}  // namespace

std::optional<Vector> clsGetData::CheckReturnBills(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::CheckReturnBills>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    const bool simplified = LanguageOf(context_) == "CHS";
    TextBuilder text;
    text.Append(R"(
SELECT  t1.FID ,
        t1.FOrderID ,
        t1.FSiteOrderID ,
        t2.FIndex ,
        COALESCE({state}, '{asked_for}') AS FServiceStatusName
FROM    IC_Web2ERPOrders t1 with(nolock)
        INNER JOIN IC_Web2ERPOrdersEntry t2 with(nolock) ON t1.FID = t2.FID
        LEFT JOIN IC_RefundInfo t3 with(nolock) ON t2.FRefundFID = t3.FID
        LEFT JOIN t_SubMessage t4 with(nolock) ON t4.FTypeID = 843 AND t2.FServiceStatus = t4.FInterID
WHERE   t1.FID IN ( {FID})
        AND {open}
        AND {asked}
        AND {refunds_count}
ORDER BY t1.FID, t2.FIndex
)"_sql,
                {{"state", simplified ? "NULLIF(t4.FName, '')" : "NULLIF(t4.FName_CHT, ''), NULLIF(t4.FName, '')"},
                 {"asked_for", simplified ? "申请退款" : "申請退款"},
                 {"FID", call.orders},
                 {"open", kLineIsOpen},
                 {"asked", kRefundIsAsked},
                 {"refunds_count", kRefundsCount}});
    std::optional<Vector> bills(std::in_place);
    const RecordsetPtr lines = call.connection.Query(text.GetText());
    while (!lines->eof()) {
      Dictionary bill;
      for (const char* name : {"FID", "FOrderID", "FSiteOrderID"}) bill.SetValue(name, lines->Get(name));
      Reason reason;
      const std::int32_t order = lines->Get("FID").ToInt32();
      for (; !lines->eof() && lines->Get("FID").ToInt32() == order; lines->MoveNext()) {
        reason.Add(lines->Get("FServiceStatusName").ToText(), lines->Get("FIndex"));
      }
      bill.SetValue("FReason", reason.Text());
      bills->Add(std::move(bill));
    }
    return bills;
  });
}

std::optional<Dictionary> clsGetData::CheckBillStatus(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::CheckBillStatus>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    const bool any_status = !call.parameters.HasText("FOrderStatus");
    const std::int32_t wanted = call.parameters.Number("FOrderStatus");
    std::string closed;
    std::string refund;
    std::string unchecked;
    std::string locked;
    std::string wrong;
    std::string pass;
    for (const CheckedOrder& order : ReadOrders(call)) {
      bool stopped = false;
      const auto stop = [&](bool applies, std::string& list) {
        if (!applies) return;
        AddToList(list, order.number.ToText());
        stopped = true;
      };
      stop(order.closing == Closing::kWhole, closed);
      stop(order.refund, refund);
      stop(order.unchecked, unchecked);
      stop(order.locked, locked);
      stop(!any_status && order.status != wanted, wrong);
      if (!stopped) AddToList(pass, order.key.ToText());
    }
    return std::optional(Dictionary{{"Closed", closed},
                                    {"Refund", refund},
                                    {"Unchecked", unchecked},
                                    {"Locked", locked},
                                    {"WrongStatus", wrong},
                                    {"Pass", pass}});
  });
}

std::optional<Vector> clsGetData::CheckCloseBill(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::CheckCloseBill>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    return ClosedOrders(call, [](const CheckedOrder& order) { return order.closing != Closing::kNone; });
  });
}

std::optional<Vector> clsGetData::CheckCloseBillOnly(const Dictionary* dctPara) {
  constexpr const Contract& contract = kContract<&clsGetData::CheckCloseBillOnly>;
  return CallForOrders(State(), contract, dctPara, [&](const OrderCall& call) {
    return ClosedOrders(call,
                        [](const CheckedOrder& order) { return order.closing == Closing::kWhole && !order.refund; });
  });
}

}  // namespace tessarlorn
