// The words of Transact-SQL, for who looks into a batch without a parser.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/text/sql_text.h"

namespace tessarlorn::odbc {

/// Walks over words and signs; comments are left out, quoted names and texts come without their quotes.
class Words {
 public:
  explicit Words(std::string_view text) : text_(text) {}

  /// The next word in lower case, a sign as one character, "'" for a text, "" at the end.
  const std::string& Next() {
    SkipBlanks();
    spelled_.clear();
    word_.clear();
    quoted_ = false;
    if (at_ == text_.size()) return word_;
    const char c = text_[at_];
    quoted_ = c == '[' || c == '"' || c == '\'';
    if (quoted_) {
      const std::size_t begin = at_ + 1;
      const std::size_t end = std::min(FindClosing(text_, begin, ClosingSign(c)).position, text_.size());
      spelled_ = Undoubled(text_.substr(begin, end - begin), ClosingSign(c));
      at_ = std::min(end + 1, text_.size());
    } else {
      const std::size_t end = std::max(SkipWord(text_, at_), at_ + 1);
      spelled_ = text_.substr(at_, end - at_);
      at_ = end;
    }
    word_ = c == '\'' ? "'" : LowerCase(spelled_);
    return word_;
  }
  [[nodiscard]] const std::string& word() const noexcept { return word_; }
  [[nodiscard]] bool quoted() const noexcept { return quoted_; }
  /// The last word as the text spells it; what a text says.
  [[nodiscard]] const std::string& spelled() const noexcept { return spelled_; }
  /// Whether the next word is that sign, which is then passed over.
  bool Skip(char sign) {
    SkipBlanks();
    if (at_ == text_.size() || text_[at_] != sign) return false;
    ++at_;
    return true;
  }

 private:
  void SkipBlanks() {
    at_ = SkipBlanksAndComments(text_, at_);
    // Behind a comment that is not closed there is nothing to read.
    if (text_.substr(at_).starts_with("/*")) at_ = text_.size();
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::string word_;
  std::string spelled_;
  bool quoted_ = false;
};

}  // namespace tessarlorn::odbc
