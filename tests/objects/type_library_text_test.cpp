#include "objects/type_library_text.h"

#include <gtest/gtest.h>

#include "objects/automation_object.h"
#include "platform/text.h"

namespace tessarlorn {
namespace {

std::size_t Count(std::string_view text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + part.size())) ++count;
  return count;
}

/// The text between two others, each of which stands there.
std::string Between(const std::string& text, const std::string& begin, const std::string& end) {
  const std::size_t from = text.find(begin);
  const std::size_t to = text.find(end, from);
  if (from == std::string::npos || to == std::string::npos) ADD_FAILURE() << begin;
  return from == std::string::npos ? "" : text.substr(from, to - from);
}

TEST(TypeLibraryTextTest, HasEveryMemberOnceForEachUse) {
  const std::string text = TypeLibraryText();
  for (const ClassDescription* const description : AutomationClasses()) {
    const std::string name(description->name);
    EXPECT_EQ(Count(text, "uuid(" + std::string(description->class_id) + ")"), 1U) << name;
    EXPECT_EQ(Count(text, "uuid(" + std::string(description->interface_id) + ")"), 1U) << name;
    EXPECT_EQ(Count(text, "coclass " + name + " {"), 1U);
    const std::string body = Between(text, "dispinterface _" + name + " {", "};");
    std::size_t lines = 0;
    for (const Member& member : description->members) {
      const std::string id = "[id(" + std::to_string(member.id) + ")";
      const std::string call = " " + std::string(member.name) + "(";
      const bool read = (member.uses & kGet) != 0;
      const bool written = (member.uses & kPut) != 0;
      const bool called = (member.uses & kCall) != 0;
      EXPECT_EQ(Count(body, id + ", propget"), read ? 1U : 0U) << name << call;
      EXPECT_EQ(Count(body, id + ", propput"), written ? 1U : 0U) << name << call;
      const std::size_t uses = std::size_t{read} + std::size_t{written} + std::size_t{called};
      EXPECT_EQ(Count(body, id), uses) << name << call;
      lines += uses;
      const std::string declared = Between(body, id, ";\n");
      EXPECT_EQ(Count(declared, call), 1U) << declared;
      std::size_t at = declared.find(call);
      for (const Argument& argument : member.arguments) {
        const std::string what =
            std::string(argument.in_out ? "[in, out" : "[in") + (argument.optional ? ", optional" : "");
        at = declared.find(what, at);
        ASSERT_NE(at, std::string::npos) << declared;
        at = declared.find(" " + std::string(argument.name), at);
        ASSERT_NE(at, std::string::npos) << declared;
      }
    }
    EXPECT_EQ(Count(body, "[id("), lines) << name;
  }
}

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

}  // namespace
}  // namespace tessarlorn
