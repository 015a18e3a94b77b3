// The queue from which stock bills of delivered or weighed orders are created later, table IC_StockBillOrdersStatus.
#pragma once

#include <string_view>

#include "tessarlorn/connection.h"

namespace tessarlorn {

/// Puts each order of the list into the queue, waiting and without a result; one that is there already is reset to
/// that. Runs in batches of 150 orders. Raises 13 for a key that is no number, 6 for one beyond 32 bits.
void QueueStockBills(Connection& connection, std::string_view order_keys);

}  // namespace tessarlorn
