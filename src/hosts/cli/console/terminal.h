// What is known of the streams that the command was given: whether a person sees them, and how wide.
#pragma once

#include <cstddef>

namespace tessarlorn::cli {

bool IsOutputTerminal() noexcept;
bool IsErrorTerminal() noexcept;

/// Lets the bytes of texts through the standard streams as they are, and a console show them as UTF-8, while it lives.
class Utf8Streams {
 public:
  Utf8Streams() noexcept;
  Utf8Streams(const Utf8Streams&) = delete;
  Utf8Streams& operator=(const Utf8Streams&) = delete;
  ~Utf8Streams();

 private:
  /// What the console showed before; 0 when there is none, or nothing to change.
  unsigned code_page_ = 0;
};

/// Columns of the terminal that standard output goes to, 80 when it does not tell, 0 when it is no terminal.
std::size_t OutputWidth() noexcept;

}  // namespace tessarlorn::cli
