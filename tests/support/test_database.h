// An empty database of a test's own, and the ways that lead to it: in process, over TDS and ODBC, on another server.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <unistd.h>

#include "drivers/embedded/embedded_driver.h"
#include "platform/connection.h"
#include "platform/error.h"
#include "platform/session_string.h"
#include "platform/text.h"
#include "support/in_process_server.h"
#ifdef TESSARLORN_HAS_ODBC
#include "drivers/odbc/odbc_driver.h"
#endif

namespace tessarlorn {

/// An embedded database in memory, reached in process or over TDS and ODBC; or one that is made on a server.
enum class Reach { kInProcess, kOverOdbc, kServer };

/// The string of another server, TESSARLORN_TEST_DSN in the environment; nullptr when there is none.
inline const char* TestServer() { return std::getenv("TESSARLORN_TEST_DSN"); }

/// What the environment asks for: TESSARLORN_TEST_DSN="Driver=…", else TESSARLORN_TEST_OVER=odbc, else in process.
inline Reach ReachOfEnvironment() {
  if (TestServer() != nullptr) return Reach::kServer;
  const char* const over = std::getenv("TESSARLORN_TEST_OVER");
  return over != nullptr && std::string_view(over) == "odbc" ? Reach::kOverOdbc : Reach::kInProcess;
}

/// Lives as long as this object. On a server it is made as tessarlorn_test_… and nothing else is touched; there it is
/// dropped in the end. Registers the drivers.
class TestDatabase {
 public:
  explicit TestDatabase(Reach reach) {
    RegisterEmbeddedDriver();
#ifdef TESSARLORN_HAS_ODBC
    RegisterOdbcDriver();
#endif
    if (reach == Reach::kServer) {
      MakeOnServer(TestServer());
      return;
    }
    string_ = "Embedded=:memory:test" + std::to_string(NextNumber());
    keeper_ = OpenConnection(string_);
    if (reach != Reach::kOverOdbc) return;
    server_ = std::make_unique<InProcessServer>(string_);
    string_ = server_->odbc_string();
  }
  TestDatabase(const TestDatabase&) = delete;
  TestDatabase& operator=(const TestDatabase&) = delete;
  ~TestDatabase() {
    if (dropping_.empty()) return;
    try {
      keeper_->Execute(dropping_);
    } catch (const Error& error) {
      std::fprintf(stderr, "%s: %s\n", dropping_.c_str(), error.what());
    }
  }

  /// For OpenConnection.
  [[nodiscard]] const std::string& string() const { return string_; }

 private:
  static int NextNumber() {
    static int number = 0;
    return ++number;
  }

  /// The last step makes the database, so that what cannot be dropped was not made.
  void MakeOnServer(std::string_view server) {
    const std::string name = "tessarlorn_test_" + std::to_string(getpid()) + "_" + std::to_string(NextNumber());
    for (const auto& [key, value] : ParsePairs(server)) {
      if (!EqualsIgnoreCase(key, "Database")) string_ += key + "={" + ReplaceAll(value, "}", "}}") + "};";
    }
    string_ += "Database=" + name;
    keeper_ = OpenConnection(server);
    std::string dropping = "ALTER DATABASE " + name + " SET SINGLE_USER WITH ROLLBACK IMMEDIATE DROP DATABASE " + name;
    keeper_->Execute("CREATE DATABASE " + name + " COLLATE Chinese_PRC_CI_AS");
    dropping_ = std::move(dropping);
  }

  std::string string_;
  std::string dropping_;
  /// Keeps a database in memory alive, and drops one on a server.
  std::unique_ptr<Connection> keeper_;
  std::unique_ptr<InProcessServer> server_;
};

}  // namespace tessarlorn
