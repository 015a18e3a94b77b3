// What the catalog keeps of a sequence.
#pragma once

#include <cstdint>
#include <optional>
#include <sqlite3.h>
#include <string>

#include "tsql/storage/catalog.h"

namespace tessarlorn::tsql {

struct SequenceDefinition {
  std::int64_t start = 0;
  std::int64_t increment = 1;
  std::int64_t minimum = 0;
  std::int64_t maximum = 0;
  bool cycles = false;
  std::int64_t cache = 50;  // kept for who asks; 0 for none
};

/// As the catalog keeps it: a JSON object.
std::string SequenceText(const SequenceDefinition& definition);
SequenceDefinition ReadSequence(sqlite3* database, const CatalogObject& sequence);

/// The number that stands in the file as the last one that a sequence gave. It is kept where SQLite keeps those of
/// identities, by the sequence's own number.
std::optional<std::int64_t> LastNumberOf(sqlite3* database, std::int64_t sequence);
std::string LastNumberName(std::int64_t sequence);

}  // namespace tessarlorn::tsql
