#include "tsql/functions/digest/digest.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace tessarlorn::tsql {
namespace {

/// The fractions of the cube roots of the first 80 primes. SHA-256 takes the upper half of the first 64.
constexpr std::array<std::uint64_t, 80> kRoots = {
    0x428a2f98d728ae22, 0x7137449123ef65cd, 0xb5c0fbcfec4d3b2f, 0xe9b5dba58189dbbc, 0x3956c25bf348b538,
    0x59f111f1b605d019, 0x923f82a4af194f9b, 0xab1c5ed5da6d8118, 0xd807aa98a3030242, 0x12835b0145706fbe,
    0x243185be4ee4b28c, 0x550c7dc3d5ffb4e2, 0x72be5d74f27b896f, 0x80deb1fe3b1696b1, 0x9bdc06a725c71235,
    0xc19bf174cf692694, 0xe49b69c19ef14ad2, 0xefbe4786384f25e3, 0x0fc19dc68b8cd5b5, 0x240ca1cc77ac9c65,
    0x2de92c6f592b0275, 0x4a7484aa6ea6e483, 0x5cb0a9dcbd41fbd4, 0x76f988da831153b5, 0x983e5152ee66dfab,
    0xa831c66d2db43210, 0xb00327c898fb213f, 0xbf597fc7beef0ee4, 0xc6e00bf33da88fc2, 0xd5a79147930aa725,
    0x06ca6351e003826f, 0x142929670a0e6e70, 0x27b70a8546d22ffc, 0x2e1b21385c26c926, 0x4d2c6dfc5ac42aed,
    0x53380d139d95b3df, 0x650a73548baf63de, 0x766a0abb3c77b2a8, 0x81c2c92e47edaee6, 0x92722c851482353b,
    0xa2bfe8a14cf10364, 0xa81a664bbc423001, 0xc24b8b70d0f89791, 0xc76c51a30654be30, 0xd192e819d6ef5218,
    0xd69906245565a910, 0xf40e35855771202a, 0x106aa07032bbd1b8, 0x19a4c116b8d2d0c8, 0x1e376c085141ab53,
    0x2748774cdf8eeb99, 0x34b0bcb5e19b48a8, 0x391c0cb3c5c95a63, 0x4ed8aa4ae3418acb, 0x5b9cca4f7763e373,
    0x682e6ff3d6b2b8a3, 0x748f82ee5defb2fc, 0x78a5636f43172f60, 0x84c87814a1f0ab72, 0x8cc702081a6439ec,
    0x90befffa23631e28, 0xa4506cebde82bde9, 0xbef9a3f7b2c67915, 0xc67178f2e372532b, 0xca273eceea26619c,
    0xd186b8c721c0c207, 0xeada7dd6cde0eb1e, 0xf57d4f7fee6ed178, 0x06f067aa72176fba, 0x0a637dc5a2c898a6,
    0x113f9804bef90dae, 0x1b710b35131c471b, 0x28db77f523047d84, 0x32caab7b40c72493, 0x3c9ebe0a15c9bebc,
    0x431d67c49c100d4c, 0x4cc5d4becb3e42b6, 0x597f299cfc657e2a, 0x5fcb6fab3ad6faec, 0x6c44198c4a475817};

/// The fractions of the square roots of the first eight primes, with which SHA-2 begins.
constexpr std::array<std::uint64_t, 8> kStart = {0x6a09e667f3bcc908, 0xbb67ae8584caa73b, 0x3c6ef372fe94f82b,
                                                 0xa54ff53a5f1d36f1, 0x510e527fade682d1, 0x9b05688c2b3e6c1f,
                                                 0x1f83d9abfb41bd6b, 0x5be0cd19137e2179};

enum class ByteOrder { kBigEndian, kLittleEndian };

template <typename Word>
int ShiftOf(std::size_t byte, ByteOrder order) {
  return static_cast<int>(8 * (order == ByteOrder::kLittleEndian ? byte : sizeof(Word) - 1 - byte));
}

template <typename Word, std::size_t kSize>
std::string BytesOf(const std::array<Word, kSize>& words, ByteOrder order) {
  std::string bytes;
  for (const Word word : words) {
    for (std::size_t i = 0; i < sizeof(Word); ++i) bytes += static_cast<char>(word >> ShiftOf<Word>(i, order));
  }
  return bytes;
}

/// The bytes, a one bit, zeros, and the number of bits at the end of the last block of sixteen words.
template <typename Word>
std::string Padded(std::string_view bytes, ByteOrder order) {
  constexpr std::size_t kBlock = 16 * sizeof(Word);
  constexpr std::size_t kLengthSize = 2 * sizeof(Word);
  std::string padded(bytes);
  padded += '\x80';
  while (padded.size() % kBlock != kBlock - kLengthSize) padded += '\0';
  if (kLengthSize > sizeof(std::uint64_t)) padded.append(kLengthSize - sizeof(std::uint64_t), '\0');
  return padded + BytesOf(std::array{std::uint64_t{bytes.size()} * 8}, order);
}

/// Calls `mix(state, words)` with each block of the padded bytes.
template <typename Word, std::size_t kSize, typename Mix>
std::string Digest(std::string_view bytes, std::array<Word, kSize> state, ByteOrder order, Mix&& mix) {
  const std::string padded = Padded<Word>(bytes, order);
  for (std::size_t at = 0; at < padded.size();) {
    std::array<Word, 16> words{};
    for (Word& word : words) {
      for (std::size_t i = 0; i < sizeof(Word); ++i) {
        word |= static_cast<Word>(static_cast<unsigned char>(padded[at++])) << ShiftOf<Word>(i, order);
      }
    }
    std::array<Word, kSize> mixed = state;
    mix(mixed, words);
    for (std::size_t i = 0; i < kSize; ++i) state[i] += mixed[i];
  }
  return BytesOf(state, order);
}

/// By how many bits SHA-2 turns and shifts its words.
struct Turns {
  std::array<int, 3> choice;
  std::array<int, 3> majority;
  std::array<int, 3> near;  // the last one shifts
  std::array<int, 3> far;   // the last one shifts
};

template <typename Word>
Word Turned(Word word, const std::array<int, 3>& by) {
  return std::rotr(word, by[0]) ^ std::rotr(word, by[1]) ^ std::rotr(word, by[2]);
}

template <typename Word>
Word Shifted(Word word, const std::array<int, 3>& by) {
  return std::rotr(word, by[0]) ^ std::rotr(word, by[1]) ^ (word >> by[2]);
}

template <typename Word, std::size_t kRounds>
std::string Sha2(std::string_view bytes, const Turns& turns) {
  constexpr int kDropped = 64 - 8 * static_cast<int>(sizeof(Word));
  std::array<Word, 8> start{};
  std::transform(kStart.begin(), kStart.end(), start.begin(),
                 [](std::uint64_t word) { return static_cast<Word>(word >> kDropped); });
  return Digest(bytes, start, ByteOrder::kBigEndian, [&](std::array<Word, 8>& s, const std::array<Word, 16>& words) {
    std::array<Word, kRounds> schedule{};
    std::copy(words.begin(), words.end(), schedule.begin());
    for (std::size_t i = 16; i < kRounds; ++i) {
      schedule[i] = Shifted(schedule[i - 2], turns.far) + schedule[i - 7] + Shifted(schedule[i - 15], turns.near) +
                    schedule[i - 16];
    }
    for (std::size_t i = 0; i < kRounds; ++i) {
      const Word choice = (s[4] & s[5]) ^ (~s[4] & s[6]);
      const Word majority = (s[0] & s[1]) ^ (s[0] & s[2]) ^ (s[1] & s[2]);
      const Word first =
          s[7] + Turned(s[4], turns.choice) + choice + static_cast<Word>(kRoots[i] >> kDropped) + schedule[i];
      std::rotate(s.begin(), s.end() - 1, s.end());
      s[4] += first;
      s[0] = first + Turned(s[1], turns.majority) + majority;
    }
  });
}

using Words32 = std::array<std::uint32_t, 16>;

}  // namespace

std::string Md5(std::string_view bytes) {
  using State = std::array<std::uint32_t, 4>;
  constexpr std::array<std::array<int, 4>, 4> kTurns = {
      {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}}};
  constexpr State kBegin = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};
  return Digest(bytes, kBegin, ByteOrder::kLittleEndian, [&](State& s, const Words32& words) {
    for (std::uint32_t i = 0; i < 64; ++i) {
      const std::uint32_t round = i / 16;
      const std::uint32_t mixed = round == 0   ? (s[1] & s[2]) | (~s[1] & s[3])
                                  : round == 1 ? (s[3] & s[1]) | (~s[3] & s[2])
                                  : round == 2 ? s[1] ^ s[2] ^ s[3]
                                               : s[2] ^ (s[1] | ~s[3]);
      constexpr std::array<std::uint32_t, 4> kStride = {1, 5, 3, 7};
      constexpr std::array<std::uint32_t, 4> kOffset = {0, 1, 5, 0};
      const auto sine = static_cast<std::uint32_t>(std::floor(std::fabs(std::sin(i + 1.0)) * 4294967296.0));
      const std::uint32_t sum = s[0] + mixed + sine + words[(kStride[round] * i + kOffset[round]) % 16];
      const std::uint32_t next = s[1] + std::rotl(sum, kTurns[round][i % 4]);
      s = {s[3], next, s[1], s[2]};
    }
  });
}

std::string Sha1(std::string_view bytes) {
  using State = std::array<std::uint32_t, 5>;
  constexpr State kBegin = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476, 0xc3d2e1f0};
  constexpr std::array<std::uint32_t, 4> kAdded = {0x5a827999, 0x6ed9eba1, 0x8f1bbcdc, 0xca62c1d6};
  return Digest(bytes, kBegin, ByteOrder::kBigEndian, [&](State& s, const Words32& words) {
    std::array<std::uint32_t, 80> schedule{};
    std::copy(words.begin(), words.end(), schedule.begin());
    for (std::size_t i = 16; i < 80; ++i) {
      schedule[i] = std::rotl(schedule[i - 3] ^ schedule[i - 8] ^ schedule[i - 14] ^ schedule[i - 16], 1);
    }
    for (std::size_t i = 0; i < 80; ++i) {
      const std::size_t round = i / 20;
      const std::uint32_t mixed = round == 0   ? (s[1] & s[2]) | (~s[1] & s[3])
                                  : round == 2 ? (s[1] & s[2]) | (s[1] & s[3]) | (s[2] & s[3])
                                               : s[1] ^ s[2] ^ s[3];
      const std::uint32_t next = std::rotl(s[0], 5) + mixed + s[4] + kAdded[round] + schedule[i];
      s = {next, s[0], std::rotl(s[1], 30), s[2], s[3]};
    }
  });
}

std::string Sha256(std::string_view bytes) {
  return Sha2<std::uint32_t, 64>(
      bytes, {.choice = {6, 11, 25}, .majority = {2, 13, 22}, .near = {7, 18, 3}, .far = {17, 19, 10}});
}

std::string Sha512(std::string_view bytes) {
  return Sha2<std::uint64_t, 80>(
      bytes, {.choice = {14, 18, 41}, .majority = {28, 34, 39}, .near = {1, 8, 7}, .far = {19, 61, 6}});
}

}  // namespace tessarlorn::tsql
