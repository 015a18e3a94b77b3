// Lines of the shell, and files as they lie there.
#pragma once

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>

namespace tessarlorn {

struct Outcome {
  int status = -1;
  /// What it printed.
  std::string text;
};

/// Runs a line of the shell.
inline Outcome RunLine(const std::string& line) {
  Outcome outcome;
  std::FILE* const pipe = popen(line.c_str(), "r");
  if (pipe == nullptr) return outcome;
  std::array<char, 4096> buffer{};
  for (std::size_t size = 0; (size = fread(buffer.data(), 1, buffer.size(), pipe)) > 0;) {
    outcome.text.append(buffer.data(), size);
  }
  const int status = pclose(pipe);
  outcome.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

inline std::string ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace tessarlorn
