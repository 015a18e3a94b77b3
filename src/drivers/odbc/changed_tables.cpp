#include "drivers/odbc/changed_tables.h"

#include <cstddef>

#include "drivers/odbc/sql_words.h"

namespace tessarlorn::odbc {
namespace {

struct Word {
  /// In lower case.
  std::string text;
  std::string spelled;
};

std::vector<Word> WordsOf(std::string_view text) {
  std::vector<Word> all;
  Words words(text);
  while (!words.Next().empty()) {
    // A quoted name is no keyword.
    all.push_back({words.quoted() ? "" : words.word(), words.spelled()});
  }
  return all;
}

bool IsChange(const std::string& word) { return word == "insert" || word == "update" || word == "delete"; }

/// The last part of the name at the position, which is left behind it.
std::string ReadName(const std::vector<Word>& words, std::size_t& at) {
  std::string name = at < words.size() ? words[at++].spelled : "";
  while (at + 1 < words.size() && words[at].text == ".") {
    name = words[at + 1].spelled;
    at += 2;
  }
  return name;
}

/// The table that the sources of the statement give that alias, or the name itself.
std::string TableOf(const std::string& name, const std::vector<Word>& words, std::size_t at) {
  for (; at < words.size() && !IsChange(words[at].text); ++at) {
    if (words[at].text != "from" && words[at].text != "join" && words[at].text != ",") continue;
    std::size_t source = at + 1;
    const std::string table = ReadName(words, source);
    if (source < words.size() && words[source].text == "as") ++source;
    if (source < words.size() && EqualsIgnoreCase(words[source].spelled, name)) return table;
  }
  return name;
}

}  // namespace

std::vector<std::string> ChangedTables(std::string_view text) {
  const std::vector<Word> words = WordsOf(text);
  std::vector<std::string> tables;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (!IsChange(words[i].text)) continue;
    std::size_t at = i + 1;
    if (at < words.size() && (words[at].text == "into" || words[at].text == "from")) ++at;
    const std::string name = ReadName(words, at);
    tables.push_back(TableOf(name, words, at));
  }
  return tables;
}

}  // namespace tessarlorn::odbc
