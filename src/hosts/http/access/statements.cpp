#include "hosts/http/access/statements.h"

namespace tessarlorn::http {

RecordsetPtr RunStatement(Connection& connection, SqlCommand command) {
  try {
    return connection.Execute(command);
  } catch (const Error& error) {
    constexpr std::int32_t kInvalidObjectName = 208;
    const bool missing = error.number() == error_number::kNoSuchTable || error.native().number == kInvalidObjectName;
    if (!missing) throw;
    throw Error(error.number(), error.source(),
                error.description() + " 'tessarlorn init' makes the tables of users, tokens and roles.",
                error.native());
  }
}

}  // namespace tessarlorn::http
