#include "drivers/odbc/batch_effects.h"

#include <algorithm>
#include <array>
#include <utility>

#include "drivers/odbc/sql_words.h"

namespace tessarlorn::odbc {
namespace {

struct Option {
  std::string_view name;
  std::string_view reset;
};

// The SET options that a clean connection has the same default for on every server.
constexpr std::array kOptions = {
    Option{"nocount", "NOCOUNT OFF"},
    Option{"xact_abort", "XACT_ABORT OFF"},
    Option{"rowcount", "ROWCOUNT 0"},
    Option{"lock_timeout", "LOCK_TIMEOUT -1"},
    Option{"transaction", "TRANSACTION ISOLATION LEVEL READ COMMITTED"},
};

/// Words that change data or the database.
constexpr std::array<std::string_view, 21> kWriting = {
    "insert", "update", "delete", "merge", "into", "create", "alter", "drop",   "truncate", "exec",   "execute",
    "grant",  "revoke", "deny",   "bulk",  "dbcc", "kill",   "next",  "backup", "restore",  "waitfor"};

/// Words that change the session in ways of their own.
constexpr std::array<std::string_view, 7> kLasting = {"use", "cursor", "revert", "setuser", "dbcc", "open", "receive"};

/// With what a batch begins when it does not call a procedure by its bare name.
constexpr std::array<std::string_view, 26> kStarters = {
    "select", "insert", "update",  "delete", "merge",    "with",     "declare", "set",       "if",
    "while",  "begin",  "create",  "alter",  "drop",     "truncate", "print",   "raiserror", "throw",
    "return", "exec",   "execute", "commit", "rollback", "save",     "waitfor", "use"};

template <typename Words>
bool Holds(const Words& words, std::string_view word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

void AddOnce(std::vector<std::string>& list, const std::string& item) {
  if (!Holds(list, item)) list.push_back(item);
}

class Scan {
 public:
  explicit Scan(std::string_view text) : words_(text) {}

  BatchEffects Run() {
    std::string word = words_.Next();
    if (!word.empty() && !Holds(kStarters, word) && word != ";" && word != "(") ReadCall();
    while (!word.empty()) {
      Read(word);
      // A word that Read() looked at and did not use comes again.
      word = pending_.empty() ? words_.Next() : std::exchange(pending_, {});
    }
    return std::move(effects_);
  }

 private:
  void Read(const std::string& word) {
    ReadTableName(word);
    if (words_.quoted()) return;
    if (Holds(kWriting, word)) effects_.reads_only = false;
    if (Holds(kLasting, word)) effects_.lasting = true;
    if (word == "print" || word == "raiserror") effects_.prints = true;
    if (word == "tran" || word == "transaction" || word == "distributed") {
      effects_.transaction = true;
      effects_.reads_only = false;
    } else if (word == "exec" || word == "execute") {
      words_.Next();
      ReadCall();
    } else if (word == "set") {
      ReadSet();
    }
  }

  void ReadTableName(const std::string& word) {
    if (!word.starts_with('#')) return;
    if (word.starts_with("##")) {
      effects_.lasting = true;
    } else {
      AddOnce(effects_.temporary_tables, words_.spelled());
    }
    effects_.reads_only = false;
  }

  /// A procedure, whose name begins with the last word, may leave a transaction open and print, and one of the server's
  /// own may change the session. So may a text that is not known.
  void ReadCall() {
    effects_.transaction = true;
    effects_.reads_only = false;
    effects_.prints = true;
    std::string name = words_.word();
    while (words_.Skip('.')) {
      words_.Skip('.');
      name = words_.Next();
    }
    if (name == "sp_executesql") {
      ReadKnownText();
    } else if (name.starts_with("sp_") || name.starts_with("xp_") || name.starts_with('@') || name == "as" ||
               name == "(") {
      effects_.lasting = true;
    }
  }

  /// The text that sp_executesql runs.
  void ReadKnownText() {
    std::string word = words_.Next();
    if (word == "@stmt" && words_.Skip('=')) word = words_.Next();
    if (word == "n") word = words_.Next();
    if (word != "'") {
      effects_.lasting = true;
      pending_ = word;
      return;
    }
    effects_.Add(EffectsOf(words_.spelled()));
  }

  /// SET of a variable or column is no effect; of an option it is.
  void ReadSet() {
    const std::string name = words_.Next();
    if (name.starts_with('@')) return;
    std::string behind = words_.Next();
    while (behind == ".") {
      words_.Next();
      behind = words_.Next();
    }
    const std::string_view sign = behind;
    if (sign.size() == 1 && std::string_view("=+-*/%&^|").find(sign.front()) != std::string_view::npos) return;
    const auto* found =
        std::find_if(kOptions.begin(), kOptions.end(), [&name](const Option& option) { return option.name == name; });
    // A comma goes before a further option.
    if (found == kOptions.end() || behind == ",") {
      effects_.lasting = true;
    } else {
      AddOnce(effects_.options, std::string(found->reset));
    }
    pending_ = behind;
  }

  Words words_;
  BatchEffects effects_;
  std::string pending_;
};

}  // namespace

void BatchEffects::Add(const BatchEffects& other) {
  reads_only = reads_only && other.reads_only;
  transaction = transaction || other.transaction;
  lasting = lasting || other.lasting;
  for (const std::string& option : other.options) AddOnce(options, option);
  for (const std::string& table : other.temporary_tables) AddOnce(temporary_tables, table);
}

std::string BatchEffects::CleaningBatch() const {
  std::string batch;
  if (transaction) batch += "IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION\n";
  for (const std::string& option : options) batch.append("SET ").append(option).append("\n");
  for (const std::string& table : temporary_tables) {
    const std::string name = Quoted(table, '[', ']');
    batch.append("IF OBJECT_ID(N")
        .append(Quoted("tempdb.." + name, '\'', '\''))
        .append(") IS NOT NULL DROP TABLE ")
        .append(name)
        .append("\n");
  }
  return batch;
}

BatchEffects EffectsOf(std::string_view text) { return Scan(text).Run(); }

}  // namespace tessarlorn::odbc
