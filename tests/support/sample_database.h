// A database with the schema and sample orders, for tests that want the real tables and views.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <unistd.h>

#include "cli/schema_files.h"
#include "cli/seed/seed.h"
#include "drivers/embedded/embedded_driver.h"
#include "platform/connection.h"
#include "platform/error.h"
#include "siblings/siblings.h"
#include "support/in_process_server.h"
#ifdef TESSARLORN_HAS_ODBC
#include "drivers/odbc/odbc_driver.h"
#endif

namespace tessarlorn {

/// A database of its own that lives as long as this object. It is an embedded one in memory, reached in process or,
/// with TESSARLORN_TEST_OVER=odbc in the environment, over TDS and ODBC. TESSARLORN_TEST_DSN="Driver=…" names another
/// server instead: there the database is made, as tessarlorn_test_… and nothing else, and dropped in the end.
/// Registers the drivers and the default siblings.
class SampleDatabase {
 public:
  /// @param orders keys from 1; 0 leaves every table empty
  explicit SampleDatabase(int orders = 0, std::uint64_t random_seed = 1) {
    RegisterEmbeddedDriver();
#ifdef TESSARLORN_HAS_ODBC
    RegisterOdbcDriver();
#endif
    RegisterDefaultSiblings();
    if (const char* const server = std::getenv("TESSARLORN_TEST_DSN")) {
      MakeOnServer(server);
    } else {
      MakeEmbedded();
    }
    connection_ = OpenConnection(database_);
    ApplySchema(*connection_);
    if (orders > 0) cli::Seed(*connection_, {.orders = orders, .random_seed = random_seed}, {});
  }
  SampleDatabase(const SampleDatabase&) = delete;
  SampleDatabase& operator=(const SampleDatabase&) = delete;
  ~SampleDatabase() {
    connection_.reset();
    if (dropping_.empty()) return;
    try {
      keeper_->Execute(dropping_);
    } catch (const Error& error) {
      std::fprintf(stderr, "%s: %s\n", dropping_.c_str(), error.what());
    }
  }

  /// For OpenConnection.
  [[nodiscard]] const std::string& database() const { return database_; }
  /// For operations: the session string of a user, 16394 being an administrator.
  /// @param more further pairs, as "Language=CHT;"
  [[nodiscard]] std::string Dsn(int user = 16394, const std::string& more = "") const {
    return "Connect={" + database_ + "};User=" + std::to_string(user) + ";" + more;
  }
  /// For looking into the database.
  [[nodiscard]] Connection& connection() { return *connection_; }

 private:
  static int NextNumber() {
    static int number = 0;
    return ++number;
  }

  void MakeEmbedded() {
    database_ = "Embedded=:memory:sample" + std::to_string(NextNumber());
    keeper_ = OpenConnection(database_);
    const char* const over = std::getenv("TESSARLORN_TEST_OVER");
    if (over == nullptr || std::string(over) != "odbc") return;
    server_ = std::make_unique<InProcessServer>(database_);
    database_ = server_->odbc_string();
  }

  void MakeOnServer(const std::string& server) {
    const std::string name = "tessarlorn_test_" + std::to_string(getpid()) + "_" + std::to_string(NextNumber());
    keeper_ = OpenConnection(server);
    keeper_->Execute("CREATE DATABASE " + name + " COLLATE Chinese_PRC_CI_AS");
    dropping_ = "ALTER DATABASE " + name + " SET SINGLE_USER WITH ROLLBACK IMMEDIATE DROP DATABASE " + name;
    database_ = server + ";Database=" + name;
  }

  std::string database_;
  std::string dropping_;
  /// Keeps a database in memory alive, and drops one on a server.
  std::unique_ptr<Connection> keeper_;
  std::unique_ptr<InProcessServer> server_;
  std::unique_ptr<Connection> connection_;
};

}  // namespace tessarlorn
