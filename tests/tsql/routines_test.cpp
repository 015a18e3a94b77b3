// Functions of one's own and sequences: each batch with the answer that SQL Server gives.
#include <gtest/gtest.h>

#include "support/temporary_folder.h"
#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

constexpr const char* kTable =
    "create table t (id int primary key, n nvarchar(20), q int) insert t values (1,'a',10),(2,'b',20),(3,'a',30)";

TEST(Routines, InlineFunctions) {
  CheckBatches(
      {kTable,
       "create function f(@n nvarchar(3), @q int = 15) returns table with schemabinding as return (with c as (select id, q from "
       "dbo.t where n = @n) select id, q * @q as m from c where q >= @q)"},
      {
          {"select * from dbo.f('a', default) x join t on t.id = x.id", "id|m|id|n|q;3|450|3|a|30"},
          // The argument is the caller's column, though the text has one of the name.
          {"select a.id, b.id b, b.m from t a outer apply f(a.n, a.q + 1) b order by 1",
           "id|b|m;1|3|330;2|NULL|NULL;3|NULL|NULL"},
          {"select id, (select sum(m) from f(o.n, 1)) s from t o order by 1", "id|s;1|40;2|20;3|40"},
          {"create function g(@q int) returns table as return select c.id x, f.id y from t c cross apply dbo.f(c.n, @q) f",
           ""},
          {"select t.id, k.* from t cross apply g(t.q) k where x < 3 order by 1, 2, 3",
           "id|x|y;1|1|1;1|1|3;1|2|2;2|1|3;2|2|2;3|1|3"},
          {"create view v as select id from f('a', 30) union all select y from g(20)", ""},
          {"select id from v order by 1", "id;2;3;3;3"},
          {"alter function f(@n nvarchar(3), @q int = 15) returns table as return select id, id as m from t where n = @n",
           ""},
          {"select id from v order by 1", "id;1;1;1;2;3;3;3"},
          {"select * from f('abcd', default)", "id|m"},
          {"select * from f('a')",
           "error 313: An insufficient number of arguments were supplied for the procedure or function f."},
          {"select * from f", "error 216: Parameters were not supplied for the function 'f'."},
          {"select dbo.f('a', 1)",
           "error 4121: Cannot find either column \"dbo\" or the user-defined function or aggregate \"dbo.f\", or the name is "
           "ambiguous."},
          {"alter function f() returns int as begin return 1 end",
           "error 2010: Cannot perform alter on 'f' because it is an incompatible object type."},
          {"drop function f select * from v", "error 208: Invalid object name 'f'."},
      });
}

TEST(Routines, ScalarFunctions) {
  CheckBatches(
      {kTable,
       "create function fact(@n int) returns bigint as begin if @n <= 1 return 1; return @n * dbo.fact(@n - 1) end",
       "create function many(@k nvarchar(20), @x int = 7) returns nvarchar(5) with returns null on null input as begin declare @s "
       "nvarchar(99) = '', @i int = 0, @y int select @s += cast(id as nvarchar(9)) + ',' from t where n = @k order by id desc "
       "declare c cursor for select id from t open c fetch next from c into @y while @@fetch_status = 0 begin set @i += @y + @x "
       "fetch next from c into @y end close c deallocate c return cast(@i as nvarchar(9)) + ':' + @s end",
       "create function bad(@a int) returns int as begin\nreturn 1 / @a end"},
      {
          {"select n, dbo.many(n, 0) m, count(*) c from t group by n, dbo.many(n, 0) having dbo.many(n, 0) like '6%' order by 1",
           "n|m|c;a|6:3,1|2;b|6:2,|1"},
          {"select id from t where 1 = 0 select @@rowcount r, dbo.many('b', default) a, dbo.many(null, 1) b, @@rowcount s, @@error e",
           "id"},
          {"declare @r int select @r = id from t exec @r = dbo.fact 6 if dbo.fact(3) = 6 select @r r, dbo.fact(5) f",
           "r|f;720|120"},
          {"update t set q = dbo.fact(id + 2), n = dbo.many(n, 1) where dbo.many(n, 0) = '6:2,' select n, q from t where id = 2",
           "n|q;9:2,|24"},
          {"create table d (a bigint default dbo.fact(4), b int) insert d (b) values (1) select * from d", "a|b;24|1"},
          {"begin try select dbo.bad(id - 1) x from t end try begin catch select error_number() n, error_procedure() p, "
           "error_line() l end catch",
           "n|p|l;8134|bad|2"},
          {"select dbo.bad(id - 1) x from t", "error 8134: Divide by zero error encountered."},
          {"create function deep(@a int) returns int as begin return dbo.deep(@a) end", ""},
          {"select dbo.deep(1)",
           "error 217: Maximum stored procedure, function, trigger, or view nesting level exceeded (limit 32)."},
          {"create function x() returns int as begin if 1 = 1 update t set q = 1 return 1 end",
           "error 443: Invalid use of a side-effecting operator 'UPDATE' within a function."},
          {"create function x() returns float as begin return rand() end",
           "error 443: Invalid use of a side-effecting operator 'rand' within a function."},
          {"create function x() returns int as begin select q from t return 1 end",
           "error 444: Select statements included within a function cannot return data to a client."},
          {"create function x() returns int as begin if 1 = 1 return 1 else return 2 end",
           "error 455: The last statement included within a function must be a return statement."},
          {"create table c (a int check (dbo.fact(a) > 0))",
           "error 40000: The function dbo.fact in a constraint or index is not supported by the embedded database."},
          {"select name, type from sys.objects where type in ('FN', 'IF') and object_id = object_id('bad', 'FN')",
           "name|type;bad|FN"},
          {"select parameter_name p, ordinal_position o, data_type d from information_schema.parameters where specific_name = 'many' "
           "order by 2",
           "p|o|d;|0|nvarchar;@k|1|nvarchar;@x|2|int"},
      });
}

TEST(Routines, TableVariablesOfFunctions) {
  CheckBatches(
      {kTable,
       "create function tv(@n int) returns nvarchar(99) as begin declare @t table (i int identity primary key, w nvarchar(9) unique) "
       "insert @t (w) select n + cast(id as nvarchar(9)) from t where id <= @n delete @t where i = 1 declare @s nvarchar(99) = '' "
       "select @s += w + cast(i as nvarchar(9)) from @t order by i return @s end",
       "create function rec(@n int) returns int as begin declare @t table (i int) insert @t values (@n) if @n > 1 insert @t values "
       "(dbo.rec(@n - 1)) return (select sum(i) from @t) end",
       "create function ms(@n int, @w nvarchar(9) = 'q') returns @r table (id int not null primary key, w nvarchar(9) default 'd') as "
       "begin declare @i int = 0 while @i < @n begin set @i += 1 insert @r values (@i, @w) end if @n > 2 return update @r set w = "
       "default where id = 1 return end"},
      {
          {"select id, dbo.tv(id) s, dbo.rec(id) r from t", "id|s|r;1||1;2|b22|3;3|b22a33|6"},
          {"declare @t table (x nvarchar(99)) insert @t select dbo.tv(id) from t update t set n = dbo.tv(2) where id = 3 insert t (id, "
           "n) select q + 10, dbo.tv(2) from t where q = 10 select count(*) c, max(n) n, max(x) x from t, @t",
           "c|n|x;12|b22|b22a33"},
          {"begin tran update t set q = dbo.rec(4) where id = 1 rollback update t set q = q + dbo.rec(2) where id = 1 select q from t where "
           "id = 1",
           "q;13"},
          {"select t.id, m.id i, m.w from t outer apply dbo.ms(t.id - 1, t.n) m where t.id < 4 order by 1, 2",
           "id|i|w;1|NULL|NULL;2|1|d;3|1|d;3|2|b22"},
          {"insert t (id, n) select id + 50, w from ms(3, default) delete t where id - 50 in (select id from ms(2, '')) select id, n from t "
           "where id > 40",
           "id|n;53|q"},
          {"alter function ms() returns @r table (id int primary key) as begin insert @r values (1), (1) return end",
           ""},
          {"insert t (id) select id from ms()",
           "error 2627: Violation of PRIMARY KEY constraint 'PK_@r'. Cannot insert duplicate key in object 'dbo.@r'."},
          {"select name, type from sys.objects where type_desc = 'SQL_TABLE_VALUED_FUNCTION'", "name|type;ms|TF"},
          {"create function x() returns @r table (id int) as begin return 1 end",
           "error 178: A RETURN statement with a return value cannot be used in this context."},
      });
}

TEST(Routines, Sequences) {
  CheckBatches(
      {"create sequence s as int start with 5 increment by 5 maxvalue 40",
       "create sequence d as tinyint increment by -100 cycle no cache",
       "create table t (id int default next value for s primary key, n int, m int default next value for s)"},
      {
          // All places of a row have one number.
          {"insert t (n) values (next value for s), (7) insert t (id, n) select next value for s, next value for s from (values "
           "(1), (2)) v(x) select * from t",
           "id|n|m;5|5|5;10|7|10;15|15|15;20|20|20"},
          {"select next value for d a, next value for d b from t", "a|b;255|255;155|155;55|55;255|255"},
          {"begin tran declare @v int = next value for s rollback select next value for s as v, current_value c from sys.sequences where "
           "name = 's'",
           "v|c;30|30"},
          {"begin tran alter sequence s restart with 6 select next value for s as v rollback select 1 as x", "v;6"},
          {"select next value for s as v union all select 2",
           "error 11721: NEXT VALUE FOR function cannot be used directly in a statement that uses a DISTINCT, UNION, UNION ALL, EXCEPT "
           "or INTERSECT operator."},
          {"select case when 1 = 1 then next value for s end",
           "error 11741: NEXT VALUE FOR function cannot be used within CASE, CHOOSE, COALESCE, IIF, ISNULL and NULLIF."},
          {"insert t (n) values (1) insert t (n) values (2) select max(id) i from t", "i;40"},
          {"create sequence z start with 1 select next value for z begin tran save tran p alter sequence z restart with 500 select next value "
           "for z rollback tran p commit create table zs (n bigint) insert zs values (next value for z) select n from zs",
           ";1"},
          {"select n from zs", "n;2"},
          {"merge zs using (values (1)) q (n) on q.n = zs.n when not matched then insert values (next value for z);",
           "error 11742: NEXT VALUE FOR function can only be used with MERGE if it is defined within a default constraint on the "
           "target table for insert actions."},
          {"insert t (n) values (3)",
           "error 11728: The sequence object 's' has reached its minimum or maximum value. Restart the sequence object to allow new "
           "values to be generated."},
          {"select is_exhausted e, type_name(user_type_id) t from sys.sequences where name = 's'", "e|t;1|int"},
          {"alter sequence s maxvalue 30",
           "error 11704: The current value '40' for sequence object 's' must be between the minimum and maximum value of the "
           "sequence object."},
          {"alter sequence s restart select next value for s as v", "v;5"},
          {"select next value for t", "error 11726: Object 't' is not a sequence object."},
          {"select next value for s as v into n from t where n > 1 select min(v) a, max(v) b from n", "a|b;10|30"},
          {"begin tran create sequence u select next value for u as v rollback create sequence w as smallint start with 4 select 1",
           "v;-9223372036854775808"},
          {"select next value for w as v", "v;4"},
          {"drop sequence s select next value for s", "error 208: Invalid object name 's'."},
      });
}

TEST(Routines, OtherConnectionsAndLaterOnesSeeThem) {
  const TemporaryFolder folder;
  const std::string file = folder.file("r.db");
  {
    const auto a = OpenEmbedded(file);
    const auto b = OpenEmbedded(file);
    Answer(*a, "create sequence s start with 1");
    Answer(*a, "create function f() returns int as begin return 1 end");
    EXPECT_EQ(Answer(*a, "begin tran select next value for s as v"), "v;1");
    EXPECT_EQ(Answer(*b, "select dbo.f() f, current_value c from sys.sequences"), "f|c;1|1");
    Answer(*a, "rollback");
    EXPECT_EQ(Answer(*b, "select next value for s as v"), "v;2");
    Answer(*b, "alter function f() returns int as begin return 2 end");
    EXPECT_EQ(Answer(*a, "select dbo.f() f, next value for s as v"), "f|v;2|3");
  }
  EXPECT_EQ(Answer(*OpenEmbedded(file), "select dbo.f() f, next value for s as v"), "f|v;2|4");
}

}  // namespace
}  // namespace tessarlorn
