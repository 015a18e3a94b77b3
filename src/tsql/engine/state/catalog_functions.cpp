#include "tsql/engine/state/catalog_functions.h"

#include <sqlite3.h>

#include "platform/text/text.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/sqlite_value.h"
#include "tsql/storage/sqlite_handle.h"

namespace tessarlorn::tsql {
namespace {

/// The object's own name of "tempdb..#t", "dbo.t", "[t]".
std::string PlainName(std::string_view name) { return NameParts(name).back(); }

int StorageBytes(const SqlType& type) {
  switch (type.kind) {
    case FieldType::kBit:
    case FieldType::kTinyInt:
      return 1;
    case FieldType::kSmallInt:
      return 2;
    case FieldType::kInt:
    case FieldType::kReal:
      return 4;
    case FieldType::kDecimal:
      return type.precision <= 9 ? 5 : type.precision <= 19 ? 9 : type.precision <= 28 ? 13 : 17;
    case FieldType::kDate:
      return 3;
    case FieldType::kDateTimeOffset:
      return BytesOfMoment(type.scale);
    case FieldType::kGuid:
      return 16;
    case FieldType::kChar:
    case FieldType::kVarChar:
    case FieldType::kBinary:
    case FieldType::kVarBinary:
      return type.size == 0 ? -1 : type.size;
    case FieldType::kNChar:
    case FieldType::kNVarChar:
      return type.size == 0 ? -1 : type.size * 2;
    default:
      return 8;
  }
}

void ObjectId(sqlite3_context* context, const Catalog& catalog, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const CatalogObjectPtr object = catalog.Find(PlainName(TextOf(arguments[0])));
  if (object == nullptr) return;
  if (arguments.size() > 1) {
    const std::string kind = UpperCase(Trim(TextOf(arguments[1])));
    constexpr std::string_view kTypes[] = {"U", "V", "P", "FN", "IF", "SO", "TF", "TR"};
    if (kind != kTypes[static_cast<std::size_t>(object->kind)]) return;
  }
  sqlite3_result_int64(context, object->id);
}

// ts_ident_current(table): the last identity value that it gave, or else the first that it will give
void IdentCurrent(sqlite3_context* context, const Catalog& catalog, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const CatalogObjectPtr object = catalog.Find(PlainName(TextOf(arguments[0])));
  if (object == nullptr || object->identity_column() < 0) return;
  const std::string sql = std::string("SELECT seq FROM ") + (object->temporary ? "temp" : "main") +
                          ".sqlite_sequence WHERE name = " + QuoteText(object->name);
  SqliteStatement last(sqlite3_context_db_handle(context), sql);
  sqlite3_result_int64(context, last.Step() ? last.Integer(0) : 1);
}

void ColumnLength(sqlite3_context* context, const Catalog& catalog, Arguments arguments) {
  if (AnyNull(arguments) || arguments.size() != 2) return;
  const CatalogObjectPtr object = catalog.Find(PlainName(TextOf(arguments[0])));
  const int column = object == nullptr ? -1 : object->FindColumn(TextOf(arguments[1]));
  if (column >= 0) sqlite3_result_int(context, StorageBytes(object->columns[static_cast<std::size_t>(column)].type));
}

// ts_row_count(object): the rows of the table with that number
void RowCount(sqlite3_context* context, const Catalog& catalog, Arguments arguments) {
  sqlite3* const database = sqlite3_context_db_handle(context);
  SqliteStatement name(database, R"(SELECT name FROM main."$objects" WHERE kind = 'table' AND id = ?1)");
  name.BindInteger(1, sqlite3_value_int64(arguments[0]));
  const CatalogObjectPtr table = name.Step() ? catalog.Find(name.Text(0)) : nullptr;
  if (table == nullptr) return;
  SqliteStatement rows(database, "SELECT count(*) FROM main." + QuoteName(table->table_name()));
  rows.Step();
  sqlite3_result_int64(context, rows.Integer(0));
}

using CatalogFunction = void (*)(sqlite3_context*, const Catalog&, Arguments);

template <CatalogFunction F>
void CallCatalogFunction(sqlite3_context* context, int count, sqlite3_value** values) {
  F(context, *static_cast<const Catalog*>(sqlite3_user_data(context)),
    Arguments(values, static_cast<std::size_t>(count)));
}

}  // namespace

void RegisterCatalogFunctions(sqlite3* database, Catalog& catalog) {
  const auto add = [&](const char* name, int arguments, void (*call)(sqlite3_context*, int, sqlite3_value**)) {
    sqlite3_create_function_v2(database, name, arguments, SQLITE_UTF8, &catalog, call, nullptr, nullptr, nullptr);
  };
  add("ts_object_id", -1, CallCatalogFunction<ObjectId>);
  add("ts_ident_current", 1, CallCatalogFunction<IdentCurrent>);
  add("ts_row_count", 1, CallCatalogFunction<RowCount>);
  add("ts_col_length", 2, CallCatalogFunction<ColumnLength>);
}

}  // namespace tessarlorn::tsql
