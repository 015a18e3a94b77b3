#include "tsql/engine/state/sequence_numbers.h"

#include <string>

#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// The statements that note a number of a sequence that is there. @param beyond what of an older number gives way
std::string NoteSql(std::int64_t sequence, std::int64_t last, const std::string& beyond) {
  const std::string name = QuoteText(LastNumberName(sequence));
  const std::string id = std::to_string(sequence);
  return "DELETE FROM main.sqlite_sequence WHERE name = " + name + beyond +
         "; INSERT INTO main.sqlite_sequence SELECT " + name + ", " + std::to_string(last) +
         " WHERE EXISTS (SELECT 1 FROM main.\"$objects\" WHERE kind = 'sequence' AND id = " + id +
         ") AND NOT EXISTS (SELECT 1 FROM main.sqlite_sequence WHERE name = " + name + ")";
}

}  // namespace

SequenceNumbers::Given& SequenceNumbers::Of(const CatalogObjectPtr& sequence) {
  const auto [found, is_new] = given_.try_emplace(sequence->id);
  if (is_new) {
    found->second.sequence = sequence;
    found->second.definition = ReadSequence(database_.handle(), *sequence);
    found->second.last = LastNumberOf(database_.handle(), sequence->id);
  }
  return found->second;
}

bool SequenceNumbers::Stands(const Given& given) const {
  const CatalogObjectPtr now = database_.catalog().Find(given.sequence->name);
  return now != nullptr && now->id == given.sequence->id && now->signature() == given.sequence->signature();
}

void SequenceNumbers::RollbackToSavePoint() {
  std::erase_if(given_, [this](const auto& entry) { return !Stands(entry.second); });
  for (auto& [id, given] : redefined_) {
    if (Stands(given)) given_.try_emplace(id, given);
  }
}

std::int64_t SequenceNumbers::Next(std::string_view sequence, std::int64_t place) {
  const CatalogObjectPtr object = database_.catalog().Find(sequence);
  if (object == nullptr) RaiseNoObject({"", std::string(sequence)});
  Given& given = Of(object);
  if (given.places.empty() || given.places.contains(place)) {
    Advance(given, sequence);
    given.places.clear();
  }
  given.places.insert(place);
  return *given.last;
}

void SequenceNumbers::Advance(Given& given, std::string_view sequence) {
  const SequenceDefinition& is = given.definition;
  const bool up = is.increment > 0;
  if (!given.last) {
    given.last = is.start;
  } else if (up ? *given.last <= is.maximum - is.increment : *given.last >= is.minimum - is.increment) {
    *given.last += is.increment;
  } else if (is.cycles) {
    given.last = up ? is.minimum : is.maximum;
  } else {
    throw SqlError(11728, "The sequence object '" + std::string(sequence) +
                              "' has reached its minimum or maximum value. Restart the sequence object to allow new "
                              "values to be generated.");
  }
}

std::optional<std::int64_t> SequenceNumbers::Last(std::int64_t sequence) const {
  const auto found = given_.find(sequence);
  return found != given_.end() ? found->second.last : LastNumberOf(database_.handle(), sequence);
}

void SequenceNumbers::BeginStatement() {
  for (auto& [id, given] : given_) given.places.clear();
}

void SequenceNumbers::Redefine(const CatalogObject& sequence, bool restarts) {
  Note();
  if (const auto found = given_.find(sequence.id); found != given_.end()) {
    redefined_.emplace(sequence.id, std::move(found->second));
    given_.erase(found);
  }
  if (restarts) {
    database_.Run("DELETE FROM main.sqlite_sequence WHERE name = " + QuoteText(LastNumberName(sequence.id)));
  }
}

void SequenceNumbers::Note() {
  for (const auto& [id, given] : given_) {
    if (given.last) database_.Run(NoteSql(id, *given.last, ""));
  }
}

void SequenceNumbers::NoteAfterRollback() noexcept {
  // What was defined anew is not so any longer.
  for (auto& [id, given] : redefined_) given_.insert_or_assign(id, std::move(given));
  redefined_.clear();
  for (const auto& [id, given] : given_) {
    const bool up = given.definition.increment > 0;
    const std::string beyond = given.definition.cycles || !given.last
                                   ? std::string()
                                   : std::string(" AND seq ") + (up ? "< " : "> ") + std::to_string(*given.last);
    // Where that fails the numbers are given again, as they would be after a crash.
    if (given.last) database_.RunQuietly(NoteSql(id, *given.last, beyond));
  }
  given_.clear();
}

void SequenceNumbers::Forget() {
  given_.clear();
  redefined_.clear();
}

}  // namespace tessarlorn::tsql
