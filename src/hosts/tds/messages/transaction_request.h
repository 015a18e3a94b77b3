// The headers of requests, and the requests to the transaction manager as Transact-SQL.
#pragma once

#include <string>

#include "hosts/tds/messages/tds_reader.h"

namespace tessarlorn::tds {

/// Reads over the headers that stand before every request of TDS 7.2 and later.
void SkipHeaders(TdsReader& reader, TdsVersion version);

/// The statements that do what the request asks: begin, commit, roll back or save a transaction, set its isolation
/// level. Raises Error for distributed transactions and other requests that are not supported.
std::string TransactionRequestText(TdsReader& reader);

}  // namespace tessarlorn::tds
