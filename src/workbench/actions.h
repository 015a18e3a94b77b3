// What the page changes that no operation does. Each answers the keys of the orders that it changed.
#pragma once

#include "workbench/question.h"

namespace tessarlorn::workbench {

/// @pre a transaction is open
RecordsetPtr CountPrints(Connection& connection, const Asker& asker, const Dictionary& values);
/// @pre a transaction is open
RecordsetPtr RetryUploads(Connection& connection, const Asker& asker, const Dictionary& values);

}  // namespace tessarlorn::workbench
