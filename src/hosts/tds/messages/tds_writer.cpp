#include "hosts/tds/messages/tds_writer.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"

namespace tessarlorn::tds {
namespace {

constexpr std::uint8_t kLargestInfoSeverity = 10;
/// The longest text of an error that servers send.
constexpr std::size_t kLongestMessage = 4000;

}  // namespace

ServerMessage ToMessage(std::string_view text, const NativeError& about) {
  const auto byte = [](int number) { return static_cast<std::uint8_t>(std::clamp(number, 0, 255)); };
  return {about.number,         byte(about.state),
          byte(about.severity), static_cast<std::uint32_t>(std::max(about.line, 1)),
          std::string(text),    about.procedure};
}

void TdsWriter::Number(std::uint64_t value, std::size_t size) {
  std::array<char, 8> bytes{};
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>((value >> (8 * i)) & 0xff);
  bytes_.append(bytes.data(), size);
}

void TdsWriter::SetU16(std::size_t position, std::uint16_t value) {
  bytes_[position] = static_cast<char>(value & 0xff);
  bytes_[position + 1] = static_cast<char>(value >> 8);
}

void TdsWriter::SetU32(std::size_t position, std::uint32_t value) {
  SetU16(position, static_cast<std::uint16_t>(value & 0xffff));
  SetU16(position + 2, static_cast<std::uint16_t>(value >> 16));
}

std::size_t TdsWriter::Text(std::string_view text) {
  const std::size_t before = bytes_.size();
  // No text takes more units than it has bytes.
  bytes_.resize(before + text.size() * 2);
  char* out = bytes_.data() + before;
  const auto put = [&out](std::uint32_t unit) {
    *out++ = static_cast<char>(unit & 0xff);
    *out++ = static_cast<char>(unit >> 8);
  };
  for (std::size_t i = 0; i < text.size();) {
    if (static_cast<unsigned char>(text[i]) < 0x80) {
      put(static_cast<unsigned char>(text[i++]));
      continue;
    }
    const char32_t character = NextCharacter(text, i);
    if (character > 0xffff) {
      put(0xd7c0 + (character >> 10));
      put(0xdc00 + (character & 0x3ff));
    } else {
      put(character);
    }
  }
  bytes_.resize(static_cast<std::size_t>(out - bytes_.data()));
  return bytes_.size() - before;
}

void TdsWriter::ShortText(std::string_view text) {
  const std::size_t start = bytes_.size();
  U8(0);
  const std::size_t units = std::min<std::size_t>(Text(text) / 2, 255);
  CutTo(start + 1 + units * 2);
  SetU8(start, static_cast<std::uint8_t>(units));
}

void TdsWriter::LongText(std::string_view text, std::size_t most) {
  const std::size_t start = bytes_.size();
  U16(0);
  const std::size_t units = std::min(Text(text) / 2, most);
  CutTo(start + 2 + units * 2);
  SetU16(start, static_cast<std::uint16_t>(units));
}

void TdsWriter::Put(const Done& done) {
  Put(done.token);
  U16(done.status);
  U16(done.command);
  Number(done.rows, version_.is_72() ? 8 : 4);
}

void TdsWriter::Put(const ServerMessage& message) {
  Put(message.severity > kLargestInfoSeverity ? Token::kError : Token::kInfo);
  const std::size_t start = bytes_.size();
  U16(0);
  U32(static_cast<std::uint32_t>(message.number));
  U8(message.state);
  U8(message.severity);
  LongText(message.text, kLongestMessage);
  ShortText(kServerName);
  ShortText(message.procedure);
  Number(message.line, version_.is_72() ? 4 : 2);
  SetU16(start, static_cast<std::uint16_t>(bytes_.size() - start - 2));
}

void TdsWriter::PutEnvironment(Environment kind, std::string_view now, std::string_view before) {
  Put(Token::kEnvironmentChange);
  const std::size_t start = bytes_.size();
  U16(0);
  U8(static_cast<std::uint8_t>(kind));
  ShortText(now);
  ShortText(before);
  SetU16(start, static_cast<std::uint16_t>(bytes_.size() - start - 2));
}

void TdsWriter::PutEnvironmentBytes(Environment kind, std::string_view now, std::string_view before) {
  Put(Token::kEnvironmentChange);
  U16(static_cast<std::uint16_t>(3 + now.size() + before.size()));
  U8(static_cast<std::uint8_t>(kind));
  U8(static_cast<std::uint8_t>(now.size()));
  Bytes(now);
  U8(static_cast<std::uint8_t>(before.size()));
  Bytes(before);
}

}  // namespace tessarlorn::tds
