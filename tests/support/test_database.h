// An empty database of a test's own, and the ways that lead to it: in process, over TDS and ODBC, over what stands in
// for ADO, on another server; or one that all tests of a process share.
#pragma once

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <thread>

#include "platform/session_string.h"
#include "platform/text/text.h"
#include "support/test_host.h"
#include "tessarlorn/connection.h"
#include "tessarlorn/error.h"
#ifdef TESSARLORN_HAS_SERVER
#include "support/served_database.h"
#endif
#ifdef TESSARLORN_HAS_ADO
#include "drivers_ado/ado_stand_in.h"
#endif

namespace tessarlorn {

/// An embedded database in memory, reached in process, over TDS and ODBC, or over what stands in for ADO. In place of
/// the server of this process comes the one that TESSARLORN_TEST_DSN names in the environment, or the database that
/// TESSARLORN_TEST_DATABASE names, which is empty when the process starts and which nothing else uses.
enum class Reach { kInProcess, kOverOdbc, kOverAdo };

/// What the environment asks for: TESSARLORN_TEST_DSN or TESSARLORN_TEST_OVER=odbc, else in process.
inline Reach ReachOfEnvironment() {
  const bool over_odbc =
      std::getenv("TESSARLORN_TEST_DSN") != nullptr || std::getenv("TESSARLORN_TEST_OVER") != nullptr;
  return over_odbc ? Reach::kOverOdbc : Reach::kInProcess;
}

/// Lives as long as this object. On a server it is made as tessarlorn_test_… and nothing else is touched; there it is
/// dropped in the end. One that is given stays as the tests leave it.
class TestDatabase {
 public:
  explicit TestDatabase(Reach reach) {
    if (reach == Reach::kOverOdbc) {
      if (const char* const server = std::getenv("TESSARLORN_TEST_DSN")) {
        MakeOnServer(server);
        return;
      }
      if (const char* const given = std::getenv("TESSARLORN_TEST_DATABASE")) {
        string_ = given;
        return;
      }
    }
    string_ = "Embedded=:memory:test" + std::to_string(NextNumber());
    keeper_ = OpenConnection(string_);
#ifdef TESSARLORN_HAS_SERVER
    if (reach == Reach::kOverOdbc) {
      server_ = std::make_unique<InProcessServer>(string_);
      string_ = server_->odbc();
    }
#endif
#ifdef TESSARLORN_HAS_ADO
    if (reach == Reach::kOverAdo) {
      ado_ = std::make_unique<AdoStandIn>();
      string_ = AdoStandIn::StringOf(string_);
    }
#endif
  }
  TestDatabase(const TestDatabase&) = delete;
  TestDatabase& operator=(const TestDatabase&) = delete;
  ~TestDatabase() {
    if (made_.empty()) return;
    // A server notices a little late that a connection has left, and some cannot send those away that stay.
    constexpr int kTries = 50;
    for (int tries = kTries; !Succeeds("DROP DATABASE " + made_, tries == 0); --tries) {
      if (tries == 0) return;
      Succeeds("ALTER DATABASE " + made_ + " SET SINGLE_USER WITH ROLLBACK IMMEDIATE", false);
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
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
    const std::string name =
        "tessarlorn_test_" + std::to_string(std::random_device()()) + "_" + std::to_string(NextNumber());
    for (const auto& [key, value] : ParsePairs(server)) {
      if (!EqualsIgnoreCase(key, "Database")) string_ += key + "={" + ReplaceAll(value, "}", "}}") + "};";
    }
    string_ += "Database=" + name;
    keeper_ = OpenConnection(server);
    keeper_->Execute("CREATE DATABASE " + name + " COLLATE Chinese_PRC_CI_AS");
    made_ = name;
  }

  bool Succeeds(const std::string& statement, bool tells) {
    try {
      keeper_->Execute(statement);
      return true;
    } catch (const Error& error) {
      if (tells) std::fprintf(stderr, "%s: %s\n", statement.c_str(), error.what());
      return false;
    }
  }

  std::string string_;
  std::string made_;  // the name of a database on a server
  /// Keeps a database in memory alive, and drops one on a server.
  std::unique_ptr<Connection> keeper_;
#ifdef TESSARLORN_HAS_SERVER
  std::unique_ptr<InProcessServer> server_;
#endif
#ifdef TESSARLORN_HAS_ADO
  std::unique_ptr<AdoStandIn> ado_;
#endif
};

}  // namespace tessarlorn
