// A statement answers what it would answer alone, whatever ran before it.
#include <gtest/gtest.h>

#include "tsql/plan_cases.h"

namespace tessarlorn {
namespace {

std::unique_ptr<Connection> OpenTables() {
  auto connection = OpenEmbedded();
  connection->Execute(kPlanTables);
  connection->Execute(kPlanProcedure);
  return connection;
}

TEST(PlanCache, EveryLiteralInEveryPlaceAnswersAsAlone) {
  std::vector<std::string> literals(kLiterals.begin(), kLiterals.end());
  literals.push_back(LongText());
  literals.push_back(LongBinary());
  for (const std::string_view place : kPlaces) {
    const auto shared = OpenTables();
    for (std::size_t i = 0; i < literals.size(); ++i) {
      // Before it the same text with another literal, of its own kind and of the kinds before.
      const std::string batch = Placed(place, literals[i], literals[(i * 7 + 3) % literals.size()]);
      const auto alone = OpenTables();
      const std::string wanted = AnswerAndUndo(*alone, batch);
      EXPECT_EQ(AnswerAndUndo(*shared, batch), wanted) << batch.substr(0, 300);
      EXPECT_EQ(AnswerAndUndo(*shared, batch), wanted) << "again: " << batch.substr(0, 300);
    }
  }
}

TEST(PlanCache, LiteralsOfKeysAreCompared) {
  CheckBatches(
      {"create table n (v int) insert n values (1), (5), (12), (27)"},
      {
          {"select v % 10 x, count(*) c from n where v < 6 group by rollup (v % 10, v % 5) order by 1, 2 desc",
           "x|c;NULL|2;1|1;1|1;5|1;5|1"},
          {"select v % 10 x, count(*) c from n where v < 6 group by rollup (v % 5, v % 10) order by 1, 2 desc",
           "x|c;NULL|2;NULL|1;NULL|1;1|1;5|1"},
          {"select v % 10 x from n union select 3 order by v % 10", "x;1;2;3;5;7"},
          {"select v % 10 x from n union select 3 order by v % 3",
           "error 104: ORDER BY items must appear in the select list if the statement contains a UNION, INTERSECT or EXCEPT "
           "operator."},
      });
}

TEST(PlanCache, DefinitionsMayChangeBetween) {
  struct Step {
    bool other;  // on the other session
    const char* batch;
    const char* answer;
  };
  const auto name = "Embedded=:memory:plans";
  const auto one = OpenConnection(name);
  const auto two = OpenConnection(name);
  constexpr const char* kRead = "select * from c where k = 1";
  constexpr const char* kAdd = "insert into c values (1, 1.5) select v from c";
  constexpr const char* kTemporary = "select a from #t where a = '1'";
  for (const Step& step : std::initializer_list<Step>{
           {false, "create table c (k int, v decimal(9,4))", ""},
           {false, kAdd, "v;1.5000"},
           {true, "drop table c create table c (k int, v varchar(3))", ""},
           {false, kAdd, "v;1.5"},
           {true, "alter table c add w int", ""},
           {false, kRead, "k|v|w;1|1.5|NULL"},
           {false, kAdd, "error 213: Column name or number of supplied values does not match table definition."},
           {true, "drop table c", ""},
           {true, "create view c as select 1 as k, 'view' as v", ""},
           {false, kRead, "k|v;1|view"},
           {false, "create table #t (a int) insert #t values (1)", ""},
           {false, kTemporary, "a;1"},
           {false, "drop table #t create table #t (a varchar(5)) insert #t values ('1 ')", ""},
           {false, kTemporary, "a;1 "},
           {true, kTemporary, "error 208: Invalid object name '#t'."},
       }) {
    EXPECT_EQ(Answer(step.other ? *two : *one, step.batch), step.answer) << step.batch;
  }
}

}  // namespace
}  // namespace tessarlorn
