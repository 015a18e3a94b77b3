// How the service classes take part in the transactions of their container.
#pragma once

#include <cstdint>

namespace tessarlorn {

/// The mode that a service class reports to its container.
enum class TransactionMode : std::int32_t {
  /// Each call runs in a transaction: the container's own, or one that it begins for the call.
  kRequired = 2,
};

}  // namespace tessarlorn
