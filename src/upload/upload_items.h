// What is to be reported to the web shops about delivered orders, and when a marketplace order counts as split.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tessarlorn/connection.h"
#include "tessarlorn/variant.h"

namespace tessarlorn {

/// One line of a report: a whole marketplace order or, when it was split, one of its lines.
struct UploadItem {
  std::string site_order;
  /// "" for a whole order.
  std::string child_orders;
  bool split = false;
  Variant web_shop;
  /// "" for an order without a known carrier.
  Variant carrier_code;
  std::string waybill;
  std::string order_number;
  Variant order_key;
};

/// The three queries that the items are made from.
struct UploadQueries {
  /// FItemID, FNumber of the carriers.
  std::string carriers;
  /// FSiteOrderID and Num, how many child orders the marketplace order has in all ERP orders.
  std::string child_orders;
  /// The lines: FID, FOrderID, FWebshopID, FLogisticsID, FLogisticsOrder, FSiteOrderID, FChildOrderID.
  std::string lines;
};

/// The items in the order of the lines. A marketplace order counts as split when the waybill numbers of its lines, one
/// a line also where they repeat, are three or more, or when it has more child orders than lines: then each line is an
/// item; else the first line stands for the order. Takes time in proportion to the number of lines.
std::vector<UploadItem> CollectUploadItems(Connection& connection, const UploadQueries& queries);

}  // namespace tessarlorn
