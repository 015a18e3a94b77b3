// A database with the schema and sample orders, for tests that want the real tables and views.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "samples/seed.h"
#include "schema/schema_files.h"
#include "support/test_database.h"
#include "tessarlorn/connection.h"

namespace tessarlorn {

/// A database of its own that lives as long as this object, where the environment says (ReachOfEnvironment).
class SampleDatabase {
 public:
  /// @param orders keys from 1; 0 leaves every table empty
  explicit SampleDatabase(int orders = 0, std::uint64_t random_seed = 1)
      : database_(ReachOfEnvironment()), connection_(OpenConnection(database_.string())) {
    ApplySchema(*connection_);
    if (orders > 0) cli::Seed(*connection_, {.orders = orders, .random_seed = random_seed}, {});
  }

  /// For OpenConnection.
  [[nodiscard]] const std::string& database() const { return database_.string(); }
  /// For operations: the session string of a user, 16394 being an administrator.
  /// @param more further pairs, as "Language=CHT;"
  [[nodiscard]] std::string Dsn(int user = 16394, const std::string& more = "") const {
    return "Connect={" + ReplaceAll(database(), "}", "}}") + "};User=" + std::to_string(user) + ";" + more;
  }
  /// For looking into the database.
  [[nodiscard]] Connection& connection() { return *connection_; }

 private:
  TestDatabase database_;
  std::unique_ptr<Connection> connection_;
};

}  // namespace tessarlorn
