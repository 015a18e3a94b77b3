// Reads texts of dates and times from the left.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace tessarlorn {

class DateScanner {
 public:
  explicit DateScanner(std::string_view text) : rest_(text) {}

  [[nodiscard]] bool done() const { return rest_.empty(); }
  [[nodiscard]] char peek() const { return rest_.empty() ? '\0' : rest_.front(); }
  bool Take(char c) {
    if (peek() != c) return false;
    rest_.remove_prefix(1);
    return true;
  }
  void SkipBlanks() {
    while (Take(' ') || Take('\t')) {
    }
  }
  /// How many digits, or letters, come next.
  [[nodiscard]] std::size_t Digits() const {
    return Run([](char c) { return c >= '0' && c <= '9'; });
  }
  [[nodiscard]] std::size_t Letters() const {
    return Run([](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); });
  }
  /// @pre `digits` digits stand here, nine at most
  int Number(std::size_t digits) {
    int value = 0;
    for (; digits > 0; --digits, rest_.remove_prefix(1)) value = value * 10 + (rest_.front() - '0');
    return value;
  }
  /// The number that stands here, when it has at most `most` digits.
  bool TakeNumber(int& value, std::size_t most) {
    const std::size_t digits = Digits();
    if (digits == 0 || digits > most) return false;
    value = Number(digits);
    return true;
  }
  std::string_view Word() {
    const std::string_view word = rest_.substr(0, Letters());
    rest_.remove_prefix(word.size());
    return word;
  }
  [[nodiscard]] DateScanner Behind(std::size_t characters) const { return DateScanner(rest_.substr(characters)); }

 private:
  template <typename Belongs>
  [[nodiscard]] std::size_t Run(Belongs belongs) const {
    return static_cast<std::size_t>(std::find_if_not(rest_.begin(), rest_.end(), belongs) - rest_.begin());
  }
  std::string_view rest_;
};

}  // namespace tessarlorn
