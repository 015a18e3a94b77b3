// Numbers and texts of SQL Server that more than one room says or looks for.
#pragma once

#include <cstdint>

namespace tessarlorn::server_message {

struct Known {
  std::int32_t number;
  const char* text;
};

/// Said behind the error that ended a statement; never the cause.
inline constexpr Known kStatementTerminated{3621, "The statement has been terminated."};
inline constexpr Known kNoTransaction{3902, "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."};
/// The same, when the container's transaction is to be committed.
inline constexpr Known kTransactionEnded{
    3902, "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION: the transaction was ended before."};
inline constexpr Known kTransactionOpen{3988,
                                        "New transaction is not allowed because there is another transaction open."};

inline constexpr std::int32_t kOutOfMemory = 701;
inline constexpr std::int32_t kCannotOpenDatabase = 4060;
inline constexpr std::int32_t kInternalError = 8624;
/// Our own, for what is refused by name.
inline constexpr std::int32_t kNotSupported = 40000;

}  // namespace tessarlorn::server_message
