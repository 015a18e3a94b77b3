// The rights that docs/sql-server.md grants are those that the operations need, and no more.
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <regex>
#include <set>
#include <sstream>

#include "platform/text/text.h"
#include "support/shell.h"

namespace tessarlorn {
namespace {

std::string Read(const std::string& file) {
  std::ostringstream text;
  text << std::ifstream(TESSARLORN_SOURCE_ROOT "/" + file).rdbuf();
  EXPECT_FALSE(text.str().empty()) << file;
  return text.str();
}

/// "UPDATE IC_Web2ERPOrders" for everything that a text of statements does to named tables and procedures.
void AddNeeds(const std::string& text, std::set<std::string>& needs) {
  static const std::regex change(
      R"(\b(exec|delete|insert|update|truncate|merge)\s+(?:top\s*\(\d+\)\s+)?(?:from\s+|into\s+)?([#<\w]+))",
      std::regex::icase);
  for (std::sregex_iterator at(text.begin(), text.end(), change), end; at != end; ++at) {
    std::string table = (*at)[2];
    // UPDATE t1 … FROM table t1
    const std::regex alias("\\b(?:from|join)\\s+(\\S+)\\s+(?:as\\s+)?" + table + "\\b", std::regex::icase);
    std::smatch found;
    const std::string behind = text.substr(static_cast<std::size_t>(at->position()));
    if (UpperCase((*at)[1].str()) == "UPDATE" && std::regex_search(behind, found, alias)) table = found[1];
    // What begins otherwise is a temporary table, or one that a caller names.
    if (std::isalpha(static_cast<unsigned char>(table.front())) == 0) continue;
    needs.insert(UpperCase((*at)[1].str()) + " " + table);
  }
}

TEST(Rights, OfTheDocumentAreThoseThatTheOperationsNeed) {
  std::set<std::string> needs;
  AddNeeds(Read("src/siblings/web_order_log.cpp"), needs);
  AddNeeds(Read("src/workbench/actions.cpp"), needs);
  const std::string statements = Read("tests/automation/statements.txt");
  for (std::size_t begin = 0; begin < statements.size();) {
    const std::size_t end = std::min(statements.find("\n== ", begin + 1), statements.size());
    AddNeeds(statements.substr(begin, end - begin), needs);
    begin = end;
  }

  std::set<std::string> door;
  for (const auto& file : std::filesystem::recursive_directory_iterator(TESSARLORN_SOURCE_ROOT "/src/hosts/http")) {
    if (file.path().extension() == ".cpp" || file.path().extension() == ".h") AddNeeds(ReadFile(file.path()), door);
  }
  std::copy_if(door.begin(), door.end(), std::inserter(needs, needs.end()),
               [](const std::string& need) { return need.find(" Door") != std::string::npos; });

  std::set<std::string> granted;
  const std::string document = Read("docs/sql-server.md");
  const std::regex grant(R"(GRANT ([A-Z, ]+) ON dbo\.(\w+) TO)");
  for (std::sregex_iterator at(document.begin(), document.end(), grant), end; at != end; ++at) {
    const std::regex word("[A-Z]+");
    const std::string rights = (*at)[1];
    for (std::sregex_iterator right(rights.begin(), rights.end(), word), last; right != last; ++right) {
      const std::string what = right->str() == "EXECUTE" ? "EXEC" : right->str();
      EXPECT_TRUE(granted.insert(what + " " + (*at)[2].str()).second) << "granted twice: " << at->str();
    }
  }
  EXPECT_EQ(granted, needs);
}

}  // namespace
}  // namespace tessarlorn
