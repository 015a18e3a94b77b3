// What a batch may leave behind on its connection, read off its text without a parser.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tessarlorn::odbc {

/// What has to be cleaned up behind batches. Rather too much than too little: a word that looks like an effect is one.
struct BatchEffects {
  /// Only SELECT and its like: running the batch twice is as good as once.
  bool reads_only = true;
  /// It may send messages: PRINT, RAISERROR, a procedure.
  bool prints = false;
  /// A transaction may be open.
  bool transaction = false;
  /// Something that no batch surely takes back: a changed database, language or option, a cursor, another user.
  bool lasting = false;
  /// Options that have a default to go back to: "NOCOUNT OFF".
  std::vector<std::string> options;
  /// "#t", as the text spells it. Names that differ in case alone may be two tables.
  std::vector<std::string> temporary_tables;

  [[nodiscard]] bool none() const noexcept {
    return !transaction && !lasting && options.empty() && temporary_tables.empty();
  }
  /// What both leave behind.
  void Add(const BatchEffects& other);
  /// The batch that takes back all but what is lasting.
  [[nodiscard]] std::string CleaningBatch() const;
};

BatchEffects EffectsOf(std::string_view text);

}  // namespace tessarlorn::odbc
