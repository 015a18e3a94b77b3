// The rows of a recordset: their cells one behind the other, in as few bytes as their values need.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "tessarlorn/recordset.h"

namespace tessarlorn {

/// A cell is named by the place of its first byte. Places hold until rows are added or taken away.
class PackedRows {
 public:
  [[nodiscard]] std::size_t count() const noexcept { return starts_.size(); }
  /// The first cell of a row.
  [[nodiscard]] const std::uint8_t* row(std::size_t number) const { return starts_[number]; }
  /// The cell behind this one.
  static const std::uint8_t* Skip(const std::uint8_t* cell);
  static Variant Value(const std::uint8_t* cell, const Field& field);
  /// Nothing for null and for what is no text.
  static std::optional<std::string_view> Text(const std::uint8_t* cell);
  static bool IsNull(const std::uint8_t* cell);

  /// What all cells take.
  [[nodiscard]] std::size_t bytes() const noexcept;
  /// The same with spare room.
  [[nodiscard]] std::size_t memory() const noexcept;

  void BeginRow();
  void AppendNull();
  void AppendInteger(std::int64_t value);
  void AppendDouble(double value);
  void AppendDecimal(const Decimal& value);
  void AppendScaled(std::int64_t coefficient);
  void AppendDateTime(DateTime value);
  void AppendText(std::string_view text);
  void AppendBytes(const void* data, std::size_t size);
  /// Keeps room for as many more.
  void Clear();
  /// Gives back spare room.
  void Trim();

 private:
  std::uint8_t* Grow(std::size_t size);

  static constexpr std::size_t kChunkSize = std::size_t{1} << 20;
  struct Chunk {
    std::unique_ptr<std::uint8_t[]> data;
    std::size_t used = 0;
    std::size_t capacity = 0;
  };
  std::vector<Chunk> chunks_;
  std::vector<const std::uint8_t*> starts_;
};

}  // namespace tessarlorn
