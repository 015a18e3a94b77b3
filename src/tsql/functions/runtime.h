// What the row functions and the executor share while a batch runs: the variables, and the error under way.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tsql/values/date_text.h"
#include "tsql/values/datum.h"
#include "tsql/values/memory_budget.h"
#include "tsql/values/sql_error.h"
#include "tsql/values/text_order.h"

namespace tessarlorn::tsql {

struct Variable {
  std::string name;  // "@v" in lower case
  SqlType type;
  Datum value;
};

/// Raises 137.
[[noreturn]] inline void RaiseNoVariable(std::string_view name) {
  throw SqlError(137, "Must declare the scalar variable \"" + std::string(name) + "\".", 15);
}

/// The variables of one batch or procedure call. Few are searched one by one; of many there is an index.
class Frame {
 public:
  Frame() = default;
  Frame(const Frame& other) : variables_(other.variables_), tables_(other.tables_) { MakeIndex(); }
  Frame& operator=(const Frame& other) {
    variables_ = other.variables_;
    tables_ = other.tables_;
    MakeIndex();
    return *this;
  }
  ~Frame() = default;

  Variable* Find(std::string_view name) {
    if (variables_.size() > kFew) {
      const auto found = index_.find(name);
      return found == index_.end() ? nullptr : found->second;
    }
    const auto found = std::find_if(variables_.begin(), variables_.end(),
                                    [&](const Variable& variable) { return variable.name == name; });
    return found == variables_.end() ? nullptr : &*found;
  }
  /// The variable, or error 137.
  Variable& Get(std::string_view name) {
    Variable* variable = Find(name);
    if (variable == nullptr) RaiseNoVariable(name);
    return *variable;
  }
  /// Raises 134 when the name is there already.
  void Declare(const std::string& name, const SqlType& type) {
    RequireNew(name);
    variables_.push_back({name, type, {}});
    if (variables_.size() == kFew + 1) {
      MakeIndex();
    } else if (variables_.size() > kFew) {
      index_.emplace(variables_.back().name, &variables_.back());
    }
  }
  /// The same of a table variable, which stands in the catalog.
  void DeclareTable(const std::string& name) {
    RequireNew(name);
    tables_.push_back(name);
  }

 private:
  void RequireNew(const std::string& name) {
    if (Find(name) == nullptr && std::find(tables_.begin(), tables_.end(), name) == tables_.end()) return;
    throw SqlError(134,
                   "The variable name '" + name +
                       "' has already been declared. Variable names must be unique within a query batch or "
                       "stored procedure.",
                   15);
  }
  void MakeIndex() {
    index_.clear();
    if (variables_.size() <= kFew) return;
    for (Variable& variable : variables_) index_.emplace(variable.name, &variable);
  }

  static constexpr std::size_t kFew = 16;
  /// Their addresses stay.
  std::deque<Variable> variables_;
  std::vector<std::string> tables_;
  std::unordered_map<std::string_view, Variable*> index_;
};

struct Runtime {
  explicit Runtime(std::size_t memory_limit = MemoryBudget::kDefaultLimit) : memory(memory_limit) {}

  MemoryBudget memory;
  /// Set when the batch is cancelled; long row functions look at it.
  std::atomic<bool> cancelled{false};
  /// Raised inside a row function; taken by whoever sees SQLite fail.
  std::optional<SqlError> error;
  Frame* frame = nullptr;
  /// How many functions of the database run, one within the other.
  int function_depth = 0;
  /// Calls a scalar function of the database.
  std::function<Datum(std::string_view function, std::vector<Datum> arguments)> call_function;
  /// The next number of a sequence, for one of the places of a row that take it.
  std::function<std::int64_t(std::string_view sequence, std::int64_t place)> next_number;
  /// The definition of a table by the name that SQLite has of it, as the catalog keeps it; "" for none.
  std::function<std::string(std::string_view table)> table_definition;
  /// The number that a sequence, by its own number, gave last; NULL for none.
  std::function<Datum(std::int64_t sequence)> last_number;
  /// For SQLite, after each so many of its operations: whether the statement is to end now. One that ends by itself
  /// within the next operations is left to do so: SQLite takes back all of an open transaction when it breaks off a
  /// statement that writes.
  bool Interrupts() noexcept { return cancelled.load(std::memory_order_relaxed) && ++looks_since_cancel_ > 1; }
  /// A statement goes on from here.
  void BeginStep() noexcept { looks_since_cancel_ = 0; }
  void CheckCancelled() const {
    if (cancelled.load(std::memory_order_relaxed)) throw Cancelled();
  }
  /// Of the database. Set before functions and collations are registered.
  TextOrder text_order = TextOrder::kCodePoints;
  /// What ts_note_key noted last.
  std::vector<Datum> noted_key;
  /// Rows go and come back with other keys: they are updated.
  bool moves_rows = false;
  /// SET DATEFORMAT
  DateOrder date_order = DateOrder::kMdy;
  /// SET DATEFIRST: 1 for Monday to 7 for Sunday.
  int first_weekday = 7;

 private:
  int looks_since_cancel_ = 0;
};

}  // namespace tessarlorn::tsql
