// Which orders the page shows.
#pragma once

#include "workbench/question.h"

namespace tessarlorn::workbench {

RecordsetPtr AskTabs(Connection& connection, const Asker& asker, const Dictionary& values);
RecordsetPtr AskOrders(Connection& connection, const Asker& asker, const Dictionary& values);
OperationCall CallForRows(const Dictionary& values);
RecordsetPtr AskStates(Connection& connection, const Asker& asker, const Dictionary& values);
RecordsetPtr AskFind(Connection& connection, const Asker& asker, const Dictionary& values);
RecordsetPtr AskParcels(Connection& connection, const Asker& asker, const Dictionary& values);
RecordsetPtr AskChoices(Connection& connection, const Asker& asker, const Dictionary& values);

}  // namespace tessarlorn::workbench
