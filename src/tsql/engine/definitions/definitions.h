// CREATE, ALTER and DROP: SQLite's definitions and the catalog's, together or not at all.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tsql/engine/plans/evaluate.h"
#include "tsql/engine/state/sequence_numbers.h"

namespace tessarlorn::tsql {

class Definitions {
 public:
  Definitions(SessionDatabase& database, PlanStore& plans, Evaluator& evaluator)
      : database_(database), plans_(plans), evaluator_(evaluator) {}

  // tables.cpp
  void CreateTable(const CreateTableStatement& statement, const Activation& activation);
  /// Makes a table. Raises 2714 when there is one of its name.
  void CreateTable(CatalogObject table, const Activation& activation);
  /// The identity of a table that was emptied begins with its seed.
  void RestartIdentity(const CatalogObject& table, const Activation& activation);
  /// That of a table that SELECT … INTO filled counts on.
  void CountOn(const CatalogObject& table, const Activation& activation);
  void AlterTable(const AlterTableStatement& statement, const Activation& activation);

  // variable_tables.cpp
  /// Makes the table variables of a statement that are not there yet.
  void MakeVariables(const DeclareStatement& declare, const Activation& activation);
  /// The same of what is declared further down in IF, WHILE, BEGIN and TRY, whether or not a branch gets there.
  void MakeVariablesWithin(const Statement& statement, const Activation& activation);
  /// Makes the table variable that a function could not make while a change called it. @return whether there is one
  bool MakeWanted(const Activation& activation);

  // definitions.cpp
  void CreateIndex(const CreateIndexStatement& statement, std::uint32_t line, const Activation& activation);
  void DropIndex(const DropIndexStatement& statement);
  void CreateView(const CreateViewStatement& statement, const Activation& activation);
  void CreateProcedure(const CreateProcedureStatement& statement);
  /// Raises 8197.
  void CreateTrigger(const CreateTriggerStatement& statement, std::uint32_t line);
  /// Raises 1088.
  void SwitchTriggers(const SwitchTriggersStatement& statement);
  void CreateFunction(const CreateFunctionStatement& statement, const Activation& activation);
  void Drop(const DropStatement& statement);
  // schemas.cpp
  void CreateSchema(const CreateSchemaStatement& statement);
  void DropSchema(const DropSchemaStatement& statement);
  /// Raises 15151 and 15530.
  void Transfer(const TransferStatement& statement);
  /// An object of that name that is to be made. Raises 208 for one of another database, and 2760.
  CatalogObject NewObject(CatalogKind kind, const ObjectName& name);
  // sequences.cpp
  /// CREATE and ALTER SEQUENCE. @param numbers what the sequences gave so far
  void DefineSequence(const SequenceStatement& statement, SequenceNumbers& numbers);
  /// sp_rename, of a constraint too. @param kind "" or what it is: OBJECT, COLUMN or INDEX. Raises 15224, 15225, 15248,
  /// 15249, 15335 and 15336.
  void Rename(const std::string& object, const std::string& new_name, const std::string& kind);
  /// Drops the session's temporary tables. @param but the names of those that stay
  void DropTemporaryTables(const std::vector<std::string>& but = {});
  /// Raises the error when a foreign key of another table refers to the table.
  void RequireUnreferenced(const CatalogObject& table, std::int32_t number, const std::string& message);

 private:
  /// Raises 3729 while a view or function WITH SCHEMABINDING names the object.
  void RequireUnbound(const CatalogObject& object, const std::string& statement, const std::string& name);
  bool IndexExists(const CatalogObject& table, const std::string& index);
  /// A table goes with its triggers.
  void DropObject(const CatalogObject& object);
  /// Raises 208 for the ALTER of what is not there, and 2010 for an object of another kind.
  void RequireAlterable(const CatalogObject& object, const ObjectName& written, bool must_exist);
  void AddObject(CatalogObject object, bool replace);
  /// Gives an object another name, "t" or "s.t".
  void Move(const CatalogObject& object, const std::string& new_name);
  /// Refuses a name of dbo's that would be one in a schema. @param schema "" for dbo
  void RequireOwnName(const std::string& schema, const std::string& name);
  void RenameColumn(const CatalogObject& table, const std::string& column, const std::string& new_name);
  /// Whether there is a constraint of that name. @param schema "" for dbo
  bool RenameConstraint(const std::string& schema, const std::string& constraint, const std::string& new_name);
  void RenameIndex(const CatalogObject& table, const std::string& index, const std::string& new_name);
  /// Gives the indexes of SQLite's table whose names begin with `from` such as begin with `to`. @param whole the names
  /// are `from`
  void MoveIndexes(const std::string& table, const std::string& from, const std::string& to, bool whole = false);

  /// The name in SQLite of a table variable.
  std::string VariableName(const CreateTableStatement& statement, const Activation& activation);

  /// A table variable of a function, by the statement that declares it.
  struct Wanted {
    const CreateTableStatement* statement = nullptr;
    std::string stored_name;
  };

  SessionDatabase& database_;
  PlanStore& plans_;
  Evaluator& evaluator_;
  std::unordered_map<const CreateTableStatement*, std::size_t> declared_;  // numbers of those within functions
  Wanted wanted_;
};

/// Raises 1911 for a column that the table has not.
void RequireColumns(const CatalogObject& table, const std::vector<std::string>& names);
/// The statement for an index that lets a key with NULLs in it stand once only, as the server does: SQLite's own take
/// any number of them. "" where no column of the key can be NULL.
std::string NullKeySql(const CatalogObject& table, const std::string& index, const std::vector<std::string>& key,
                       const std::string& condition);

}  // namespace tessarlorn::tsql
