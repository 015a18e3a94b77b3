// Reads numbers, bytes and texts out of a message, and never behind its end.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "hosts/tds/transport/protocol.h"

namespace tessarlorn::tds {

/// Every function raises ProtocolError when the message ends before what it reads. Numbers are little-endian. What is
/// answered as a view lives as long as the bytes given.
class TdsReader {
 public:
  explicit TdsReader(std::string_view bytes) : bytes_(bytes) {}

  [[nodiscard]] std::size_t left() const noexcept { return bytes_.size() - position_; }
  [[nodiscard]] bool at_end() const noexcept { return left() == 0; }
  [[nodiscard]] std::uint8_t Peek() const;

  std::uint8_t U8() { return static_cast<std::uint8_t>(Number(1)); }
  std::uint16_t U16() { return static_cast<std::uint16_t>(Number(2)); }
  std::uint32_t U32() { return static_cast<std::uint32_t>(Number(4)); }
  std::uint64_t U64() { return Number(8); }
  /// An unsigned number of 1 to 8 bytes.
  std::uint64_t Number(std::size_t size);
  std::string_view Bytes(std::size_t size);
  /// UTF-16LE of so many units, as UTF-8.
  std::string Text(std::size_t units);
  /// A text behind its count of units in one byte.
  std::string ShortText() { return Text(U8()); }
  void Skip(std::size_t size) { Bytes(size); }

 private:
  std::string_view bytes_;
  std::size_t position_ = 0;
};

/// UTF-16LE as UTF-8. Raises ProtocolError for an odd number of bytes; lone surrogates become U+FFFD.
std::string TextOfUtf16Bytes(std::string_view bytes);

}  // namespace tessarlorn::tds
