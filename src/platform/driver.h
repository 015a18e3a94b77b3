// What supplies the connections to one kind of database.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tessarlorn/connection.h"

namespace tessarlorn {

/// Opens connections for the database strings that have one of its keys. Used by several threads at once.
class Driver {
 public:
  virtual ~Driver() = default;
  /// The keys that mark this driver's strings, as "Embedded" for `Embedded=orders.db`.
  [[nodiscard]] virtual std::vector<std::string> Keys() const = 0;
  [[nodiscard]] virtual std::unique_ptr<Connection> Open(std::string_view database_string) = 0;
};

}  // namespace tessarlorn
