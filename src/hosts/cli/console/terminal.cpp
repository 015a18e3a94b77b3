#include "hosts/cli/console/terminal.h"

#ifdef _WIN32
#include <fcntl.h>
#include <initializer_list>
#include <io.h>
#include <windows.h>
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace tessarlorn::cli {
namespace {

#ifdef _WIN32
constexpr int kInput = 0;
#endif
constexpr int kOutput = 1;
constexpr int kError = 2;
constexpr std::size_t kUsualWidth = 80;

bool IsTerminal(int descriptor) noexcept {
#ifdef _WIN32
  return _isatty(descriptor) != 0;
#else
  return isatty(descriptor) != 0;
#endif
}

/// Answers what the console showed before, 0 when there is nothing to change.
unsigned SwitchToUtf8() noexcept {
#ifdef _WIN32
  for (const int stream : {kInput, kOutput, kError}) _setmode(stream, _O_BINARY);
  if (IsTerminal(kOutput) || IsTerminal(kError)) {
    const unsigned before = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    return before;
  }
#endif
  return 0;
}

void SwitchBack([[maybe_unused]] unsigned code_page) noexcept {
#ifdef _WIN32
  SetConsoleOutputCP(code_page);
#endif
}

}  // namespace

bool IsOutputTerminal() noexcept { return IsTerminal(kOutput); }

bool IsErrorTerminal() noexcept { return IsTerminal(kError); }

std::size_t OutputWidth() noexcept {
  if (!IsOutputTerminal()) return 0;
#ifdef _WIN32
  CONSOLE_SCREEN_BUFFER_INFO info{};
  if (GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info) != FALSE) {
    return static_cast<std::size_t>(info.srWindow.Right - info.srWindow.Left + 1);
  }
#else
  winsize size{};
  if (ioctl(kOutput, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) return size.ws_col;
#endif
  return kUsualWidth;
}

Utf8Streams::Utf8Streams() noexcept : code_page_(SwitchToUtf8()) {}

Utf8Streams::~Utf8Streams() {
  if (code_page_ != 0) SwitchBack(code_page_);
}

}  // namespace tessarlorn::cli
