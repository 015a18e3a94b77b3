#include "tsql/engine/cursors.h"

#include <algorithm>
#include <array>

namespace tessarlorn::tsql {

Cursors::Cursor& Cursors::Find(const std::string& name) {
  for (Named* cursors : {&scopes_.back(), &global_}) {
    const auto found = cursors->find(name);
    if (found != cursors->end()) return found->second;
  }
  if (name[0] == '@') {
    throw SqlError(16950, "The variable '" + name + "' does not currently have a cursor allocated to it.");
  }
  throw SqlError(16916, "A cursor with the name '" + name + "' does not exist.");
}

void Cursors::Declare(const DeclareCursorStatement& statement, const Activation& activation) {
  Named& cursors = statement.local ? scopes_.back() : global_;
  if (statement.name[0] == '@') cursors.erase(statement.name);
  const auto [entry, is_new] = cursors.try_emplace(statement.name);
  if (!is_new) throw SqlError(16915, "A cursor with the name '" + statement.name + "' already exists.");
  Cursor& cursor = entry->second;
  cursor.query = statement.query;
  cursor.frame = *activation.frame;
  cursor.scrolls = statement.scrolls;
}

void Cursors::Open(Cursor& cursor) {
  if (cursor.rows) throw SqlError(16905, "The cursor is already open.");
  std::vector<TakenRows> taken;
  {
    const Results::Taking taking(results_, taken);
    Frame frame = cursor.frame;
    run_query_(cursor.query, frame);
  }
  cursor.rows = std::move(taken.at(0));
  cursor.position = 0;
  state_.rows = static_cast<std::int64_t>(cursor.rows->rows.size());
}

void Cursors::Execute(const CursorStatement& statement) {
  Cursor& cursor = Find(statement.name);
  switch (statement.action) {
    case CursorStatement::Action::kOpen:
      Open(cursor);
      return;
    case CursorStatement::Action::kClose:
      if (!cursor.rows) throw SqlError(16917, "Cursor is not open.");
      cursor.rows.reset();
      return;
    case CursorStatement::Action::kDeallocate:
      if (scopes_.back().erase(statement.name) == 0) global_.erase(statement.name);
  }
}

std::int64_t Cursors::Move(const Cursor& cursor, const FetchStatement& statement, const Activation& activation) {
  using From = FetchStatement::From;
  const auto last = static_cast<std::int64_t>(cursor.rows->rows.size());
  const std::int64_t number =
      statement.number == nullptr ? 0 : evaluator_.Integer(*statement.number, activation).value_or(0);
  std::int64_t position = cursor.position + 1;
  switch (statement.from) {
    case From::kNext:
      break;
    case From::kPrior:
      position = cursor.position - 1;
      break;
    case From::kFirst:
      position = 1;
      break;
    case From::kLast:
      position = last;
      break;
    case From::kAbsolute:
      position = number < 0 ? last + 1 + number : number;
      break;
    case From::kRelative:
      position = cursor.position + number;
  }
  return std::clamp<std::int64_t>(position, 0, last + 1);
}

void Cursors::Answer(const TakenRows& rows, const std::vector<Datum>* row) {
  Compiled answer;
  answer.columns = rows.columns;
  for (std::size_t i = 0; i < rows.columns.size(); ++i) answer.sql += i == 0 ? "SELECT ?" : ", ?";
  answer.statement = database_.Prepare(answer.sql + (row == nullptr ? " WHERE 0" : ""));
  for (std::size_t i = 0; row != nullptr && i < row->size(); ++i) {
    answer.statement.BindValue(static_cast<int>(i) + 1, (*row)[i]);
  }
  results_.Read(answer);
}

void Cursors::Fetch(const FetchStatement& statement, const Activation& activation) {
  Cursor& cursor = Find(statement.cursor);
  if (!cursor.rows) throw SqlError(16917, "Cursor is not open.");
  if (!cursor.scrolls && statement.from != FetchStatement::From::kNext) {
    constexpr std::array kNames = {"next", "prior", "first", "last", "absolute", "relative"};
    throw SqlError(16911, std::string("fetch: The fetch type ") + kNames[static_cast<std::size_t>(statement.from)] +
                              " cannot be used with forward only cursors.");
  }
  const TakenRows& rows = *cursor.rows;
  if (!statement.into.empty() && statement.into.size() != rows.columns.size()) {
    throw SqlError(
        16924, "Cursorfetch: The number of variables declared in the INTO list must match that of selected columns.");
  }
  cursor.position = Move(cursor, statement, activation);
  const bool there = cursor.position > 0 && cursor.position <= static_cast<std::int64_t>(rows.rows.size());
  const std::vector<Datum>* row = there ? &rows.rows[static_cast<std::size_t>(cursor.position) - 1] : nullptr;
  state_.fetch_status = there ? 0 : -1;
  if (statement.into.empty()) Answer(rows, row);
  for (std::size_t i = 0; row != nullptr && i < statement.into.size(); ++i) {
    SetVariable(activation.frame->Get(statement.into[i]), (*row)[i], rows.columns[i].type,
                database_.runtime().date_order);
  }
  results_.set_row_count(there ? 1 : 0);
}

}  // namespace tessarlorn::tsql
