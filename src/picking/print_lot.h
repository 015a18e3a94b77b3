// Running numbers of print lots.
#pragma once

#include <cstdint>

#include "tessarlorn/connection.h"

namespace tessarlorn {

/// Reserves `count` running numbers of the server's current month and answers the first of them; two connections never
/// get the same one, save that two first runs of a new month at the same instant may both start anew. Numbers go on
/// behind the highest lot of the month on orders. The very first call of all, for which the database has no counter
/// yet, reserves one number whatever `count` is. Its errors have the Source "GetPrintOrderLotNumber".
double GetPrintOrderLotNumber(Connection& connection, std::int32_t count);

}  // namespace tessarlorn
