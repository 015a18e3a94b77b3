#include "platform/session_string.h"

#include <gtest/gtest.h>

#include "support/error_of.h"

namespace tessarlorn {
namespace {

TEST(SessionStringTest, TakesApart) {
  const SessionString full =
      ParseSessionString(" connect = {Driver={{a}};Server=s} ; User=16394;Language=CHT;Client=10.0.0.5;ESCAPE=yes");
  EXPECT_EQ(full.database, "Driver={{a};Server=s");
  EXPECT_EQ(full.user, 16394);
  EXPECT_EQ(full.language, "CHT");
  EXPECT_EQ(full.client, "10.0.0.5");
  EXPECT_TRUE(full.escape);
  EXPECT_EQ(ParseSessionString("User=1;Connect=Embedded=orders.db").database, "Embedded=orders.db");
}

TEST(SessionStringTest, TakesWholeWhatNamesNoConnect) {
  for (const char* text : {"Embedded=:memory:", "Driver={ODBC};Connect Timeout=5;PWD={a", "DSN=Connect"}) {
    const SessionString session = ParseSessionString(text);
    EXPECT_EQ(session.database, text);
    EXPECT_EQ(session.user, 0);
    EXPECT_EQ(session.language, "CHS");
  }
}

TEST(SessionStringTest, SplitsPairsWithoutDoubledKeys) {
  const std::vector<std::pair<std::string, std::string>> pairs = {{"Embedded", "a"}, {"Pool", "Embedded"}};
  EXPECT_EQ(ParsePairs("Embedded=a; Pool = {Embedded};"), pairs);
  const Error error = ErrorOf([] { ParsePairs("Embedded=a;Pool=1;EMBEDDED={b}"); });
  EXPECT_EQ(error.number(), error_number::kLoginRefused);
  EXPECT_NE(error.description().find("EMBEDDED is doubled"), std::string::npos) << error.description();
}

TEST(SessionStringTest, NamesTheFault) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "empty"},
      {"Connect={Embedded=a;User=1", "Connect="},
      {"Connect={Embedded=a}x;User=1", "Connect"},
      {"Connect=Embedded=a;Usr=1", "Usr"},
      {"Connect=Embedded=a;User=1;user=2", "user"},
      {"Connect=Embedded=a;User", "User"},
      {"Connect=Embedded=a;User=12x", "12x"},
      {"Connect=Embedded=a;User=2147483648", "2147483648"},
      {"Connect=;User=1", "Connect="},
      {"Connect=Embedded=a;=1", "\"=\""},
      {"Connect=Embedded=a;Escape=1", "Escape=1"},
  };
  for (const auto& [text, named] : cases) {
    const Error error = ErrorOf([text = text] { ParseSessionString(text); });
    EXPECT_EQ(error.number(), error_number::kLoginRefused) << text;
    EXPECT_NE(error.description().find(named), std::string::npos) << text << ": " << error.description();
  }
}

}  // namespace
}  // namespace tessarlorn
