// The bytes between server and client: a socket, or memory in tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "hosts/tds/transport/deadline.h"

namespace tessarlorn::tds {

class ByteStream {
 public:
  ByteStream() = default;
  ByteStream(const ByteStream&) = delete;
  ByteStream& operator=(const ByteStream&) = delete;
  virtual ~ByteStream() = default;

  /// Waits until something can be read, and adds it to `bytes`, at most `most` bytes. Answers what became of it.
  enum class Read : std::uint8_t { kSome, kEnd, kTimeOut };
  virtual Read WaitAndRead(std::string& bytes, std::size_t most, const Deadline& deadline) = 0;
  /// What can be read without waiting, added to `bytes`, at most `most` bytes. False at the end of the stream.
  virtual bool ReadSome(std::string& bytes, std::size_t most) = 0;
  /// Raises ProtocolError when the client is gone or takes nothing for too long.
  virtual void WriteAll(std::string_view bytes) = 0;
  /// For poll(); -1 when there is none.
  [[nodiscard]] virtual int descriptor() const noexcept { return -1; }
};

}  // namespace tessarlorn::tds
