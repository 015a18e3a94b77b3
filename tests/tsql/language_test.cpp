// What people type into filters and ad-hoc queries: each batch with the answer that SQL Server gives.
#include <gtest/gtest.h>

#include "tsql/order_tables.h"

namespace tessarlorn {
namespace {

TEST(Language, QueriesOfManyShapes) {
  CheckOnOrders({
      {"with a as (select FID, count(*) n from e group by FID), b as (select max(n) m from a) select a.FID from a join b on a.n = b.m",
       "FID;1"},
      {"with r(i) as (select 1 union all select i + 1 from r where i < 4) select sum(i) as s from r", "s;10"},
      {"select FID, sum(FQty) over (partition by FID order by FEntryID) as q from e order by FEntryID",
       "FID|q;1|1.0000;1|3.0000;2|3.0000"},
      {"select FEntryID, lag(FEntryID, 1, 0) over (order by FEntryID) as b, rank() over (order by FID) as r from e order by 1",
       "FEntryID|b|r;11|0|1;12|11|1;21|12|3"},
      {"select FID from o except select FID from e", "FID;3"},
      {"select 1 as a, 'x' as b union all select 2.5, N'货' order by a desc", "a|b;2.5|货;1.0|x"},
      {"select top 1 FID from (select top 2 FID from o order by FID desc) t order by FID", "FID;2"},
      {"select o.FID, t.n from o left join (select FID, count(*) as n from e group by FID) t on t.FID = o.FID order by 1",
       "FID|n;1|2;2|1;3|NULL"},
      {"select FID from o order by FID offset 1 rows fetch next 1 rows only", "FID;2"},
      {"select v.a, v.b from (values (1,'x'),(2,null)) v(a,b) order by a", "a|b;1|x;2|NULL"},
      {"select o.FID, e.FEntryID from o left join e on replace(e.FCode, 'A', '') = cast(o.FID as varchar(50)) order by 1, 2",
       "FID|FEntryID;1|11;1|12;2|NULL;3|NULL"},
      {"select FID from o where FID > all (select FID from e where FID < 2) and FID = any (select FID from o) order by 1",
       "FID;2;3"},
      {"select case when exists(select 1 from e where FID = o.FID) then 'y' else 'n' end as x from o order by FID",
       "x;y;y;n"},
      {"select o.FID, e.FEntryID from e right join o on e.FID = o.FID and e.FQty > 1 order by 1, 2",
       "FID|FEntryID;1|12;2|21;3|NULL"},
      {"select FState, avg(FAmount) as a from o group by FState having max(FID) < 3 order by FState",
       "FState|a;2|10.500000;6|20.000000"},
      {"select string_agg(FCode, ',') as s from e", "s;A1,a1 "},
      {"select k, string_agg(v, '-') within group (order by len(v), v desc) as s from (values (1,'10'),(1,'2'),(1,'3'),"
       "(2,null),(1,null)) t(k,v) group by k order by k",
       "k|s;1|3-2-10;2|NULL"},
      {"select FID from o where FName in ('BOB', N'李四') and not (FID = 2)", "FID;3"},
      {"create table #k (k int) insert #k values (2),(2),(null),(7) select FID from o where exists(select 1 from #k where k=o.FID) drop table #k",
       "FID;2"},
  });
}

TEST(Language, FunctionsOfTextNumberAndDate) {
  CheckOnOrders({
      {"select patindex('%[0-9]%', 'ab3c') as a, charindex(N'货', N'发货') as b, stuff(N'发货单', 2, 1, 'X') as c, quotename('a]b') as d",
       "a|b|c|d;3|2|发X单|[a]]b]"},
      {"select concat('a', null, 5, 1.50) as a, concat_ws('-', 'a', null, 'b') as b, len(N'货物 ') as c, datalength(N'货') as d, datalength('ab') as e",
       "a|b|c|d|e;a51.50|a-b|2|2|2"},
      {"select round(1234.5678, 2) as a, round(1250, -2) as b, round(2.567, 1, 1) as c, ceiling(-1.5) as d, power(2.5, 2) as e, abs(-5.25) as f",
       "a|b|c|d|e|f;1234.5700|1300|2.500|-1|6.3|5.25"},
      {"select 5 % 3 as a, -5 / 2 as b, 5.0 / 2 as c, 2 * 3.5 as d, 7 & 3 as e, 5 ^ 1 as f",
       "a|b|c|d|e|f;2|-2|2.500000|7.0|3|4"},
      {"select dateadd(day, -1, '2026-03-01') as a, datediff(week, '2026-11-01', '2026-11-08') as b, datename(month, '2026-11-03') as c, eomonth('2026-02-11') as d",
       "a|b|c|d;2026-02-28 00:00:00|1|November|2026-02-28 00:00:00"},
      {"select convert(varchar(30), cast('2026-11-03 14:05:06.007' as datetime), 121) as a, convert(varchar(20), cast('2026-11-03' as datetime)) as b",
       "a|b;2026-11-03 14:05:06.007|Nov  3 2026 12:00AM"},
      {"select isnumeric('1e5') as a, isdate('2026-02-30') as b, try_cast('x' as int) as c, try_convert(datetime, 'x') as d, iif(1 > 2, 'a', 'b') as e, choose(2, 'x', 'y') as f",
       "a|b|c|d|e|f;1|0|NULL|NULL|b|y"},
      {"select cast(1 as bit) as a, cast('2026-11-03' as date) as b, cast(123.456 as money) as c, convert(varchar(10), cast(12.345 as money)) as d, cast(1.0e10 as float) as e",
       "a|b|c|d|e;1|2026-11-03 00:00:00|123.4560|12.35|10000000000"},
      {"select FID from o where FDate >= '2026-11-01' and datepart(year, FDate) = 2026 order by FDate desc", "FID;2;1"},
      {"select FDate + 1 as a, cast(FDate - '2026-11-01' as int) as b from o where FID = 2",
       "a|b;2026-11-03 00:00:00|1"},
      {"select len(replicate('a', 9000)) a, len(replicate(N'字', 9000)) b, len(replicate(cast('ab' as varchar(max)), 9000)) c, "
       "len(replace(replicate('a', 8000), 'a', 'bb')) d, len(stuff(replicate('a', 8000), 1, 0, N'z')) e",
       "a|b|c|d|e;8000|4000|18000|8000|4000"},
      {"select sign(-3.2) as a, sign(cast(5 as money)) as b, sign(0.0) as c, abs(-2.5) as d",
       "a|b|c|d;-1.0|1.0000|0.0|2.5"},
      {"select replace('aXa', 'x', '-') as a, reverse(N'货a') as b, upper('äb') as c, left('abc', 2) + right('abc', 1) as d, str(3.14159, 6, 2) as e",
       "a|b|c|d|e;a-a|a货|ÄB|abc|  3.14"},
  });
}

TEST(Language, MomentsWithAnOffset) {
  CheckOnOrders({
      {"create table m (k int, a datetimeoffset(1), unique (a)) insert m values (1, '2026-11-03 09:08:07.14 +08:00'), (2, '2026-11-03 04:30-05:30'), (3, null)",
       ""},
      {"insert m values (4, '2026-11-03T01:08:07.1Z')",
       "error 2627: Violation of UNIQUE KEY constraint 'UQ_m_a'. Cannot insert duplicate key in object 'dbo.m'. The duplicate key value is (2026-11-03 01:08:07.1 +00:00)."},
      {"select a from m order by a", "a;NULL;2026-11-03 09:08:07.1 +08:00;2026-11-03 04:30:00.0 -05:30"},
      {"select k from m where a in ('2026-11-03 02:08:07.1 +01:00', '2026-01-01') or a = cast('2026-11-03 10:00' as datetime2) order by k",
       "k;1;2"},
      {"select count(distinct b) as n, count(*) as c from (select a as b from m union all select switchoffset(a, '-01:00') from m) t where b is not null",
       "n|c;2|4"},
      {"declare @p datetimeoffset = '2026-11-01 10:00 +02:00' select FID from o where FDate = @p", "FID;1"},
      {"declare @p datetimeoffset(0) = '2026-11-03 00:08:07 +08:00' select cast(@p as datetime) as a, convert(varchar(40), @p, 127) as b, dateadd(minute, -10, @p) as c, switchoffset(@p, -90) as d, todatetimeoffset(@p, '+00:30') as e, day(@p) as f, datediff(hour, '2026-11-02 16:00', @p) as g",
       "a|b|c|d|e|f|g;2026-11-03 00:08:07|2026-11-02T16:08:07Z|2026-11-02 23:58:07 +08:00|2026-11-02 14:38:07 -01:30|2026-11-03 00:08:07 +00:30|3|0"},
      {"select cast('2026-11-03 09:00 +14:01' as datetimeoffset) as a",
       "error 241: Conversion failed when converting date and/or time from character string."},
      {"select switchoffset(sysdatetimeoffset(), 'x') as a",
       "error 9812: The timezone provided to builtin function switchoffset is invalid."},
  });
}

TEST(Language, BatchesWithControlFlowAndTransactions) {
  CheckOnOrders({
      {"begin try insert o (FID) values (1) end try begin catch select error_number() as n, error_severity() as s end catch",
       "n|s;2627|14"},
      {"begin try raiserror('stock %s: %d', 16, 1, 'Main', 5) end try begin catch select error_message() as m end catch",
       "m;stock Main: 5"},
      {"begin try begin try select 1/0 end try begin catch throw end catch end try begin catch select error_number() as n end catch",
       "n;8134"},
      {"throw 51000, 'stop', 1 select 1 as a", "error 51000: stop"},
      {"begin tran update o set FState = 0 save tran s delete o rollback tran s select count(*) as n, @@trancount as t from o rollback",
       "n|t;3|1"},
      {"select FState from o where FID = 1", "FState;2"},
      {"begin tran create table fresh (a int) rollback select object_id('fresh') as i", "i;NULL"},
      {"declare @s varchar(50) = '' select @s = @s + cast(FID as varchar(5)) from o where FID > 0 order by FDate desc, FID select @s as s",
       "s;213"},
      {"declare @i int = 1 select @i = @i * 10 + FID from o order by FID desc select @i as i", "i;1321"},
      {"create table d (i int identity(1,1) primary key, v int) set identity_insert d on insert d (i, v) values (7, 1) set identity_insert d off insert d (v) values (2) select max(i) as i from d drop table d",
       "i;8"},
      {"update t set FQty = o.FID * 10 from e t join o on o.FID = t.FID where o.FID = 2 select FQty from e where FID = 2",
       "FQty;20.0000"},
      {"delete top (1) from e where FID = 1 select count(*) as n from e", "n;2"},
      {"create table d (i int identity primary key, v int) insert d (v) output inserted.i, inserted.v * 2 as w values (4), (5)",
       "i|w;1|8;2|10"},
      {"insert d output inserted.* select FID from o where FID = 2", "i|v;3|2"},
      {"update d set v = o.FState output inserted.v from d join o on o.FID = d.i where o.FID = 1", "v;2"},
      {"delete d output deleted.i where i < 3 drop table d", "i;1;2"},
      {"create table d (v int default 7, w nvarchar(9) default N'默认', x int) insert d values (default, default, default), (1, default, 2) select * from d",
       "v|w|x;7|默认|NULL;1|默认|2"},
      {"set fmtonly on select * from d insert d (v) values (3) set fmtonly off", "v|w|x"},
      {"select count(*) as n from d drop table d", "n;2"},
      {"begin tran exec('set xact_abort on declare @i int set @i = 1 / 0') select 1 as a",
       "error 8134: Divide by zero error encountered."},
      {"exec('set dateformat dmy') select cast('01/02/2026' as datetime) as a, @@trancount as t",
       "a|t;2026-01-02 00:00:00|0"},
      {"set dateformat dmy select cast('2026-01-02T03:04:05' as datetime) as a, cast('2026-01-02' as datetime) as b set dateformat mdy",
       "a|b;2026-01-02 03:04:05|2026-02-01 00:00:00"},
      {"select cast(cast(16777217 as real) as int) as a, cast(cast(1 as bit) as binary(2)) as b, "
       "cast('2026-01-02 03:04:05.9996' as datetime2(3)) as c, cast('2026-01-01 12:00:29.999' as smalldatetime) as d",
       "a|b|c|d;16777216|0x0001|2026-01-02 03:04:06|2026-01-01 12:01:00"},
      {"select sum(x) as a from (select 1e308 as x union all select 1.7e308) t",
       "error 8115: Arithmetic overflow error converting expression to data type float."},
      {"declare @i int = getdate()",
       "error 257: Implicit conversion from data type datetime to int is not allowed. Use the CONVERT function to run this query."},
      {"select 1 as a commit", "error 3902: The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."},
      {"set xact_abort on begin tran update o set FState = 1 select 1/0",
       "error 8134: Divide by zero error encountered."},
      {"select @@trancount as t, min(FState) as s from o", "t|s;0|2"},
  });
}

// What clients ask before they show a table, or map it to objects.
TEST(Language, TheCatalog) {
  CheckOnOrders({
      {"create table k (id int identity(5,1) primary key, n nvarchar(20) not null constraint UQ_n unique, m decimal(9,2) "
       "constraint DF_m default 0, constraint \"CK\\m\" check (m >= 0 or m in (-1, -2))) create table f (a int, b int constraint FK_k "
       "references k, primary key (b, a)) create unique index ix on f (a desc, b) where a > 0",
       ""},
      {"create procedure q @x int, @y nvarchar(30) output as select 1 n where @x in (1, 4, 10)", ""},
      {"create view w as select FID from o where FID in (1, 2, 7)", ""},
      {"exec q 4, ''", "n;1"},
      {"select count(*) as n from w where FID in (2, 3)", "n;1"},
      {"select COLUMN_NAME as c, CONSTRAINT_NAME as k, ORDINAL_POSITION as p from INFORMATION_SCHEMA.KEY_COLUMN_USAGE order by 2, 3",
       "c|k|p;b|FK_k|1;FEntryID|PK_e|1;b|PK_f|1;a|PK_f|2;id|PK_k|1;FID|PK_o|1;n|UQ_n|1"},
      {"select UNIQUE_CONSTRAINT_NAME as u from INFORMATION_SCHEMA.REFERENTIAL_CONSTRAINTS", "u;PK_k"},
      {"select CHECK_CLAUSE as c from INFORMATION_SCHEMA.CHECK_CONSTRAINTS where CONSTRAINT_NAME = 'CK\\m'",
       "c;(m >= 0 or m in (-1, -2))"},
      {"select d.name, c.name as c, d.definition as t from sys.default_constraints d join sys.columns c on c.object_id = "
       "d.parent_object_id and c.column_id = d.parent_column_id",
       "name|c|t;DF_m|m|(0)"},
      {"select seed_value as s, last_value as l from sys.identity_columns", "s|l;5|NULL"},
      {"select count(*) as n from sys.computed_columns", "n;0"},
      {"select schema_name() as s, object_name(object_id('k')) as o, col_name(object_id('k'), 2) as c, serverproperty('ProductVersion') as v",
       "s|o|c|v;dbo|k|n|11.0.7001.0"},
      {"select @@max_precision as p, @@language as l", "p|l;38|us_english"},
      {"exec sp_pkeys 'f'",
       "TABLE_QUALIFIER|TABLE_OWNER|TABLE_NAME|COLUMN_NAME|KEY_SEQ|PK_NAME;main|dbo|f|b|1|PK_f;main|dbo|f|a|2|PK_f"},
      {"create table #s (q sysname null, o sysname null, t sysname, u smallint null, i sysname null, x sysname null, k smallint, s smallint null, c "
       "sysname null, d char(1) null, r int null, p int null, f varchar(128) null) insert #s exec sp_statistics 'f' select x, k, "
       "u, s, c, d from #s where k > 0",
       "x|k|u|s|c|d;PK_f|1|0|1|b|A;PK_f|1|0|2|a|A;ix|3|0|1|a|D;ix|3|0|2|b|A"},
      {"create table #f (a sysname, b sysname, p sysname, pc sysname, d sysname, e sysname, f sysname, fc sysname, s smallint, u "
       "smallint, r smallint, n sysname, k sysname, z smallint) insert #f exec sp_fkeys @fktable_name = 'f' select p, pc, f, fc, n, k from #f",
       "p|pc|f|fc|n|k;k|id|f|b|FK_k|PK_k"},
      {"create table #d (n sysname, t int, p int, a varchar(9) null, b varchar(9) null, c varchar(20) null, x int, y int, z int, u int null, "
       "m int, i int null, l sysname, h int null, j int null, s int, q int null, r int null, v int null, w int) insert #d exec "
       "sp_datatype_info_100 93, 3 select n, p, h, j from #d",
       "n|p|h|j;datetime2|27|0|7;datetime|23|3|3;smalldatetime|16|0|0"},
  });
}

// Wherever BEGIN TRANSACTION stands, ROLLBACK takes back what came behind it.
TEST(Language, TransactionsInsideBlocks) {
  CheckOnOrders({
      {"begin try begin tran insert e (FEntryID) values (1) raiserror('x', 16, 1) commit end try begin catch rollback end catch select count(*) as n from e",
       "n;3"},
      {"begin begin tran insert e (FEntryID) values (1) rollback end select count(*) as n from e", "n;3"},
      {"if 1 = 1 begin begin tran insert e (FEntryID) values (1) commit begin tran delete e rollback end select count(*) as n from e",
       "n;4"},
      {"create procedure p as begin tran delete e rollback", ""},
      {"exec p select count(*) as n from e", "n;4"},
      {"create table #t (a int) begin tran insert #t values (1) rollback select count(*) as n from #t drop table #t",
       "n;0"},
      {"begin tran begin try select cast('x' as int) as x end try begin catch select xact_state() as s end catch rollback",
       "s;-1"},
      {"begin tran delete e begin try select cast('x' as int) as x end try begin catch end catch commit",
       "error 3930: The current transaction cannot be committed and cannot support operations that write to the log file. Roll back the transaction."},
      {"select count(*) as n, @@trancount as t from e", "n|t;4|0"},
  });
}

TEST(Language, ViewsAndProcedures) {
  CheckOnOrders({
      {"create view v as select FID, FName as n from o where FState <> 14", ""},
      {"select n from v where FID = 2", "n;Bob"},
      {"select o.FID from o left join v on v.FID = o.FID where v.n is null", "FID;3"},
      {"select distinct o.FState from o left join v on v.FID = o.FID order by 1", "FState;2;6;14"},
      {"alter view v (k) as select FID from o", ""},
      {"select max(k) as m from v", "m;3"},
      {"create procedure p @a int, @b nvarchar(10) = N'默认', @c int output as set @c = @a * 2 select @a as a, @b as b return 7",
       ""},
      {"declare @x int, @r int exec @r = p 5, @c = @x output", "a|b;5|默认"},
      {"declare @x int, @r int create table #t (a int, b nvarchar(10)) insert #t exec @r = p 5, N'x', @x output select b, @x as x, @r as r from #t drop table #t",
       "b|x|r;x|10|7"},
      {"declare @x int exec p 5, default, @x output", "a|b;5|默认"},
      {"select cast(FID as varchar(3)) as c from o group by cast(FID as varchar(5))",
       "error 8120: Column 'o.FID' is invalid in the select list because it is not contained in either an aggregate "
       "function or the GROUP BY clause."},
      {"exec p default", "error 201: Procedure or function 'p' expects parameter '@a', which was not supplied."},
      {"exec p", "error 201: Procedure or function 'p' expects parameter '@a', which was not supplied."},
      {"declare @n int exec sp_executesql N'select @c = count(*) from o', N'@c int output', @c = @n output select @n as n",
       "n;3"},
      {"exec sp_executesql N'select FID from o where FName = @n', N'@n nvarchar(20)', @n = N'张三'", "FID;1"},
      {"exec('select count(*) as n from v')", "n;3"},
      {"create table taken (s nvarchar(20), n float) exec sp_executesql N'insert taken values (@s, @n)', N'@s nvarchar(1), @n int', N'a', 1 "
       "exec sp_executesql N'insert taken values (@s, @n)', N'@s nvarchar(6), @n float', N'abcdef', 1e-3 "
       "exec sp_executesql N'insert taken values (@s, @n)', N'@s datetime, @n bit', '2024-02-29', 5 select s, n from taken",
       "s|n;a|1;abcdef|0.001;Feb 29 2024 12:00AM|1"},
      {"drop view v drop procedure p select count(*) as n from sys.objects where type in ('V', 'P')", "n;0"},
  });
}

TEST(Language, ErrorsNameWhatIsWrong) {
  CheckOnOrders({
      {"select x.FID from o", "error 4104: The multi-part identifier \"x.FID\" could not be bound."},
      {"update o set FState = 9 select FNope from o", "error 207: Invalid column name 'FNope'."},
      {"select max(FState) as s from o", "s;14"},
      {"insert o (FID, FName) values (9, replicate('x', 21))",
       "error 2628: String or binary data would be truncated in table 'main.dbo.o', column 'FName'. Truncated value: 'xxxxxxxxxxxxxxxxxxxx'."},
      {"insert o (FID, FName) values (9, 'exactly twenty chars')", ""},
      {"update o set FID = null where FID = 9",
       "error 515: Cannot insert the value NULL into column 'FID', table 'main.dbo.o'; column does not allow nulls. INSERT fails."},
      {"select FID from o where FName = 5",
       "error 245: Conversion failed when converting the nvarchar value '张三' to data type int."},
      {"create procedure answers @a int as insert #n exec ('select 1')", ""},
      {"declare @t table (i int identity, q varchar(99)) insert @t values ('select FID from o where rank() over (order by FID) = 1'), "
       "('select sum(rank() over (order by FID)) from o'), ('select 1 as []'), ('select 1 from o, o'), ('select FID from o order by FID, "
       "FID'), ('select nullif(null, 1)'), ('exec answers @a = 1, 2'), ('exec sp_executesql N''select @b'', N''@b int'''), ('exec answers ''x'''), ('insert o "
       "exec answers 1'), ('select 1 from o order by 1 offset 0 rows fetch next 0 rows only'), ('insert o values (1), (1, 2)') "
       "declare @i int = 1, @q varchar(99), @n varchar(99) = '' create table #n (n int) while @i < 13 "
       "begin select @q = q from @t where i = @i begin try exec (@q) end try begin catch set @n += ltrim(str(error_number())) + ' ' end "
       "catch set @i += 1 end select @n as n",
       "n;4108 4109 1038 1013 169 4151 119 8178 8114 8164 10744 10709 "},
      {"create view v as select 1 as a", ""},
      {"truncate table v", "error 4708: Could not truncate object 'v' because it is not a table."},
      {"select cast('2026-13-01' as datetime) as d",
       "error 242: The conversion of a varchar data type to a datetime data type resulted in an out-of-range value."},
      {"select 2147483647 + FID from o",
       "error 8115: Arithmetic overflow error converting expression to data type int."},
      {"select 9223372036854775807 + FID as x from o where FID = 1", "x;9223372036854775808"},
      {"delete from archive.dbo.o", "error 208: Invalid object name 'archive.dbo.o'."},
      {"use archive", "error 911: Database 'archive' does not exist. Make sure that the name is entered correctly."},
      {"select FID from o where count(*) > 1",
       "error 147: An aggregate may not appear in the WHERE clause unless it is in a subquery contained in a HAVING clause or a select list, and the column being aggregated is an outer reference."},
      {"select max(sum(FID)) as m from o",
       "error 130: Cannot perform an aggregate function on an expression containing an aggregate or a subquery."},
      {"select 1e308 * 10 as x", "error 8115: Arithmetic overflow error converting expression to data type float."},
      {"select compress('a') as x", "error 40000: The function COMPRESS is not supported by the embedded database."},
      {"select nothing(1)", "error 195: 'nothing' is not a recognized built-in function name."},
      {"select FID from o for xml auto", "error 40000: FOR XML AUTO is not supported by the embedded database."},
      {"set ansi_nulls off", "error 40000: SET ANSI_NULLS OFF is not supported by the embedded database."},
      {"create table o (a int)", "error 2714: There is already an object named 'o' in the database."},
      {"drop table gone",
       "error 3701: Cannot drop the table 'gone', because it does not exist or you do not have permission."},
      {"create table t (a int, a int)",
       "error 2705: Column names in each table must be unique. Column name 'a' in table 't' is specified more than once."},
      {"select * from o where FID in (select FID, FQty from e)",
       "error 116: Only one expression can be specified in the select list when the subquery is not introduced with EXISTS."},
  });
}

TEST(Language, ConditionsOfThousandsOfTerms) {
  std::string terms = "FID = 1";
  for (int i = 0; i < 5000; ++i) terms += i % 2 == 0 ? " or FID = 2" : " or FID = 9";
  const auto connection = OpenEmbedded();
  Answer(*connection, kOrderTables);
  EXPECT_EQ(Answer(*connection, "select FID from o where " + terms + " order by FID"), "FID;1;2");
}

TEST(Language, TokensAndNames) {
  CheckOnOrders({
      {"select case when 1=1then 2else 3end as a, .5 as b, 3. as c, 1.5E-1 as d, 0x1Ff as e",
       "a|b|c|d|e;2|0.5|3|0.15|0x01FF"},
      {"select N'发''货' as a, 'a''b' as b, n'x' as c", "a|b|c;发'货|a'b|x"},
      {"create table [a]]b] ([c\"\"d] int, \"e\"\"f\" int) insert [A]]b] values (1, 2) select \"c\"\"\"\"d\", [e\"f] from \"a]b\"",
       "c\"\"d|e\"f;1|2"},
      {"select a--x 'y\n/* 1 /* 2 */ 3 ' */+b/**/as c from (values (1, 2)) t(a, b)", "c;3"},
      {"\xEF\xBB\xBFselect\xE3\x80\x80单价\xC2\xA0, äпж, a$b from (values (1, 2, 3)) t(单价, äпж, a$b)",
       "单价|äпж|a$b;1|2|3"},
      {"declare @i int = 5 set @i+=1 set @i-=2 select @i as i, @@RowCount as n where 1<>2 and 1!=2 and 2!<1 and 1!>2 and 1< >2 and 2> =1",
       "i|n;4|1"},
      {"select FID from o where FID in (1 /* one */, -2,\n2 -- two\n)and FID<9", "FID;1;2"},
      {"select FID from o where FName in ('a', N'Bob', '', 'it''s')", "FID;2;3"},
      {"select FID from o where FName in ('a', 'bob', '', 'it''s')", "FID;2;3"},
      {"select FID from o where FID in (1, '2') or FID in (1, 2.5) or FID in (1, 1+2) or FID in (- 2, 7)", "FID;1;2;3"},
      {"select [o].FID from main.dbo.o where main.dbo.o.FID = 1", "FID;1"},
      {"select status, value type, text as date from (select 1 status, 2 value, 3 text) first",
       "status|type|date;1|2|3"},
  });
}

TEST(Language, OperatorsBindAsTheServersDo) {
  CheckOnOrders({
      {"select 1+2*3-4 as a, 1+2&3|4^5 as b, ~1*2 as c, 8/-2*2 as d, -1+2 as e, - -1 as f, (1+2)*3 as g",
       "a|b|c|d|e|f|g;3|2|-4|-2|1|1|9"},
      {"select FID from o where FID=1 or FID=2 and not FState=6", "FID;1"},
      {"select FID from o where (FID=1 or FID=2) and (FState)=6", "FID;2"},
      {"select FID from o where FID between 1 and 2 and FState=6 and not FAmount is null", "FID;2"},
      {"select 1 as a where '5%' like '%!' + '%' escape '!' and '5' not like '%!%' escape '!'", "a;1"},
      {"select case FState when null then '' else 'b' end as a, case when 1=2 then 'Y' end as b from o where FID=1",
       "a|b;b|NULL"},
      {"select ((select 1)) + ((select 2) + 3) as a, left(right('abc', 2), 1) as b", "a|b;6|b"},
      {"select len(convert(varchar, replicate('x', 40))) as a, len(convert(varchar(max), replicate('x', 40))) as b",
       "a|b;30|40"},
      {"select FID from o where FID <> all (select FID from e where FEntryID < 20 union all select null)", "FID"},
      {"select case when FID = 1 then cast('ab' as varchar(2)) else cast('abcdef' as varchar(6)) end as a into #w from o insert #w values ('ABCDEF') select max(a) as a from #w",
       "a;abcdef"},
  });
}

TEST(Language, StatementsOfManyShapes) {
  CheckOnOrders({
      {"select FID a, FState as b, c = FName, FAmount 'w', FDate as N'v', o.FID from dbo.o where FID = 2",
       "a|b|c|w|v|FID;2|6|Bob|20.0000|2026-11-02 00:00:00|2"},
      {"select count(*) as n from o a with(nolock) join o b join e c (nolock) on b.FID=c.FID on a.FID=b.FID cross join o d, (select 1 x) z",
       "n;9"},
      {"select * from ((select 1) union (select 2)) t(a) order by a", "a;1;2"},
      {"select 1 a union select 2 intersect select 3 except select 4 order by 1", "a;1"},
      {";with c(n) as (select 1 union all select n+1 from c where n<3) select * from c option (maxrecursion 0, recompile)",
       "n;1;2;3"},
      {"select *, identity(int,1,1) as i into #x from (select 7 a) y select * from #x", "a|i;7|1"},
      {"if 1=1 if 2=3 print 1 else select 2 as a", "a;2"},
      {"if 1=2 begin select 1; end; else select 2 as a", "a;2"},
      {"while 1=1 begin break continue end return select 1", ""},
      {"declare @v int, @w int update o set @v=FState, FState+=1 where FID=1 update o set @w=FState=9 where FID=2 select @v as v, @w as w",
       "v|w;2|9"},
      {"delete e where FEntryID=11 delete from e where FEntryID=12 delete x from e x select count(*) as n from e",
       "n;0"},
      {"insert e (FEntryID,FID) values (1,null),(2,3) insert into e (FEntryID) (select 3) select count(*) as n from e",
       "n;3"},
      {"create procedure p_args @a int, @b varchar(9), @c varchar(9) = 'z' as select @a a, @b b, @c c", ""},
      {"p_args 1, @b = 'x', @c = y", "a|b|c;1|x|y"},
      {"declare @r int exec @r = dbo.p_args -1, @b = 'x'", "a|b|c;-1|x|z"},
      {"begin tran t1 save tran s rollback tran s commit work begin transaction rollback select @@trancount as t",
       "t;0"},
      {"set nocount on set ansi_nulls, quoted_identifier on set lock_timeout 100 raiserror ('%d', 9, 1, 5) with nowait select 1 as a",
       "a;1"},
      {"create unique nonclustered index ix on e (FEntryID, FCode desc) include (FQty) where FCode is not null drop index ix on e",
       ""},
      {"create table t (a int identity(5,1) not null primary key clustered, b varchar(9) default ('x''') null unique, c int "
       "constraint df default 0 check (c>=0), d int references o, constraint u unique (c, b)) insert t default values select * from t",
       "a|b|c|d;5|x'|0|NULL"},
      {"insert t (c) values (-1)",
       "error 547: The INSERT statement conflicted with the CHECK constraint \"CK_t_c\". The conflict occurred in database \"main\", "
       "table \"dbo.t\", column 'c'."},
      {"insert t (b, d) values ('y', 9)",
       "error 547: The INSERT statement conflicted with the FOREIGN KEY constraint \"FK_t_d\". The conflict occurred in database \"main\", "
       "table \"dbo.o\", column 'FID'."},
      {"begin tran save tran s insert t (b) values ('1') rollback tran s insert t (b) values ('2') commit select max(a) as a from t",
       "a;7"},
      {"alter table t add x int null, y bit alter table t drop column x, y select * from t where 1=0", "a|b|c|d"},
      {"alter table t add x int, a bit",
       "error 2705: Column names in each table must be unique. Column name 'a' in table 't' is specified more than once."},
      {"alter table t add x int select x from t where 1=0", "x"},
      {"select datediff(week, '2026-11-07', '2026-11-08') as a, datediff(week, '2026-11-08', '2026-11-14') as b",
       "a|b;1|0"},
  });
}

TEST(Language, FaultsOfSyntax) {
  CheckOnOrders({
      {"select from where", "error 156: Incorrect syntax near the keyword 'from'."},
      {"select 1 as a foo", "error 102: Incorrect syntax near 'foo'."},
      {"select (1", "error 102: Incorrect syntax near '1'."},
      {"begin end", "error 156: Incorrect syntax near the keyword 'end'."},
      {"select a from (select 1 as a)", "error 102: Incorrect syntax near ')'."},
      {"select (a=1) from t", "error 102: Incorrect syntax near '='."},
      {"select a from t where a",
       "error 4145: An expression of non-boolean type specified in a context where a condition is expected, near 'a'."},
      {"select sum(*) from t", "error 102: Incorrect syntax near '*'."},
      {"set nosuch on", "error 195: 'nosuch' is not a recognized SET option."},
      {"select dateadd('day',1,a)", "error 1023: Invalid parameter 1 specified for dateadd."},
      {"select 1 create view v as select 1", "error 111: 'CREATE VIEW' must be the first statement in a query batch."},
      {"delete o select 'abc", "error 105: Unclosed quotation mark after the character string 'abc'."},
      {"select [abc", "error 105: Unclosed quotation mark after the character string 'abc'."},
      {"delete o where FName in ('a','b", "error 105: Unclosed quotation mark after the character string 'b'."},
      {"/* /* */", "error 113: Missing end comment mark '*/'."},
      {"select 1 ? 2", "error 102: Incorrect syntax near '?'."},
  });
  const auto connection = OpenEmbedded();
  for (const auto& [batch, feature] : {
           std::pair{"select 1 as a for xml explicit", "FOR XML EXPLICIT"},
           {"select next value for s over (order by a) from t", "NEXT VALUE FOR … OVER"},
           {"select 1 from t group by all a", "GROUP BY ALL"},
           {"declare c cursor for select 1 for update", "A cursor FOR UPDATE"},
           {"create trigger x on t instead of insert as return", "INSTEAD OF"},
           {"create table t (a int references u(a) on delete cascade)", "ON DELETE CASCADE"},
       }) {
    EXPECT_EQ(Answer(*connection, batch),
              "error 40000: " + std::string(feature) + " is not supported by the embedded database.");
  }
}

TEST(Language, LongChainsOfOperators) {
  const auto chain = [](const std::string& link, const std::string& sign, int count) {
    std::string text = link;
    for (int i = 1; i < count; ++i) text.append(sign).append(link);
    return text;
  };
  CheckOnOrders({
      {("select " + chain("1.5", "+", 200) + " as s, " + chain("1", "+", 300) + " as i").c_str(), "s|i;300.0|300"},
      {("select " + chain("FAmount * 2", "-", 60) + " as s from o order by FID").c_str(),
       "s;-1218.0000;-2320.0000;NULL"},
      {("select len(" + chain("N'货'", "+", 300) + ") as n").c_str(), "n;300"},
      {"select $5.25 as a, -$3 as b, $.5 * 2 as c", "a|b|c;5.2500|-3.0000|1.0000"},
      {("select " + chain("2147483647", "+", 13) + " as s").c_str(),
       "error 8115: Arithmetic overflow error converting expression to data type int."},
  });
}

TEST(Language, NestingHasALimit) {
  const auto repeat = [](std::string_view text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
  };
  const auto connection = OpenEmbedded();
  const auto is_refused = [&](const std::string& batch) {
    return Answer(*connection, batch).starts_with("error 191:");
  };
  // What may repeat without end, and how often it stands within the limit.
  const std::tuple<const char*, const char*, const char*, const char*, int> cases[] = {
      {"select ", "(", "1", ")", 190},
      {"select ", "- ", "1", "", 190},
      {"select 1 where ", "not ", "1=1", "", 190},
      {"select ", "abs(", "1", ")", 190},
      {"select ", "(select ", "1", ")", 60},
      {"select * from ", "(select * from ", "t", ") x", 60},
      {"select * from ", "(", "a join b on 1=1", ")", 60},
      {"", "begin ", "select 1", " end", 190},
      {"", "if 1=1 ", "select 1", "", 190},
      {"select 1", "+1", "", "", 400},
      {"select 1", " union all select 1", "", "", 400},
      {"select * from t", " cross join t", "", "", 400},
  };
  for (const auto& [head, link, middle, tail, enough] : cases) {
    EXPECT_FALSE(is_refused(head + repeat(link, enough) + middle + repeat(tail, enough))) << link;
    EXPECT_TRUE(is_refused(head + repeat(link, 100000) + middle + repeat(tail, 100000))) << link;
  }
  // Chains within parentheses add up: the tree would be deeper than either limit.
  EXPECT_TRUE(is_refused("select " + repeat("(", 20) + "1" + repeat(repeat("+1", 100) + ")", 20)));
}

}  // namespace
}  // namespace tessarlorn
