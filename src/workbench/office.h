// The log, bills, tasks and settings.
#pragma once

#include "workbench/question.h"

namespace tessarlorn::workbench {

RecordsetPtr AskLog(Connection& connection, const Asker& asker, const Dictionary& values);
RecordsetPtr AskInvoices(Connection& connection, const Asker& asker, const Dictionary& values);
RecordsetPtr AskTasks(Connection& connection, const Asker& asker, const Dictionary& values);
RecordsetPtr AskPurchases(Connection& connection, const Asker& asker, const Dictionary& values);
RecordsetPtr AskSwitches(Connection& connection, const Asker& asker, const Dictionary& values);

}  // namespace tessarlorn::workbench
