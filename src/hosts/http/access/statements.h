// How statements on the tables of the door are run.
#pragma once

#include "tessarlorn/connection.h"

namespace tessarlorn::http {

/// As Connection::Execute. When the tables are missing the error says what makes them.
RecordsetPtr RunStatement(Connection& connection, SqlCommand command);

}  // namespace tessarlorn::http
