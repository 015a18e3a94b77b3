// An embedded database served over TDS by a process of its own, and the ODBC string that leads to it.
#pragma once

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <glob.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "support/temporary_folder.h"

namespace tessarlorn {

/// The ODBC driver of FreeTDS, "" when it is not installed.
inline std::string FreeTdsDriver() {
  glob_t found{};
  std::string path;
  if (glob("/usr/lib/*/odbc/libtdsodbc.so", 0, nullptr, &found) == 0) path = found.gl_pathv[0];
  globfree(&found);
  return path;
}

/// The server runs as long as this object lives. Its user is ann.
class ServedDatabase {
 public:
  static constexpr const char* kPassword = "open sesame; please";

  /// @param database of the embedded driver; "" for a file of its own
  explicit ServedDatabase(const std::string& database = "")
      : database_(database.empty() ? "Embedded=" + folder_.file("served.db") + ";Synchronous=Normal" : database) {
    AddUser("ann", kPassword);
    Start();
  }
  ServedDatabase(const ServedDatabase&) = delete;
  ServedDatabase& operator=(const ServedDatabase&) = delete;
  ~ServedDatabase() { Stop(SIGTERM); }

  /// The server knows the user from its next start on.
  void AddUser(const std::string& name, const std::string& password) const {
    const Child writer = Spawn({"serve", "--add-user", name, "--users", Users()});
    const std::string line = password + "\n";
    if (write(writer.input, line.data(), line.size()) < 0) throw std::runtime_error("no user could be added");
    close(writer.input);
    close(writer.output);
    waitpid(writer.process, nullptr, 0);
  }
  /// On the port that it had, when it ran before.
  void Start() {
    const Child child =
        Spawn({"serve", "--tds", "127.0.0.1:" + std::to_string(port_), "--users", Users(), "--dsn", database_});
    close(child.input);
    process_ = child.process;
    output_ = child.output;
    std::string line;
    for (char c = 0; read(output_, &c, 1) == 1 && c != '\n';) line += c;
    const std::size_t colon = line.rfind(':');
    if (!line.starts_with("listening on ") || colon == std::string::npos) {
      throw std::runtime_error("the server said: " + line);
    }
    port_ = std::stoi(line.substr(colon + 1));
  }
  /// Ends the server with a signal and waits until it is gone.
  void Stop(int signal = SIGKILL) {
    if (process_ <= 0) return;
    kill(process_, signal);
    waitpid(process_, nullptr, 0);
    close(output_);
    process_ = 0;
  }

  /// For OpenConnection. @param more further pairs, as ";StatementTimeout=1"
  [[nodiscard]] std::string odbc(const std::string& more = "") const {
    return "Driver=" + FreeTdsDriver() + ";Server=127.0.0.1;Port=" + std::to_string(port_) + ";UID=ann;PWD={" +
           kPassword + "};TDS_Version=7.4;ClientCharset=UTF-8" + more;
  }
  [[nodiscard]] int port() const noexcept { return port_; }
  [[nodiscard]] pid_t process() const noexcept { return process_; }

 private:
  struct Child {
    pid_t process = 0;
    int input = 0;
    int output = 0;
  };

  [[nodiscard]] std::string Users() const { return folder_.file("users"); }

  /// The command with words, its standard input and output being pipes.
  static Child Spawn(std::vector<std::string> words) {
    std::array<int, 2> input{};
    std::array<int, 2> output{};
    if (pipe2(input.data(), O_CLOEXEC) != 0 || pipe2(output.data(), O_CLOEXEC) != 0) {
      throw std::runtime_error("no pipe");
    }
    words.insert(words.begin(), TESSARLORN_COMMAND);
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const pid_t process = fork();
    if (process == 0) {
      dup2(input[0], STDIN_FILENO);
      dup2(output[1], STDOUT_FILENO);
      const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
      dup2(nowhere, STDERR_FILENO);
      execv(arguments[0], arguments.data());
      _exit(127);
    }
    close(input[0]);
    close(output[1]);
    return {process, input[1], output[0]};
  }

  TemporaryFolder folder_;
  std::string database_;
  int port_ = 0;
  pid_t process_ = 0;
  int output_ = -1;
};

}  // namespace tessarlorn
