#include "tsql/engine/definitions.h"

#include <algorithm>
#include <utility>

#include "platform/text/text.h"
#include "tsql/engine/table_maker.h"

namespace tessarlorn::tsql {
namespace {

/// Names are unique in SQLite's database, and on the server in their table.
std::string IndexSql(const CatalogObject& table, const std::string& index) {
  return (table.temporary ? "temp." : "main.") + QuoteName(table.table_name() + "." + index);
}

}  // namespace

void RequireColumns(const CatalogObject& table, const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (table.FindColumn(name) < 0) {
      throw SqlError(1911, "Column name '" + name + "' does not exist in the target table or view.");
    }
  }
}

std::string NullKeySql(const CatalogObject& table, const std::string& index, const std::vector<std::string>& key,
                       const std::string& condition) {
  std::string columns;
  std::string nulls;
  for (const std::string& name : key) {
    const Column& column = table.columns[static_cast<std::size_t>(table.FindColumn(name))];
    const std::string quoted = QuoteName(column.name);
    const std::string value = "ifnull(" + quoted + ", 0)" + CollationOf(column.type);
    columns.append(columns.empty() ? "" : ", ").append(quoted).append(" IS NULL, ").append(value);
    if (column.nullable) nulls.append(nulls.empty() ? "" : " OR ").append(quoted).append(" IS NULL");
  }
  if (nulls.empty()) return {};
  return "CREATE UNIQUE INDEX " + IndexSql(table, index + std::string(kNullKeySuffix)) + " ON " +
         QuoteName(table.table_name()) + " (" + columns + ") WHERE (" + nulls + ")" +
         (condition.empty() ? "" : " AND (" + condition + ")");
}

void Definitions::RequireUnreferenced(const CatalogObject& table, std::int32_t number, const std::string& message) {
  if (table.temporary) return;
  SqliteStatement other = database_.Prepare(
      "SELECT 1 FROM main.sqlite_schema s, pragma_foreign_key_list(s.name) f WHERE s.type = 'table' AND lower(f.\"table\") = "
      "lower(" +
      QuoteText(table.name) + ") AND lower(s.name) <> lower(" + QuoteText(table.name) + ")");
  if (other.Step("SELECT")) throw SqlError(number, message);
}

bool Definitions::IndexExists(const CatalogObject& table, const std::string& index) {
  SqliteStatement there = database_.Prepare("SELECT 1 FROM " + std::string(SchemaOf(table)) +
                                            ".sqlite_schema WHERE type = 'index' AND lower(name) = lower(" +
                                            QuoteText(table.name + "." + index) + ")");
  return there.Step("SELECT");
}

void Definitions::CreateIndex(const CreateIndexStatement& statement, std::uint32_t line, const Activation& activation) {
  RequireLocal(statement.table);
  const CatalogObjectPtr table = database_.catalog().Get(statement.table.name);
  if (table->kind != CatalogKind::kTable) RaiseUnsupported("An index on a view", line);
  std::string columns;
  std::vector<std::string> key;
  for (const KeyColumn& column : statement.key) {
    RequireColumns(*table, {column.name});
    key.push_back(column.name);
    columns += (columns.empty() ? "" : ", ") + QuoteName(column.name) + (column.descending ? " DESC" : "");
  }
  // What is included is read without a look at the table, but orders and constrains nothing.
  RequireColumns(*table, statement.included);
  if (!statement.unique) {
    for (const std::string& name : statement.included) columns += ", " + QuoteName(name);
  }
  std::string sql = std::string(statement.unique ? "CREATE UNIQUE INDEX " : "CREATE INDEX ") +
                    IndexSql(*table, statement.name) + " ON " + QuoteName(table->name) + " (" + columns + ")";
  const std::string condition =
      statement.where == nullptr ? "" : plans_.MakeTranslator(activation).TranslateCheck(*table, *statement.where);
  if (!condition.empty()) sql += " WHERE " + condition;
  if (IndexExists(*table, statement.name)) {
    throw SqlError(1913, "The operation failed because an index or statistics with name '" + statement.name +
                             "' already exists on table '" + table->name + "'.");
  }
  const std::string nulls = statement.unique ? NullKeySql(*table, statement.name, key, condition) : "";
  database_.Atomically([&] {
    database_.Run(sql);
    if (!nulls.empty()) database_.Run(nulls);
    database_.catalog().NoteIndex(*table, statement.name, statement.included, statement.where_text);
  });
}

void Definitions::DropIndex(const DropIndexStatement& statement) {
  const CatalogObjectPtr table = database_.catalog().Get(statement.table.name);
  if (!IndexExists(*table, statement.name)) {
    if (statement.if_exists) return;
    throw SqlError(3701,
                   "Cannot drop the index '" + table->name + "." + statement.name +
                       "', because it does not exist or you do not have permission.",
                   11);
  }
  database_.Atomically([&] {
    database_.Run("DROP INDEX " + IndexSql(*table, statement.name));
    database_.Run("DROP INDEX IF EXISTS " + IndexSql(*table, statement.name + std::string(kNullKeySuffix)));
    if (!table->temporary) database_.catalog().RenameIndex(*table, statement.name, "");
    database_.catalog().Refresh();
  });
}

void Definitions::AddObject(CatalogObject object, bool replace) {
  Catalog& catalog = database_.catalog();
  const CatalogObjectPtr old = catalog.Find(object.name);
  const bool replaces = replace && old != nullptr && old->kind == object.kind;
  database_.Atomically([&] { replaces ? catalog.Replace(std::move(object)) : catalog.Add(std::move(object)); });
}

void Definitions::CreateView(const CreateViewStatement& statement, const Activation& activation) {
  RequireLocal(statement.view);
  CatalogObject view;
  view.kind = CatalogKind::kView;
  view.name = statement.view.name;
  view.definition = statement.source_text;
  Translator translator = plans_.MakeTranslator(activation);
  for (const ResultColumn& column : translator.DescribeQuery(*statement.query, false, statement.columns)) {
    view.columns.push_back({column.name, column.type, column.nullable, false, ""});
  }
  AddObject(std::move(view), statement.replace);
}

void Definitions::CreateProcedure(const CreateProcedureStatement& statement) {
  RequireLocal(statement.procedure);
  CatalogObject procedure;
  procedure.kind = CatalogKind::kProcedure;
  procedure.name = statement.procedure.name;
  procedure.definition = statement.source_text;
  for (const Parameter& parameter : statement.parameters) {
    procedure.columns.push_back(
        {parameter.name, ResolveType(parameter.type, false), true, false, parameter.output ? "output" : ""});
  }
  AddObject(std::move(procedure), statement.replace);
}

void Definitions::Drop(const DropStatement& statement) {
  const CatalogKind kind = statement.kind == ObjectKind::kTable  ? CatalogKind::kTable
                           : statement.kind == ObjectKind::kView ? CatalogKind::kView
                                                                 : CatalogKind::kProcedure;
  for (const ObjectName& name : statement.names) {
    RequireLocal(name);
    const CatalogObjectPtr object = database_.catalog().Find(name.name);
    if (object == nullptr || object->kind != kind) {
      if (statement.if_exists) continue;
      const char* word = kind == CatalogKind::kTable ? "table" : kind == CatalogKind::kView ? "view" : "procedure";
      throw SqlError(3701,
                     std::string("Cannot drop the ") + word + " '" + name.name +
                         "', because it does not exist or you do not have permission.",
                     11);
    }
    database_.Atomically([&] { DropObject(*object); });
  }
}

void Definitions::DropObject(const CatalogObject& object) {
  const std::string name = object.name;
  RequireUnreferenced(object, 3726,
                      "Could not drop object '" + name + "' because it is referenced by a FOREIGN KEY constraint.");
  if (object.kind == CatalogKind::kTable) database_.Run("DROP TABLE " + TableSql(object));
  database_.catalog().Remove(name);
}

void Definitions::DropTemporaryTables(const std::vector<std::string>& but) {
  for (const std::string& name : database_.catalog().TemporaryTables()) {
    if (std::find(but.begin(), but.end(), name) != but.end()) continue;
    if (const CatalogObjectPtr table = database_.catalog().Find(name)) DropObject(*table);
  }
}

}  // namespace tessarlorn::tsql
