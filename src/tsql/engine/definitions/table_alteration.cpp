#include "tsql/engine/definitions/table_alteration.h"

#include <algorithm>
#include <utility>

#include "platform/text/text.h"
#include "tsql/engine/definitions/definitions.h"
#include "tsql/engine/definitions/table_dependents.h"
#include "tsql/translate/value.h"

namespace tessarlorn::tsql {
namespace {

[[noreturn]] void RaiseDependent(const char* kind, const std::string& name, const std::string& column) {
  throw SqlError(5074, std::string("The ") + kind + " '" + name + "' is dependent on column '" + column + "'.");
}

[[noreturn]] void RaiseNoSuchColumn(const char* action, const std::string& column, const std::string& table) {
  throw SqlError(4924, std::string("ALTER TABLE ") + action + " COLUMN failed because column '" + column +
                           "' does not exist in table '" + table + "'.");
}

/// Whether texts or binaries only get more room.
bool OnlyGrows(const SqlType& from, const SqlType& to) {
  const bool varies =
      from.kind == FieldType::kVarChar || from.kind == FieldType::kNVarChar || from.kind == FieldType::kVarBinary;
  return varies && from.kind == to.kind && (to.size == 0 || (from.size != 0 && to.size >= from.size));
}

bool IsInPrimaryKey(const TableElements& elements, const ColumnDefinition& column) {
  return column.primary_key ||
         std::any_of(elements.constraints.begin(), elements.constraints.end(), [&](const TableConstraint& constraint) {
           const auto* key = std::get_if<PrimaryKeyRule>(&constraint.rule);
           return key != nullptr && std::any_of(key->columns.begin(), key->columns.end(), [&](const std::string& name) {
                    return EqualsIgnoreCase(name, column.name);
                  });
         });
}

/// A text of the catalog without the parentheses around it.
std::string Unwrapped(const std::string& text) { return text.substr(1, text.size() - 2); }

}  // namespace

void TableAlteration::Note() {
  table_.definition = WriteConstraints(constraints_);
  database_.catalog().Replace(table_);
}

void TableAlteration::Rebuild(const CatalogObject& before, const std::map<std::string, std::string>& values) {
  table_.definition = WriteConstraints(constraints_);
  maker_.RequireNoted(original_);
  maker_.Rebuild(before, table_, values);
  table_ = *database_.catalog().Find(table_.name);
}

bool TableAlteration::HasRow(const std::string& from_and_where) {
  return database_.Prepare("SELECT 1 FROM " + from_and_where + " LIMIT 1").Step("SELECT");
}

void TableAlteration::Add(const TableElements& elements) {
  database_.Atomically([&] {
    for (const ColumnDefinition& definition : elements.columns) {
      AddColumn(definition, IsInPrimaryKey(elements, definition));
    }
    const std::size_t old = constraints_.size();
    const CatalogObject before = table_;
    AddConstraints(constraints_, table_.own_name(), elements);
    bool rebuilds = false;
    for (std::size_t i = old; i < constraints_.size(); ++i) {
      const Constraint& constraint = constraints_[i];
      RequireAllowed(constraint);
      rebuilds = rebuilds || (constraint.kind != "D" && constraint.kind != "I");
    }
    rebuilds ? Rebuild(before) : Note();
  });
}

void TableAlteration::AddColumn(const ColumnDefinition& definition, bool in_key) {
  const CatalogObject before = table_;
  Column column = ColumnOf(table_, definition);
  if (in_key && !definition.nullable) column.nullable = false;
  table_.columns.push_back(column);
  if (column.computed()) {
    AddComputed(before);
    return;
  }
  if (column.identity) {
    Constraint identity;
    identity.seed = definition.identity_seed;
    identity.increment = column.increment;
    Rebuild(before, {{column.name, std::to_string(identity.seed) + " + (row_number() OVER (ORDER BY _rowid_) - 1) * " +
                                       std::to_string(definition.identity_increment)}});
    SqliteStatement rows = database_.Prepare("SELECT count(*) FROM " + TableSql(table_));
    rows.Step("SELECT");
    maker_.RestartIdentity(table_, identity, rows.Integer(0));
    return;
  }
  const bool filled = definition.default_value != nullptr && (!column.nullable || definition.with_values);
  if (!column.nullable && !filled) {
    if (HasRow(TableSql(table_))) {
      throw SqlError(4901,
                     "ALTER TABLE only allows columns to be added that can contain nulls, or have a DEFAULT definition "
                     "specified, or the column being added is an identity or timestamp column, or alternatively if "
                     "none of the previous conditions are satisfied the table must be empty to allow addition of this "
                     "column. Column '" +
                         column.name + "' cannot be added to non-empty table '" + table_.own_name() +
                         "' because it does not satisfy these conditions.");
    }
    Rebuild(before);
    return;
  }
  std::string sql = "ALTER TABLE " + TableSql(table_) + " ADD COLUMN " + maker_.ColumnSql(table_, column);
  if (filled) sql += " DEFAULT " + ConstantSql(evaluator_.Value(*definition.default_value, column.type, activation_));
  database_.Run(sql);
}

void TableAlteration::AddComputed(const CatalogObject& before) {
  maker_.SettleComputed(table_);
  const Column& column = table_.columns.back();
  // What is stored has to be computed for the rows that stand, which SQLite does not do by itself.
  if (column.persisted) {
    Rebuild(before);
  } else {
    database_.Run("ALTER TABLE " + TableSql(table_) + " ADD COLUMN " + maker_.ColumnSql(table_, column));
  }
}

void TableAlteration::RequireAllowed(const Constraint& constraint) {
  if (constraint.kind == "I") return;
  const auto of_name = [&](const Constraint& other) { return EqualsIgnoreCase(other.name, constraint.name); };
  if (std::count_if(constraints_.begin(), constraints_.end(), of_name) > 1 ||
      (!table_.temporary && IsNameTaken(database_, table_.schema, constraint.name))) {
    throw SqlError(2714, "There is already an object named '" + constraint.name + "' in the database.");
  }
  if (constraint.is_key()) RequireKey(constraint);
  if (constraint.kind == "C") RequireChecked(constraint);
  if (constraint.kind == "F") RequireReference(constraint);
  if (constraint.kind == "D") AddDefault(constraint);
}

void TableAlteration::AddDefault(const Constraint& constraint) {
  const std::string& name = constraint.columns[0];
  const int place = table_.FindColumn(name);
  if (place < 0 || table_.columns[static_cast<std::size_t>(place)].computed()) {
    throw SqlError(1752, "Column '" + name + "' in table '" + table_.own_name() +
                             "' is invalid for creating a default constraint.");
  }
  Column& column = ColumnNamed(name);
  const std::string text = Unwrapped(constraint.text);
  const auto bound = std::count_if(constraints_.begin(), constraints_.end(),
                                   [&](const Constraint& other) { return other.kind == "D" && other.HasColumn(name); });
  if (bound > 1 || (!column.default_text.empty() && column.default_text != text)) {
    throw SqlError(1781, "Column already has a DEFAULT bound to it.");
  }
  if (column.identity) {
    throw SqlError(1754, "Defaults cannot be created on columns with an IDENTITY attribute. Table '" +
                             table_.own_name() + "', column '" + column.name + "'.");
  }
  column.default_text = text;
}

void TableAlteration::RequireKey(const Constraint& key) {
  RequireColumns(table_, key.columns);
  if (key.kind == "PK") {
    if (FindKind(constraints_, "PK") != &key) {
      throw SqlError(1779, "Table '" + table_.own_name() + "' already has a primary key defined on it.");
    }
    for (const std::string& name : key.columns) {
      if (!ColumnNamed(name).nullable) continue;
      throw SqlError(8111,
                     "Cannot define PRIMARY KEY constraint on nullable column in table '" + table_.own_name() + "'.");
    }
  }
  RequireDistinct(database_, table_, key.columns, key.name);
}

void TableAlteration::RequireChecked(const Constraint& check) {
  if (!HasRow(TableSql(table_) + " WHERE NOT (" + maker_.CheckSql(table_, check) + ")")) return;
  throw Conflict("ALTER TABLE", "CHECK", check.name, table_, check.columns);
}

void TableAlteration::RequireReference(const Constraint& reference) {
  const bool own = EqualsIgnoreCase(reference.to, table_.name);
  const CatalogObjectPtr other = own ? nullptr : database_.catalog().Find(reference.to);
  if (!own && (other == nullptr || other->kind != CatalogKind::kTable)) {
    throw SqlError(1767, "Foreign key '" + reference.name + "' references invalid table '" + reference.to + "'.");
  }
  const CatalogObject& target = own ? table_ : *other;
  for (const std::string& name : reference.columns) {
    if (table_.FindColumn(name) >= 0) continue;
    throw SqlError(1769, "Foreign key '" + reference.name + "' references invalid column '" + name +
                             "' in referencing table '" + table_.own_name() + "'.");
  }
  for (const std::string& name : reference.referenced) {
    if (target.FindColumn(name) >= 0) continue;
    throw SqlError(1770, "Foreign key '" + reference.name + "' references invalid column '" + name +
                             "' in referenced table '" + target.name + "'.");
  }
  const Constraints keys = own ? constraints_ : ReadConstraints(target.definition);
  const Constraint* primary = FindKind(keys, "PK");
  if (reference.referenced.empty() && primary == nullptr) {
    throw SqlError(1773, "Foreign key '" + reference.name + "' has implicit reference to object '" + target.name +
                             "' which does not have a primary key defined on it.");
  }
  const std::vector<std::string>& referenced = reference.referenced.empty() ? primary->columns : reference.referenced;
  const bool is_key = std::any_of(keys.begin(), keys.end(), [&](const Constraint& key) {
    return key.is_key() && AreSameColumns(key.columns, referenced);
  });
  if (!is_key || referenced.size() != reference.columns.size()) {
    throw SqlError(1776, "There are no primary or candidate keys in the referenced table '" + target.name +
                             "' that match the referencing column list in the foreign key '" + reference.name + "'.");
  }
  RequireReferred(reference, target, referenced);
}

void TableAlteration::RequireReferred(const Constraint& reference, const CatalogObject& other,
                                      const std::vector<std::string>& referenced) {
  for (std::size_t i = 0; i < referenced.size(); ++i) {
    const Column& own = ColumnNamed(reference.columns[i]);
    const Column& column = other.columns[static_cast<std::size_t>(other.FindColumn(referenced[i]))];
    if (own.type.kind == column.type.kind) continue;
    throw SqlError(1778, "Column '" + other.name + "." + column.name +
                             "' is not the same data type as referencing column '" + table_.name + "." + own.name +
                             "' in foreign key '" + reference.name + "'.");
  }
  if (!HasBrokenReference(database_, table_, reference, other, referenced)) return;
  throw Conflict("ALTER TABLE", "FOREIGN KEY", reference.name, other, referenced);
}

void TableAlteration::Drop(const std::vector<AlterTableStatement::Dropped>& items) {
  database_.Atomically([&] {
    DropConstraints(items);
    for (const AlterTableStatement::Dropped& item : items) {
      if (item.column) DropColumn(item);
    }
  });
}

Constraint& TableAlteration::FindToDrop(const std::string& name) {
  const auto found = std::find_if(constraints_.begin(), constraints_.end(), [&](const Constraint& constraint) {
    return constraint.kind != "I" && EqualsIgnoreCase(constraint.name, name);
  });
  if (found == constraints_.end() || name.empty()) throw SqlError(3728, "'" + name + "' is not a constraint.");
  if (!found->is_key()) return *found;
  for (const IncomingReference& reference : ReferencesTo(database_, table_)) {
    if (!AreSameColumns(reference.referenced, found->columns)) continue;
    throw SqlError(3725, "The constraint '" + found->name + "' is being referenced by table '" + reference.table +
                             "', foreign key constraint '" + reference.name + "'.");
  }
  return *found;
}

void TableAlteration::DropConstraints(const std::vector<AlterTableStatement::Dropped>& items) {
  const CatalogObject before = table_;
  bool rebuilds = false;
  bool any = false;
  for (const AlterTableStatement::Dropped& item : items) {
    const bool there = std::any_of(constraints_.begin(), constraints_.end(), [&](const Constraint& constraint) {
      return EqualsIgnoreCase(constraint.name, item.name);
    });
    if (item.column || (item.if_exists && !there)) continue;
    Constraint& constraint = FindToDrop(item.name);
    if (constraint.kind == "D") {
      ColumnNamed(constraint.columns[0]).default_text.clear();
      // A column that was added with a default has it in SQLite's table, too.
      rebuilds = rebuilds || HasRow("pragma_table_info(" + QuoteText(table_.table_name()) + ", " +
                                    QuoteText(std::string(SchemaOf(table_))) +
                                    ") WHERE dflt_value IS NOT NULL AND name = " + QuoteText(constraint.columns[0]) +
                                    " COLLATE NOCASE");
    } else {
      rebuilds = true;
    }
    constraint = {};
    any = true;
  }
  if (any) rebuilds ? Rebuild(before) : Note();
}

void TableAlteration::DropColumn(const AlterTableStatement::Dropped& item) {
  const int position = table_.FindColumn(item.name);
  if (position < 0) {
    if (item.if_exists) return;
    RaiseNoSuchColumn("DROP", item.name, table_.own_name());
  }
  const Column column = ColumnNamed(item.name);
  RequireFree(column, nullptr);
  if (table_.columns.size() == 1) {
    throw SqlError(4923, "ALTER TABLE DROP COLUMN failed because '" + column.name +
                             "' is the only data column in table '" + table_.own_name() +
                             "'. A table must have at least one data column.");
  }
  const CatalogObject before = table_;
  table_.columns.erase(table_.columns.begin() + position);
  for (Constraint& constraint : constraints_) {
    if (constraint.kind == "I" && constraint.HasColumn(column.name)) constraint = {};
  }
  if (column.identity || column.row_key) {
    Rebuild(before);
    return;
  }
  database_.Run("ALTER TABLE " + TableSql(table_) + " DROP COLUMN " + QuoteName(column.name));
  Note();
}

void TableAlteration::RequireFreeOfConstraint(const Constraint& constraint, const Column& column, const Column* to) {
  const bool is_check = constraint.kind == "C";
  const bool uses =
      constraint.HasColumn(column.name) || (is_check && NamesColumn(database_, constraint.text, column.name));
  if (constraint.kind == "I" || constraint.kind == "IX" || constraint.kind.empty() || !uses) return;
  if (to != nullptr) {
    const bool turns = !(column.type == to->type);
    const bool grows = OnlyGrows(column.type, to->type);
    const bool hinders = constraint.kind == "D"    ? column.type.kind != to->type.kind
                         : constraint.kind == "UQ" ? (turns && !grows) || column.nullable != to->nullable
                         : constraint.kind == "PK" ? turns || to->nullable
                         : is_check                ? turns && !grows
                                                   : turns;
    if (!hinders) return;
  }
  RaiseDependent("object", constraint.name, column.name);
}

void TableAlteration::RequireFree(const Column& column, const Column* to) {
  for (const Constraint& constraint : constraints_) RequireFreeOfConstraint(constraint, column, to);
  const bool turns = to == nullptr || !(column.type == to->type);
  for (const IncomingReference& reference : ReferencesTo(database_, table_)) {
    const bool uses = std::any_of(reference.referenced.begin(), reference.referenced.end(),
                                  [&](const std::string& name) { return EqualsIgnoreCase(name, column.name); });
    if (uses && turns) RaiseDependent("object", reference.name, column.name);
  }
  for (const Column& other : table_.columns) {
    if (turns && other.computed() && NamesColumn(database_, other.computed_text, column.name)) {
      RaiseDependent("column", other.name, column.name);
    }
  }
  const std::string bound = turns ? BoundTo(database_, table_, column.name) : "";
  if (!bound.empty()) RaiseDependent("object", bound, column.name);
  const bool grows = to != nullptr && OnlyGrows(column.type, to->type) && column.nullable == to->nullable;
  if (grows) return;
  const std::vector<std::string> indexes = IndexesOn(database_, table_, column.name);
  if (!indexes.empty()) RaiseDependent("index", indexes[0], column.name);
}

void TableAlteration::AlterColumn(const ColumnDefinition& definition) {
  RequireCollation(definition.collation, 0);
  if (table_.FindColumn(definition.name) < 0) RaiseNoSuchColumn("ALTER", definition.name, table_.own_name());
  const Column from = ColumnNamed(definition.name);
  if (from.computed()) throw SqlError(4928, "Cannot alter column '" + from.name + "' because it is 'COMPUTED'.");
  Column to = from;
  to.type = ResolveType(definition.type, false);
  const Constraint* primary = FindKind(constraints_, "PK");
  const bool never_null = from.identity || (primary != nullptr && primary->HasColumn(from.name));
  to.nullable = definition.nullable.value_or(!never_null);
  if (from.identity && !to.type.is_integer() && !(to.type.is_exact() && to.type.scale == 0)) {
    throw SqlError(2749,
                   "Identity column '" + from.name +
                       "' must be of data type int, bigint, smallint, tinyint, or decimal or numeric with a scale "
                       "of 0, unencrypted, and constrained to be nonnullable.");
  }
  if (from.type == to.type && from.nullable == to.nullable) return;
  RequireFree(from, &to);
  if (from.nullable && !to.nullable && HasRow(TableSql(table_) + " WHERE " + QuoteName(from.name) + " IS NULL")) {
    throw SqlError(515, "Cannot insert the value NULL into column '" + from.name + "', table '" + table_.shown_name() +
                            "'; column does not allow nulls. UPDATE fails.");
  }
  const CatalogObject before = table_;
  ColumnNamed(from.name) = to;
  const std::string value = plans_.MakeTranslator(activation_).TranslateAssigned(before, from, to);
  const bool stays = from.nullable == to.nullable && value == QuoteName(from.name) &&
                     SqliteColumnType(from.type) == SqliteColumnType(to.type);
  database_.Atomically([&] { stays ? Note() : Rebuild(before, {{from.name, value}}); });
}

}  // namespace tessarlorn::tsql
