#include "tsql/engine/state/effect.h"

#include <algorithm>

namespace tessarlorn::tsql {
namespace {

struct EffectOfNode {
  Effect operator()(const SelectStatement& select) const {
    return select.query->makes_table() ? Effect::kDefines : Effect::kNone;
  }
  Effect operator()(const InsertStatement& /*node*/) const { return Effect::kChangesRows; }
  Effect operator()(const UpdateStatement& /*node*/) const { return Effect::kChangesRows; }
  Effect operator()(const DeleteStatement& /*node*/) const { return Effect::kChangesRows; }
  Effect operator()(const MergeStatement& /*node*/) const { return Effect::kChangesRows; }
  Effect operator()(const TruncateStatement& /*node*/) const { return Effect::kChangesRows; }
  Effect operator()(const CreateTableStatement& /*node*/) const { return Effect::kDefines; }
  Effect operator()(const AlterTableStatement& /*node*/) const { return Effect::kDefines; }
  Effect operator()(const DropStatement& /*node*/) const { return Effect::kDefines; }
  Effect operator()(const CreateIndexStatement& /*node*/) const { return Effect::kDefines; }
  Effect operator()(const DropIndexStatement& /*node*/) const { return Effect::kDefines; }
  Effect operator()(const CreateViewStatement& /*node*/) const { return Effect::kDefines; }
  Effect operator()(const CreateProcedureStatement& /*node*/) const { return Effect::kDefines; }
  Effect operator()(const CreateTriggerStatement& /*node*/) const { return Effect::kDefines; }
  Effect operator()(const SwitchTriggersStatement& /*node*/) const { return Effect::kDefines; }
  Effect operator()(const CreateFunctionStatement& /*node*/) const { return Effect::kDefines; }
  Effect operator()(const SequenceStatement& /*node*/) const { return Effect::kDefines; }
  Effect operator()(const CreateSchemaStatement& /*node*/) const { return Effect::kDefines; }
  Effect operator()(const DropSchemaStatement& /*node*/) const { return Effect::kDefines; }
  Effect operator()(const TransferStatement& /*node*/) const { return Effect::kDefines; }
  template <typename Other>
  Effect operator()(const Other& /*node*/) const {
    return Effect::kNone;
  }
};

/// Whether no rows go into a table of the database.
bool IsTemporary(const Output& output) { return output.into.name.empty() || output.into.temporary(); }

struct IsOnTemporary {
  bool operator()(const SelectStatement& select) const {
    return select.query->makes_table() && select.query->select()->into.temporary();
  }
  bool operator()(const InsertStatement& insert) const {
    return insert.table.temporary() && IsTemporary(insert.output);
  }
  bool operator()(const UpdateStatement& update) const {
    return update.rows.table.temporary() && IsTemporary(update.rows.output);
  }
  bool operator()(const DeleteStatement& statement) const {
    return statement.rows.table.temporary() && IsTemporary(statement.rows.output);
  }
  bool operator()(const MergeStatement& merge) const {
    return merge.target.name.temporary() && IsTemporary(merge.output);
  }
  bool operator()(const TruncateStatement& truncate) const { return truncate.table.temporary(); }
  bool operator()(const CreateTableStatement& create) const { return create.table.temporary(); }
  bool operator()(const AlterTableStatement& alter) const { return alter.table.temporary(); }
  bool operator()(const CreateIndexStatement& create) const { return create.table.temporary(); }
  bool operator()(const DropIndexStatement& drop) const { return drop.table.temporary(); }
  bool operator()(const CreateViewStatement& create) const { return create.view.temporary(); }
  bool operator()(const CreateProcedureStatement& create) const { return create.procedure.temporary(); }
  bool operator()(const DropStatement& drop) const {
    return std::all_of(drop.names.begin(), drop.names.end(), [](const ObjectName& name) { return name.temporary(); });
  }
  template <typename Other>
  bool operator()(const Other& /*node*/) const {
    return false;
  }
};

}  // namespace

Effect EffectOf(const Statement& statement) { return std::visit(EffectOfNode{}, statement.node); }

bool IsOnTableVariable(const Statement& statement) {
  if (!IsOnTemporaryTables(statement)) return false;
  const auto* insert = As<InsertStatement>(statement);
  const auto* update = As<UpdateStatement>(statement);
  const auto* removal = As<DeleteStatement>(statement);
  const auto* merge = As<MergeStatement>(statement);
  return (insert != nullptr && insert->table.variable()) || (update != nullptr && update->rows.table.variable()) ||
         (removal != nullptr && removal->rows.table.variable()) || (merge != nullptr && merge->target.name.variable());
}

bool IsOnTemporaryTables(const Statement& statement) { return std::visit(IsOnTemporary{}, statement.node); }

}  // namespace tessarlorn::tsql
