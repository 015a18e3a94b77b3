// How text compares: without regard to case, trailing blanks, and the width of letters.
#pragma once

#include <atomic>
#include <cstddef>
#include <string_view>
#include <vector>

namespace tessarlorn {

/// Less than, equal to or greater than 0. Characters are compared by their lower-case code points, full-width forms as
/// the narrow ones.
int CompareText(std::string_view a, std::string_view b);

/// The character as the comparison sees it.
char32_t FoldCharacter(char32_t character);

/// A pattern of LIKE: %, _, [set], [^set] and an escape character (0 for none).
class LikePattern {
 public:
  /// @param stop ends a long search early, with any answer; null for none
  explicit LikePattern(std::string_view pattern, char32_t escape = 0, const std::atomic<bool>* stop = nullptr);
  [[nodiscard]] bool Matches(std::string_view text) const;
  /// The 1-based position, in characters, at which what follows matches; 0 when none does.
  /// @param anywhere whether it may be any position, or only the first
  [[nodiscard]] std::size_t FindIn(std::string_view text, bool anywhere) const;

 private:
  [[nodiscard]] bool MatchesFrom(const std::vector<char32_t>& subject, std::size_t begin) const;

  std::vector<char32_t> wanted_;
  char32_t escape_;
  const std::atomic<bool>* stop_;
};

}  // namespace tessarlorn
