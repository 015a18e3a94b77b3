// Cursors: each holds the rows of its query as they were when it was opened.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tsql/engine/plans/evaluate.h"
#include "tsql/engine/state/cursor_state.h"
#include "tsql/engine/state/results.h"

namespace tessarlorn::tsql {

class Cursors {
 public:
  /// Runs a query among the table variables of the batch or procedure body that is running.
  using RunQuery = std::function<void(std::string_view query, Frame& frame)>;

  Cursors(SessionDatabase& database, Results& results, Evaluator& evaluator, CursorState& state, RunQuery run_query)
      : database_(database),
        results_(results),
        evaluator_(evaluator),
        state_(state),
        run_query_(std::move(run_query)) {}

  /// Raises 16915 for a name that is there already, unless it is that of a variable.
  void Declare(const DeclareCursorStatement& statement, const Activation& activation);
  /// Raises 16905, 16916 and 16917 for a cursor that is open, is not there, or is not open.
  void Execute(const CursorStatement& statement);
  /// Raises 16911 for one that does not scroll, 16924 for another number of variables than columns.
  void Fetch(const FetchStatement& statement, const Activation& activation);

  /// A batch or procedure body begins, and ends: its local cursors end with it.
  void EnterScope() { scopes_.emplace_back(); }
  void LeaveScope() { scopes_.pop_back(); }

 private:
  struct Cursor {
    std::string query;
    Frame frame;  // the variables as they were when it was declared
    bool scrolls = false;
    std::optional<TakenRows> rows;  // none while it is closed
    std::int64_t position = 0;      // from 1; 0 before the first row
  };
  using Named = std::unordered_map<std::string, Cursor>;

  Cursor& Find(const std::string& name);
  void Open(Cursor& cursor);
  /// The position that a FETCH goes to, from 0 before the first row to one behind the last.
  std::int64_t Move(const Cursor& cursor, const FetchStatement& statement, const Activation& activation);
  /// Answers the row, or none.
  void Answer(const TakenRows& rows, const std::vector<Datum>* row);

  SessionDatabase& database_;
  Results& results_;
  Evaluator& evaluator_;
  CursorState& state_;
  RunQuery run_query_;
  Named global_;
  std::vector<Named> scopes_;
};

/// The scope of a batch or procedure body.
class CursorScope {
 public:
  explicit CursorScope(Cursors& cursors) : cursors_(cursors) { cursors_.EnterScope(); }
  CursorScope(const CursorScope&) = delete;
  CursorScope& operator=(const CursorScope&) = delete;
  ~CursorScope() { cursors_.LeaveScope(); }

 private:
  Cursors& cursors_;
};

}  // namespace tessarlorn::tsql
