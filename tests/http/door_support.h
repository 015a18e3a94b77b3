// A door in this process, on a database with sample orders and callers.
#pragma once

#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <string>
#include <thread>

#include "hosts/http/access/tokens.h"
#include "hosts/http/access/users.h"
#include "hosts/http/door.h"
#include "hosts/http/transport/server.h"
#include "support/http_client.h"
#include "support/sample_test.h"
#include "support/wait_until.h"

namespace tessarlorn::http {

constexpr const char* kDoorPassword = "correct horse";

/// The header that shows a token.
inline std::string Bearer(const std::string& token) { return "Authorization: Bearer " + token + "\r\n"; }

/// Adds a user who may do what the role may, and answers the header of his token.
inline std::string AddCaller(Connection& connection, const std::string& name, int erp_user, const std::string& role) {
  AddUser(connection, name,
          {.erp_user = erp_user, .role = role, .sql = role == "administrator", .password = kDoorPassword});
  return Bearer(AddToken(connection, "token", name, std::nullopt));
}

/// Serves as long as this object lives.
class RunningDoor {
 public:
  explicit RunningDoor(const std::string& database, DoorOptions options = {}, const TransportLimits& limits = {})
      : server_(Listen(address_),
                {.limits = limits, .refusal = [this](int status, auto why) { return door_.Refused(status, why); }},
                [this](std::unique_ptr<Exchange> exchange) { door_.Handle(std::move(exchange)); }),
        door_(TestHost(), WithDatabase(std::move(options), database)),
        thread_([this] { server_.Run([this] { door_.Stop(); }); }) {}
  RunningDoor(const RunningDoor&) = delete;
  RunningDoor& operator=(const RunningDoor&) = delete;
  ~RunningDoor() { Stop(); }

  void Stop() {
    server_.Stop();
    if (thread_.joinable()) thread_.join();
  }
  [[nodiscard]] Server& server() noexcept { return server_; }
  [[nodiscard]] int port() const noexcept { return address_.port; }
  HttpAnswer Ask(const std::string& line, const std::string& headers, const std::string& body = "") const {
    return HttpClient(port()).Ask(line, headers, body);
  }

 private:
  static DoorOptions WithDatabase(DoorOptions options, const std::string& database) {
    options.database = database;
    return options;
  }

  Address address_{"127.0.0.1", 0};
  Server server_;
  Door door_;
  std::thread thread_;
};

/// Ann may do everything. Pia is a supervisor who sees the shops 101 and 102, with the orders 23 and 2, and not 103,
/// with order 1.
class DoorTest : public testing::Test {
 protected:
  std::string Read(std::string_view query) { return Cells(database_.connection(), query); }

  SampleDatabase database_{60};
  const std::string ann_ = AddCaller(database_.connection(), "ann", 16394, "administrator");
  const std::string pia_ = AddCaller(database_.connection(), "pia", 16395, "supervisor");
};

}  // namespace tessarlorn::http
