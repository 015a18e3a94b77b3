#include "hosts/cli/console/password.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <termios.h>
#include <unistd.h>

#include "hosts/cli/console/usage_error.h"

namespace tessarlorn::cli {
namespace {

termios shown_input{};

extern "C" void ShowInputAndEnd(int signal) {
  tcsetattr(STDIN_FILENO, TCSANOW, &shown_input);
  std::_Exit(128 + signal);
}

/// While it lives, what is typed is not shown. Ctrl-C ends the process, and what is typed then is shown again.
class HiddenInput {
 public:
  HiddenInput() {
    tcgetattr(STDIN_FILENO, &shown_input);
    for (std::size_t i = 0; i < kSignals.size(); ++i) before_[i] = std::signal(kSignals[i], ShowInputAndEnd);
    termios hidden = shown_input;
    hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO);
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &hidden);
  }
  HiddenInput(const HiddenInput&) = delete;
  HiddenInput& operator=(const HiddenInput&) = delete;
  ~HiddenInput() {
    tcsetattr(STDIN_FILENO, TCSAFLUSH, &shown_input);
    for (std::size_t i = 0; i < kSignals.size(); ++i) std::signal(kSignals[i], before_[i]);
  }

 private:
  static constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};
  std::array<void (*)(int), kSignals.size()> before_{};
};

std::string ReadLine() {
  std::string line;
  std::getline(std::cin, line);
  if (line.ends_with('\r')) line.pop_back();
  return line;
}

std::string AskHidden(const std::string& question) {
  const HiddenInput hidden;
  std::cerr << question << ": " << std::flush;
  std::string line = ReadLine();
  std::cerr << '\n';
  return line;
}

}  // namespace

std::string ReadNewPassword(const std::string& user) {
  if (isatty(STDIN_FILENO) != 1) return ReadLine();
  std::string password = AskHidden("Password of " + user);
  if (AskHidden("The same again") != password) throw UsageError("the two passwords differ; nothing was changed");
  return password;
}

}  // namespace tessarlorn::cli
