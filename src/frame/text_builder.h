// Building SQL text: append-only, line by line or in whole blocks with the values named where they are spliced.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace tessarlorn {

/// A raw-string block whose line ends are CR LF, made so at compile time; the line break right behind the opening
/// parenthesis is dropped.
///
///     text.Append(R"(
///     Set FIsRowClose = 1
///     )"_sql);
template <std::size_t kSize>
struct SqlBlock {
  // Not private, so that a block can be a template argument.
  std::array<char, 2 * kSize> characters{};
  std::size_t length = 0;

  // NOLINTNEXTLINE(google-explicit-constructor): literals become blocks.
  consteval SqlBlock(const char (&text)[kSize]) {
    for (std::size_t i = text[0] == '\n' ? 1 : 0; i + 1 < kSize; ++i) {
      if (text[i] == '\n') characters[length++] = '\r';
      characters[length++] = text[i];
    }
  }
};

template <SqlBlock kBlock>
consteval std::string_view operator""_sql() {
  return {kBlock.characters.data(), kBlock.length};
}

/// A value to be spliced into a block where it says `{name}`. Refers to the text, which must outlive it.
class Spliced {
 public:
  Spliced(std::string_view name, std::string_view text) : name_(name), text_(text) {}
  Spliced(std::string_view name, std::int32_t number);

  [[nodiscard]] std::string_view name() const noexcept { return name_; }
  [[nodiscard]] std::string_view text() const noexcept {
    return length_ > 0 ? std::string_view(digits_.data(), length_) : text_;
  }

 private:
  std::string_view name_;
  std::string_view text_;
  std::array<char, 12> digits_{};
  std::size_t length_ = 0;
};

/// While it lives, the single quotes of texts that this thread splices between quotes are doubled, or not. The frame
/// makes one for each call, as the session string's key Escape says; without one they are not.
class EscapeTexts {
 public:
  explicit EscapeTexts(bool on) noexcept;
  EscapeTexts(const EscapeTexts&) = delete;
  EscapeTexts& operator=(const EscapeTexts&) = delete;
  ~EscapeTexts();

 private:
  bool before_;
};

/// The text without its single quotes; as it is while EscapeTexts doubles them, so that what is stored is what was
/// given.
std::string WithoutQuotes(std::string_view text);

/// Append-only text. Values are spliced as they are: nothing is quoted or checked, and nothing is doubled but what
/// EscapeTexts asks for.
class TextBuilder {
 public:
  void Append(std::string_view text) { text_ += text; }
  /// Appends a block with the values in place of their `{name}`s. A value whose `{name}` stands between single quotes
  /// of the block (`FName = '{name}'`) is a text, to which EscapeTexts applies; any other is SQL. Every text goes this
  /// way, so that no other place has to think of quotes. Raises 51 "Internal error" for a name that no value has.
  void Append(std::string_view block, std::initializer_list<Spliced> values);
  /// Appends the pieces, which are SQL, and CR LF.
  template <typename... Pieces>
  void Line(const Pieces&... pieces) {
    (text_.append(std::string_view(pieces)), ...);
    text_ += "\r\n";
  }
  [[nodiscard]] const std::string& GetText() const noexcept { return text_; }
  [[nodiscard]] bool empty() const noexcept { return text_.empty(); }
  void Clear() noexcept { text_.clear(); }

 private:
  std::string text_;
};

}  // namespace tessarlorn
