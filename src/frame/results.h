// What operations make of the rows that a query answers.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tessarlorn/collections.h"
#include "tessarlorn/connection.h"
#include "tessarlorn/contract.h"
#include "tessarlorn/recordset.h"

namespace tessarlorn {

/// Whether the query, which counts something AS flag, counted any.
bool ReadFlag(Connection& connection, std::string_view query);

/// Adds an element to a list of texts with commas between them.
void AddToList(std::string& list, std::string_view element);

/// The texts with commas between them.
template <typename Texts>
std::string JoinList(const Texts& texts) {
  std::string list;
  for (const auto& text : texts) AddToList(list, text);
  return list;
}

/// The texts of a field in all rows with commas between them, "" for no row.
std::string JoinColumn(const RecordsetPtr& rows, std::string_view field);

/// The values of the columns in the first row, Nothing for no row.
std::optional<Dictionary> FirstRow(const RecordsetPtr& rows, std::span<const Column> columns);

/// One Dictionary a row, with the values of the columns. Empty for no row.
Vector RowDictionaries(const RecordsetPtr& rows, std::span<const Column> columns);

}  // namespace tessarlorn
