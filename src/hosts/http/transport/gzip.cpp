#include "hosts/http/transport/gzip.h"

#include <array>
#include <new>
#include <zlib.h>

namespace tessarlorn::http {
namespace {

/// Fast rather than small: the text is made while it is sent.
constexpr int kLevel = 3;
/// zlib's number for gzip's own head and the largest window.
constexpr int kWindow = 15 + 16;
constexpr int kMemory = 8;

}  // namespace

struct Gzip::State {
  z_stream stream{};
};

Gzip::Gzip() : state_(std::make_unique<State>()) {
  if (deflateInit2(&state_->stream, kLevel, Z_DEFLATED, kWindow, kMemory, Z_DEFAULT_STRATEGY) != Z_OK) {
    throw std::bad_alloc();
  }
}

Gzip::~Gzip() { deflateEnd(&state_->stream); }

std::string Gzip::Run(std::string_view piece, int flush) {
  std::string packed;
  std::array<char, 16384> room;
  z_stream& stream = state_->stream;
  // zlib does not change what it reads.
  stream.next_in = static_cast<Bytef*>(static_cast<void*>(const_cast<char*>(piece.data())));
  stream.avail_in = static_cast<uInt>(piece.size());
  do {
    stream.next_out = static_cast<Bytef*>(static_cast<void*>(room.data()));
    stream.avail_out = room.size();
    deflate(&stream, flush);
    packed.append(room.data(), room.size() - stream.avail_out);
  } while (stream.avail_out == 0);
  return packed;
}

std::string Gzip::Add(std::string_view piece) { return Run(piece, Z_NO_FLUSH); }

std::string Gzip::Flush() { return Run({}, Z_SYNC_FLUSH); }

std::string Gzip::Finish() { return Run({}, Z_FINISH); }

}  // namespace tessarlorn::http
