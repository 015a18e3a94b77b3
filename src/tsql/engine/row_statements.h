// SELECT, INSERT, UPDATE, DELETE and TRUNCATE.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tsql/engine/definitions/definitions.h"
#include "tsql/engine/plans/bind.h"
#include "tsql/engine/plans/plan_store.h"
#include "tsql/engine/state/results.h"
#include "tsql/engine/state/transaction.h"
#include "tsql/engine/triggers.h"

namespace tessarlorn::tsql {

class RowStatements {
 public:
  RowStatements(SessionDatabase& database, const SessionOptions& options, Results& results, Transaction& transaction,
                PlanStore& plans, Binder& binder, Definitions& definitions, Triggers& triggers)
      : database_(database),
        options_(options),
        results_(results),
        transaction_(transaction),
        plans_(plans),
        binder_(binder),
        definitions_(definitions),
        triggers_(triggers) {}

  void Select(const Statement& statement, const Activation& activation);
  /// SET FMTONLY ON: the columns of a query, without a row.
  void Describe(const Statement& statement, const Activation& activation);
  /// INSERT, UPDATE, DELETE or MERGE, but for INSERT … EXEC, with what the table's triggers do then.
  void Change(const Statement& statement, const Activation& activation);
  void Truncate(const TruncateStatement& statement, const Activation& activation);
  /// INSERT … EXEC: inserts what the procedure answered.
  void InsertAnswers(const InsertStatement& insert, const std::vector<TakenRows>& taken, const Activation& activation);

 private:
  void InsertTaken(const InsertStatement& insert, const std::vector<TakenRows>& taken, const Activation& activation);
  void SelectInto(const Query& query, const Activation& activation);
  /// Raises 331 and 334: rows of OUTPUT neither go to the client nor into a table where triggers would see them.
  void RequireNoTriggers(const std::string& table, const Output& output, const std::string& schema);
  /// Raises 332 and 333 for a table that rows of OUTPUT cannot go into because of its constraints.
  void RequirePlain(const ObjectName& into, const std::string& schema);
  /// Whether it answered rows, by OUTPUT.
  bool ChangeRows(const Statement& statement, const Activation& activation);
  bool RunCompiled(const Statement& statement, const Activation& activation);
  /// Binds and runs a change to its end.
  void Run(Compiled& change, const Activation& activation);
  void RunStages(Compiled& change, const Activation& activation);
  /// Notes the rows of a stage. Raises 8672.
  void Collect(const Compiled& change, const ChangeStage& stage, const Activation& activation);
  /// Changes what a stage noted. @return how many rows
  std::int64_t Apply(const Compiled& change, const ChangeStage& stage);
  /// A change with OUTPUT … INTO.
  void ChangeInto(const Statement& statement, const Output& output, const Activation& activation);
  /// Notes what the change that ran did: to the identity, and for who watches.
  void NoteChange(const Compiled& change);

  // key_checks.cpp
  /// UPDATE by way of other rows, for when it failed because keys pass through the place of other rows' keys.
  /// @param collect puts the rows as they become into temp."$moved", and answers how many there are
  std::int64_t MoveRows(const CatalogObject& table, const std::function<std::int64_t()>& collect);
  std::int64_t ApplyUpdate(const CatalogObject& table, const ChangeStage& stage);
  /// Which table a statement changes, and whether it is MERGE, for messages.
  struct Changed {
    std::string table;
    bool merges = false;
  };
  /// Runs a change of rows; an error because a constraint is broken tells which, and of which table.
  template <typename What, typename Change>
  void NamingConstraints(const What& changed, const Change& change) {
    try {
      change();
    } catch (const BrokenConstraint& broken) {
      RaiseBroken(broken, changed(), change);
    } catch (const DuplicateKey& duplicate) {
      RaiseDuplicate(duplicate, changed(), change);
    }
  }
  [[noreturn]] void RaiseBroken(const BrokenConstraint& broken, const Changed& changed,
                                const std::function<void()>& change);
  [[noreturn]] void RaiseDuplicate(const DuplicateKey& duplicate, const Changed& changed,
                                   const std::function<void()>& change);
  /// Runs a change that failed once more, and takes back what it did to rows, sequences and variables. @return what it
  /// raises
  std::optional<SqlError> TryAgain(const std::function<void()>& body);
  /// The key that a change gives a row though another one has it, as messages show it; "" where it is not found.
  std::string DuplicateValue(const CatalogObject& table, const std::vector<std::string>& columns,
                             const std::function<void()>& change);
  /// Raises 547 where a foreign key of the table, or one that refers to it, is broken.
  void RequireReferences(const CatalogObject& table, const std::string& verb);

  void InsertOne(const InsertStatement& insert, const TakenRows& taken, const Activation& activation);

  SessionDatabase& database_;
  const SessionOptions& options_;
  Results& results_;
  Transaction& transaction_;
  PlanStore& plans_;
  Binder& binder_;
  Definitions& definitions_;
  Triggers& triggers_;
};

/// Whether the error is that of a key that another row has.
bool IsDuplicate(const SqlError& error);

}  // namespace tessarlorn::tsql
