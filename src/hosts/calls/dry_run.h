// What a call would do: its statements, and how many rows of which table it changes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tessarlorn/collections.h"
#include "tessarlorn/connection.h"

namespace tessarlorn {

/// Gathers what the calls of a thread do while it watches.
class DryRun final : public BatchWatcher {
 public:
  void Statement(std::string_view text) override { statements_.emplace_back(text); }
  void Changed(std::string_view table, std::int64_t rows) override;

  [[nodiscard]] const std::vector<std::string>& statements() const noexcept { return statements_; }
  /// Tables in the order in which they were first changed, with all rows of all statements. "" stands for tables that
  /// the database does not tell.
  [[nodiscard]] const std::vector<std::pair<std::string, std::int64_t>>& changes() const noexcept { return changes_; }
  /// `statements`, a Vector of texts, and `changes`, a Vector of Dictionaries with table and rows.
  [[nodiscard]] Dictionary Report() const;

 private:
  std::vector<std::string> statements_;
  std::vector<std::pair<std::string, std::int64_t>> changes_;
};

}  // namespace tessarlorn
