#include "frame/text_builder.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

thread_local bool escapes_texts = false;

/// The server takes a backslash with the line break behind it out of a text; the first backslash of two stays.
std::string KeepLineBreak(std::string text, const std::string& line_break) {
  return ReplaceAll(text, "\\" + line_break, "\\\\" + line_break + line_break);
}

/// @param behind what stands before the text between the same quotes
std::string Escaped(std::string_view text, std::string_view behind) {
  std::string escaped = ReplaceAll(text, "'", "''");
  for (const char* const line_break : {"\r\n", "\n"}) {
    const bool continued = behind.ends_with('\\') && escaped.starts_with(line_break);
    escaped = KeepLineBreak(std::move(escaped), line_break);
    if (continued) escaped = "\\" + std::string(line_break) + escaped;
  }
  return escaped;
}

}  // namespace

EscapeTexts::EscapeTexts(bool on) noexcept : before_(std::exchange(escapes_texts, on)) {}

EscapeTexts::~EscapeTexts() { escapes_texts = before_; }

std::string WithoutQuotes(std::string_view text) {
  return escapes_texts ? std::string(text) : ReplaceAll(text, "'", "");
}

Spliced::Spliced(std::string_view name, std::int32_t number) : name_(name) {
  const auto end = std::to_chars(digits_.data(), digits_.data() + digits_.size(), number).ptr;
  length_ = static_cast<std::size_t>(end - digits_.data());
}

void TextBuilder::Append(std::string_view block, std::initializer_list<Spliced> values) {
  bool quoted = false;
  for (std::size_t open = block.find('{'); open != std::string_view::npos; open = block.find('{')) {
    const std::size_t close = block.find('}', open);
    const std::string_view name = block.substr(open + 1, close - open - 1);
    const auto* const value =
        std::find_if(values.begin(), values.end(), [name](const Spliced& spliced) { return spliced.name() == name; });
    if (value == values.end()) {
      Raise(error_number::kInternalError, "Internal error: no value for {" + std::string(name) + "}");
    }
    const std::string_view before = block.substr(0, open);
    text_ += before;
    if (escapes_texts) quoted ^= std::count(before.begin(), before.end(), '\'') % 2 != 0;
    if (quoted) {
      text_ += Escaped(value->text(), text_);
    } else {
      text_ += value->text();
    }
    block.remove_prefix(close + 1);
  }
  text_ += block;
}

}  // namespace tessarlorn
