// Embedded databases served over TDS: by a process of its own, and in this one.
#pragma once

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <glob.h>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include "hosts/tds/server.h"
#include "samples/seed.h"
#include "schema/schema_files.h"
#include "support/shell.h"
#include "support/temporary_folder.h"
#include "support/test_host.h"
#include "support/wait_until.h"

namespace tessarlorn {

/// What leads to a server on this machine by the ODBC driver of FreeTDS, for user ann and more pairs.
inline std::string OdbcString(int port, const std::string& more = ";UID=ann;PWD=s3cret") {
  glob_t found{};
  std::string driver;
  if (glob("/usr/lib/*/odbc/libtdsodbc.so", 0, nullptr, &found) == 0) driver = found.gl_pathv[0];
  globfree(&found);
  if (driver.empty()) throw std::runtime_error("the ODBC driver of FreeTDS (package tdsodbc) is missing");
  return "Driver=" + driver + ";Server=127.0.0.1;Port=" + std::to_string(port) +
         ";TDS_Version=7.4;ClientCharset=UTF-8" + more;
}

/// The built command serving a database, as long as this object lives. Its user is ann with the password s3cret.
class ServedDatabase {
 public:
  /// @param options more words for the command
  /// @param orders sample orders, of which 0 leave the database empty
  /// @param database its string; "" for a file of its own
  explicit ServedDatabase(std::vector<std::string> options = {}, int orders = 0, const std::string& database = "")
      : options_(std::move(options)),
        // A small cache: what a server holds shall not be hidden by what it remembers of a growing file.
        database_(database.empty() ? "Embedded=" + file("served.db") + ";Synchronous=Normal;Cache=1" : database) {
    if (orders > 0) {
      const auto connection = OpenConnection(database_);
      ApplySchema(*connection);
      cli::Seed(*connection, {.orders = orders}, {});
    }
    AddUser("ann", "s3cret");
    Start();
  }
  ServedDatabase(const ServedDatabase&) = delete;
  ServedDatabase& operator=(const ServedDatabase&) = delete;
  ~ServedDatabase() { Stop(SIGTERM); }

  /// The server knows the user from its next start on.
  void AddUser(const std::string& name, const std::string& password) const {
    tds::AddUser(file("users"), name, password, 10);
  }
  /// On the port that it had, when it ran before.
  void Start() {
    std::vector<std::string> words = {TESSARLORN_COMMAND, "serve",       "--tds", "127.0.0.1:" + std::to_string(port_),
                                      "--users",          file("users"), "--dsn", database_,
                                      "--verbose"};
    words.insert(words.end(), options_.begin(), options_.end());
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::array<int, 2> output{};
    if (pipe2(output.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    process_ = fork();
    if (process_ == 0) {
      dup2(output[1], STDOUT_FILENO);
      if (std::freopen(file("log").c_str(), "a", stderr) != nullptr) execv(arguments[0], arguments.data());
      _exit(127);
    }
    close(output[1]);
    output_ = output[0];
    port_ = ReadPort();
    if (std::find(words.begin(), words.end(), "--http") != words.end()) http_port_ = ReadPort();
  }
  void Restart() {
    Stop();
    Start();
  }
  /// Ends the server with a signal and waits until it is gone. Answers its exit status.
  int Stop(int signal = SIGKILL) {
    if (process_ <= 0) return 0;
    kill(process_, signal);
    int status = 0;
    waitpid(process_, &status, 0);
    close(output_);
    process_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  [[nodiscard]] int port() const noexcept { return port_; }
  /// With the option --http 127.0.0.1:0; another one after each start. From any thread.
  [[nodiscard]] int http_port() const noexcept { return http_port_; }
  [[nodiscard]] pid_t process() const noexcept { return process_; }
  [[nodiscard]] std::string file(const std::string& name) const { return folder_.file(name); }
  /// For OpenConnection. @param more further pairs, as ";StatementTimeout=1"
  [[nodiscard]] std::string odbc(const std::string& more = "") const { return OdbcString(port_) + more; }
  [[nodiscard]] std::string Log() const { return ReadFile(file("log")); }
  [[nodiscard]] bool WaitForLog(const std::string& text) const {
    return WaitUntil([&] { return Log().find(text) != std::string::npos; });
  }

 private:
  [[nodiscard]] int ReadPort() const {
    std::string line;
    for (char c = 0; read(output_, &c, 1) == 1 && c != '\n';) line += c;
    if (!line.starts_with("listening on ")) throw std::runtime_error("the server said: " + line + Log());
    return std::stoi(line.substr(line.rfind(':') + 1));
  }

  TemporaryFolder folder_;
  std::vector<std::string> options_;
  std::string database_;
  int port_ = 0;
  std::atomic<int> http_port_ = 0;
  pid_t process_ = 0;
  int output_ = -1;
};

/// A test with one server for all tests of the process that do not end it.
class ServedTest : public testing::Test {
 protected:
  static ServedDatabase& Shared() {
    static ServedDatabase database;
    return database;
  }
};

/// Serves a database in this process, for as long as this object lives.
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

  /// For OpenConnection.
  [[nodiscard]] std::string odbc() const { return OdbcString(server_.address().port); }

 private:
  static tds::Service MakeService(const std::string& database_string) {
    const TemporaryFolder folder;
    tds::AddUser(folder.file("users"), "ann", "s3cret", 10);
    tds::Service service(TestHost());
    service.database_string = database_string;
    service.users = tds::Users::Read(folder.file("users"));
    return service;
  }

  tds::Server server_;
  std::thread thread_;
};

}  // namespace tessarlorn
