#include "tsql/translate/changes/insert.h"

#include <algorithm>
#include <utility>

#include "tsql/storage/constraint_text.h"
#include "tsql/translate/changes/assignments.h"
#include "tsql/translate/changes/output.h"
#include "tsql/translate/common/conversion.h"
#include "tsql/translate/queries/query.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

struct Default {
  std::string column;
  std::string sql;
};

[[noreturn]] void RaiseWrongCount(bool too_few, bool of_select) {
  if (too_few && of_select) {
    throw SqlError(120,
                   "The select list for the INSERT statement contains fewer items than the insert list. "
                   "The number of SELECT values must match the number of INSERT columns.",
                   15);
  }
  if (too_few) {
    throw SqlError(109,
                   "There are more columns in the INSERT statement than values specified in the "
                   "VALUES clause. The number of values in the VALUES clause must match the number "
                   "of columns specified in the INSERT statement.",
                   15);
  }
  if (of_select) {
    throw SqlError(121,
                   "The select list for the INSERT statement contains more items than the insert list. "
                   "The number of SELECT values must match the number of INSERT columns.",
                   15);
  }
  throw SqlError(110,
                 "There are fewer columns in the INSERT statement than values specified in the "
                 "VALUES clause. The number of values in the VALUES clause must match the number "
                 "of columns specified in the INSERT statement.",
                 15);
}

class InsertTranslator {
 public:
  InsertTranslator(Translation& translation, const InsertStatement& insert, const TranslatedQuery* given)
      : translation_(translation), insert_(insert), given_(given) {}

  Compiled Translate(bool identity_insert);
  /// One row of values for the table.
  std::vector<std::pair<std::string, std::string>> Row(const CatalogObjectPtr& table,
                                                       const std::vector<ExpressionPtr>& values, bool identity_insert,
                                                       Scope& scope);

 private:
  [[nodiscard]] const Column& ColumnAt(int position) const {
    return table_->columns[static_cast<std::size_t>(position)];
  }
  [[nodiscard]] std::string Value(const Typed& value, const Column& column) const {
    const std::string sql = Assigned(translation_.parameters, value, column, table_->shown_name());
    return column.increment == 0 ? sql : Counted(column, sql);
  }
  /// The value of an identity that SQLite does not count, "NULL" for the next one.
  [[nodiscard]] std::string Counted(const Column& column, const std::string& value) const;
  /// Finds the columns that get values. Raises 264 and 544.
  void FindPositions(bool identity_insert);
  /// Raises 545.
  void RequireIdentity(bool identity_insert) const;
  /// The defaults of the columns that are not among `given`.
  std::vector<Default> Defaults(const std::vector<int>& given);
  std::string DefaultOf(int position);
  std::string Given(const Expression& value, int position, Scope& scope);
  [[nodiscard]] std::string Head() const;
  void CheckCount(std::size_t count, bool of_select) const;
  std::string InsertDefaults();
  std::string InsertValues(const ValueRows& values);
  std::string InsertRows(const TranslatedQuery& rows, bool of_select);
  std::string Text();

  Translation& translation_;
  const InsertStatement& insert_;
  const TranslatedQuery* given_;
  CatalogObjectPtr table_;
  std::vector<int> positions_;
  bool gives_identity_ = false;
  std::vector<Default> defaults_;
};

void InsertTranslator::FindPositions(bool identity_insert) {
  const int identity = table_->identity_column();
  for (const std::string& name : insert_.columns) {
    const int position = RequireColumn(*table_, name);
    RequireChangeable(ColumnAt(position));
    if (std::find(positions_.begin(), positions_.end(), position) != positions_.end()) RaiseColumnTwice(name);
    positions_.push_back(position);
  }
  if (insert_.columns.empty()) {
    for (int i = 0; i < static_cast<int>(table_->columns.size()); ++i) {
      if (i != identity && !ColumnAt(i).computed()) positions_.push_back(i);
    }
  }
  gives_identity_ = std::find(positions_.begin(), positions_.end(), identity) != positions_.end();
  if (identity >= 0 && gives_identity_ && !identity_insert) {
    throw SqlError(544, "Cannot insert explicit value for identity column in table '" + table_->own_name() +
                            "' when IDENTITY_INSERT is set to OFF.");
  }
}

void InsertTranslator::RequireIdentity(bool identity_insert) const {
  if (!identity_insert || gives_identity_ || table_->identity_column() < 0) return;
  throw SqlError(545, "Explicit value must be specified for identity column in table '" + table_->own_name() +
                          "' either when IDENTITY_INSERT is set to ON or when a replication user is inserting into a "
                          "NOT FOR REPLICATION identity column.");
}

std::string InsertTranslator::Counted(const Column& column, const std::string& value) const {
  const Constraints constraints = ReadConstraints(table_->definition);
  const Constraint* identity = FindKind(constraints, "I");
  return std::string("ts_identity('") + (table_->temporary ? "temp" : "main") + ".sqlite_sequence', " +
         QuoteText(table_->table_name()) + ", " + std::to_string(identity == nullptr ? 1 : identity->seed) + ", " +
         std::to_string(column.increment) + ", " + Packed(column.type) + ", " + value + ")";
}

std::vector<Default> InsertTranslator::Defaults(const std::vector<int>& given) {
  std::vector<Default> defaults;
  for (int i = 0; i < static_cast<int>(table_->columns.size()); ++i) {
    const Column& column = ColumnAt(i);
    if (column.computed() || std::find(given.begin(), given.end(), i) != given.end()) continue;
    if (column.increment != 0) {
      defaults.push_back({column.name, Counted(column, "NULL")});
    } else if (column.default_text.empty()) {
      if (column.row_key) defaults.push_back({column.name, Required("NULL", column, table_->shown_name())});
    } else {
      defaults.push_back({column.name, DefaultSql(translation_, *table_, column)});
    }
  }
  return defaults;
}

// The value of DEFAULT among the values.
std::string InsertTranslator::DefaultOf(int position) {
  std::vector<int> others;
  for (int other = 0; other < static_cast<int>(table_->columns.size()); ++other) {
    if (other != position) others.push_back(other);
  }
  const std::vector<Default> own = Defaults(others);
  return own.empty() ? "NULL" : own[0].sql;
}

std::string InsertTranslator::Given(const Expression& value, int position, Scope& scope) {
  const NumbersAt numbers(translation_, NumberPlace::kHere);
  if (As<DefaultValue>(value) != nullptr) return DefaultOf(position);
  return Value(translation_.Value(value, scope), ColumnAt(position));
}

std::vector<std::pair<std::string, std::string>> InsertTranslator::Row(const CatalogObjectPtr& table,
                                                                       const std::vector<ExpressionPtr>& values,
                                                                       bool identity_insert, Scope& scope) {
  table_ = table;
  FindPositions(identity_insert);
  if (values.empty()) positions_.clear();
  CheckCount(values.size(), false);
  RequireIdentity(identity_insert);
  std::vector<std::pair<std::string, std::string>> row;
  for (std::size_t i = 0; i < positions_.size(); ++i) {
    row.emplace_back(ColumnAt(positions_[i]).name, Given(*values[i], positions_[i], scope));
  }
  for (const Default& value : Defaults(positions_)) row.emplace_back(value.column, value.sql);
  return row;
}

std::string InsertTranslator::Head() const {
  std::string columns;
  for (const int position : positions_) columns += (columns.empty() ? "" : ", ") + QuoteName(ColumnAt(position).name);
  for (const Default& value : defaults_) columns += (columns.empty() ? "" : ", ") + QuoteName(value.column);
  return "INSERT INTO " + TableSql(*table_) + " (" + columns + ") ";
}

void InsertTranslator::CheckCount(std::size_t count, bool of_select) const {
  if (count == positions_.size()) return;
  if (insert_.columns.empty() && table_->identity_column() >= 0 && count == positions_.size() + 1) {
    throw SqlError(8101, "An explicit value for the identity column in table '" + table_->own_name() +
                             "' can only be specified when a column list is used and IDENTITY_INSERT is ON.");
  }
  if (insert_.columns.empty()) {
    throw SqlError(213, "Column name or number of supplied values does not match table definition.");
  }
  RaiseWrongCount(count < positions_.size(), of_select);
}

std::string InsertTranslator::InsertDefaults() {
  if (defaults_.empty()) return "INSERT INTO " + TableSql(*table_) + " DEFAULT VALUES";
  std::string values;
  for (const Default& value : defaults_) values += (values.empty() ? "" : ", ") + value.sql;
  return Head() + "VALUES (" + values + ")";
}

std::string InsertTranslator::InsertValues(const ValueRows& values) {
  Scope scope;
  RequireSameWidth(values);
  std::string sql = Head() + "VALUES ";
  const int places = translation_.number_places;
  for (std::size_t r = 0; r < values.rows.size(); ++r) {
    CheckCount(values.rows[r].size(), false);
    // Each row has the places of the first for numbers of sequences.
    translation_.number_places = places;
    std::string row;
    for (std::size_t i = 0; i < positions_.size(); ++i) {
      row += (i == 0 ? "" : ", ") + Given(*values.rows[r][i], positions_[i], scope);
    }
    // Each row takes the parameters of the first row's defaults.
    for (const Default& value : defaults_) row += (row.empty() ? "" : ", ") + value.sql;
    sql += (r == 0 ? "(" : ", (") + row + ")";
  }
  return sql;
}

std::string InsertTranslator::InsertRows(const TranslatedQuery& rows, bool of_select) {
  CheckCount(rows.columns.size(), of_select);
  // The query stands inside, so that its columns can be converted by name whatever it is made of.
  std::string list;
  std::string values;
  for (std::size_t i = 0; i < positions_.size(); ++i) {
    const std::string name = "c" + std::to_string(i);
    list += (i == 0 ? "" : ", ") + name;
    values += (i == 0 ? "" : ", ") + Value({name, rows.columns[i].type, true, -1}, ColumnAt(positions_[i]));
  }
  for (const Default& value : defaults_) values += ", " + value.sql;
  return Head() + "SELECT " + values + " FROM (WITH i(" + list + ") AS (" + rows.sql + ") SELECT * FROM i)";
}

std::string InsertTranslator::Text() {
  if (given_ != nullptr) return InsertRows(*given_, false);
  const auto* query = std::get_if<QueryPtr>(&insert_.source);
  if (query == nullptr) return InsertDefaults();
  if (const ValueRows* values = (*query)->rows()) return InsertValues(*values);
  SelectOptions options;
  options.may_order = true;
  const NumbersAt numbers(translation_, NumberPlace::kItems);
  return InsertRows(translation_.QueryText(**query, nullptr, options), (*query)->select() != nullptr);
}

Compiled InsertTranslator::Translate(bool identity_insert) {
  const std::string with = TranslateWith(translation_, insert_.with, nullptr);
  table_ = translation_.Lookup(insert_.table);
  RequireTable(*table_);
  FindPositions(identity_insert);
  if (std::holds_alternative<DefaultValues>(insert_.source)) positions_.clear();
  defaults_ = Defaults(positions_);
  const std::string text = with + Text();
  RequireIdentity(identity_insert);
  Compiled compiled = FinishChange(translation_, insert_.output, *table_, "inserted", text);
  compiled.verb = "INSERT";
  compiled.changed_table = table_->name;
  if (table_->identity_column() >= 0) compiled.identity_table = table_->table_name();
  return compiled;
}

}  // namespace

Compiled CompileInsert(Translation& translation, const InsertStatement& insert, bool identity_insert,
                       const TranslatedQuery* given) {
  return InsertTranslator(translation, insert, given).Translate(identity_insert);
}

std::vector<std::pair<std::string, std::string>> InsertedValues(Translation& translation, const CatalogObjectPtr& table,
                                                                const std::vector<std::string>& columns,
                                                                const std::vector<ExpressionPtr>& values,
                                                                bool identity_insert, Scope& scope) {
  InsertStatement insert;
  insert.columns = columns;
  return InsertTranslator(translation, insert, nullptr).Row(table, values, identity_insert, scope);
}

Compiled CompileInsertInto(Translation& translation, const CatalogObject& table, const Query& query) {
  std::string columns;
  for (const Column& column : table.columns) columns += (columns.empty() ? "" : ", ") + QuoteName(column.name);
  SelectOptions options;
  options.may_order = true;
  const NumbersAt numbers(translation, NumberPlace::kItems);
  const TranslatedQuery rows = translation.QueryText(query, nullptr, options);
  Compiled compiled =
      translation.parameters.Finish("INSERT INTO " + TableSql(table) + " (" + columns + ") " + rows.sql);
  compiled.verb = "INSERT";
  compiled.changed_table = table.name;
  if (table.identity_column() >= 0) compiled.identity_table = table.table_name();
  return compiled;
}

}  // namespace tessarlorn::tsql
