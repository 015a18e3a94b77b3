// A database in memory with the schema and sample orders, for tests that want the real tables and views.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "cli/schema_files.h"
#include "cli/seed/seed.h"
#include "drivers/embedded/embedded_driver.h"
#include "platform/connection.h"
#include "siblings/siblings.h"

namespace tessarlorn {

/// A database of its own that lives as long as this object. Registers the embedded driver and the default siblings.
class SampleDatabase {
 public:
  /// @param orders keys from 1; 0 leaves every table empty
  explicit SampleDatabase(int orders = 0, std::uint64_t random_seed = 1) {
    RegisterEmbeddedDriver();
    RegisterDefaultSiblings();
    connection_ = OpenConnection(database_);
    ApplySchema(*connection_);
    if (orders > 0) cli::Seed(*connection_, {.orders = orders, .random_seed = random_seed}, {});
  }

  /// For OpenConnection: "Embedded=:memory:…".
  [[nodiscard]] const std::string& database() const { return database_; }
  /// For operations: the session string of a user, 16394 being an administrator.
  /// @param more further pairs, as "Language=CHT;"
  [[nodiscard]] std::string Dsn(int user = 16394, const std::string& more = "") const {
    return "Connect={" + database_ + "};User=" + std::to_string(user) + ";" + more;
  }
  /// The connection that keeps the database alive; for looking into it.
  [[nodiscard]] Connection& connection() { return *connection_; }

 private:
  static std::string NextName() {
    static int number = 0;
    return "Embedded=:memory:sample" + std::to_string(++number);
  }

  std::string database_ = NextName();
  std::unique_ptr<Connection> connection_;
};

}  // namespace tessarlorn
