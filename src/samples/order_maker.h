// Makes sample orders, one after the other, out of master data and chance.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "samples/master_data.h"
#include "samples/random.h"
#include "samples/scenarios.h"
#include "samples/seed.h"
#include "tessarlorn/date_time.h"

namespace tessarlorn::cli {

/// Amounts are in hundredths of the order's currency.
struct OrderLine {
  int key = 0;
  const Item* item = nullptr;
  std::string site_order;
  /// "" where the shop numbers no lines.
  std::string child_order;
  std::int64_t quantity = 1;
  std::int64_t price = 0;
  std::int64_t amount = 0;
  std::int64_t discount = 0;
  std::int64_t bill_discount = 0;
  bool gift = false;
  std::string_view meal = "0";
  std::string_view meal_name;
  int package = 0;
  int promotion = 0;
  int attribute = 0;
  int stock = 0;
  int stock_place = 0;
  /// None: imported without one, which is not the same as "" for everybody.
  std::optional<std::string> batch = "";
  /// The part of the order's freight that the line carries.
  std::int64_t freight = 0;
  /// Key of its refund request, 0 = none.
  int refund = 0;
  std::string_view engraving;
  std::string_view wrapping;
};

/// Who buys what from whom: what the parts of a split order share.
struct Purchase {
  Shop shop;
  std::string site_order;
  std::string nick;
  std::string buyer;
  std::string consignee;
  std::string mobile;
  Place place;
  std::string address;
};

struct Order {
  int key = 0;
  const Scenario* scenario = nullptr;
  Purchase purchase;
  std::string number;
  std::string unique_code;
  bool merged = false;
  DateTime ordered;
  DateTime paid;
  DateTime checked;
  DateTime picked;
  DateTime picking_checked;
  DateTime sent;
  int currency = 0;
  int transaction_type = 0;
  std::int64_t freight = 0;
  std::int64_t bill_discount = 0;
  int carrier = 0;
  std::string waybill;
  /// What the courier gave over the wire, "" = nothing.
  std::string courier_number;
  /// Print run and place in it, "" = not printed.
  std::string lot;
  std::string serial;
  /// How often each of its documents was printed.
  int prints = 0;
  /// Of the electronic waybill: FEMSStatus.
  int waybill_state = 0;
  /// Key of the cost invoice that covers it, 0 = none.
  int cost_invoice = 0;
  std::int64_t grams = 0;
  std::int64_t cost = 0;
  int flag = 0;
  bool invoice = false;
  bool has_extension = true;
  int user = 0;
  const Employee* seller = nullptr;
  const Employee* picker = nullptr;
  std::string_view buyer_message;
  std::string_view seller_message;
  std::string_view delivery_time;
  std::string_view gift_card;
  std::vector<OrderLine> lines;

  [[nodiscard]] std::int64_t amount() const;
  [[nodiscard]] std::int64_t discount() const;
};

class OrderMaker {
 public:
  /// The first four fifths of the orders are delivered, the others are open.
  /// @param master outlives this object
  OrderMaker(const MasterData& master, const SeedOptions& options);

  /// The next order; keys of orders and lines run from 1.
  Order Next();

 private:
  DateTime OrderTime();
  Purchase MakePurchase(int key);
  void SetTimes(Order& order);
  void SetParcel(Order& order);
  void SetPrints(Order& order);
  void SetWaybillState(Order& order) const;
  void AddLines(Order& order);
  OrderLine MakeLine(const Order& order);
  /// A line with its keys alone.
  OrderLine NewLine(const Order& order);
  void AddPriceDifference(Order& order);
  void MoveLines(Order& order);
  void ShareDiscount(Order& order);

  const MasterData& master_;
  Random random_;
  SampleDays days_;
  int count_;
  int delivered_;
  ScenarioDeck open_deck_{OpenScenarios()};
  ScenarioDeck delivered_deck_{DeliveredScenarios()};
  int last_key_ = 0;
  int last_line_ = 0;
  int last_refund_ = 0;
  int on_cost_invoices_ = 0;
  /// By month, "202606".
  std::map<std::string, int> printed_;
  /// Set while the next order is a further part of the same purchase.
  bool continues_ = false;
  Purchase last_purchase_;
};

}  // namespace tessarlorn::cli
