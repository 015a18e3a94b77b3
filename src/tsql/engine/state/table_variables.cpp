#include "tsql/engine/state/table_variables.h"

namespace tessarlorn::tsql {

TableVariableScope::~TableVariableScope() {
  for (const CatalogObjectPtr& table : database_.catalog().LeaveScope()) {
    const std::string& name = table->table_name();
    const std::string drop = "DROP TABLE IF EXISTS temp." + QuoteName(name);
    if (sqlite3_exec(database_.handle(), drop.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) database_.Leave(name);
  }
}

TableVariableCopies::TableVariableCopies(SessionDatabase& database) noexcept : database_(database) {
  try {
    for (const CatalogObjectPtr& table : database.catalog().TableVariables()) copies_.push_back(CopyOf(*table));
  } catch (const std::exception&) {
    copies_.clear();
  }
}

TableVariableCopies::Copy TableVariableCopies::CopyOf(const CatalogObject& table) {
  Copy copy{table.table_name(), {}, {}, {}, {}};
  const std::string name = QuoteText(copy.table);
  SqliteStatement definitions = database_.Prepare("SELECT sql FROM sqlite_temp_schema WHERE tbl_name = " + name +
                                                  " AND sql IS NOT NULL ORDER BY type DESC");
  while (definitions.Step()) copy.definitions.push_back(definitions.Text(0));
  int count = 0;
  for (const Column& column : table.columns) {
    if (!column.computed()) copy.columns += (count++ == 0 ? "" : ", ") + QuoteName(column.name);
  }
  SqliteStatement rows =
      database_.Prepare("SELECT " + copy.columns + " FROM temp." + QuoteName(copy.table) + " ORDER BY _rowid_");
  while (rows.Step()) {
    std::vector<Datum>& row = copy.rows.emplace_back();
    for (int i = 0; i < count; ++i) row.push_back(rows.Value(i));
  }
  if (table.identity_column() < 0) return copy;
  SqliteStatement last = database_.Prepare("SELECT seq FROM temp.sqlite_sequence WHERE name = " + name);
  if (last.Step()) copy.last_identity = last.Text(0);
  return copy;
}

void TableVariableCopies::PutBack(const Copy& copy) {
  const std::string table = "temp." + QuoteName(copy.table);
  database_.Run("DROP TABLE IF EXISTS " + table);
  for (std::string definition : copy.definitions) {
    // SQLite keeps it without the schema.
    const std::size_t name = definition.find('"');
    database_.Run(definition.insert(name, "temp."));
  }
  if (!copy.rows.empty()) {
    std::string marks;
    for (std::size_t i = 0; i < copy.rows[0].size(); ++i) marks += i == 0 ? "?" : ", ?";
    SqliteStatement insert =
        database_.Prepare("INSERT INTO " + table + " (" + copy.columns + ") VALUES (" + marks + ")");
    for (const std::vector<Datum>& row : copy.rows) {
      for (std::size_t i = 0; i < row.size(); ++i) insert.BindValue(static_cast<int>(i) + 1, row[i]);
      const SqliteStatement::Use use(insert);
      insert.Step();
    }
  }
  if (copy.last_identity.empty()) return;
  const std::string name = QuoteText(copy.table);
  database_.Run("DELETE FROM temp.sqlite_sequence WHERE name = " + name +
                "; INSERT INTO temp.sqlite_sequence VALUES (" + name + ", " + copy.last_identity + ")");
}

void TableVariableCopies::PutBack() noexcept {
  for (const Copy& copy : copies_) {
    try {
      PutBack(copy);
    } catch (const std::exception&) {
      database_.RunQuietly("DROP TABLE IF EXISTS temp." + QuoteName(copy.table));
    }
  }
}

}  // namespace tessarlorn::tsql
