// What people type into filters and ad-hoc queries: each batch with the answer that SQL Server gives.
#include <gtest/gtest.h>

#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

struct Row {
  const char* batch;
  const char* answer;
};

constexpr const char* kTables = R"(
create table o (FID int not null primary key, FName nvarchar(20), FDate datetime, FAmount decimal(14,4), FState int)
insert o values (1,N'张三','2026-11-01 08:00:00',10.5,2),(2,'Bob','2026-11-02',20,6),(3,'bob ','2026-10-31 23:59:59.997',null,14)
create table e (FEntryID int not null primary key, FID int, FQty decimal(14,4), FCode varchar(10))
insert e values (11,1,1,'A1'),(12,1,2,'a1 '),(21,2,3,null)
)";

void Check(std::initializer_list<Row> rows) {
  const auto connection = OpenEmbedded();
  ASSERT_EQ(Answer(*connection, kTables), "");
  for (const Row& row : rows) EXPECT_EQ(Answer(*connection, row.batch), row.answer) << row.batch;
}

TEST(Language, QueriesOfManyShapes) {
  Check({
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
      {"select count(distinct FName) as n, min(FName) as m from o", "n|m;2|Bob"},
      {"select FID from o where FID > all (select FID from e where FID < 2) and FID = any (select FID from o) order by 1",
       "FID;2;3"},
      {"select case when exists(select 1 from e where FID = o.FID) then 'y' else 'n' end as x from o order by FID",
       "x;y;y;n"},
      {"select o.FID, e.FEntryID from e right join o on e.FID = o.FID and e.FQty > 1 order by 1, 2",
       "FID|FEntryID;1|12;2|21;3|NULL"},
      {"select FState, avg(FAmount) as a from o group by FState having max(FID) < 3 order by FState",
       "FState|a;2|10.500000;6|20.000000"},
      {"select string_agg(FCode, ',') as s from e", "s;A1,a1 "},
      {"select FID from o where FName in ('BOB', N'李四') and not (FID = 2)", "FID;3"},
      {"create table #k (k int) insert #k values (2),(2),(null),(7) select FID from o where exists(select 1 from #k where k=o.FID) drop table #k",
       "FID;2"},
      {"select FEntryID from e where FCode = 'a1' and FEntryID between 11 and 12 order by FEntryID desc",
       "FEntryID;12;11"},
  });
}

TEST(Language, FunctionsOfTextNumberAndDate) {
  Check({
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
      {"select sign(-3.2) as a, sign(cast(5 as money)) as b, sign(0.0) as c, abs(-2.5) as d",
       "a|b|c|d;-1.0|1.0000|0.0|2.5"},
      {"select replace('aXa', 'x', '-') as a, reverse(N'货a') as b, upper('äb') as c, left('abc', 2) + right('abc', 1) as d, str(3.14159, 6, 2) as e",
       "a|b|c|d|e;a-a|a货|ÄB|abc|  3.14"},
  });
}

TEST(Language, MomentsWithAnOffset) {
  Check({
      {"create table m (k int, a datetimeoffset(1), unique (a)) insert m values (1, '2026-11-03 09:08:07.14 +08:00'), (2, '2026-11-03 04:30-05:30'), (3, null)",
       ""},
      {"insert m values (4, '2026-11-03T01:08:07.1Z')",
       "error 2627: Violation of UNIQUE KEY constraint on 'm.a'. Cannot insert duplicate key in object 'dbo.m'."},
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
  Check({
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
      {"declare @i int = 0 while 1 = 1 begin set @i += 2 if @i > 6 break end select @i as i", "i;8"},
      {"declare @s nvarchar(50) select @s = isnull(@s + ',', '') + FName from o order by FID select @s as s",
       "s;张三,Bob,bob "},
      {"declare @s varchar(50) = '' select @s = @s + cast(FID as varchar(5)) from o where FID > 0 order by FDate desc, FID select @s as s",
       "s;213"},
      {"declare @i int = 1 select @i = @i * 10 + FID from o order by FID desc select @i as i", "i;1321"},
      {"create table d (i int identity(1,1) primary key, v int) set identity_insert d on insert d (i, v) values (7, 1) set identity_insert d off insert d (v) values (2) select max(i) as i from d drop table d",
       "i;8"},
      {"update e set FQty += 1, FCode = 'n' where FID = 1 select @@rowcount as n", "n;2"},
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
  Check({
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
  Check({
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
  Check({
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
      {"exec p", "error 201: Procedure or function 'p' expects parameter '@a', which was not supplied."},
      {"declare @n int exec sp_executesql N'select @c = count(*) from o', N'@c int output', @c = @n output select @n as n",
       "n;3"},
      {"exec sp_executesql N'select FID from o where FName = @n', N'@n nvarchar(20)', @n = N'张三'", "FID;1"},
      {"exec('select count(*) as n from v')", "n;3"},
      {"drop view v drop procedure p select count(*) as n from sys.objects where type in ('V', 'P')", "n;0"},
  });
}

TEST(Language, ErrorsNameWhatIsWrong) {
  Check({
      {"select FNope from o", "error 207: Invalid column name 'FNope'."},
      {"select x.FID from o", "error 4104: The multi-part identifier \"x.FID\" could not be bound."},
      {"update o set FState = 9 select FNope from o", "error 207: Invalid column name 'FNope'."},
      {"select max(FState) as s from o", "s;14"},
      {"insert o (FID, FName) values (9, replicate('x', 21))",
       "error 2628: String or binary data would be truncated in table 'dbo.o', column 'FName'. Truncated value: 'xxxxxxxxxxxxxxxxxxxxx'."},
      {"insert o (FID, FName) values (9, 'exactly twenty chars')", ""},
      {"update o set FID = null where FID = 9",
       "error 515: Cannot insert the value NULL into column 'FID', table 'dbo.o'; column does not allow nulls. INSERT fails."},
      {"select FID from o where FName = 5",
       "error 245: Conversion failed when converting the nvarchar value '张三' to data type int."},
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
      {"select format(1, 'N') as x", "error 40000: The function FORMAT is not supported by the embedded database."},
      {"select nothing(1)", "error 195: 'nothing' is not a recognized built-in function name."},
      {"select FID from o for xml auto", "error 40000: FOR XML is not supported by the embedded database."},
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
  Answer(*connection, kTables);
  EXPECT_EQ(Answer(*connection, "select FID from o where " + terms + " order by FID"), "FID;1;2");
}

// A statement that was seen before is not read again; what differs must still count.
TEST(Language, StatementsOfOneShapeKeepTheirOwnLiterals) {
  Check({
      {"select FID from o where FName = 'Bob' and FID < 3", "FID;2"},
      {"select FID from o where FName = 'bob' and FID < 9", "FID;2;3"},
      {"select FID from o where FName = 'O''Neil' and FID < 9", "FID"},
      {"select FID from o where FName = N'张三' and FID < 9", "FID;1"},
      {"select top 1 FID from o order by 1", "FID;1"},
      {"select top 2 FID from o order by 1", "FID;1;2"},
      {"select FID, FState from o order by 2 desc", "FID|FState;3|14;2|6;1|2"},
      {"select FID, FState from o order by 1 desc", "FID|FState;3|14;2|6;1|2"},
      {"select 1 as a, 1.0 / 3 as b", "a|b;1|0.333333"},
      {"select 1 as a, 1.0 / 3000 as b", "a|b;1|0.000333"},
      {"select 3000000000 as a, 1.0 / 3 as b", "a|b;3000000000|0.333333"},
      {"select FID from o where FID in (1,2)", "FID;1;2"},
      {"select FID from o where FID in (2,3,4,5)", "FID;2;3"},
      {"select FID from o where FID in ('2','3')", "FID;2;3"},
      {"update o set FAmount = 1.25 where FID = 1 update o set FAmount = 100 where FID = 2 select sum(FAmount) as s from o",
       "s;101.2500"},
      {"select cast('abcdef' as varchar(3)) as a", "a;abc"},
      {"select cast('abcdef' as varchar(5)) as a", "a;abcde"},
      {"declare @a varchar(9) set @a = cast('abcdef' as varchar(2)) set @a = @a + cast('abcdef' as varchar(4)) select @a as a",
       "a;ababcd"},
      {"insert e (FEntryID) select top 1 FID from o order by 1 insert e (FEntryID) select top 2 FID + 5 from o order by 1 select count(*) as n from e where FEntryID < 10",
       "n;3"},
      {"declare @v int = 5 select @v as v", "v;5"},
      {"declare @v varchar(5) = 'x' select @v as v", "v;x"},
      {"create table #t (a int) insert #t values (1) select a from #t drop table #t", "a;1"},
      {"create table #t (a nvarchar(5)) insert #t values (1) select a + 'x' as a from #t drop table #t", "a;1x"},
  });
}

}  // namespace
}  // namespace tessarlorn
