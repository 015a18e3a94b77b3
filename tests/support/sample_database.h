// A database in memory with the schema, for tests that want the real tables and views.
#pragma once

#include <memory>
#include <string>

#include "cli/schema_files.h"
#include "drivers/embedded/embedded_driver.h"
#include "platform/connection.h"
#include "siblings/siblings.h"

namespace tessarlorn {

/// A database of its own that lives as long as this object. Registers the embedded driver and the default siblings.
class SampleDatabase {
 public:
  SampleDatabase() {
    RegisterEmbeddedDriver();
    RegisterDefaultSiblings();
    connection_ = OpenConnection(database_);
    ApplySchema(*connection_);
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
