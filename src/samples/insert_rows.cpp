#include "samples/insert_rows.h"

#include <algorithm>
#include <utility>

#include "tessarlorn/decimal.h"

namespace tessarlorn::cli {
namespace {

/// A server takes 2,100 parameters, two of which are the statement and its declarations.
constexpr std::size_t kMostValues = 2000;
constexpr std::size_t kMostRows = 40;

std::string NameOf(std::size_t value) { return "@v" + std::to_string(value); }

}  // namespace

InsertRows::InsertRows(Connection& connection, std::string_view table, std::string columns)
    : connection_(connection),
      table_(table),
      columns_(std::move(columns)),
      width_(1 + static_cast<std::size_t>(std::count(columns_.begin(), columns_.end(), ','))) {}

void InsertRows::EndRow() {
  const std::size_t rows = std::min(kMostRows, kMostValues / width_);
  if (values_.size() == rows * width_) Flush();
}

void InsertRows::Flush() {
  if (values_.empty()) return;
  std::string text = "INSERT INTO " + std::string(table_) + " (" + columns_ + ") VALUES";
  for (std::size_t i = 0; i < values_.size(); ++i) {
    text += i % width_ != 0 ? "," : i == 0 ? "\n(" : ",\n(";
    text += values_[i].name;
    if (i % width_ == width_ - 1) text += ')';
  }
  connection_.Execute({text, values_});
  values_.clear();
}

void InsertRows::Take(const char* type, Variant value) {
  values_.push_back({NameOf(values_.size()), type, std::move(value)});
}

void InsertRows::AppendValue(const Fixed& value) {
  Take(value.scale <= 2 ? "decimal(19,2)" : "decimal(19,4)", Decimal::FromScaled(value.value, value.scale));
}

void FillIfEmpty(Connection& connection, std::string_view table, std::string columns,
                 const std::function<void(InsertRows&)>& write) {
  if (connection.Execute("SELECT TOP 1 1 AS FFilled FROM " + std::string(table))->RecordCount() > 0) return;
  InsertRows rows(connection, table, std::move(columns));
  write(rows);
  rows.Flush();
}

}  // namespace tessarlorn::cli
