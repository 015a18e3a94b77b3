// The built command serving a database with sample orders, as a process of its own.
#pragma once

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "hosts/tds/users.h"

namespace tessarlorn::tds {

struct Outcome {
  int status = -1;
  /// Standard output and standard error.
  std::string text;
};

/// Runs a line of the shell.
inline Outcome RunLine(const std::string& line) {
  Outcome outcome;
  std::FILE* const pipe = popen(("{ " + line + "\n} 2>&1").c_str(), "r");
  if (pipe == nullptr) return outcome;
  std::array<char, 4096> buffer{};
  for (std::size_t size = 0; (size = fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
    outcome.text.append(buffer.data(), size);
  }
  const int status = pclose(pipe);
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

/// The words that give the server a certificate, one for the whole run of the tests.
inline std::vector<std::string> CertificateOptions() {
  static const std::string name = [] {
    std::string file = testing::TempDir() + "serve_" + std::to_string(getpid());
    const Outcome made = RunLine("openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj /CN=localhost -keyout '" +
                                 file + ".key' -out '" + file + ".crt'");
    EXPECT_EQ(made.status, 0) << made.text;
    return file;
  }();
  return {"--certificate", name + ".crt", "--key", name + ".key"};
}

/// Listens on a free port of this machine for user ann, password s3cret. Ends with the object.
class ServerProcess {
 public:
  /// @param database its string; that of a file with sample orders when it is ""
  explicit ServerProcess(const std::vector<std::string>& options = {}, const std::string& database = "") {
    std::string name = (std::filesystem::temp_directory_path() / "serve_test_XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) return;
    folder_ = name;
    if (database.empty()) {
      const std::string command = "TESSARLORN_DSN=Embedded='" + file("orders.db") + "' '" TESSARLORN_COMMAND "' ";
      const Outcome made = RunLine(command + "init && " + command + "seed --orders 60");
      EXPECT_EQ(made.status, 0) << made.text;
    }
    AddUser(file("users"), "ann", "s3cret", 10);
    Start(options, database.empty() ? "Embedded=" + file("orders.db") : database);
  }
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;
  ~ServerProcess() {
    if (process_ > 0) Stop(SIGTERM);
    std::filesystem::remove_all(folder_);
  }

  [[nodiscard]] int port() const { return port_; }
  [[nodiscard]] pid_t process() const { return process_; }
  [[nodiscard]] std::string file(const std::string& name) const { return (folder_ / name).string(); }
  [[nodiscard]] std::string Log() const {
    std::ifstream in(file("log"));
    return {std::istreambuf_iterator<char>(in), {}};
  }
  /// Waits until the log has the text, ten seconds at most.
  [[nodiscard]] bool WaitForLog(const std::string& text) const {
    for (int i = 0; i < 1000; ++i) {
      if (Log().find(text) != std::string::npos) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }
  /// Answers the exit status.
  int Stop(int signal) {
    kill(process_, signal);
    int status = 0;
    waitpid(process_, &status, 0);
    process_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  void Start(const std::vector<std::string>& options, const std::string& database) {
    std::vector<std::string> words = {TESSARLORN_COMMAND, "serve",   "--tds",       "127.0.0.1:0", "--dsn",
                                      database,           "--users", file("users"), "--verbose"};
    words.insert(words.end(), options.begin(), options.end());
    process_ = fork();
    if (process_ == 0) {
      std::vector<char*> arguments;
      arguments.reserve(words.size() + 1);
      for (std::string& word : words) arguments.push_back(word.data());
      arguments.push_back(nullptr);
      if (std::freopen(file("out").c_str(), "w", stdout) == nullptr) _exit(127);
      if (std::freopen(file("log").c_str(), "w", stderr) == nullptr) _exit(127);
      execv(arguments[0], arguments.data());
      _exit(127);
    }
    for (int i = 0; i < 1000 && port_ == 0; ++i) {
      std::ifstream in(file("out"));
      std::string line;
      if (std::getline(in, line) && !in.eof()) port_ = std::stoi(line.substr(line.rfind(':') + 1));
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_NE(port_, 0) << Log();
  }

  std::filesystem::path folder_;
  pid_t process_ = 0;
  int port_ = 0;
};

}  // namespace tessarlorn::tds
