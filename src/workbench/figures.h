// How much is to be done, and what was done by whom.
#pragma once

#include "workbench/question.h"

namespace tessarlorn::workbench {

RecordsetPtr AskBacklog(Connection& connection, const Asker& asker, const Dictionary& values);
RecordsetPtr AskWork(Connection& connection, const Asker& asker, const Dictionary& values);
RecordsetPtr AskCarriers(Connection& connection, const Asker& asker, const Dictionary& values);
RecordsetPtr AskFailures(Connection& connection, const Asker& asker, const Dictionary& values);

}  // namespace tessarlorn::workbench
