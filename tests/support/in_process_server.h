// Serves a database over TDS in this process, for tests that reach it as clients on the network do.
#pragma once

#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>

#include "hosts/tds/server.h"
#include "support/served_database.h"

namespace tessarlorn {

/// On a free loopback port, for as long as this object lives. The one user is `test` with the password `test`.
class InProcessServer {
 public:
  explicit InProcessServer(const std::string& database_string)
      : server_({"127.0.0.1", 0}, MakeService(database_string)), thread_([this] { server_.Run(); }) {}
  InProcessServer(const InProcessServer&) = delete;
  InProcessServer& operator=(const InProcessServer&) = delete;
  ~InProcessServer() {
    server_.Stop();
    thread_.join();
  }

  [[nodiscard]] std::uint16_t port() const { return server_.address().port; }
  /// For OpenConnection, over FreeTDS.
  [[nodiscard]] std::string odbc_string() const {
    if (FreeTdsDriver().empty()) throw std::runtime_error("the ODBC driver of FreeTDS (package tdsodbc) is missing");
    return "Driver=" + FreeTdsDriver() + ";Server=127.0.0.1;Port=" + std::to_string(port()) +
           ";TDS_Version=7.4;ClientCharset=UTF-8;UID=test;PWD=test";
  }

 private:
  static tds::Service MakeService(const std::string& database_string) {
    // Few rounds of hashing: a test logs in hundreds of times.
    const std::string file = std::filesystem::temp_directory_path() / ("users-" + std::to_string(getpid()));
    std::ofstream(file) << "test:pbkdf2-sha256$1000$00000000000000000000000000000000$"
                           "3196473bbcabc36e17ccc9e755717efb6c63d9c70415380b69c7c36ab72024c1\n";
    std::filesystem::permissions(file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    tds::Service service;
    service.database_string = database_string;
    service.users = tds::Users::Read(file);
    std::filesystem::remove(file);
    return service;
  }

  tds::Server server_;
  std::thread thread_;
};

}  // namespace tessarlorn
