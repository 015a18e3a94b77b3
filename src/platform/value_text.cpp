#include "platform/value_text.h"

#include <array>
#include <charconv>

namespace tessarlorn {

std::string DateText(DateTime value, FieldType type) {
  constexpr std::size_t kDateLength = 10;
  std::string text = value.ToString(value.milliseconds() % 1000 != 0);
  if (type == FieldType::kDate) return text.substr(0, kDateLength);
  return type == FieldType::kTime ? text.substr(kDateLength + 1) : text;
}

std::string ExactText(double value) {
  std::array<char, 32> buffer;
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr};
}

}  // namespace tessarlorn
