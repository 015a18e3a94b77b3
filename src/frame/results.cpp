#include "frame/results.h"

namespace tessarlorn {

bool ReadFlag(Connection& connection, std::string_view query) {
  return connection.Query(query)->Get("Flag").ToInt32() > 0;
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

Vector RowDictionaries(const RecordsetPtr& rows, std::span<const Column> columns) {
  Vector items;
  for (rows->MoveFirst(); !rows->eof(); rows->MoveNext()) {
    Dictionary item;
    for (const Column& column : columns) item.SetValue(column.name, rows->Get(column.name));
    items.Add(std::move(item));
  }
  return items;
}

}  // namespace tessarlorn
