// The masks of dates and times piece by piece.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tessarlorn::tsql {

struct MaskRun {
  /// One of the letters that mean something, `count` times; '\0' for text.
  char letter = '\0';
  std::size_t count = 0;
  std::string_view text;
  /// The text stands in quotes or behind a backslash.
  bool quoted = false;
};

class MaskReader {
 public:
  explicit MaskReader(std::string_view mask) : mask_(mask) {}

  /// std::nullopt at the end.
  std::optional<MaskRun> Next(std::string_view letters) {
    if (at_ >= mask_.size()) return std::nullopt;
    const char c = mask_[at_];
    const std::size_t begin = at_++;
    if (c == '\'' || c == '"') {
      const std::size_t end = std::min(mask_.find(c, at_), mask_.size());
      at_ = std::min(end + 1, mask_.size());
      return MaskRun{'\0', 0, mask_.substr(begin + 1, end - begin - 1), true};
    }
    if (c == '\\') {
      at_ = std::min(at_ + 1, mask_.size());
      return MaskRun{'\0', 0, mask_.substr(begin + 1, 1), true};
    }
    if (letters.find(c) == std::string_view::npos) return MaskRun{'\0', 0, mask_.substr(begin, 1), false};
    while (at_ < mask_.size() && mask_[at_] == c) ++at_;
    return MaskRun{c, at_ - begin, {}, false};
  }

 private:
  std::string_view mask_;
  std::size_t at_ = 0;
};

}  // namespace tessarlorn::tsql
