#include "tsql/storage/sequence_text.h"

#include "tsql/storage/sqlite_handle.h"

namespace tessarlorn::tsql {

std::string SequenceText(const SequenceDefinition& definition) {
  const auto field = [](const char* name, std::int64_t value) {
    return "\"" + std::string(name) + "\":" + std::to_string(value);
  };
  return "{" + field("start", definition.start) + "," + field("increment", definition.increment) + "," +
         field("minimum", definition.minimum) + "," + field("maximum", definition.maximum) + "," +
         field("cycle", definition.cycles ? 1 : 0) + "," + field("cache", definition.cache) + "}";
}

SequenceDefinition ReadSequence(sqlite3* database, const CatalogObject& sequence) {
  SqliteStatement text(database,
                       "SELECT ?1 ->> 'start', ?1 ->> 'increment', ?1 ->> 'minimum', ?1 ->> 'maximum', ?1 ->> 'cycle',"
                       " ?1 ->> 'cache'");
  text.BindText(1, sequence.definition);
  text.Step();
  return {text.Integer(0), text.Integer(1), text.Integer(2), text.Integer(3), text.Integer(4) != 0, text.Integer(5)};
}

std::optional<std::int64_t> LastNumberOf(sqlite3* database, std::int64_t sequence) {
  SqliteStatement last(database, "SELECT seq FROM main.sqlite_sequence WHERE name = ?1");
  last.BindText(1, LastNumberName(sequence));
  return last.Step() ? std::optional(last.Integer(0)) : std::nullopt;
}

std::string LastNumberName(std::int64_t sequence) { return "$sequence " + std::to_string(sequence); }

}  // namespace tessarlorn::tsql
