// What OUTPUT gives back of a change.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tsql/translate/changes/changed_rows.h"

namespace tessarlorn::tsql {

/// Finishes a change whose OUTPUT asks for no more than SQLite's RETURNING gives.
/// @param rows "inserted" or "deleted"
Compiled FinishChange(Translation& translation, const Output& output, const CatalogObject& table, const char* rows,
                      std::string sql);
/// Whether OUTPUT asks for more than those rows.
bool AsksForMore(const Output& output, const char* rows);

/// Puts a change together of stages: which rows it takes and what they become is noted in temporary tables before any
/// of them changes.
class StagedChange {
 public:
  StagedChange(Translation& translation, const Output& output) : translation_(translation), output_(output) {}

  /// @param sets columns and their new values
  void Update(const Clauses& clauses, const std::vector<std::pair<std::string, std::string>>& sets);
  void Delete(const Clauses& clauses);
  /// @param clauses its scope is that of the values, its target the table
  /// @param values columns and their values
  void Insert(const Clauses& clauses, const std::vector<std::pair<std::string, std::string>>& values);
  /// A row that is taken twice is error 8672.
  void TakeRowsOnce() { once_ = true; }

  Compiled Finish();

 private:
  enum class Kind : std::uint8_t { kUpdate, kDelete, kInsert };
  /// What OUTPUT gives of one stage. Fills `captured` with the values that it needs from before the change.
  std::string OutputOf(Kind kind, const Clauses& clauses, const std::string& key, std::vector<std::string>& captured);
  void Add(Kind kind, const Clauses& clauses, const std::string& row,
           const std::vector<std::pair<std::string, std::string>>& values, const std::string& apply);

  Translation& translation_;
  const Output& output_;
  bool once_ = false;
  Compiled compiled_;
  std::vector<std::string> collects_;
  std::string outputs_;
};

}  // namespace tessarlorn::tsql
