#include "tsql/engine/triggers.h"

#include <algorithm>
#include <utility>

#include "tsql/engine/definitions/table_maker.h"
#include "tsql/storage/constraint_text.h"
#include "tsql/storage/trigger_rule.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::string_view kEventNames[] = {"INSERT", "UPDATE", "DELETE"};

std::vector<std::string> ColumnsOf(const std::vector<Assignment>& assignments) {
  std::vector<std::string> columns;
  for (const Assignment& assignment : assignments) {
    if (!assignment.column.empty()) columns.push_back(assignment.column.back());
  }
  return columns;
}

std::vector<RowChange> RowChangesOf(const MergeStatement& merge) {
  std::vector<RowChange> changes;
  const auto add = [&](RowEvent event, const std::vector<std::string>& columns) {
    auto found = std::find_if(changes.begin(), changes.end(), [=](const RowChange& one) { return one.event == event; });
    if (found == changes.end()) found = changes.insert(found, RowChange{event, {}});
    found->columns.insert(found->columns.end(), columns.begin(), columns.end());
  };
  for (const MergeStatement::Branch& branch : merge.branches) {
    std::visit(Overloaded{
                   [&](const MergeStatement::Update& update) { add(RowEvent::kUpdate, ColumnsOf(update.assignments)); },
                   [&](const MergeStatement::Delete&) { add(RowEvent::kDelete, {}); },
                   [&](const MergeStatement::Insert&) { add(RowEvent::kInsert, {}); },
               },
               branch.action);
  }
  return changes;
}

/// The columns of a table's primary key as SQLite reads them, "" for none.
std::string KeyOf(const CatalogObject& table) {
  const Constraints constraints = ReadConstraints(table.definition);
  const Constraint* primary = FindKind(constraints, "PK");
  return primary == nullptr ? std::string() : NameList(primary->columns);
}

}  // namespace

std::vector<RowChange> RowChangesOf(const Statement& statement) {
  if (const auto* merge = As<MergeStatement>(statement)) return RowChangesOf(*merge);
  if (const auto* update = As<UpdateStatement>(statement)) {
    return {{RowEvent::kUpdate, ColumnsOf(update->assignments)}};
  }
  return {{As<DeleteStatement>(statement) != nullptr ? RowEvent::kDelete : RowEvent::kInsert, {}}};
}

/// The rows that a change adds and takes away, in temporary tables. Triggers of SQLite's own note them: these see every
/// change, whichever way a statement goes about it. The tables stay for the next change.
class Triggers::Rows {
 public:
  /// @param level how many triggers run around it
  Rows(SessionDatabase& database, const CatalogObject& table, std::size_t level)
      : database_(database), table_(table), level_(std::to_string(level)) {
    std::string types;
    for (const Column& column : table.columns) {
      columns_ += ", " + QuoteName(column.name);
      types += ", " + QuoteName(column.name) + " " + std::string(SqliteColumnType(column.type));
    }
    types.erase(0, 2);
    if (Stand(types)) return;
    const std::string key = KeyOf(table);
    for (const std::string& name : {All(), Shown(true), Shown(false)}) {
      database_.Run("DROP TABLE IF EXISTS temp." + QuoteName(name));
    }
    database_.Run("CREATE TEMP TABLE " + QuoteName(All()) + " (\"$event\", \"$added\", " + types + ")");
    for (const bool added : {true, false}) {
      database_.Run("CREATE TEMP TABLE " + QuoteName(Shown(added)) + " (" + types + ")");
      // A body joins the two by the table's key.
      std::string index = "CREATE INDEX temp." + QuoteName("$key of " + Shown(added));
      index.append(" ON ").append(QuoteName(Shown(added))).append(" (").append(key).append(")");
      if (!key.empty()) database_.Run(index);
    }
  }
  Rows(const Rows&) = delete;
  Rows& operator=(const Rows&) = delete;
  ~Rows() {
    for (const std::string& name : {All(), Shown(true), Shown(false)}) {
      database_.RunQuietly("DELETE FROM temp." + QuoteName(name));
    }
  }

  void Watch(const std::vector<RowChange>& changes) {
    const auto is = [&](RowEvent event) {
      return std::any_of(changes.begin(), changes.end(),
                         [=](const RowChange& change) { return change.event == event; });
    };
    // Rows that get each other's keys are taken away and put back.
    const bool update = is(RowEvent::kUpdate);
    if (update) WatchFor(RowEvent::kUpdate, {"OLD", "NEW"});
    if (update || is(RowEvent::kInsert)) WatchFor(RowEvent::kInsert, {"NEW"});
    if (update || is(RowEvent::kDelete)) WatchFor(RowEvent::kDelete, {"OLD"});
  }
  void StopWatching() {
    for (const std::string_view event : kEventNames) database_.Run("DROP TRIGGER IF EXISTS temp." + Watcher(event));
  }

  /// Fills the tables that triggers see. @param event of which the rows are; nullptr for all of them
  void Show(const RowEvent* event) {
    const std::string of_event =
        event == nullptr ? "" : " AND \"$event\" = " + std::to_string(static_cast<int>(*event));
    for (const bool added : {true, false}) {
      const std::string name = "temp." + QuoteName(Shown(added));
      std::string fill = "DELETE FROM " + name;
      fill.append("; INSERT INTO ").append(name).append(" SELECT ").append(columns_, 2);
      fill.append(" FROM temp.")
          .append(QuoteName(All()))
          .append(added ? " WHERE \"$added\" = 1" : " WHERE \"$added\" = 0");
      database_.Run(fill.append(of_event).append(" ORDER BY _rowid_"));
    }
    database_.catalog().EnterTrigger(Definition(true), Definition(false));
  }
  void Hide() { database_.catalog().LeaveTrigger(); }

 private:
  [[nodiscard]] std::string All() const { return "$changes " + level_; }
  [[nodiscard]] std::string Shown(bool added) const { return (added ? "$inserted " : "$deleted ") + level_; }
  [[nodiscard]] std::string Watcher(std::string_view event) const {
    return QuoteName("$" + std::string(event) + " " + level_);
  }

  /// Whether the tables are there with these columns, made for an earlier change.
  [[nodiscard]] bool Stand(const std::string& types) {
    SqliteStatement tables =
        database_.Prepare("SELECT count(*) FROM temp.sqlite_schema WHERE name IN (?1, ?2, ?3) AND instr(sql, ?4) > 0");
    int parameter = 0;
    for (const std::string& name : {All(), Shown(true), Shown(false)}) tables.BindText(++parameter, name);
    tables.BindText(4, types);
    tables.Step();
    return tables.Integer(0) == parameter;
  }

  void WatchFor(RowEvent event, const std::vector<std::string_view>& rows) {
    const auto number = static_cast<std::size_t>(event);
    std::string sql = "CREATE TEMP TRIGGER " + Watcher(kEventNames[number]) + " AFTER " +
                      std::string(kEventNames[number]) + " ON main." + QuoteName(table_.name) + " BEGIN ";
    for (const std::string_view row : rows) {
      sql += "INSERT INTO " + QuoteName(All()) + " VALUES (ts_row_event(" + std::to_string(number) +
             (row == "NEW" ? "), 1" : "), 0");
      for (const Column& column : table_.columns) sql.append(", ").append(row).append(".") += QuoteName(column.name);
      sql += "); ";
    }
    database_.Run(sql + "END");
  }

  [[nodiscard]] CatalogObject Definition(bool added) const {
    CatalogObject rows;
    rows.name = added ? "inserted" : "deleted";
    rows.stored_name = Shown(added);
    rows.temporary = true;
    for (const Column& column : table_.columns) {
      rows.columns.push_back({column.name, column.type, column.nullable, false, ""});
    }
    return rows;
  }

  SessionDatabase& database_;
  const CatalogObject& table_;
  std::string level_;
  std::string columns_;
};

bool Triggers::WatchOver(std::string_view table) const {
  const std::vector<CatalogObjectPtr> triggers = database_.catalog().TriggersOf(table);
  return std::any_of(triggers.begin(), triggers.end(),
                     [](const CatalogObjectPtr& trigger) { return RuleOf(*trigger).on; });
}

std::vector<CatalogObjectPtr> Triggers::AnsweringTo(RowEvent event, std::string_view table) const {
  std::vector<CatalogObjectPtr> answering = database_.catalog().TriggersOf(table);
  std::erase_if(answering, [&](const CatalogObjectPtr& trigger) {
    const bool itself = !state_.firing.empty() && state_.firing.back().trigger->id == trigger->id;
    return itself || !RuleOf(*trigger).Answers(event);
  });
  return answering;
}

void Triggers::FireOne(const TriggerState::Firing& firing) {
  const int depth = transaction_.depth();
  state_.firing.push_back(firing);
  try {
    run_(*firing.trigger);
  } catch (const SqlError& error) {
    state_.firing.pop_back();
    SqlError ending = error.EndingBatch();
    ending.set_takes_transaction_back();
    throw ending;
  }
  state_.firing.pop_back();
  if (transaction_.doomed()) {
    SqlError ending = SqlError(3616,
                               "An error was raised during trigger execution. The batch has been aborted and the user "
                               "transaction, if any, has been rolled back.")
                          .EndingBatch();
    ending.set_takes_transaction_back();
    throw ending;
  }
  if (transaction_.depth() < depth) {
    throw SqlError(3609, "The transaction ended in the trigger. The batch has been aborted.").EndingBatch();
  }
}

void Triggers::Fire(const CatalogObjectPtr& table, const std::vector<RowChange>& changes, Rows& rows) {
  const std::int64_t changed = results_.row_count();
  for (const RowChange& change : changes) {
    const std::vector<CatalogObjectPtr> triggers = AnsweringTo(change.event, table->name);
    if (triggers.empty()) continue;
    rows.Show(changes.size() > 1 ? &change.event : nullptr);
    try {
      for (const CatalogObjectPtr& trigger : triggers) {
        results_.set_row_count(changed);
        FireOne({trigger, table, &change});
      }
    } catch (...) {
      rows.Hide();
      throw;
    }
    rows.Hide();
  }
  results_.set_row_count(changed);
}

void Triggers::Around(const std::string& table, const std::vector<RowChange>& changes,
                      const std::function<void()>& change) {
  const bool fires = std::any_of(changes.begin(), changes.end(),
                                 [&](const RowChange& one) { return !AnsweringTo(one.event, table).empty(); });
  if (!fires) {
    change();
    return;
  }
  const CatalogObjectPtr definition = database_.catalog().Get(table);
  const bool alone = transaction_.BeginStatement();
  try {
    Rows rows(database_, *definition, state_.firing.size());
    database_.Atomically([&] {
      rows.Watch(changes);
      change();
      rows.StopWatching();
    });
    Fire(definition, changes, rows);
  } catch (const SqlError&) {
    if (alone && transaction_.depth() > 0) transaction_.End(false);
    throw;
  }
  if (alone) transaction_.EndStatement();
}

}  // namespace tessarlorn::tsql
