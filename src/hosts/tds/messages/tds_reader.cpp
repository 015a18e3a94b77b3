#include "hosts/tds/messages/tds_reader.h"

#include "platform/unicode/utf16.h"

namespace tessarlorn::tds {

std::uint8_t TdsReader::Peek() const {
  if (at_end()) throw ProtocolError("a message ends too early");
  return static_cast<std::uint8_t>(bytes_[position_]);
}

std::uint64_t TdsReader::Number(std::size_t size) {
  std::uint64_t value = 0;
  const std::string_view bytes = Bytes(size);
  for (std::size_t i = size; i-- > 0;) value = (value << 8) | static_cast<std::uint8_t>(bytes[i]);
  return value;
}

std::string_view TdsReader::Bytes(std::size_t size) {
  if (size > left()) throw ProtocolError("a message ends too early");
  const std::string_view bytes = bytes_.substr(position_, size);
  position_ += size;
  return bytes;
}

std::string TdsReader::Text(std::size_t units) {
  if (units > left() / 2) throw ProtocolError("a message ends too early");
  return TextOfUtf16Bytes(Bytes(units * 2));
}

std::string TextOfUtf16Bytes(std::string_view bytes) {
  if (bytes.size() % 2 != 0) throw ProtocolError("a UTF-16 text has an odd number of bytes");
  std::u16string units;
  units.reserve(bytes.size() / 2);
  for (std::size_t i = 0; i < bytes.size(); i += 2) {
    const auto low = static_cast<std::uint8_t>(bytes[i]);
    const auto high = static_cast<std::uint8_t>(bytes[i + 1]);
    units.push_back(static_cast<char16_t>(low | (high << 8)));
  }
  return FromUtf16(units);
}

}  // namespace tessarlorn::tds
