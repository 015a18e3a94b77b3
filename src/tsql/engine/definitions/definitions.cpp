#include "tsql/engine/definitions/definitions.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/text/text.h"
#include "tsql/engine/definitions/table_dependents.h"
#include "tsql/engine/definitions/table_maker.h"
#include "tsql/storage/trigger_rule.h"
#include "tsql/translate/common/function_text.h"

namespace tessarlorn::tsql {
namespace {

/// Names are unique in SQLite's database, and on the server in their table.
std::string IndexSql(const CatalogObject& table, const std::string& index) {
  return (table.temporary ? "temp." : "main.") + QuoteName(table.table_name() + "." + index);
}

/// Which DROP drops an object, by its CatalogKind.
constexpr std::array kDroppedAs = {ObjectKind::kTable,    ObjectKind::kView,     ObjectKind::kProcedure,
                                   ObjectKind::kFunction, ObjectKind::kFunction, ObjectKind::kSequence,
                                   ObjectKind::kFunction, ObjectKind::kTrigger};
/// Words for messages, by ObjectKind.
constexpr std::array kKindWords = {"table", "view", "procedure", "function", "sequence object", "trigger"};

/// "DROP TABLE" and its like.
std::string StatementOf(ObjectKind kind) {
  return "DROP " + (kind == ObjectKind::kSequence ? "SEQUENCE" : UpperCase(kKindWords[static_cast<std::size_t>(kind)]));
}

/// Raises 3705 for an object that another DROP drops.
void RequireKind(const CatalogObject& object, ObjectKind dropped, const std::string& name) {
  const ObjectKind own = kDroppedAs[static_cast<std::size_t>(object.kind)];
  if (own == dropped) return;
  const std::string word = kKindWords[static_cast<std::size_t>(own)];
  throw SqlError(3705, "Cannot use " + StatementOf(dropped) + " with '" + name + "' because '" + name + "' is a " +
                           word + ". Use " + StatementOf(own) + ".");
}

/// Those of a table that a function fills, as those of its rows.
std::vector<Column> ColumnsOf(const CreateTableStatement& table) {
  std::vector<Column> columns;
  for (const ColumnDefinition& column : table.elements.columns) {
    const bool nullable = column.nullable.value_or(!column.identity && !column.primary_key);
    columns.push_back({column.name, ResolveType(column.type, false), nullable, false, ""});
  }
  return columns;
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

void Definitions::RequireUnbound(const CatalogObject& object, const std::string& statement, const std::string& name) {
  if (object.temporary) return;
  const std::string bound = BoundTo(database_, object);
  if (bound.empty()) return;
  throw SqlError(3729,
                 "Cannot " + statement + " '" + name + "' because it is being referenced by object '" + bound + "'.");
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
  if (statement.unique) RequireDistinct(database_, *table, key, statement.name, condition);
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

void Definitions::RequireAlterable(const CatalogObject& object, const ObjectName& written, bool must_exist) {
  const CatalogObjectPtr old = database_.catalog().Find(object.name);
  if (old == nullptr && must_exist) RaiseNoObject(written);
  if (old == nullptr || old->kind == object.kind) return;
  throw SqlError(2010,
                 "Cannot perform alter on '" + WrittenName(written) + "' because it is an incompatible object type.");
}

void Definitions::AddObject(CatalogObject object, bool replace) {
  Catalog& catalog = database_.catalog();
  const CatalogObjectPtr old = catalog.Find(object.name);
  const bool replaces = replace && old != nullptr && old->kind == object.kind;
  if (replaces) RequireUnbound(*old, "ALTER", object.own_name());
  database_.Atomically([&] { replaces ? catalog.Replace(std::move(object)) : catalog.Add(std::move(object)); });
}

void Definitions::CreateView(const CreateViewStatement& statement, const Activation& activation) {
  CatalogObject view = NewObject(CatalogKind::kView, statement.view);
  view.definition = statement.source_text;
  Translator translator = plans_.MakeTranslator(activation, view.schema);
  for (const ResultColumn& column : translator.DescribeQuery(*statement.query, view.own_name(), statement.columns)) {
    view.columns.push_back({column.name, column.type, column.nullable, false, ""});
  }
  if (statement.replace) RequireAlterable(view, statement.view, statement.must_exist);
  AddObject(std::move(view), statement.replace);
}

void Definitions::CreateProcedure(const CreateProcedureStatement& statement) {
  CatalogObject procedure = NewObject(CatalogKind::kProcedure, statement.procedure);
  procedure.definition = statement.source_text;
  Frame frame;
  for (const Parameter& parameter : statement.parameters) {
    procedure.columns.push_back(
        {parameter.name, ResolveType(parameter.type, false), true, false, parameter.output ? "output" : ""});
    frame.Declare(parameter.name, procedure.columns.back().type);
  }
  for (const StatementPtr& inner : statement.body) PlanStore::Declare(*inner, frame);
  if (statement.replace) RequireAlterable(procedure, statement.procedure, statement.must_exist);
  AddObject(std::move(procedure), statement.replace);
}

void Definitions::CreateTrigger(const CreateTriggerStatement& statement, std::uint32_t line) {
  RequireLocal(statement.table);
  if (statement.table.temporary()) RaiseUnsupported("A trigger on a temporary table", line);
  const CatalogObjectPtr table = database_.catalog().Find(statement.table.name);
  if (table == nullptr || table->kind != CatalogKind::kTable) {
    throw SqlError(8197, "The object '" + statement.table.name + "' does not exist or is invalid for this operation.");
  }
  const ObjectName& name = statement.trigger;
  const bool unqualified = name.schema.empty() && name.qualifier.empty();
  CatalogObject trigger =
      NewObject(CatalogKind::kTrigger, unqualified ? MakeObjectName(statement.table.schema, name.name) : name);
  if (trigger.schema != table->schema) {
    throw SqlError(2103, std::string("Cannot ") + (statement.replace ? "alter" : "create") + " trigger '" +
                             WrittenName(name) +
                             "' because its schema is different from the schema of the target table or view.");
  }
  trigger.definition = statement.source_text;
  trigger.columns.push_back(ToColumn({table->name, statement.events, true}));
  if (statement.replace) RequireAlterable(trigger, statement.trigger, statement.must_exist);
  AddObject(std::move(trigger), statement.replace);
}

void Definitions::SwitchTriggers(const SwitchTriggersStatement& statement) {
  RequireLocal(statement.table);
  Catalog& catalog = database_.catalog();
  const auto require = [](bool found, const std::string& name) {
    if (found) return;
    throw SqlError(1088,
                   "Cannot find the object \"" + name + "\" because it does not exist or you do not have permissions.");
  };
  const CatalogObjectPtr table = catalog.Find(statement.table.name);
  require(table != nullptr && table->kind == CatalogKind::kTable, statement.table.name);
  std::vector<CatalogObjectPtr> chosen;
  if (statement.triggers.empty()) chosen = catalog.TriggersOf(table->name);
  for (const ObjectName& name : statement.triggers) {
    RequireLocal(name);
    const CatalogObjectPtr trigger = catalog.Find(name.name);
    require(trigger != nullptr && trigger->kind == CatalogKind::kTrigger &&
                EqualsIgnoreCase(RuleOf(*trigger).table, table->name),
            name.name);
    chosen.push_back(trigger);
  }
  database_.Atomically([&] {
    for (const CatalogObjectPtr& trigger : chosen) {
      TriggerRule rule = RuleOf(*trigger);
      rule.on = statement.on;
      CatalogObject changed = *trigger;
      changed.columns = {ToColumn(rule)};
      catalog.Replace(std::move(changed));
    }
  });
}

void Definitions::CreateFunction(const CreateFunctionStatement& statement, const Activation& activation) {
  CatalogObject function = NewObject(statement.query != nullptr         ? CatalogKind::kTableFunction
                                     : statement.returned_table.empty() ? CatalogKind::kFunction
                                                                        : CatalogKind::kFilledFunction,
                                     statement.function);
  function.definition = statement.source_text;
  Frame frame;
  std::vector<Column> parameters;
  for (const Parameter& parameter : statement.parameters) {
    parameters.push_back(
        {parameter.name, ResolveType(parameter.type, false), true, false, std::string(kParameterMark)});
    frame.Declare(parameter.name, parameters.back().type);
  }
  if (function.kind == CatalogKind::kFilledFunction) {
    PlanStore::Declare(*activation.plan->statement, frame);
    function.columns = ColumnsOf(std::get<DeclareStatement>(statement.body[0]->node).tables[0]);
  } else if (statement.query == nullptr) {
    parameters.push_back({"", ResolveType(statement.returns, false), true, false, std::string(kReturnMark)});
    PlanStore::Declare(*activation.plan->statement, frame);
  } else {
    Activation inner = activation;
    inner.frame = &frame;
    Translator translator = plans_.MakeTranslator(inner, function.schema);
    for (const ResultColumn& column : translator.DescribeQuery(*statement.query, function.own_name())) {
      function.columns.push_back({column.name, column.type, column.nullable, false, ""});
    }
  }
  function.columns.insert(function.columns.end(), parameters.begin(), parameters.end());
  if (statement.replace) RequireAlterable(function, statement.function, statement.must_exist);
  AddObject(std::move(function), statement.replace);
}

void Definitions::Drop(const DropStatement& statement) {
  const std::string word = kKindWords[static_cast<std::size_t>(statement.kind)];
  for (const ObjectName& name : statement.names) {
    RequireLocal(name);
    const CatalogObjectPtr object = database_.catalog().Find(name.name);
    if (object != nullptr) RequireKind(*object, statement.kind, WrittenName(name));
    if (object == nullptr) {
      if (statement.if_exists) continue;
      throw SqlError(3701,
                     std::string("Cannot drop the ") + word + " '" + name.name +
                         "', because it does not exist or you do not have permission.",
                     11);
    }
    RequireUnbound(*object, StatementOf(statement.kind), WrittenName(name));
    database_.Atomically([&] { DropObject(*object); });
  }
}

void Definitions::DropObject(const CatalogObject& object) {
  const std::string name = object.name;
  RequireUnreferenced(object, 3726,
                      "Could not drop object '" + name + "' because it is referenced by a FOREIGN KEY constraint.");
  if (object.kind == CatalogKind::kTable) {
    for (const CatalogObjectPtr& trigger : database_.catalog().TriggersOf(name)) {
      database_.catalog().Remove(trigger->name);
    }
    database_.Run("DROP TABLE " + TableSql(object));
  }
  database_.catalog().Remove(name);
}

void Definitions::DropTemporaryTables(const std::vector<std::string>& but) {
  for (const std::string& name : database_.catalog().TemporaryTables()) {
    if (std::find(but.begin(), but.end(), name) != but.end()) continue;
    if (const CatalogObjectPtr table = database_.catalog().Find(name)) DropObject(*table);
  }
}

}  // namespace tessarlorn::tsql
