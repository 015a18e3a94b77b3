// What was done to an order.
#pragma once

#include "workbench/question.h"

namespace tessarlorn::workbench {

RecordsetPtr AskHistory(Connection& connection, const Asker& asker, const Dictionary& values);

}  // namespace tessarlorn::workbench
