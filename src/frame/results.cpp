#include "frame/results.h"

namespace tessarlorn {
namespace {

Dictionary RowDictionary(const Recordset& row, std::span<const Column> columns) {
  Dictionary item;
  for (const Column& column : columns) item.SetValue(column.name, row.Get(column.name));
  return item;
}

}  // namespace

bool ReadFlag(Connection& connection, std::string_view query) {
  return connection.Query(query)->Get("Flag").ToInt32() > 0;
}

void AddToList(std::string& list, std::string_view element) {
  if (!list.empty()) list += ',';
  list += element;
}

std::string JoinColumn(const RecordsetPtr& rows, std::string_view field) {
  std::string text;
  std::string_view separator;
  for (rows->MoveFirst(); !rows->eof(); rows->MoveNext()) {
    text.append(separator).append(rows->Get(field).ToText());
    separator = ",";
  }
  return text;
}

std::optional<Dictionary> FirstRow(const RecordsetPtr& rows, std::span<const Column> columns) {
  if (rows->eof()) return std::nullopt;
  return RowDictionary(*rows, columns);
}

Vector RowDictionaries(const RecordsetPtr& rows, std::span<const Column> columns) {
  Vector items;
  for (rows->MoveFirst(); !rows->eof(); rows->MoveNext()) items.Add(RowDictionary(*rows, columns));
  return items;
}

}  // namespace tessarlorn
