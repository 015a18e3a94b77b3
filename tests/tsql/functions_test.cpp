// Functions, each call with the answer that SQL Server gives.
#include <gtest/gtest.h>

#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

struct Row {
  const char* values;
  const char* answer;
};

/// The answer to `select values`, without the heads.
void CheckValues(std::initializer_list<Row> rows) {
  const auto connection = OpenEmbedded();
  for (const Row& row : rows) {
    const std::string answer = Answer(*connection, "select " + std::string(row.values));
    EXPECT_EQ(answer.starts_with("error") ? answer : answer.substr(answer.find(';') + 1), row.answer) << row.values;
  }
}

TEST(Functions, FormatsNumbersAndDates) {
  CheckValues({
      {"format(1234567.891,'N2'), format(-1234.5,'C'), format(-1234.5,'C','zh-cn'), format(1234.5,'N','de-DE')",
       "1,234,567.89|($1,234.50)|¥-1,234.50|1.234,50"},
      {"format(42,'D5'), format(-1,'x'), format(0.1234,'P1'), format(9.995,'F2'), format(1.5,'D')",
       "00042|ffffffff|12.3%|10.00|NULL"},
      {"format(1234567.5,'#,##0.00'), format(12345678,'###-##-##'), format(1234567,'0,,.0M'), format(0.5,'#.##')",
       "1,234,567.50|1234-56-78|1.2M|.5"},
      {"format(-5,'0;(0);none'), format(0.001,'0.0;(0);none'), format(-5,'\\#0 \"a;b\"')", "(5)|none|-#5 a;b"},
      {"format(d,'d'), format(d,'yyyy-MM-dd HH:mm:ss.fff'), format(d,'h:mm tt'), format(d,'D','zh-CN'), format(d,'q') "
       "from (select cast('2026-11-03 15:08:07.123' as datetime) d) t",
       "11/3/2026|2026-11-03 15:08:07.123|3:08 PM|2026年11月3日|NULL"},
      {"format(cast('07:35' as time), 'hh.mm'), format(cast('07:35' as time), 'hh\\:mm')", "NULL|07:35"},
      {"format(1,'N','xx-YY')",
       "error 9818: The culture parameter 'xx-YY' provided in the function call is not supported."},
  });
}

}  // namespace
}  // namespace tessarlorn
