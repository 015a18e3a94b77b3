// The same question asked in two ways of the same rows: both have the same answer.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/text/text.h"
#include "tsql/database_support.h"

namespace {

struct TwoWays {
  const char* one;
  const char* other;
};

/// In them {a} and {b} are numbers.
constexpr TwoWays kWays[] = {
    {"select t.k, x.n from t cross apply (select s.n from s where s.k = t.k and s.n > {a}) x",
     "select t.k, s.n from t join s on s.k = t.k where s.n > {a}"},
    {"select t.k, x.n from t outer apply (select top 1 s.n from s where s.k = t.k order by s.n desc) x",
     "select t.k, (select max(s.n) from s where s.k = t.k) n from t"},
    {"select k, n, sum(v) v from t group by grouping sets ((k), (k, n), ()) having count(*) > {a}",
     "select k, null n, sum(v) v from t group by k having count(*) > {a} union all select k, n, sum(v) from t group by k, n having "
     "count(*) > {a} union all select null, null, sum(v) from t having count(*) > {a}"},
    {"select k, n, count(*) c from t group by rollup (k, n)",
     "select k, n, count(*) c from t group by cube (k, n) having grouping(k) = 0 or grouping(n) = 1"},
    {"select k, [{a}] x, [{b}] y from (select k, n, v from t) s pivot (sum(v) for n in ([{a}], [{b}])) p",
     "select k, sum(case when n = {a} then v end) x, sum(case when n = {b} then v end) y from t group by k"},
    {"select k, w, x from (select k, v, n from t where k = {a}) s unpivot (x for w in (v, n)) u",
     "select k, 'v' w, v x from t where k = {a} and v is not null union all select k, 'n', n from t where k = {a} and n is not null"},
    {"select top ({a}) with ties k, v from t order by v",
     "select k, v from (select k, v, rank() over (order by v) r from t) x where r <= {a}"},
    {"merge t using s on s.k = t.k and s.n = t.n when matched and s.n > {a} then update set v = {b} when not matched by source then "
     "delete; select k, n, v from t",
     "delete t where not exists (select 1 from s where s.k = t.k and s.n = t.n) update t set v = {b} where n > {a} select k, n, v "
     "from t"},
    {"with c as (select k, v, n + 1 m from t where n >= {a}) update c set v = m + {b} select k, n, v from t",
     "update t set v = n + 1 + {b} where n >= {a} select k, n, v from t"},
    {"declare @o table (k int, v int, w int) update t set v = isnull(v, 0) + {a} output inserted.k, inserted.v, deleted.v into @o "
     "where n = {b} select k, v, w from @o",
     "select k, isnull(v, 0) + {a} v, v w from t where n = {b}"},
    {"declare @v int, @s int = 0 declare c cursor for select v from t where n > {a} open c fetch c into @v while @@fetch_status = 0 begin "
     "set @s += isnull(@v, 0) fetch c into @v end select @s s",
     "select isnull(sum(v), 0) s from t where n > {a}"},
    {"select f.k, dbo.plus(f.v, {a}) v from dbo.those({b}) f", "select k, v + {a} v from t where n = {b}"},
    {"select k, twice from c where twice > {a}", "select k, 2 * n + 1 twice from t where 2 * n + 1 > {a}"},
    {"update t set v = {a} where n = {b} delete t where n = {a} select k, was, now from book",
     "select k, v was, {a} now from t where n = {b} union all select k, case when {a} = {b} then {a} else v end, null from t where "
     "n = {a}"},
    {"select string_agg(k, ',') within group (order by k) s from t where n in (select value from string_split('{a},{b}', ','))",
     "select stuff((select ',' + cast(k as varchar(9)) from t where n in ({a}, {b}) order by k for xml path('')), 1, 1, '') s"},
};

constexpr const char* kTables[] = {
    "create table t (r int identity primary key, k int, n int, v int) create table s (k int, n int, unique (k, n)) create table book "
    "(k int, was int, now int) create table c (k int, n int, twice as 2 * n + 1)",
    "create trigger noted on t after update, delete as insert book select d.k, d.v, i.v from deleted d left join inserted i on i.r = "
    "d.r",
    "create function plus (@v int, @a int) returns int as begin return @v + @a end",
    "create function those (@n int) returns table as return select k, v from t where n = @n",
};

std::string Answer(const std::string& rows, std::string batch, int a, int b) {
  batch = tessarlorn::ReplaceAll(tessarlorn::ReplaceAll(batch, "{a}", std::to_string(a)), "{b}", std::to_string(b));
  const auto connection = tessarlorn::OpenEmbedded();
  for (const char* table : kTables) connection->Execute(table);
  connection->Execute(rows);
  const std::string text = tessarlorn::Answer(*connection, batch);
  std::vector<std::string_view> lines = tessarlorn::Split(text, ';');
  std::sort(lines.begin() + 1, lines.end());
  std::string sorted;
  for (const std::string_view line : lines) sorted.append(line).append("\n");
  return sorted;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3 || size > 60) return 0;
  const TwoWays& ways = kWays[data[0] % std::size(kWays)];
  const int a = data[1] % 8;
  const int b = data[2] % 8 + (data[2] % 8 == a ? 8 : 0);
  std::string rows = "set nocount on ";
  for (std::size_t i = 3; i + 1 < size; i += 2) {
    const std::string k = std::to_string(data[i] % 4);
    const std::string n = std::to_string(data[i] / 4 % 8);
    const std::string v = data[i + 1] % 16 == 0 ? "null" : std::to_string(data[i + 1] % 16);
    rows += "insert t (k, n, v) values (" + k + "," + n + "," + v + ") insert c (k, n) values (" + k + "," + n + ") ";
    if (data[i + 1] > 127) {
      rows += "if not exists (select 1 from s where k = " + k + " and n = " + n + ") insert s values (" + k + "," + n +
              ") ";
    }
  }
  const std::string one = Answer(rows, ways.one, a, b);
  const std::string other = Answer(rows, ways.other, a, b);
  if (one != other || one.starts_with("error")) {
    std::fprintf(stderr, "%s\n%s\nanswers %s\n%s\nanswers %s\n", rows.c_str(), ways.one, one.c_str(), ways.other,
                 other.c_str());
    std::abort();
  }
  return 0;
}
