#include "tsql/functions/row_table.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "tsql/functions/aggregate_state.h"
#include "tsql/functions/sqlite_value.h"
#include "tsql/functions/table_module.h"

namespace tessarlorn::tsql {
namespace {

// A row is the number of its values (two bytes) and the values: the index of the type, then eight bytes of a number, or
// eight bytes of a length and the text or the bytes.
constexpr int kCountSize = 2;
constexpr int kNumberSize = 8;

class PackedReader {
 public:
  explicit PackedReader(std::string_view bytes) : bytes_(bytes) {}

  [[nodiscard]] bool at_end() const noexcept { return position_ >= bytes_.size(); }
  /// The next row. Bytes that nobody packed end in a shorter one.
  std::vector<Datum> Row() {
    std::vector<Datum> row;
    for (std::uint64_t left = Number(kCountSize); left > 0 && !at_end(); --left) row.push_back(Value());
    return row;
  }

 private:
  std::uint64_t Number(int size) {
    std::uint64_t number = 0;
    for (int i = 0; i < size && !at_end(); ++i) {
      number |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes_[position_++])) << (8 * i);
    }
    return number;
  }
  std::string Text() {
    const std::uint64_t size = Number(kNumberSize);
    const std::string_view text = bytes_.substr(position_, size);
    position_ += text.size();
    return std::string(text);
  }
  Datum Value() {
    switch (Number(1)) {
      case 1:
        return static_cast<std::int64_t>(Number(kNumberSize));
      case 2:
        return std::bit_cast<double>(Number(kNumberSize));
      case 3:
        return Text();
      case 4:
        return Blob{Text()};
      default:
        return {};
    }
  }

  std::string_view bytes_;
  std::size_t position_ = 0;
};

/// The rows of one packed value.
class UnpackedRows {
 public:
  static constexpr int kColumns = static_cast<int>(kMostPackedColumns);
  static constexpr int kUsualRows = 10;

  static std::string Columns() {
    std::string columns;
    for (int i = 0; i < kColumns; ++i) columns += "c" + std::to_string(i) + ", ";
    return columns + "packed HIDDEN, kept HIDDEN";
  }
  void Set(std::span<sqlite3_value*> arguments) {
    rows_.clear();
    const auto* bytes = static_cast<const char*>(sqlite3_value_blob(arguments[0]));
    const auto size = static_cast<std::size_t>(sqlite3_value_bytes(arguments[0]));
    PackedReader reader(bytes == nullptr ? std::string_view{} : std::string_view(bytes, size));
    while (!reader.at_end()) rows_.push_back(reader.Row());
    const bool kept = arguments.size() > 1 && sqlite3_value_int(arguments[1]) != 0;
    if (rows_.empty() && kept) rows_.emplace_back();
  }
  [[nodiscard]] std::size_t size() const { return rows_.size(); }
  void Give(sqlite3_context* context, std::size_t row, std::size_t column) const {
    if (column < rows_[row].size()) SetResult(context, rows_[row][column]);
  }

 private:
  std::vector<std::vector<Datum>> rows_;
};

// ts_pack(value, …)
void StepPack(sqlite3_context* context, int count, sqlite3_value** values) {
  Guarded(context, RuntimeOf(context), [&] {
    auto* rows = StateOf<PackedRows>(context, true);
    rows->AddRow(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) rows->Add(ToDatum(values[i]));
    RuntimeOf(context).memory.Require(rows->bytes().size() * 2);
  });
}

void EndPack(sqlite3_context* context) {
  if (const auto rows = TakeState<PackedRows>(context)) SetResult(context, Blob{rows->bytes()});
}

// ts_split(text, separator)
void SplitText(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  if (IsNull(arguments[0])) return;
  const std::string_view text = TextOf(arguments[0]);
  const std::string_view separator = TextOf(arguments[1]);
  if (IsNull(arguments[1]) || TextLength(separator, true) != 1) {
    throw SqlError(214, "Procedure expects parameter 'separator' of type 'nchar(1)/nvarchar(1)'.");
  }
  runtime.memory.Require(text.size() * 12);
  PackedRows rows;
  for (std::size_t begin = 0; begin <= text.size();) {
    const std::size_t end = std::min(text.find(separator, begin), text.size());
    rows.AddRow(1);
    rows.Add(std::string(text.substr(begin, end - begin)));
    begin = end + separator.size();
  }
  SetResult(context, Blob{rows.bytes()});
}

}  // namespace

void PackedRows::AddNumber(std::uint64_t number, int size) {
  for (int i = 0; i < size; ++i) bytes_ += static_cast<char>(number >> (8 * i));
}

void PackedRows::AddRow(std::size_t columns) { AddNumber(columns, kCountSize); }

void PackedRows::Add(const Datum& value) {
  bytes_ += static_cast<char>(value.index());
  const auto add_text = [&](const std::string& text) {
    AddNumber(text.size(), kNumberSize);
    bytes_ += text;
  };
  if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    AddNumber(static_cast<std::uint64_t>(*integer), kNumberSize);
  } else if (const auto* real = std::get_if<double>(&value)) {
    AddNumber(std::bit_cast<std::uint64_t>(*real), kNumberSize);
  } else if (const auto* text = std::get_if<std::string>(&value)) {
    add_text(*text);
  } else if (const auto* blob = std::get_if<Blob>(&value)) {
    add_text(blob->bytes);
  }
}

void RegisterRowTable(sqlite3* database, Runtime& runtime) {
  TableModule<UnpackedRows>::Register(database, "ts_rows");
  constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  sqlite3_create_function_v2(database, "ts_pack", -1, kFlags, &runtime, nullptr, StepPack, EndPack, nullptr);
  RegisterFunction(database, runtime, "ts_split", 2, SplitText);
}

}  // namespace tessarlorn::tsql
