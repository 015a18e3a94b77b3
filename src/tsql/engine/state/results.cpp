#include "tsql/engine/state/results.h"

#include <memory>
#include <optional>
#include <utility>

#include "platform/recordset_builder.h"
#include "tessarlorn/recordset.h"
#include "tsql/values/moment.h"

namespace tessarlorn::tsql {
namespace {

void AppendCell(RecordsetBuilder& rows, const SqliteStatement& row, int column, const SqlType& type, Storage storage) {
  switch (row.Kind(column)) {
    case SQLITE_NULL:
      rows.AppendNull();
      return;
    case SQLITE_INTEGER:
      if (storage == Storage::kScaled) {
        rows.AppendScaled(row.Integer(column));
      } else if (type.is_date()) {
        rows.AppendDateTime(DateTime(row.Integer(column)));
      } else if (storage == Storage::kReal) {
        rows.AppendDouble(row.Real(column));
      } else {
        rows.AppendInteger(row.Integer(column));
      }
      return;
    case SQLITE_FLOAT:
      rows.AppendDouble(row.Real(column));
      return;
    case SQLITE_TEXT:
      if (type.has_offset()) {
        rows.AppendText(FormatMoment(ReadStoredMoment(row.Bytes(column)), type, 0));
      } else {
        rows.AppendText(row.Bytes(column));
      }
      return;
    default:
      if (storage == Storage::kBigDecimal) {
        rows.AppendDecimal(DecodeBigDecimal(row.Bytes(column), type.scale));
      } else {
        const std::string_view bytes = row.Bytes(column);
        rows.AppendBytes(bytes.data(), bytes.size());
      }
  }
}

}  // namespace

void SetVariable(Variable& variable, const Datum& value, const SqlType& type, DateOrder order) {
  variable.value = Convert(value, type, variable.type, StyleFor(variable.type, 0, order));
}

Results::Taking::Taking(Results& results, std::vector<TakenRows>& taken)
    : results_(results),
      outer_taken_(std::exchange(results.taken_, &taken)),
      outer_first_only_(std::exchange(results.first_only_, false)),
      outer_any_(std::exchange(results.any_, false)) {}

Results::Taking::~Taking() {
  results_.taken_ = outer_taken_;
  results_.first_only_ = outer_first_only_;
  results_.any_ = outer_any_;
}

void Results::BeginBatch(BatchSink& sink, bool first_only) {
  sink_ = &sink;
  first_only_ = first_only;
  any_ = false;
  taken_ = nullptr;
}

void Results::HandOver(RecordsetPtr rows) {
  any_ = true;
  sink_->Rows(std::move(rows));
}

void Results::Describe(std::vector<Field> fields) { HandOver(std::make_shared<Recordset>(std::move(fields))); }

void Results::Take(Compiled& query) {
  TakenRows& taken = taken_->emplace_back();
  taken.columns = query.columns;
  while (query.statement.Step(query.verb)) {
    std::vector<Datum>& row = taken.rows.emplace_back();
    for (int i = 0; i < static_cast<int>(query.columns.size()); ++i) {
      row.push_back(query.statement.Value(i));
      runtime_.memory.Charge(2 * sizeof(Datum) + query.statement.Size(i));
    }
  }
  row_count_ = static_cast<std::int64_t>(taken.rows.size());
}

void Results::Read(Compiled& query) {
  if (taken_ != nullptr) {
    Take(query);
    return;
  }
  std::optional<RecordsetBuilder> rows;
  std::vector<Storage> storages;
  const bool keep = wants_more();
  if (keep) {
    std::vector<Field> fields;
    fields.reserve(query.columns.size());
    for (const ResultColumn& column : query.columns) {
      fields.push_back(ToField(column.name, column.type, column.nullable));
      storages.push_back(column.type.storage());
    }
    rows.emplace(std::move(fields));
  }
  const auto width = static_cast<int>(query.columns.size());
  const bool in_parts = sink_->takes_parts();
  row_count_ = 0;
  while (query.statement.Step(query.verb)) {
    ++row_count_;
    if (!keep) continue;
    if (in_parts && rows->bytes() >= BatchSink::kPartSize) {
      sink_->PartOfRows(rows->rows());
      rows->Clear();
    }
    rows->BeginRow();
    for (int i = 0; i < width; ++i) {
      const auto column = static_cast<std::size_t>(i);
      AppendCell(*rows, query.statement, i, query.columns[column].type, storages[column]);
    }
  }
  if (keep) HandOver(rows->Finish());
}

void Results::Assign(Compiled& query, Frame& frame) {
  row_count_ = 0;
  while (query.statement.Step(query.verb)) {
    ++row_count_;
    for (std::size_t i = 0; i < query.assigned.size(); ++i) {
      SetVariable(frame.Get(query.assigned[i]), query.statement.Value(static_cast<int>(i)), query.columns[i].type,
                  runtime_.date_order);
    }
  }
}

void Results::Change(Compiled& change) {
  std::int64_t rows = 0;
  while (change.statement.Step(change.verb)) ++rows;
  // An UPDATE of variables only is a query for SQLite.
  row_count_ = change.statement.reads_only() ? rows : change.statement.changes();
}

void Results::TellRowCount() {
  if (!options_.no_count() && taken_ == nullptr) sink_->RowCount(row_count_);
}

void Results::TellTransaction(TransactionEvent event) {
  if (sink_ != nullptr) sink_->Transaction(event);
}

void Results::Say(const std::string& text, const NativeError& about) { sink_->Message(text, about); }

}  // namespace tessarlorn::tsql
