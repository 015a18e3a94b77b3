// Functions, each call with the answer that SQL Server gives.
#include <gtest/gtest.h>

#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

struct FunctionCase {
  const char* values;
  const char* answer;
};

/// The answer to `select values`, without the heads.
void CheckValues(std::initializer_list<FunctionCase> rows) {
  const auto connection = OpenEmbedded();
  for (const FunctionCase& row : rows) {
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
      {"format(cast(0.00001 as float),'G'), format(cast(1e20 as float),'G'), format(cast(10.5 as decimal(14,4)),'G'), "
       "format(123,'G2')",
       "1E-05|1E+20|10.5000|1.2E+02"},
      {"format(1,'N','xx-YY')",
       "error 9818: The culture parameter 'xx-YY' provided in the function call is not supported."},
  });
}

TEST(Functions, StatisticsOfGroupsAndWindows) {
  CheckValues({
      {"stdev(v), varp(v), stdev(distinct v), checksum_agg(cast(v as int)), var(null + 0.0) from (values (1.0),(2),(4),(4),(null)) t(v)",
       "1.5|1.6875|1.52752523165195|3|NULL"},
      {"k, var(v) over (order by k rows between 1 preceding and current row), percent_rank() over (order by v) from "
       "(values (1,1.0),(2,2),(3,4)) t(k,v)",
       "1|NULL|0;2|0.5|0.5;3|2|1"},
      {"k, sum(sum(v)) over (order by k), rank() over (order by sum(v) desc) from (values (1,1),(1,2),(3,4)) t(k,v) group by k",
       "1|3|2;3|7|1"},
      {"distinct k, percentile_cont(0.5) within group (order by v) over (partition by k), percentile_disc(0.5) within "
       "group (order by v desc) over (partition by k) from (values (1,1),(1,4),(1,null),(2,7)) t(k,v) order by 1",
       "1|2.5|4;2|7|7"},
      {"rank()", "error 10753: The function 'rank' must have an OVER clause."},
      {"stdev('a')", "error 8117: Operand data type varchar is invalid for stdev operator."},
      {"hashbytes('MD5', replicate('a',200)), hashbytes('sha1',N'abc'), hashbytes('x','a')",
       "0x887F30B43B2867F4A9ACCCEEE7D16E6C|0x9F04F41A848514162050E3D68C1A7ABB441DC2B5|NULL"},
      {"hashbytes('SHA2_256', replicate('a',56))",
       "0xB35439A4AC6F0948B6D6F9E3C6AF0F5F590CE20F1BDE7090EF7970686EC6738A"},
      {"hashbytes('SHA2_512','abc')",
       "0xDDAF35A193617ABACC417349AE20413112E6FA4E89A97EA20A9EEEE64B55D39A2192992A274FC1A836BA3C23A3FEEBBD454D4423643CE80E2A9AC94FA54CA49F"},
      {"checksum(*) - checksum(1, 'X '), sign(abs(binary_checksum(b) - binary_checksum('X'))) from (select 1 a, 'x' b) t",
       "0|1"},
  });
}

TEST(Functions, DatesOfPartsAndZones) {
  CheckValues({
      {"convert(varchar(23), datetimefromparts(2026,11,3,9,8,7,997), 121), cast(datetime2fromparts(2026,11,3,9,8,7,5,1) as varchar(30)), "
       "cast(timefromparts(9,8,7,50,2) as varchar(20)), datetimeoffsetfromparts(2026,11,3,9,8,7,0,8,30,0)",
       "2026-11-03 09:08:07.997|2026-11-03 09:08:07.5|09:08:07.50|2026-11-03 09:08:07 +08:30"},
      {"datefromparts(2026,2,30)",
       "error 289: Cannot construct data type date, some of the arguments have values which are not valid."},
      {"datetrunc(quarter,'2026-06-13'), datetrunc(week, cast('2026-11-04' as date)), datepart(iso_week,'2027-01-01')",
       "2026-04-01 00:00:00|2026-11-01 00:00:00|53"},
      {"datepart(tz, d), datename(tz, d) from (select cast('2026-11-01 10:00 -05:30' as datetimeoffset) d) t",
       "-330|-05:30"},
      {"dateadd(isowk, 1, getdate())",
       "error 9810: The datepart isowk is not supported by date function dateadd for data type datetime."},
      {"@@datefirst, datepart(dw, '2026-11-01')", "7|1"},
      {"cast('2026-07-01 12:00' as datetime2(0)) at time zone 'UTC' at time zone 'China Standard Time', "
       "cast('2022-03-27 02:30' as datetime2(0)) at time zone 'Central European Standard Time', "
       "cast('2022-10-30 02:30' as datetime2(0)) at time zone 'Central European Standard Time', "
       "cast('2026-01-01' as smalldatetime) at time zone 'AUS Eastern Standard Time'",
       "2026-07-01 20:00:00 +08:00|2022-03-27 03:30:00 +02:00|2022-10-30 02:30:00 +01:00|2026-01-01 00:00:00 +11:00"},
  });
}

TEST(Functions, WeeksBeginWithDateFirst) {
  const auto connection = OpenEmbedded();
  EXPECT_EQ(Answer(*connection,
                   "set datefirst 1 select @@datefirst a, datepart(dw, d) b, datename(dw, d) c, datepart(wk, d) d "
                   "from (select cast('2026-11-01' as date) d) t"),
            "a|b|c|d;1|7|Sunday|44");
  EXPECT_EQ(Answer(*connection, "set datefirst 9"), "error 2742: SET DATEFIRST 9 is out of range.");
}

TEST(Functions, LooksAtCharacters) {
  CheckValues({
      {"trim('x.' from '..Xabx.'), ltrim('货货a','货'), translate('2*[3+4]','[]','()'), difference('Smythe','Smith'), "
       "soundex('Tymczak')",
       "ab|a|2*(3+4)|4|T522"},
      {"parsename('srv.db.[my.s].t',2), parsename('a..t',2), string_escape('a\"/' + char(10), 'json'), radians(180)",
       R"(my.s|NULL|a\"\/\n|3)"},
      {"translate('abc','ab','x')",
       "error 9828: The second and third arguments of the TRANSLATE built-in function must contain an equal number of "
       "characters."},
  });
}

TEST(Functions, ReadsJson) {
  CheckValues({
      {R"(json_value(j,'$.a.b[0]'), json_value(j,'lax $.a.b[1]."k x"'), json_value(j,'$.a'), json_query(j,'$.a.b'),
          json_query(j,'$.t'), isjson(j), isjson('[1,]')
          from (select N'{"a":{"b":[1,{"k x":"v\u00e9\ud83d\ude00"}]},"t":true}' j) t)",
       R"(1|vé😀|NULL|[1,{"k x":"v\u00e9\ud83d\ude00"}]|NULL|1|0)"},
      {R"(json_value('{"a":1}','strict $.b'))", "error 13608: Property cannot be found on the specified JSON path."},
      {R"(json_value('{"a":{}}','strict $.a'))",
       "error 13623: Scalar value cannot be found in the specified JSON path."},
      {R"(json_value(N'{"货":x}','$.a'))",
       "error 13609: JSON text is not properly formatted. Unexpected character 'x' is found at position 5."},
      {"json_value('{}','a')",
       "error 13607: JSON path is not properly formatted. Unexpected character 'a' is found at position 0."},
      {R"(json_modify(j,'$.a','x"'), json_modify(j,'$.a',null), json_modify(j,'$.b',null), json_modify(j,'append $.b',2.50),
          json_modify(j,'$.c',cast(1 as bit)), json_modify(j,'$.a',json_query('[1]')), json_modify(j,'strict $.a',null)
          from (select '{"a":1, "b":[]}' j) t)",
       R"({"a":"x\"", "b":[]}|{"b":[]}|{"a":1}|{"a":1, "b":[2.50]}|{"a":1, "b":[],"c":true}|{"a":[1], "b":[]}|{"a":null, "b":[]})"},
      {R"([key], value, type from openjson('{"a":1,"b":"x\n","c":null,"d":[1],"e":{"f":2},"g":true}') where type <> 2)",
       "b|x\n|1;c|NULL|0;d|[1]|4;e|{\"f\":2}|5;g|true|3"},
      {R"(* from openjson('{"r":[{"id":1,"n":"A","o":{"x":[1]}},{"id":2}]}', '$.r')
          with (id int, name nvarchar(10) '$.n', o nvarchar(max) as json, x int '$.o.x[0]'))",
       "1|A|{\"x\":[1]}|1;2|NULL|NULL|NULL"},
      {R"(k, a from (values (1,'{"a":5}'),(2,null)) t(k,v) outer apply openjson(v) with (a int) j)", "1|5;2|NULL"},
      {R"(* from openjson('{"a":5}','strict $.a'))",
       "error 13611: Value referenced by JSON path is not an array or object and cannot be opened with OPENJSON."},
  });
}

}  // namespace
}  // namespace tessarlorn
