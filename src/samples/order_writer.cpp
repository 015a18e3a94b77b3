#include "samples/order_writer.h"

#include <string>

namespace tessarlorn::cli {
namespace {

constexpr std::string_view kExtensionColumns =
    "FID,FOrderID,FLotNumber,FSerialNumber,FCreateDate,FAddressReachable,FParcelQuantity,FInsuredValue,FItemSummary,"
    "FTplStatus,FTplFail,FTplOrderID,FTpName,FIsLock,FLockStatus,FLockReason,FJzService";

constexpr std::string_view kLineColumns =
    "FEntryID,FID,FIndex,FSiteOrderID,FChildOrderID,FItemID,FNumID,FSKUID,FOuterID,FOnlineTitle,FBarCode,FAttrCode,"
    "FAttrType,FUnitID,FQuantity,FPrice,FAmount,FDiscountFee,FEntryBillDiscountFee,FAfterDiscountAmount,FBuyerFreight,"
    "FIsFree,FMealID,FMealName,FPackagedGoods,FPromotionID,FStockID,FSPID,FBatchNo,FOutStockQuantity,FOutStockAmount,"
    "FStatus,FRowClosed,FIsRowClose,FUpLoadStatus,FRefundStatus,FRefundFID,FServiceType,FServiceSource,FServiceStatus,"
    "FEngraving,FWrapping";

/// The header's columns up to a stage.
std::string HeaderColumns(Stage stage) {
  std::string columns =
      "FID,FOrderID,FSiteOrderID,FUniqueCode,FOrderType,FOrderDate,FSitePayDate,FOrderFlag,FTradeFrom,FWebshopID,"
      "FMergeStatus,FBuyerNick,FBuyerName,FBuyerEMail,FBuyerPayMode,FBuyerMessage,FSellerMessage,FConsignee,FMobile,"
      "FZipCode,FDeliveryCountry,FDeliveryProvince,FDeliveryCity,FDeliveryDistrict,FDeliveryAddress,FDeliveryTime,"
      "FCurrencyID,FAmount,FDiscountFee,FBillDiscountFee,FTotalFreight,FInvoiceStatus,FInvoiceName,FInnerInvoice,"
      "FFeeBillNO,FOrderStatus,FTransactionType,FTransactionStatus,FSendType,FCheckStatus,FChkMan,FChkDate,FBiller,"
      "FEmpID,FLogisticsID,FShippingType,FUpLoadStatus,FReasonsForFailure,FGiftCardText,FEMSStatus";
  if (stage >= Stage::kConfirmed) columns += ",FPickMan,FPickDate,FPickRem,FPickingGoodMan,FPrintPickCount";
  if (stage >= Stage::kChecked) columns += ",FPIckingGoodsStatus,FOrderPickingDate";
  if (stage >= Stage::kWeighed) {
    columns +=
        ",FLogisticsOrder,FWeight,FLogisticsCost,FWeighttingStatus,FWeighttingMan,FPrintExpressCount,FPrintExpressUserID";
  }
  if (stage >= Stage::kDelivered) {
    columns += ",FShippingMan,FShippingRem,FSendDate,FOnlineSendDate,FPrintSendCount,FPrintSendList";
  }
  return columns;
}

std::string_view LineState(const Order& order, const OrderLine& line, int index) {
  // The shop closed the second line of some that are not delivered.
  if (order.scenario->stage < Stage::kDelivered && order.key % 19 == 6 && index == 2) return "TRADE_CLOSED";
  switch (order.scenario->transaction_status) {
    case code::kShipped:
      return "WAIT_BUYER_CONFIRM_GOODS";
    case code::kSucceeded:
      return "TRADE_FINISHED";
    case code::kClosed:
      return line.refund != 0 ? "WAIT_SELLER_SEND_GOODS" : "TRADE_CLOSED";
    default:
      return "WAIT_SELLER_SEND_GOODS";
  }
}

/// Whether somebody closed the line by hand: the last one of some orders that are not delivered, or all of them.
bool IsClosedByHand(const Order& order, int index) {
  if (order.scenario->stage == Stage::kDelivered || order.key % 17 != 4) return false;
  return order.key % 3 == 0 || (index > 1 && index == static_cast<int>(order.lines.size()));
}

std::string Summary(const Order& order) {
  std::string text;
  for (const OrderLine& line : order.lines) {
    text += (text.empty() ? "" : ";") + line.item->name + "×" + std::to_string(line.quantity);
  }
  return text;
}

/// One order in `n`, by its key.
bool OneIn(int n, const Order& order) { return order.key % n == 0; }

}  // namespace

OrderWriter::OrderWriter(Connection& connection, int country)
    : country_(country),
      lines_(connection, "IC_Web2ERPOrdersEntry", std::string(kLineColumns)),
      lines_without_batch_(connection, "IC_Web2ERPOrdersEntry", std::string(kLineColumns)),
      line_extensions_(connection, "IC_Web2ERPOrdersEntryEx", "FEntryID,FTplRemark"),
      web_orders_(connection, "IC_WebOrder", "FInterID,FOID,FTID,FTitle,FOuterIID,FOuterSKUID"),
      extensions_(connection, "IC_Web2ERPOrdersEx", std::string(kExtensionColumns)),
      sent_extensions_(connection, "IC_Web2ERPOrdersEx", std::string(kExtensionColumns) + ",FLogisticsState"),
      stock_bills_(connection, "IC_StockBillOrdersStatus", "FID,FStockBillStatus,FStockBillResult"),
      prints_(connection, "IC_PrintOrderInfo", "FID,FIsPrintPick,FIsPrintExpress,FIsPrintSend"),
      refunds_(connection, "IC_Web2ERPOrdersRefund", "FID,FRefundStatus,FIsShowWaitVerifyTemp"),
      refund_requests_(connection, "IC_RefundInfo", "FID,FIsRefuse,FReason"),
      outside_(connection, "IC_TplWeb2ERPOrders", "FID,FTplOrderStatus"),
      home_deliveries_(connection, "IC_Web2ERPOrdersJZ", "FID,FIs_jzservice_order"),
      forwarded_(connection, "IC_CainiaoShShipWeb2ERPOrders", "FID,FIsShShip"),
      courier_numbers_(connection, "IC_SfexpressLogisticsOrder", "FID,FMailNo"),
      early_waybills_(connection, "IC_TradeUpdateMemoStatus", "FSiteOrderID,FStauts,FFailinfo"),
      trades_(connection, "IC_Trade", "FID,FTID,FWebshopID,FBuyerNick,FPayTime,FPayment") {
  for (int stage = 0; stage < kStages; ++stage) {
    headers_.emplace_back(connection, "IC_Web2ERPOrders", HeaderColumns(static_cast<Stage>(stage)));
  }
}

void OrderWriter::WriteHeader(const Order& order) {
  const Scenario& scenario = *order.scenario;
  const Purchase& purchase = order.purchase;
  const bool postal = order.waybill.starts_with('E');
  const bool is_checked = scenario.stage > Stage::kWaiting || scenario.lock > 0 || order.key % 23 != 5;
  InsertRows& rows = headers_[static_cast<std::size_t>(scenario.stage)];
  rows.Append(order.key, order.number, scenario.manual ? std::string() : purchase.site_order, order.unique_code,
              scenario.manual ? code::kManualOrder : code::kShopOrder, order.ordered, order.paid, order.flag,
              OneIn(4, order) ? "PC" : "APP", purchase.shop.id, order.merged ? 1 : 0, purchase.nick, purchase.buyer,
              purchase.nick + "@example.com", order.transaction_type == code::kPayOnDelivery ? "货到付款" : "在线支付",
              order.buyer_message, order.seller_message, purchase.consignee, purchase.mobile,
              std::to_string(purchase.place.district != 0 ? purchase.place.district : purchase.place.city), country_,
              purchase.place.province, purchase.place.city, purchase.place.district, purchase.address,
              order.delivery_time, order.currency, Fixed{order.amount(), 2}, Fixed{order.discount(), 2},
              Fixed{order.bill_discount, 2}, Fixed{order.freight, 2}, order.invoice ? 1 : 0,
              order.invoice ? purchase.buyer : std::string(), order.invoice && OneIn(3, order) ? 1 : 0,
              order.cost_invoice != 0 ? std::to_string(order.cost_invoice) : std::string(), OrderStatus(scenario.stage),
              order.transaction_type, scenario.transaction_status,
              scenario.offline ? code::kSentOffline : code::kSentOnline, is_checked ? 1 : 0,
              is_checked ? order.user : 0, is_checked ? std::optional(order.checked) : std::nullopt, order.user,
              order.seller->id, order.carrier, postal ? code::kPost : code::kExpress, scenario.upload, scenario.failure,
              order.gift_card, order.waybill_state);
  if (scenario.stage >= Stage::kConfirmed) {
    const bool checked = scenario.stage >= Stage::kChecked || scenario.picking_check_failed;
    rows.Append(order.picker->number, order.picked, OneIn(20, order) ? "易碎" : "", checked ? order.user : 0,
                order.prints);
  }
  if (scenario.stage >= Stage::kChecked) rows.Append(1, order.picking_checked);
  if (scenario.stage >= Stage::kWeighed) {
    rows.Append(order.waybill, Fixed{order.grams, 3}, Fixed{order.cost, 2}, 1, order.user, order.prints, order.user);
  }
  if (scenario.stage >= Stage::kDelivered) {
    rows.Append(order.user, OneIn(25, order) ? "已放门卫" : "", order.sent, order.sent, order.prints, order.prints);
  }
  rows.EndRow();
}

void OrderWriter::WriteLine(const Order& order, const OrderLine& line, int index) {
  const Scenario& scenario = *order.scenario;
  const bool delivered = scenario.stage == Stage::kDelivered;
  const bool refund = line.refund != 0;
  const std::int64_t after_discount = line.amount - line.discount - line.bill_discount;
  InsertRows& rows = line.batch ? lines_ : lines_without_batch_;
  rows.Append(line.key, order.key, index, scenario.manual ? std::string() : line.site_order,
              scenario.manual ? std::string() : line.child_order, line.item->id,
              "6" + std::to_string(100000000 + line.item->id), std::to_string(40000000 + line.item->id),
              line.item->number, line.item->name, "69" + std::to_string(10000000000 + line.item->id), line.attribute,
              line.attribute != 0 ? "规格" : "", line.item->unit, line.quantity, Fixed{line.price, 2},
              Fixed{line.amount, 2}, Fixed{line.discount, 2}, Fixed{line.bill_discount, 2}, Fixed{after_discount, 2},
              Fixed{line.freight, 2}, line.gift ? 1 : 0, line.meal, line.meal_name, line.package, line.promotion,
              line.stock, line.stock_place);
  if (line.batch) {
    rows.Append(*line.batch);
  } else {
    rows.Append(Null{});
  }
  rows.Append(delivered ? line.quantity : 0, Fixed{delivered ? after_discount : 0, 2}, LineState(order, line, index),
              IsClosedByHand(order, index) ? 1 : 0, delivered ? 1 : 0, scenario.upload, refund ? 1 : 0, line.refund,
              refund ? (delivered ? 2 : 1) : 0, refund ? 1 + order.key % 2 : 0,
              !refund                               ? 0
              : scenario.refund == Refund::kRefused ? code::kServiceRefused
                                                    : code::kServiceAsked,
              line.engraving, line.wrapping);
  rows.EndRow();
  if (!scenario.manual && !line.child_order.empty()) {
    web_orders_.Add(line.key, line.child_order, line.site_order, line.item->name, line.item->number,
                    line.attribute != 0 ? line.item->number + "-" + std::to_string(line.attribute) : std::string());
  }
  if (scenario.outside_state == "3") line_extensions_.Add(line.key, "SN" + std::to_string(5000000 + line.key));
  if (refund) refund_requests_.Add(line.refund, scenario.refund == Refund::kRefused ? 1 : 0, "不想要了");
}

void OrderWriter::WriteTrade(const Order& order, const OrderLine& line) {
  // The marketplace has forgotten some.
  if (order.scenario->manual || OneIn(37, order) || line.site_order == last_trade_) return;
  last_trade_ = line.site_order;
  trades_.Add(line.key, line.site_order, order.purchase.shop.id, order.purchase.nick, order.paid,
              Fixed{order.amount() - order.discount() - order.bill_discount + order.freight, 2});
}

void OrderWriter::WriteExtension(const Order& order, const MasterData& master) {
  if (!order.has_extension) return;
  const Scenario& scenario = *order.scenario;
  const bool outside = !scenario.outside_state.empty();
  const bool sent = scenario.stage == Stage::kDelivered;
  InsertRows& rows = sent ? sent_extensions_ : extensions_;
  rows.Append(
      order.key, order.number, order.lot, order.serial, order.checked,
      OneIn(9, order)    ? 4
      : OneIn(31, order) ? 2
      : OneIn(17, order) ? 5
                         : 1,
      order.lines.size() > 5 ? 2 : 1, Fixed{OneIn(10, order) ? order.amount() : 0, 2}, Summary(order),
      scenario.outside_state, scenario.outside_state == "2" ? "外包仓拒收" : "",
      scenario.outside_state == "1" || scenario.outside_state == "3" ? "W" + std::to_string(order.key) : std::string(),
      outside ? "外包仓" : "", scenario.lock > 0 ? 1 : 0, scenario.lock, scenario.lock_reason,
      OneIn(40, order) ? (OneIn(3, order) ? "JZ02" : "JZ01") : "");
  if (sent) rows.Append(master.trace_states[static_cast<std::size_t>(order.key) % master.trace_states.size()]);
  rows.EndRow();
}

void OrderWriter::WriteStates(const Order& order) {
  const Scenario& scenario = *order.scenario;
  if (scenario.stock_bill > 0) stock_bills_.Add(order.key, scenario.stock_bill, scenario.stock_bill_result);
  if (scenario.refund == Refund::kRequested || scenario.refund == Refund::kWaitsForVerification) {
    refunds_.Add(order.key, 1, scenario.refund == Refund::kWaitsForVerification ? 1 : 0);
  }
  if (scenario.outside_state == "1" || scenario.outside_state == "3") outside_.Add(order.key, "已接单");
  // Every tenth order was never sent to a printer; some are in one.
  if (!OneIn(10, order)) {
    const int pick = scenario.stage >= Stage::kConfirmed ? 1 : OneIn(7, order) ? 2 : 0;
    const int express = scenario.stage >= Stage::kWeighed ? 1 : 0;
    prints_.Add(order.key, pick, express, scenario.stage == Stage::kDelivered ? 1 : 0);
  }
}

void OrderWriter::WriteServices(const Order& order) {
  if (OneIn(40, order)) home_deliveries_.Add(order.key, 1);
  if (OneIn(45, order)) forwarded_.Add(order.key, 1);
  if (!order.courier_number.empty()) courier_numbers_.Add(order.key, order.courier_number);
  if (order.scenario->stage < Stage::kWeighed) return;
  if (OneIn(12, order) && !order.scenario->manual) {
    const bool failed = OneIn(5, order);
    early_waybills_.Add(order.lines.front().site_order, failed ? 2 : 1, failed ? "备注超长" : "");
  }
}

void OrderWriter::Write(const Order& order, const MasterData& master) {
  WriteHeader(order);
  int index = 0;
  for (const OrderLine& line : order.lines) {
    WriteLine(order, line, ++index);
    WriteTrade(order, line);
  }
  WriteExtension(order, master);
  WriteStates(order);
  WriteServices(order);
}

void OrderWriter::Flush() {
  for (InsertRows& rows : headers_) rows.Flush();
  for (InsertRows* rows : {&lines_, &lines_without_batch_, &line_extensions_, &web_orders_, &extensions_,
                           &sent_extensions_, &stock_bills_, &prints_, &refunds_, &refund_requests_, &outside_,
                           &home_deliveries_, &forwarded_, &courier_numbers_, &early_waybills_, &trades_}) {
    rows->Flush();
  }
}

}  // namespace tessarlorn::cli
