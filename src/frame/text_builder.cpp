#include "frame/text_builder.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

thread_local bool escapes_texts = false;

}  // namespace

EscapeTexts::EscapeTexts(bool on) noexcept : before_(std::exchange(escapes_texts, on)) {}

EscapeTexts::~EscapeTexts() { escapes_texts = before_; }

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
    quoted ^= std::count(before.begin(), before.end(), '\'') % 2 != 0;
    if (quoted && escapes_texts) {
      text_ += ReplaceAll(value->text(), "'", "''");
    } else {
      text_ += value->text();
    }
    block.remove_prefix(close + 1);
  }
  text_ += block;
}

}  // namespace tessarlorn
