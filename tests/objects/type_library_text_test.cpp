#include "hosts/objects/library/type_library_text.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

#include "hosts/objects/automation_object.h"
#include "hosts/objects/library/interface_functions.h"
#include "platform/text/text.h"

namespace tessarlorn {
namespace {

/// Help is prose, with quotes of its own: each text ends where it should, on its line.
TEST(TypeLibraryTextTest, QuotesHelp) {
  const std::string text = TypeLibraryText();
  EXPECT_NE(text.find(R"("Fields by which the rows are ordered, as \"FDate DESC, FID\".")"), std::string::npos);
  for (const std::string_view line : Split(text, '\n')) {
    std::size_t quotes = 0;
    for (std::size_t i = 0; i < line.size(); ++i) {
      if (line[i] == '\\') {
        ++i;
      } else if (line[i] == '"') {
        ++quotes;
      }
    }
    EXPECT_EQ(quotes % 2, 0U) << line;
  }
}

/// Old compilers cut longer ones, or take none.
TEST(TypeLibraryTextTest, HelpIsShort) {
  constexpr std::string_view kBegin = "helpstring(\"";
  const std::string text = TypeLibraryText();
  for (std::size_t at = text.find(kBegin); at != std::string::npos; at = text.find(kBegin, at + 1)) {
    const std::size_t begin = at + kBegin.size();
    const std::size_t end = text.find("\")", begin);
    EXPECT_GT(end - begin, 1U) << text.substr(at, 80);
    EXPECT_LE(Utf16Length(ReplaceAll(text.substr(begin, end - begin), "\\", "")), 255U) << text.substr(at, 80);
  }
}

/// Each interface with its functions in the order of the vtable: use, name, number, types.
std::string Interfaces() {
  std::string text;
  for (const ClassDescription* const description : AutomationClasses()) {
    text += InterfaceName(description->name) + " " + std::string(description->interface_id) + "\n";
    for (const InterfaceFunction& function : InterfaceFunctions(*description)) {
      const Member& member = *function.member;
      constexpr std::string_view kUses[] = {"", "call", "get", "", "put"};
      text += "  " + std::string(kUses[function.use]) + (function.by_reference ? " by reference " : " ") +
              std::string(member.name) + " " + std::to_string(member.id) + " (";
      for (const Argument& argument : function.arguments)
        text += TypeOf(argument).library + (argument.in_out ? "*;" : ";");
      text += member.returns_nothing ? ")\n" : ") " + ResultType(member).library + "\n";
    }
  }
  return text;
}

/// Compiled clients have all of this in them: a line that a release had never changes, and new ones go behind the
/// others of their interface.
TEST(TypeLibraryTextTest, InterfacesStayAsTheyWereRecorded) {
  std::ifstream file(TESSARLORN_SOURCE_ROOT "/tests/objects/interfaces.txt");
  const std::string recorded{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(Interfaces(), recorded);
}

}  // namespace
}  // namespace tessarlorn
