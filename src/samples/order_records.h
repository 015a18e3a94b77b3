// What other modules and programs made of the sample orders.
#pragma once

#include "tessarlorn/connection.h"

namespace tessarlorn::cli {

/// Adds stock bills and sales invoices of some delivered orders and of documents from elsewhere, cost invoices of the
/// orders that name one and others of none, addresses known to be served, and the task of an order that is at an
/// outside warehouse; refreshes the titles of the order states. Follows from the orders in the tables alone; tables
/// that hold rows already keep them as they are. Raises what the database raises.
void WriteOrderRecords(Connection& connection);

}  // namespace tessarlorn::cli
