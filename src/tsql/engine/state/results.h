// Where the answers of a batch go: rows, counts, messages and events to its sink, or rows into an INSERT.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tessarlorn/connection.h"
#include "tsql/engine/state/session_options.h"
#include "tsql/functions/runtime.h"
#include "tsql/translate/common/compiled.h"

namespace tessarlorn::tsql {

/// A result on its way into a table.
struct TakenRows {
  std::vector<ResultColumn> columns;
  std::vector<std::vector<Datum>> rows;
};

/// `value` as the variable's type has it.
void SetVariable(Variable& variable, const Datum& value, const SqlType& type, DateOrder order);

class Results {
 public:
  /// While it lives, rows are put into `taken` instead of the sink.
  class Taking {
   public:
    Taking(Results& results, std::vector<TakenRows>& taken);
    Taking(const Taking&) = delete;
    Taking& operator=(const Taking&) = delete;
    ~Taking();

   private:
    Results& results_;
    std::vector<TakenRows>* outer_taken_;
    bool outer_first_only_;
    bool outer_any_;
  };

  Results(Runtime& runtime, const SessionOptions& options) : runtime_(runtime), options_(options) {}

  void BeginBatch(BatchSink& sink, bool first_only);
  void EndBatch() { sink_ = nullptr; }

  /// Hands over the rows of a bound query.
  void Read(Compiled& query);
  /// Hands over a result without rows.
  void Describe(std::vector<Field> fields);
  /// SELECT @v = …
  void Assign(Compiled& query, Frame& frame);
  /// Runs a bound change to its end.
  void Change(Compiled& change);

  /// Tells how many rows the statement changed.
  void TellRowCount();
  void TellTransaction(TransactionEvent event);
  /// Hands over a message. @param procedure "" in a batch
  void Say(const std::string& text, const NativeError& about);
  /// Whether the sink deals with an error that ended its statement.
  bool StatementFailed(const SqlError& error) { return sink_->StatementFailed(ToError(error)); }

  /// Whether rows are on their way into a table.
  [[nodiscard]] bool taking() const { return taken_ != nullptr; }
  [[nodiscard]] std::int64_t row_count() const { return row_count_; }
  void set_row_count(std::int64_t rows) { row_count_ = rows; }

 private:
  [[nodiscard]] bool wants_more() const { return !first_only_ || !any_; }
  void Take(Compiled& query);
  void HandOver(RecordsetPtr rows);

  Runtime& runtime_;
  const SessionOptions& options_;
  BatchSink* sink_ = nullptr;
  bool first_only_ = false;
  bool any_ = false;
  std::vector<TakenRows>* taken_ = nullptr;  // of INSERT … EXEC
  std::int64_t row_count_ = 0;               // @@ROWCOUNT
};

}  // namespace tessarlorn::tsql
