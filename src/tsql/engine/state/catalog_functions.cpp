#include "tsql/engine/state/catalog_functions.h"

#include <algorithm>
#include <cstdint>
#include <sqlite3.h>

#include "platform/text/text.h"
#include "tsql/functions/functions.h"
#include "tsql/functions/sqlite_value.h"
#include "tsql/storage/constraint_text.h"
#include "tsql/storage/sqlite_handle.h"

namespace tessarlorn::tsql {
namespace {

/// The object of "tempdb..#t", "dbo.t", "[s].[t]", or nullptr.
CatalogObjectPtr FindNamed(const Catalog& catalog, std::string_view text) {
  const ObjectName name = NameOf(NameParts(text));
  return IsLocal(name) ? catalog.Find(name.name) : nullptr;
}

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
  const CatalogObjectPtr object = FindNamed(catalog, TextOf(arguments[0]));
  if (object == nullptr) return;
  if (arguments.size() > 1) {
    const std::string kind = UpperCase(Trim(TextOf(arguments[1])));
    constexpr std::string_view kTypes[] = {"U", "V", "P", "FN", "IF", "SO", "TF", "TR"};
    if (kind != kTypes[static_cast<std::size_t>(object->kind)]) return;
  }
  sqlite3_result_int64(context, object->id);
}

/// What is noted of a table's identity.
Constraint IdentityOf(const CatalogObject& table) {
  const Constraints constraints = ReadConstraints(table.definition);
  const Constraint* identity = FindKind(constraints, "I");
  return identity == nullptr ? Constraint{} : *identity;
}

// ts_ident_current(table): the last identity value that it gave, or else the first that it will give
void IdentCurrent(sqlite3_context* context, const Catalog& catalog, Arguments arguments) {
  if (AnyNull(arguments)) return;
  const CatalogObjectPtr object = FindNamed(catalog, TextOf(arguments[0]));
  if (object == nullptr || object->identity_column() < 0) return;
  const std::string sql = std::string("SELECT seq FROM ") + (object->temporary ? "temp" : "main") +
                          ".sqlite_sequence WHERE name = " + QuoteText(object->table_name());
  const Constraint identity = IdentityOf(*object);
  SqliteStatement last(sqlite3_context_db_handle(context), sql);
  const std::int64_t value = last.Step() ? last.Integer(0) : identity.seed;
  // Where SQLite counts, the number before the first one stands there at first.
  sqlite3_result_int64(context, identity.increment == 0 ? std::max(value, identity.seed) : value);
}

void IdentSeed(sqlite3_context* context, const Catalog& catalog, Arguments arguments) {
  const CatalogObjectPtr object = AnyNull(arguments) ? nullptr : FindNamed(catalog, TextOf(arguments[0]));
  if (object != nullptr && object->identity_column() >= 0) sqlite3_result_int64(context, IdentityOf(*object).seed);
}

void IdentIncrement(sqlite3_context* context, const Catalog& catalog, Arguments arguments) {
  const CatalogObjectPtr object = AnyNull(arguments) ? nullptr : FindNamed(catalog, TextOf(arguments[0]));
  if (object == nullptr || object->identity_column() < 0) return;
  const std::int64_t increment = IdentityOf(*object).increment;
  sqlite3_result_int64(context, increment == 0 ? 1 : increment);
}

/// The number behind `last`. Raises 8115 where the column cannot hold it.
std::int64_t CountOn(std::int64_t last, std::int64_t increment, const SqlType& type) {
  const std::int64_t most = type.kind == FieldType::kTinyInt    ? UINT8_MAX
                            : type.kind == FieldType::kSmallInt ? INT16_MAX
                            : type.kind == FieldType::kInt      ? INT32_MAX
                                                                : INT64_MAX;
  const std::int64_t least = type.kind == FieldType::kTinyInt ? 0 : -most - 1;
  if (increment > 0 ? last <= most - increment : last >= least - increment) return last + increment;
  throw SqlError(8115,
                 "Arithmetic overflow error converting IDENTITY to data type " + std::string(TypeNameText(type)) + ".");
}

// ts_identity(sequence, name, seed, increment, type, value): the value that is given for an identity, or for NULL the
// next one; the farthest is noted
void NextIdentity(sqlite3_context* context, Runtime& /*runtime*/, Arguments arguments) {
  sqlite3* const database = sqlite3_context_db_handle(context);
  const std::string sequence(TextOf(arguments[0]));
  const std::string name = QuoteText(TextOf(arguments[1]));
  const std::int64_t seed = sqlite3_value_int64(arguments[2]);
  const std::int64_t increment = sqlite3_value_int64(arguments[3]);
  SqliteStatement noted(database, "SELECT seq FROM " + sequence + " WHERE name = " + name);
  const bool counted = noted.Step();
  const std::int64_t last = counted ? noted.Integer(0) : seed;
  noted.Reset();
  const bool given = !IsNull(arguments[5]);
  const std::int64_t value = given     ? sqlite3_value_int64(arguments[5])
                             : counted ? CountOn(last, increment, TypeArgument(arguments[4]))
                                       : seed;
  sqlite3_result_int64(context, value);
  const bool farther = increment > 0 ? value > last : value < last;
  if (counted && farther) {
    RunSql(database, "UPDATE " + sequence + " SET seq = " + std::to_string(value) + " WHERE name = " + name);
  } else if (!counted && (farther || value == seed)) {
    RunSql(database, "INSERT INTO " + sequence + " VALUES (" + name + ", " + std::to_string(value) + ")");
  }
}

// ts_note_key(value, …): the key of the row that is about to be stored
void NoteKey(sqlite3_context* /*context*/, Runtime& runtime, Arguments arguments) {
  runtime.noted_key.clear();
  for (sqlite3_value* const value : arguments) runtime.noted_key.push_back(ToDatum(value));
}

// ts_row_event(event): what happens to a row of which SQLite tells the event
void RowEventOf(sqlite3_context* context, Runtime& runtime, Arguments arguments) {
  sqlite3_result_int(context,
                     runtime.moves_rows ? static_cast<int>(RowEvent::kUpdate) : sqlite3_value_int(arguments[0]));
}

void ColumnLength(sqlite3_context* context, const Catalog& catalog, Arguments arguments) {
  if (AnyNull(arguments) || arguments.size() != 2) return;
  const CatalogObjectPtr object = FindNamed(catalog, TextOf(arguments[0]));
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

void RegisterCatalogFunctions(sqlite3* database, Catalog& catalog, Runtime& runtime) {
  const auto add = [&](const char* name, int arguments, void (*call)(sqlite3_context*, int, sqlite3_value**)) {
    sqlite3_create_function_v2(database, name, arguments, SQLITE_UTF8, &catalog, call, nullptr, nullptr, nullptr);
  };
  add("ts_object_id", -1, CallCatalogFunction<ObjectId>);
  add("ts_ident_current", 1, CallCatalogFunction<IdentCurrent>);
  add("ts_ident_seed", 1, CallCatalogFunction<IdentSeed>);
  add("ts_ident_incr", 1, CallCatalogFunction<IdentIncrement>);
  RegisterFunction(database, runtime, "ts_identity", 6, NextIdentity, false);
  RegisterFunction(database, runtime, "ts_note_key", -1, NoteKey, false);
  RegisterFunction(database, runtime, "ts_row_event", 1, RowEventOf, false);
  add("ts_row_count", 1, CallCatalogFunction<RowCount>);
  add("ts_col_length", 2, CallCatalogFunction<ColumnLength>);
}

}  // namespace tessarlorn::tsql
