#include "platform/packed_rows.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace tessarlorn {
namespace {

/// The first byte of a cell. Above these, 0x40 + length begins a text of up to 63 bytes and 0x80 + value is a whole
/// number of up to 127.
enum class Tag : std::uint8_t {
  kNull,
  kInteger,   // zigzag varint
  kDouble,    // 8 bytes
  kDecimal,   // scale, sign, number of limbs, limbs
  kScaled,    // zigzag varint, in units of the field's scale
  kDateTime,  // zigzag varint, milliseconds
  kText,      // varint length, bytes
  kBytes,     // varint length, bytes
};
constexpr std::uint8_t kShortText = 0x40;
constexpr std::size_t kShortTextSize = 0x40;
constexpr std::uint8_t kSmallInteger = 0x80;
constexpr std::int64_t kSmallIntegers = 0x80;

std::uint64_t ZigZag(std::int64_t value) {
  return (static_cast<std::uint64_t>(value) << 1) ^ (value < 0 ? ~std::uint64_t{0} : 0);
}
std::int64_t UnZigZag(std::uint64_t value) {
  return static_cast<std::int64_t>((value >> 1) ^ (std::uint64_t{0} - (value & 1)));
}

std::size_t VarintSize(std::uint64_t value) {
  std::size_t size = 1;
  for (; value >= 0x80; value >>= 7) ++size;
  return size;
}
std::uint8_t* PutVarint(std::uint8_t* out, std::uint64_t value) {
  for (; value >= 0x80; value >>= 7) *out++ = static_cast<std::uint8_t>(value | 0x80);
  *out++ = static_cast<std::uint8_t>(value);
  return out;
}
std::uint64_t TakeVarint(const std::uint8_t*& in) {
  std::uint64_t value = 0;
  for (int shift = 0;; shift += 7) {
    const std::uint8_t byte = *in++;
    value |= std::uint64_t{byte & 0x7FU} << shift;
    if (byte < 0x80) return value;
  }
}

Variant IntegerVariant(std::int64_t value, const Field& field) {
  switch (field.type) {
    case FieldType::kBit:
      return value != 0;
    case FieldType::kTinyInt:
    case FieldType::kSmallInt:
      return static_cast<std::int16_t>(value);
    case FieldType::kReal:
    case FieldType::kFloat:
      return static_cast<double>(value);
    case FieldType::kDecimal:
    case FieldType::kMoney:
      return Decimal(value).Rescale(field.scale).value_or(Decimal(value));
    default:
      return value;
  }
}

std::string_view TextAt(const std::uint8_t* in, std::size_t size) { return {reinterpret_cast<const char*>(in), size}; }

Decimal DecimalAt(const std::uint8_t* in) {
  Decimal::Limbs limbs{};
  std::memcpy(limbs.data(), in + 3, in[2] * sizeof(std::uint32_t));
  return Decimal::FromLimbs(limbs, in[0], in[1] != 0).value_or(Decimal());
}

}  // namespace

const std::uint8_t* PackedRows::Skip(const std::uint8_t* in) {
  const std::uint8_t first = *in++;
  if (first >= kSmallInteger) return in;
  if (first >= kShortText) return in + (first - kShortText);
  switch (static_cast<Tag>(first)) {
    case Tag::kNull:
      return in;
    case Tag::kInteger:
    case Tag::kScaled:
    case Tag::kDateTime:
      while (*in++ >= 0x80) {
      }
      return in;
    case Tag::kDouble:
      return in + sizeof(double);
    case Tag::kDecimal:
      return in + 3 + in[2] * sizeof(std::uint32_t);
    case Tag::kText:
    case Tag::kBytes: {
      const std::uint64_t size = TakeVarint(in);
      return in + size;
    }
  }
  return in;
}

Variant PackedRows::Value(const std::uint8_t* in, const Field& field) {
  const std::uint8_t first = *in++;
  if (first >= kSmallInteger) return IntegerVariant(first - kSmallInteger, field);
  if (first >= kShortText) return TextAt(in, static_cast<std::size_t>(first - kShortText));
  switch (static_cast<Tag>(first)) {
    case Tag::kNull:
      return Null{};
    case Tag::kInteger:
      return IntegerVariant(UnZigZag(TakeVarint(in)), field);
    case Tag::kDouble: {
      double value = 0;
      std::memcpy(&value, in, sizeof value);
      return value;
    }
    case Tag::kDecimal:
      return DecimalAt(in);
    case Tag::kScaled:
      return Decimal::FromScaled(UnZigZag(TakeVarint(in)), field.scale);
    case Tag::kDateTime:
      return DateTime(UnZigZag(TakeVarint(in)));
    case Tag::kText: {
      const auto size = static_cast<std::size_t>(TakeVarint(in));
      return TextAt(in, size);
    }
    case Tag::kBytes: {
      const auto size = static_cast<std::size_t>(TakeVarint(in));
      return Bytes(in, in + size);
    }
  }
  return {};
}

std::optional<std::string_view> PackedRows::Text(const std::uint8_t* in) {
  const std::uint8_t first = *in++;
  if (first >= kShortText && first < kSmallInteger) return TextAt(in, static_cast<std::size_t>(first - kShortText));
  if (first != static_cast<std::uint8_t>(Tag::kText)) return std::nullopt;
  const auto size = static_cast<std::size_t>(TakeVarint(in));
  return TextAt(in, size);
}

bool PackedRows::IsNull(const std::uint8_t* in) { return *in == static_cast<std::uint8_t>(Tag::kNull); }

std::size_t PackedRows::bytes() const noexcept {
  return std::accumulate(chunks_.begin(), chunks_.end(), std::size_t{0},
                         [](std::size_t sum, const Chunk& chunk) { return sum + chunk.used; });
}

std::size_t PackedRows::memory() const noexcept {
  std::size_t total = starts_.capacity() * sizeof(starts_[0]);
  for (const Chunk& chunk : chunks_) total += chunk.capacity;
  return total;
}

/// Room for `size` more bytes of the begun row. A row never spans chunks: when its chunk is full, what there is of it
/// moves to the next one.
std::uint8_t* PackedRows::Grow(std::size_t size) {
  if (chunks_.empty() || chunks_.back().capacity - chunks_.back().used < size) {
    constexpr std::size_t kFirstChunkSize = 4096;
    std::size_t begun = 0;
    std::size_t capacity = kFirstChunkSize;
    if (!chunks_.empty()) {
      Chunk& full = chunks_.back();
      begun = static_cast<std::size_t>(full.data.get() + full.used - starts_.back());
      capacity = std::min(2 * full.capacity, kChunkSize);
    }
    Chunk next;
    next.capacity = std::max(capacity, 2 * (begun + size));
    next.data = std::make_unique_for_overwrite<std::uint8_t[]>(next.capacity);
    next.used = begun;
    if (begun > 0) {
      std::memcpy(next.data.get(), starts_.back(), begun);
      chunks_.back().used -= begun;
      if (chunks_.back().used == 0) chunks_.pop_back();
    }
    if (!starts_.empty()) starts_.back() = next.data.get();
    chunks_.push_back(std::move(next));
  }
  Chunk& chunk = chunks_.back();
  std::uint8_t* out = chunk.data.get() + chunk.used;
  chunk.used += size;
  return out;
}

void PackedRows::BeginRow() {
  // Asks for one byte, so that an empty row has a place of its own as well.
  starts_.push_back(nullptr);
  if (chunks_.empty() || chunks_.back().used == chunks_.back().capacity) {
    if (!chunks_.empty()) starts_.back() = chunks_.back().data.get() + chunks_.back().used;
    Grow(1);
    --chunks_.back().used;
  }
  starts_.back() = chunks_.back().data.get() + chunks_.back().used;
}

void PackedRows::AppendNull() { *Grow(1) = static_cast<std::uint8_t>(Tag::kNull); }

void PackedRows::AppendInteger(std::int64_t value) {
  if (value >= 0 && value < kSmallIntegers) {
    *Grow(1) = static_cast<std::uint8_t>(kSmallInteger + value);
    return;
  }
  const std::uint64_t coded = ZigZag(value);
  std::uint8_t* out = Grow(1 + VarintSize(coded));
  *out = static_cast<std::uint8_t>(Tag::kInteger);
  PutVarint(out + 1, coded);
}

void PackedRows::AppendDouble(double value) {
  std::uint8_t* out = Grow(1 + sizeof value);
  *out = static_cast<std::uint8_t>(Tag::kDouble);
  std::memcpy(out + 1, &value, sizeof value);
}

void PackedRows::AppendDecimal(const Decimal& value) {
  std::size_t limbs = value.limbs().size();
  while (limbs > 0 && value.limbs()[limbs - 1] == 0) --limbs;
  std::uint8_t* out = Grow(4 + limbs * sizeof(std::uint32_t));
  *out++ = static_cast<std::uint8_t>(Tag::kDecimal);
  *out++ = static_cast<std::uint8_t>(value.scale());
  *out++ = value.negative() ? 1 : 0;
  *out++ = static_cast<std::uint8_t>(limbs);
  std::memcpy(out, value.limbs().data(), limbs * sizeof(std::uint32_t));
}

void PackedRows::AppendScaled(std::int64_t coefficient) {
  const std::uint64_t coded = ZigZag(coefficient);
  std::uint8_t* out = Grow(1 + VarintSize(coded));
  *out = static_cast<std::uint8_t>(Tag::kScaled);
  PutVarint(out + 1, coded);
}

void PackedRows::AppendDateTime(DateTime value) {
  const std::uint64_t coded = ZigZag(value.milliseconds());
  std::uint8_t* out = Grow(1 + VarintSize(coded));
  *out = static_cast<std::uint8_t>(Tag::kDateTime);
  PutVarint(out + 1, coded);
}

void PackedRows::AppendText(std::string_view text) {
  if (text.size() < kShortTextSize) {
    std::uint8_t* out = Grow(1 + text.size());
    *out = static_cast<std::uint8_t>(kShortText + text.size());
    if (!text.empty()) std::memcpy(out + 1, text.data(), text.size());
    return;
  }
  std::uint8_t* out = Grow(1 + VarintSize(text.size()) + text.size());
  *out = static_cast<std::uint8_t>(Tag::kText);
  std::memcpy(PutVarint(out + 1, text.size()), text.data(), text.size());
}

void PackedRows::AppendBytes(const void* data, std::size_t size) {
  std::uint8_t* out = Grow(1 + VarintSize(size) + size);
  *out = static_cast<std::uint8_t>(Tag::kBytes);
  out = PutVarint(out + 1, size);
  if (size > 0) std::memcpy(out, data, size);
}

void PackedRows::Clear() {
  starts_.clear();
  if (chunks_.empty()) return;
  // The last chunk is the largest.
  chunks_.erase(chunks_.begin(), chunks_.end() - 1);
  chunks_.back().used = 0;
}

void PackedRows::Trim() {
  starts_.shrink_to_fit();
  if (chunks_.empty()) return;
  Chunk& last = chunks_.back();
  // A copy is worth it when a quarter of the chunk is spare.
  if (last.capacity - last.used < last.capacity / 4 || last.used == 0) return;
  auto exact = std::make_unique_for_overwrite<std::uint8_t[]>(last.used);
  std::memcpy(exact.get(), last.data.get(), last.used);
  const std::uint8_t* const begin = last.data.get();
  for (std::size_t row = starts_.size(); row-- > 0;) {
    const std::uint8_t*& start = starts_[row];
    if (start < begin || start > begin + last.used) break;
    start = exact.get() + (start - begin);
  }
  last.data = std::move(exact);
  last.capacity = last.used;
}

}  // namespace tessarlorn
