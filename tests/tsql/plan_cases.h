// Where a literal may stand, and what may stand there: what a plan made for one literal has to answer for another.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "tsql/database_support.h"

namespace tessarlorn {

/// Each $ is the place of one literal.
inline constexpr std::array kPlaces = std::to_array<std::string_view>({
    "select $ as a, $ as b",
    "select a.x from (select $ as x union all select $) a order by 1",
    "select case when 1=1 then $ else $ end as a, iif(1=0,$,$) as b",
    "select coalesce(null,$,$) as a, nullif($,$) as b, isnull($,$) as c",
    "select len($) as a, left($,2) as b, substring($,1,$) as c, replace($,$,'-') as d",
    "select $+$ as a, 1.5+$ as b, -$ as c, $*2 as d",
    "select convert(varchar(40),$) as a, convert(varchar(40),cast('2026-11-03' as datetime),$) as b",
    "select cast($ as decimal(20,4)) as a, cast($ as varbinary(20)) as b",
    "select top ($) k from w order by k",
    "select k, v from w order by $",
    "select k from w where k=$ or v=$ or v like $ order by k",
    "select k from w where k in ($,$) or v in ($,'q',$,'r','s') order by k",
    "select k+$ as a, count(*) as n from w group by k+$ order by 1",
    "select substring(v,1,$) as a, count(*) as n from w group by substring(v,1,$) order by 1",
    "select distinct k+$ as a from w order by k+$",
    "insert into t (a) select $ select a from t",
    "insert into t (b) values ($) insert into t (b) select $ select b from t",
    "insert into t (c) values ($),($) select c from t order by c",
    "update w set v=$ where k=1 select v from w where k=1",
    "delete from w where k=$ select count(*) as n from w",
    "declare @a nvarchar(max)=$, @b varbinary(max) set @b=$ select @a as a, @b as b",
    "declare @i int set @i=1 set @i+=$ select @i as i",
    "select $ as a into #m select a from #m drop table #m",
    "select identity(int,$,1) as i, k into #i from w select min(i) as i from #i",
    "exec p $,$",
    "exec sp_executesql N'select @x as x, @y as y', N'@x nvarchar(max), @y varbinary(max)', $, $",
    "if $=$ print 'same' select dateadd(day,$,'2026-11-03') as a",
    "begin try raiserror('%s',16,$,$) end try begin catch select error_message() as m, error_state() as s end catch",
    "set rowcount $ select 1 as a",
});

inline constexpr std::array kLiterals = std::to_array<std::string_view>(
    {"1",      "2",     "100",    "007", "2147483647", "2147483648",   "99999999999999999999",
     "1.5",    "10.25", "0.001",  "1e0", "2.5e3",      "0x",           "0x11",
     "0x1122", "0x123", "''",     "'1'", "'ab'",       "'2026-11-03'", "'o''b'",
     "N'货'",  "N'x'",  "'%[a]%'"});

inline std::string LongText() { return "'" + std::string(8001, 'x') + "'"; }
inline std::string LongBinary() { return "0x" + std::string(16002, 'a'); }

/// The place with a literal at each $; the second one where they are two.
inline std::string Placed(std::string_view place, std::string_view first, std::string_view second) {
  std::string batch;
  bool odd = false;
  for (const char c : place) {
    if (c == '$') {
      batch += odd ? second : first;
      odd = !odd;
    } else {
      batch += c;
    }
  }
  return batch;
}

inline constexpr std::string_view kPlanTables =
    "create table t (a varbinary(max), b nvarchar(max), c decimal(20,4)) "
    "create table w (k int primary key, v varchar(20)) insert w values (1,'ab'),(2,'1'),(3,'abc')";
inline constexpr std::string_view kPlanProcedure =
    "create procedure p @x nvarchar(max), @y varbinary(max) as select @x as x, @y as y";

/// What a batch answers on a connection and leaves in its tables, which are as before then.
inline std::string AnswerAndUndo(Connection& connection, std::string_view batch) {
  connection.BeginTransaction();
  std::string answer = Answer(connection, batch);
  connection.RollbackTransaction();
  connection.Reset();
  return answer;
}

}  // namespace tessarlorn
