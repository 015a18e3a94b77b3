#include "platform/unicode/collation.h"

#include <array>
#include <cstdint>
#include <vector>

#include "platform/text/text.h"

namespace tessarlorn {
namespace {

constexpr std::array<std::uint8_t, 128> kAsciiLower = [] {
  std::array<std::uint8_t, 128> table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    table[i] = static_cast<std::uint8_t>(i >= 'A' && i <= 'Z' ? i + 32 : i);
  }
  return table;
}();

std::string_view WithoutTrailingBlanks(std::string_view text) {
  std::size_t size = text.size();
  while (size > 0 && text[size - 1] == ' ') --size;
  return text.substr(0, size);
}

std::vector<char32_t> Folded(std::string_view text) {
  std::vector<char32_t> characters;
  characters.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) characters.push_back(FoldCharacter(NextCharacter(text, i)));
  return characters;
}

/// The end of the set that begins behind `[` at `position`; whether `character` is in it.
bool InSet(const std::vector<char32_t>& pattern, std::size_t& position, char32_t character) {
  bool negated = false;
  if (position < pattern.size() && pattern[position] == U'^') {
    negated = true;
    ++position;
  }
  bool found = false;
  bool first = true;
  while (position < pattern.size() && (first || pattern[position] != U']')) {
    const char32_t low = pattern[position];
    char32_t high = low;
    if (position + 2 < pattern.size() && pattern[position + 1] == U'-' && pattern[position + 2] != U']') {
      high = pattern[position + 2];
      position += 2;
    }
    if (character >= low && character <= high) found = true;
    ++position;
    first = false;
  }
  if (position < pattern.size()) ++position;
  return found != negated;
}

}  // namespace

char32_t FoldCharacter(char32_t character) {
  if (character < 128) return kAsciiLower[character];
  if (character >= 0xff01 && character <= 0xff5e) return FoldCharacter(character - 0xfee0);
  if (character == 0x3000) return U' ';
  return ToLower(character);
}

int CompareText(std::string_view a, std::string_view b) {
  std::size_t i = 0;
  const std::size_t common = a.size() < b.size() ? a.size() : b.size();
  while (i < common) {
    const auto x = static_cast<std::uint8_t>(a[i]);
    const auto y = static_cast<std::uint8_t>(b[i]);
    if (((x | y) & 0x80) != 0) break;
    if (x != y && kAsciiLower[x] != kAsciiLower[y]) break;
    ++i;
  }
  a = WithoutTrailingBlanks(a.substr(i));
  b = WithoutTrailingBlanks(b.substr(i));
  std::size_t p = 0;
  std::size_t q = 0;
  while (p < a.size() && q < b.size()) {
    const char32_t x = FoldCharacter(NextCharacter(a, p));
    const char32_t y = FoldCharacter(NextCharacter(b, q));
    if (x != y) return x < y ? -1 : 1;
  }
  if (p < a.size()) return 1;
  return q < b.size() ? -1 : 0;
}

LikePattern::LikePattern(std::string_view pattern, char32_t escape, const std::atomic<bool>* stop)
    : wanted_(Folded(pattern)), escape_(escape == 0 ? char32_t{0} : FoldCharacter(escape)), stop_(stop) {}

bool LikePattern::Matches(std::string_view text) const { return MatchesFrom(Folded(text), 0); }

std::size_t LikePattern::FindIn(std::string_view text, bool anywhere) const {
  const std::vector<char32_t> subject = Folded(text);
  for (std::size_t begin = 0; begin <= (anywhere ? subject.size() : 0); ++begin) {
    if (MatchesFrom(subject, begin)) return begin + 1;
  }
  return 0;
}

bool LikePattern::MatchesFrom(const std::vector<char32_t>& subject, std::size_t begin) const {
  // Greedy with one point of return: the last % seen.
  std::size_t s = begin;
  std::size_t p = 0;
  constexpr auto kNone = static_cast<std::size_t>(-1);
  std::size_t star = kNone;
  std::size_t star_subject = 0;
  while (true) {
    if (p < wanted_.size() && wanted_[p] == U'%' && wanted_[p] != escape_) {
      star = ++p;
      star_subject = s;
      continue;
    }
    bool matched = false;
    std::size_t next = p;
    if (s < subject.size() && p < wanted_.size()) {
      if (escape_ != 0 && wanted_[p] == escape_ && p + 1 < wanted_.size()) {
        matched = wanted_[p + 1] == subject[s];
        next = p + 2;
      } else if (wanted_[p] == U'_') {
        matched = true;
        next = p + 1;
      } else if (wanted_[p] == U'[') {
        next = p + 1;
        matched = InSet(wanted_, next, subject[s]);
      } else {
        matched = wanted_[p] == subject[s];
        next = p + 1;
      }
    }
    if (matched) {
      ++s;
      p = next;
      continue;
    }
    if (p == wanted_.size()) {
      // Blanks at the end of the text do not count.
      std::size_t rest = s;
      while (rest < subject.size() && subject[rest] == U' ') ++rest;
      if (rest == subject.size()) return true;
    }
    if (star == kNone || star_subject >= subject.size()) return false;
    if (stop_ != nullptr && stop_->load(std::memory_order_relaxed)) return false;
    p = star;
    s = ++star_subject;
  }
}

}  // namespace tessarlorn
