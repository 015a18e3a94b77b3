#include "tsql/engine/row_statements.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "tsql/storage/constraint_text.h"
#include "tsql/syntax/ast_walk.h"
#include "tsql/translate/common/function_text.h"

namespace tessarlorn::tsql {
void RowStatements::NoteChange(const Compiled& change) {
  if (results_.row_count() == 0) return;
  if (!change.identity_table.empty()) transaction_.NoteIdentity(change.identity_table);
  BatchWatcher* const watcher = WatcherOfThread();
  if (watcher == nullptr || transaction_.on_trial() || change.changed_table.empty() ||
      IsTemporaryName(change.changed_table))
    return;
  watcher->Changed(change.changed_table, results_.row_count());
}

void RowStatements::Run(Compiled& change, const Activation& activation) {
  binder_.Bind(change, activation);
  const SqliteStatement::Use use(change.statement);
  results_.Change(change);
  NoteChange(change);
}

void RowStatements::Select(const Statement& statement, const Activation& activation) {
  const Query& query = *std::get<SelectStatement>(statement.node).query;
  if (query.makes_table()) {
    SelectInto(query, activation);
    return;
  }
  const Transaction::Snapshot snapshot(transaction_, database_.catalog());
  Compiled& compiled = plans_.OfStatement(statement, activation);
  binder_.Bind(compiled, activation);
  const SqliteStatement::Use use(compiled.statement);
  if (compiled.assigned.empty()) {
    results_.Read(compiled);
  } else {
    results_.Assign(compiled, *activation.frame);
  }
}

void RowStatements::Describe(const Statement& statement, const Activation& activation) {
  const Query& query = *std::get<SelectStatement>(statement.node).query;
  if (query.select() == nullptr || query.makes_table()) return;
  const Transaction::Snapshot snapshot(transaction_, database_.catalog());
  const std::vector<TableSourcePtr>& from = query.select()->from;
  const auto* named = from.size() == 1 ? std::get_if<NamedTable>(&from[0]->node) : nullptr;
  const CatalogObjectPtr table = named != nullptr ? database_.catalog().Find(named->name.name) : nullptr;
  const int identity = table == nullptr ? -1 : table->identity_column();
  std::vector<Field> fields;
  for (const ResultColumn& column : plans_.OfStatement(statement, activation).columns) {
    Field& field = fields.emplace_back(ToField(column.name, column.type, column.nullable));
    field.identity = identity >= 0 && identity == table->FindColumn(column.name);
  }
  if (!fields.empty()) results_.Describe(std::move(fields));
}

void RowStatements::SelectInto(const Query& query, const Activation& activation) {
  const Transaction::Snapshot snapshot(transaction_, database_.catalog());
  const ObjectName& into = query.select()->into;
  CatalogObject made = definitions_.NewObject(CatalogKind::kTable, into);
  made.temporary = into.temporary();
  Constraints constraints;
  for (const ResultColumn& column : plans_.MakeTranslator(activation).DescribeQuery(query, "")) {
    SqlType type = column.type.untyped_null ? IntType() : column.type;
    if (type.is_integer()) type.precision = 0;
    type.order = TextOrder::kCodePoints;
    made.columns.push_back({column.name, type, column.nullable, column.identity, ""});
    if (!column.identity) continue;
    made.columns.back().increment = column.increment;
    constraints.push_back({"I", "I_" + made.name + "_" + column.name, {column.name}});
    constraints.back().seed = column.seed;
    constraints.back().increment = column.increment;
  }
  made.definition = WriteConstraints(constraints);
  database_.Atomically([&] {
    definitions_.CreateTable(std::move(made), activation);
    const CatalogObjectPtr table = database_.catalog().Get(into.name);
    Compiled compiled = plans_.MakeTranslator(activation).CompileInsertInto(*table, query);
    Run(compiled, activation);
    definitions_.CountOn(*table, activation);
  });
  results_.TellRowCount();
}

void RowStatements::Truncate(const TruncateStatement& statement, const Activation& activation) {
  RequireLocal(statement.table);
  Catalog& catalog = database_.catalog();
  const CatalogObjectPtr table = catalog.Get(catalog.Meant(statement.table, activation.plan->schema));
  if (table->kind != CatalogKind::kTable) {
    throw SqlError(4708, "Could not truncate object '" + WrittenName(statement.table) + "' because it is not a table.");
  }
  definitions_.RequireUnreferenced(
      *table, 4712,
      "Cannot truncate table '" + table->name + "' because it is being referenced by a FOREIGN KEY constraint.");
  database_.Run("DELETE FROM " + TableSql(*table));
  if (table->identity_column() >= 0) definitions_.RestartIdentity(*table, activation);
}

bool RowStatements::RunCompiled(const Statement& statement, const Activation& activation) {
  std::optional<Transaction::Snapshot> snapshot(std::in_place, transaction_, database_.catalog());
  Compiled& compiled = plans_.OfStatement(statement, activation);
  if (!compiled.stages.empty()) {
    // SQLite drops no table while anything is read.
    snapshot.reset();
    RunStages(compiled, activation);
    return !compiled.columns.empty();
  }
  if (compiled.columns.empty()) {
    Run(compiled, activation);
    return false;
  }
  binder_.Bind(compiled, activation);
  const SqliteStatement::Use use(compiled.statement);
  results_.Read(compiled);
  NoteChange(compiled);
  return true;
}

void RowStatements::Collect(const Compiled& change, const ChangeStage& stage, const Activation& activation) {
  Compiled& collect = *stage.collect;
  binder_.Bind(collect, activation);
  const SqliteStatement::Use use(collect.statement);
  try {
    results_.Change(collect);
  } catch (const SqlError& error) {
    if (!change.rows_once || error.number() != 2627) throw;
    throw SqlError(
        8672,
        "The MERGE statement attempted to UPDATE or DELETE the same row more than once. This happens when a "
        "target row matches more than one source row. A MERGE statement cannot UPDATE/DELETE the same row of "
        "the target table multiple times. Refine the ON clause to ensure a target row matches at most one "
        "source row, or use the GROUP BY clause to group the source rows.");
  }
}

std::int64_t RowStatements::Apply(const Compiled& change, const ChangeStage& stage) {
  if (!stage.changed_columns.empty()) return ApplyUpdate(*database_.catalog().Get(change.changed_table), stage);
  if (!stage.gives_numbers) {
    SqliteStatement apply = database_.Prepare(stage.apply);
    apply.Step(stage.verb);
    return apply.changes();
  }
  const std::string rows = "temp." + QuoteName(stage.table);
  SqliteStatement row = database_.Prepare(stage.apply + " AND _rowid_ = ?1");
  SqliteStatement note = database_.Prepare("UPDATE " + rows + " SET r = ?2 WHERE _rowid_ = ?1");
  SqliteStatement count = database_.Prepare("SELECT count(*) FROM " + rows);
  count.Step();
  const std::int64_t last = count.Integer(0);
  for (std::int64_t number = 1; number <= last; ++number) {
    const SqliteStatement::Use use_row(row);
    const SqliteStatement::Use use_note(note);
    row.BindInteger(1, number);
    row.Step(stage.verb);
    note.BindInteger(1, number);
    note.BindInteger(2, sqlite3_last_insert_rowid(database_.handle()));
    note.Step();
  }
  return last;
}

void RowStatements::RunStages(Compiled& change, const Activation& activation) {
  std::int64_t changed = 0;
  database_.Atomically([&] {
    for (const ChangeStage& stage : change.stages) {
      database_.Run("CREATE TEMP TABLE " + QuoteName(stage.table) + " (" + stage.columns + ")");
    }
    for (const ChangeStage& stage : change.stages) Collect(change, stage, activation);
    // Rows that go make room for those that come.
    for (const std::string_view verb : {"DELETE", "UPDATE", "INSERT"}) {
      for (const ChangeStage& stage : change.stages) {
        if (stage.verb != verb) continue;
        const std::int64_t rows = Apply(change, stage);
        changed += rows;
        if (rows > 0 && !stage.identity_table.empty()) transaction_.NoteIdentity(stage.identity_table);
      }
    }
    if (!change.columns.empty()) {
      binder_.Bind(change, activation);
      const SqliteStatement::Use use(change.statement);
      results_.Read(change);
    }
    for (const ChangeStage& stage : change.stages) database_.Run("DROP TABLE temp." + QuoteName(stage.table));
  });
  results_.set_row_count(changed);
  NoteChange(change);
}

void RowStatements::RequirePlain(const ObjectName& into, const std::string& schema) {
  const CatalogObjectPtr table = database_.catalog().Find(database_.catalog().Meant(into, schema));
  if (table == nullptr || table->kind != CatalogKind::kTable) return;
  const std::string target = "The target table '" + into.name + "' of the OUTPUT INTO clause cannot ";
  for (const Constraint& constraint : ReadConstraints(table->definition)) {
    if (constraint.kind == "C") {
      throw SqlError(333, target +
                              "have any enabled check constraints or any enabled rules. Found check constraint or "
                              "rule '" +
                              constraint.name + "'.");
    }
    if (constraint.kind != "F") continue;
    throw SqlError(332, target +
                            "be on either side of a (primary key, foreign key) relationship. Found reference "
                            "constraint '" +
                            constraint.name + "'.");
  }
}

void RowStatements::ChangeInto(const Statement& statement, const Output& output, const Activation& activation) {
  RequirePlain(output.into, activation.plan->schema);
  MemoryBudget& memory = database_.runtime().memory;
  const std::size_t used = memory.used();
  database_.Atomically([&] {
    std::vector<TakenRows> taken;
    {
      const Results::Taking taking(results_, taken);
      RunCompiled(statement, activation);
    }
    const std::int64_t changed = results_.row_count();
    InsertStatement into;
    into.table = output.into;
    into.columns = output.columns;
    InsertTaken(into, taken, activation);
    results_.set_row_count(changed);
  });
  memory.ReleaseTo(used);
}

void RowStatements::RequireNoTriggers(const std::string& table, const Output& output, const std::string& schema) {
  if (output.items.empty()) return;
  const bool into = !output.into.name.empty();
  if (into && triggers_.WatchOver(database_.catalog().Meant(output.into, schema))) {
    throw SqlError(
        331, "The target table '" + output.into.name + "' of the OUTPUT INTO clause cannot have any enabled triggers.");
  }
  if (!into && triggers_.WatchOver(table)) {
    throw SqlError(334, "The target table '" + table +
                            "' of the DML statement cannot have any enabled triggers if the statement contains an "
                            "OUTPUT clause without INTO clause.");
  }
}

void RowStatements::Change(const Statement& statement, const Activation& activation) {
  bool answered = false;
  const auto change = [&] {
    const auto rows = [&] { answered = ChangeRows(statement, activation); };
    const auto changed = [&] {
      return Changed{plans_.OfStatement(statement, activation).changed_table, As<MergeStatement>(statement) != nullptr};
    };
    NamingConstraints(changed, rows);
  };
  if (database_.catalog().has_triggers()) {
    const std::string table = plans_.OfStatement(statement, activation).changed_table;
    RequireNoTriggers(table, *OutputClauseOf(statement), activation.plan->schema);
    triggers_.Around(table, RowChangesOf(statement), change);
  } else {
    change();
  }
  if (!answered) results_.TellRowCount();
}

bool RowStatements::ChangeRows(const Statement& statement, const Activation& activation) {
  const Output* const output = OutputClauseOf(statement);
  if (output != nullptr && !output->into.name.empty()) {
    ChangeInto(statement, *output, activation);
    return false;
  }
  const auto* update = As<UpdateStatement>(statement);
  const bool assigns =
      update != nullptr && std::any_of(update->assignments.begin(), update->assignments.end(),
                                       [](const Assignment& assignment) { return !assignment.variable.empty(); });
  const std::optional<Frame> before = assigns ? std::optional<Frame>(*activation.frame) : std::nullopt;
  try {
    return RunCompiled(statement, activation);
  } catch (const SqlError& error) {
    if (update == nullptr || !IsDuplicate(error) || !update->rows.output.items.empty()) throw;
    if (activation.returns != nullptr) RaiseUnsupported("An UPDATE of keys that others take within a function");
    if (before) *activation.frame = *before;
    const CatalogObjectPtr table = database_.catalog().Get(plans_.OfStatement(statement, activation).changed_table);
    results_.set_row_count(MoveRows(*table, [&] {
      Compiled compiled = plans_.MakeTranslator(activation).CompileUpdate(*update, statement.line, true);
      Run(compiled, activation);
      return results_.row_count();
    }));
    return false;
  }
}

void RowStatements::InsertAnswers(const InsertStatement& insert, const std::vector<TakenRows>& taken,
                                  const Activation& activation) {
  const std::string table = database_.catalog().Meant(insert.table, activation.plan->schema);
  triggers_.Around(table, {{RowEvent::kInsert, {}}}, [&] {
    NamingConstraints([&] { return Changed{table, false}; }, [&] { InsertTaken(insert, taken, activation); });
  });
}

void RowStatements::InsertTaken(const InsertStatement& insert, const std::vector<TakenRows>& taken,
                                const Activation& activation) {
  std::int64_t inserted = 0;
  database_.Atomically([&] {
    for (const TakenRows& rows : taken) {
      InsertOne(insert, rows, activation);
      inserted += results_.row_count();
    }
  });
  results_.set_row_count(inserted);
}

void RowStatements::InsertOne(const InsertStatement& insert, const TakenRows& taken, const Activation& activation) {
  // The values stand in a table of SQLite's own, as they are, and go on as those of INSERT … SELECT do.
  std::string columns;
  std::string marks;
  for (std::size_t i = 0; i < taken.columns.size(); ++i) {
    columns += (i == 0 ? "c" : ", c") + std::to_string(i);
    marks += i == 0 ? "?" : ", ?";
  }
  database_.Run("CREATE TEMP TABLE \"$taken\" (" + columns + ")");
  {
    SqliteStatement keep = database_.Prepare("INSERT INTO temp.\"$taken\" VALUES (" + marks + ")");
    for (const std::vector<Datum>& row : taken.rows) {
      for (std::size_t i = 0; i < row.size(); ++i) keep.BindValue(static_cast<int>(i) + 1, row[i]);
      const SqliteStatement::Use use(keep);
      keep.Step("INSERT");
    }
    const TranslatedQuery rows{"SELECT * FROM temp.\"$taken\"", taken.columns};
    Compiled compiled =
        plans_.MakeTranslator(activation).CompileInsert(insert, options_.AllowsIdentityOf(insert.table.name), &rows);
    Run(compiled, activation);
  }
  database_.Run("DROP TABLE temp.\"$taken\"");
}

}  // namespace tessarlorn::tsql
