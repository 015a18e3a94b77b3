#include "hosts/objects/recordset/row_condition.h"

#include <gtest/gtest.h>

#include "objects/object_support.h"

namespace tessarlorn {
namespace {

std::string Meeting(const std::string& condition) {
  const RecordsetPtr rows = SampleRows();
  const RowCondition wanted(condition, *rows);
  std::string keys;
  for (rows->MoveFirst(); !rows->eof(); rows->MoveNext()) {
    if (wanted.Holds(*rows)) keys += rows->Get("FID").ToText();
  }
  return keys;
}

TEST(RowConditionTest, HoldsForTheRowsThatItDescribes) {
  const std::pair<const char*, const char*> cases[] = {
      {"FID = 3", "3"},
      {" fid\t<>\r\n3 ", "1245"},
      {"FID>=2 and FID<4", "23"},
      {"FID <= '2'", "12"},
      {"FID = -1 OR FCost = -1", "4"},
      {"FCost = 12.50", "13"},
      {"FCost > +1.2e1", "13"},
      {"FWeight = 0.1", "4"},
      {"FPaid = TRUE", "13"},
      {"FPaid = 1", "13"},
      {"FPaid = 'True'", "13"},
      {"FPaid <> -1", "25"},
      // AND goes before OR.
      {"FID = 1 OR FID = 2 AND FPaid = TRUE", "1"},
      {"(FID = 1 OR FID = 2) AND FPaid = FALSE", "2"},
      {"((FID = 5)) OR ((FID = 4 AND (FCost < 0)))", "45"},
      // A null is neither equal nor unequal to a value.
      {"FBuyer = NULL", "4"},
      {"FBuyer <> null", "1235"},
      {"FBuyer <> 'Wang'", "235"},
      {"FDate < #2024-01-02#", "4"},
      {"FDate = #1/2/2024#", "15"},
      {"FDate >= '2024-03-01 10:30'", "2"},
      // Text in the order and with the equality of the database.
      {"FBuyer = 'APPLE  '", "3"},
      {"FBuyer = #apple#", "3"},
      {"FBuyer > 'o'", "15"},
      {"FBuyer = 'O''Neil 50%'", "5"},
      {"FBuyer = 12", ""},
      {"[Remark, own] = 'B'", "13"},
      {"[Remark, own] = ''", "5"},
      {"FBuyer LIKE 'apple*'", "23"},
      {"FBuyer LIKE 'apple'", "3"},
      {"FBuyer like '%50%'", "5"},
      {"FBuyer LIKE '*NG'", "1"},
      {"FBuyer LIKE '*'", "1235"},
      {"FBuyer LIKE '*_*'", "2"},
      {"FBuyer LIKE '*[a-z]*'", ""},
      {"FID LIKE '3*'", "3"},
  };
  for (const auto& [condition, keys] : cases) EXPECT_EQ(Meeting(condition), keys) << condition;
}

TEST(RowConditionTest, RefusesWhatCannotBeRead) {
  const char* const unreadable[] = {"",
                                    "FID",
                                    "FID =",
                                    "FID = 3 AND",
                                    "FID = 3 4",
                                    "FID = 3AND FID = 4",
                                    "= 3",
                                    "(FID = 3",
                                    "FID = 3)",
                                    "FID == 3",
                                    "FID = 'a",
                                    "FID = 'three'",
                                    "FID = 1-2",
                                    "FID IS NULL",
                                    "FID > NULL",
                                    "FBuyer LIKE NULL",
                                    "FDate = #Monday#",
                                    "FDate = #2024-01-02",
                                    "FPaid = 'perhaps'",
                                    "FBuyer LIKE 'a*b'",
                                    "FBuyer = Wang",
                                    "FData = '01'",
                                    "[FID = 3",
                                    "[] = 3",
                                    "FID = 1e99"};
  for (const char* const condition : unreadable) {
    EXPECT_EQ(Number([&] { Meeting(condition); }), 3001) << condition;
  }
  for (const char* const condition : {"None = 3", "FID = 3 AND [no field] = 1"}) {
    EXPECT_EQ(Number([&] { Meeting(condition); }), 3265) << condition;
  }
  try {
    Meeting("FID = 3 AND FBuyer !");
    FAIL();
  } catch (const Error& error) {
    EXPECT_NE(error.description().find("'FID = 3 AND FBuyer !' cannot be read at '!'"), std::string::npos)
        << error.description();
  }
}

/// Neither a long list nor many parentheses may take the stack.
TEST(RowConditionTest, TakesLongListsAndRefusesDeepNesting) {
  std::string list = "FID = 5";
  for (int i = 0; i < 100'000; ++i) list += " OR FID = -7";
  EXPECT_EQ(Meeting(list), "5");
  const auto nested = [](std::size_t depth) { return std::string(depth, '(') + "FID = 1" + std::string(depth, ')'); };
  EXPECT_EQ(Meeting(nested(100)), "1");
  EXPECT_EQ(Number([&] { Meeting(nested(1'000'000)); }), 3001);
}

}  // namespace
}  // namespace tessarlorn
