// Writes sample orders into the order tables and the tables around them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "samples/insert_rows.h"
#include "samples/order_maker.h"

namespace tessarlorn::cli {

class OrderWriter {
 public:
  OrderWriter(Connection& connection, int country);

  /// Rows reach the database in no particular order; all of them once Flush() has returned. Both raise what the
  /// database raises.
  void Write(const Order& order, const MasterData& master);
  void Flush();

 private:
  void WriteHeader(const Order& order);
  void WriteLine(const Order& order, const OrderLine& line, int index);
  void WriteTrade(const Order& order, const OrderLine& line);
  void WriteExtension(const Order& order, const MasterData& master);
  void WriteStates(const Order& order);
  void WriteServices(const Order& order);

  int country_;
  /// By stage: an order has no more columns than it has come to; the others keep their defaults.
  std::vector<InsertRows> headers_;
  InsertRows lines_;
  /// Those without a batch number, not even an empty one.
  InsertRows lines_without_batch_;
  InsertRows line_extensions_;
  InsertRows web_orders_;
  /// Before and after delivery.
  InsertRows extensions_;
  InsertRows sent_extensions_;
  InsertRows stock_bills_;
  InsertRows prints_;
  InsertRows refunds_;
  InsertRows refund_requests_;
  InsertRows outside_;
  InsertRows home_deliveries_;
  InsertRows forwarded_;
  InsertRows courier_numbers_;
  InsertRows early_waybills_;
  InsertRows trades_;
  /// FTID of the last row of trades_; the lines of one come after the other.
  std::string last_trade_;
};

}  // namespace tessarlorn::cli
