// What scripts change rows with: each batch with the answer that SQL Server gives.
#include <gtest/gtest.h>

#include "tsql/order_tables.h"

namespace tessarlorn {
namespace {

TEST(Changes, TableVariables) {
  CheckOnOrders({
      {"declare @t table (k int primary key, n nvarchar(10) default 'x', i int identity) insert @t (k) values (1),(2) insert into "
       "@t (k, n) select 3, N'货' update t set n = n + '!' from @t t where k > 1 delete from @t where k = 1 select * from @t",
       "k|n|i;2|x!|2;3|货!|3"},
      {"select * from @t", "error 1087: Must declare the table variable \"@t\"."},
      {"declare @t table (k int, i int identity) insert @t values (1) begin tran insert @t values (2) update o set FState = 9 save "
       "tran s insert @t values (3) rollback tran s rollback insert @t values (4) select k, i, FState from @t, o where FID = 1",
       "k|i|FState;1|1|2;2|2|2;3|3|2;4|4|2"},
      {"declare @i int = 0 while @i < 3 begin declare @t table (a int) insert @t values (@i) set @i += 1 end select count(*) as n "
       "from @t",
       "n;3"},
      {"declare @t table (a int) insert @t values (1) exec('select * from @t')",
       "error 1087: Must declare the table variable \"@t\"."},
      {"create procedure deeper @n int as begin declare @t table (n int) insert @t values (@n) declare @m int = @n + 1 if @n < 3 "
       "exec deeper @m insert #all select n from @t end",
       ""},
      {"create table #all (n int) exec deeper 1 select n from #all", "n;3;2;1"},
      {"declare @t table (a varchar(3) unique) insert @t values ('a'),('a')",
       "error 2627: Violation of UNIQUE KEY constraint 'UQ_@t_a'. Cannot insert duplicate key in object 'dbo.@t'. The duplicate key value is (a)."},
      {"create table i (id int identity, v int) insert i (v) values (1) select * into #i from i insert #i (v) values (3) select * from "
       "#i",
       "id|v;1|1;2|3"},
      {"select FID from o with (index(no))",
       "error 308: Index 'no' on table 'o' (specified in the FROM clause) does not exist."},
      {"create index high on o (FState) include (FName) where FState > 5 select FID from o with (index(high)) where FState = 2",
       "error 8622: Query processor could not produce a query plan because of the hints defined in this query. Resubmit the query "
       "without specifying any hints and without using SET FORCEPLAN."},
      {"create index ix on o (FState) select FID from o with (nolock, index(ix)) where FState > 6 union all select FID from o t with "
       "(index = ix, index(1)) where FID = 1",
       "FID;3;1"},
  });
}

TEST(Changes, ChangesThroughQueries) {
  CheckOnOrders({
      {"insert e values (13,1,1,'A1') with d as (select *, row_number() over (partition by FCode order by FEntryID) as n from e) delete "
       "d where n > 1 select FEntryID from e order by 1",
       "FEntryID;11;21"},
      {"with t as (select top 1 FState s, FName from o where FState < 10 order by FID desc) update t set s += 1, FName = FName + '!' "
       "select FID, FName, FState from o where FID = 2",
       "FID|FName|FState;2|Bob!|7"},
      {"update j set q = j.FAmount from (select e.FQty q, o.FAmount, e.FID from e join o on o.FID = e.FID) j where j.FID = 2 select "
       "FQty from e where FID = 2",
       "FQty;20.0000"},
      {"delete j from (select e.FQty, o.FID from e join o on o.FID = e.FID) j",
       "error 4405: View or function 'j' is not updatable because the modification affects multiple base tables."},
      {"with a as (select FID, FState from o), b as (select FID k, FState + 0 x, FState y from a) update b set y = 3 where k = 3 "
       "select FState from o where FID = 3",
       "FState;3"},
      {"with b as (select FState + 0 x from o) update b set x = 3",
       "error 4406: Update or insert of view or function 'b' failed because it contains a derived or constant field."},
      {"with b as (select FState x from o group by FState) delete b",
       "error 4403: Cannot update the view or function 'b' because it contains aggregates, or a DISTINCT or GROUP BY clause, or "
       "PIVOT or UNPIVOT operator."},
      {"create view v as select FID, FName from o where FState < 6", ""},
      {"update v set FName = 'v' where FName like N'张%' select FName from o where FID = 1", "FName;v"},
      {"with k as (select FID from o) update k set FID = FID + 1 select min(FID) a, max(FID) b from o", "a|b;2|4"},
      {"delete from v select count(*) n from o", "n;1"},
  });
}

TEST(Changes, OutputOfMoreThanTheRow) {
  CheckOnOrders({
      {"update o set FState = FState + 1 output inserted.FID, deleted.FState a, inserted.FState b, N'新' + inserted.FName c where FID < 3",
       "FID|a|b|c;1|2|3|新张三;2|6|7|新Bob"},
      {"update t set FID = t.FID + 10 output deleted.FID a, inserted.FID b, s.FCode from o t join e s on s.FID = t.FID and s.FCode = "
       "'A1' and s.FEntryID = 11",
       "a|b|FCode;1|11|A1"},
      {"delete e output deleted.*, o.FName from e join o on o.FID = e.FID where o.FID = 2",
       "FEntryID|FID|FQty|FCode|FName;21|2|3.0000|NULL|Bob"},
      {"declare @l table (i int identity, k int, old int) update o set FState = default output inserted.FID, deleted.FState into @l (k, "
       "old) where FID = 3 select l.*, FState from @l l join o on FID = k",
       "i|k|old|FState;1|3|14|NULL"},
      {"create table c (id int identity, t int) insert c (t) output inserted.id, inserted.t * 2 as d into e (FEntryID, FID) values (50),"
       "(60) select FEntryID, FID from e where FEntryID < 3",
       "FEntryID|FID;1|100;2|120"},
      {"update c set t = 1 output inserted.t into e (FID) select count(*) n from c where t = 1",
       "error 515: Cannot insert the value NULL into column 'FEntryID', table 'main.dbo.e'; column does not allow nulls. INSERT fails."},
      {"select t from c", "t;50;60"},
      {"create table #t (id int primary key, a int) insert #t values (1,1) update #t set a = 2 output deleted.a, inserted.a as b",
       "a|b;1|2"},
      {"declare @t table (id int primary key, a int) merge @t t using (values (2,9)) s(i, v) on t.id = s.i when not matched then insert "
       "values (i, v); select * from @t",
       "id|a;2|9"},
      {"create view w as select FID as k, FState as FAmount from o", ""},
      {"update w set FAmount = 99 output deleted.FAmount as a, inserted.* where k = 3", "a|k|FAmount;NULL|3|99"},
      {"declare @n int = -1 delete top (@n) from o", "error 127: A TOP N or FETCH rowcount value may not be negative."},
      {"delete o from o x join o y on x.FID = y.FID", "error 8154: The table 'o' is ambiguous."},
  });
}

TEST(Changes, Merge) {
  CheckOnOrders({
      {"create table m (id int identity, k int unique, q int not null default 5, s varchar(9) default 'new') insert m (k, q) values "
       "(1,10),(2,20),(3,30)",
       ""},
      {"merge into m as t using (values (1,1),(2,20),(4,4),(5,null)) s(k, q) on t.k = s.k when matched and t.q <= s.q then delete when "
       "matched then update set q -= s.q, s = 'less' when not matched and s.q is null then insert (k) values (s.k) when not matched "
       "then insert (k, q, s) values (s.k, s.q, default) when not matched by source then update set s = 'left' output $action as a, "
       "deleted.k, inserted.id, inserted.q, s.k as src;",
       "a|k|id|q|src;DELETE|2|NULL|NULL|2;UPDATE|1|1|9|1;INSERT|NULL|4|5|5;INSERT|NULL|5|4|4;UPDATE|3|3|30|NULL"},
      {"select id, k, q, s from m order by k", "id|k|q|s;1|1|9|less;3|3|30|left;5|4|4|new;4|5|5|new"},
      {"with s as (select 1 as k union all select 1) merge m using s on m.k = s.k when matched then update set q = 0;",
       "error 8672: The MERGE statement attempted to UPDATE or DELETE the same row more than once. This happens when a target row "
       "matches more than one source row. A MERGE statement cannot UPDATE/DELETE the same row of the target table multiple times. "
       "Refine the ON clause to ensure a target row matches at most one source row, or use the GROUP BY clause to group the source "
       "rows."},
      {"merge m using o on o.FID = m.k when not matched then insert values (o.FID)",
       "error 10713: A MERGE statement must be terminated by a semi-colon (;)."},
      {"merge m using o on o.FID = m.k when not matched then insert (k, q) values (o.FID, o.FState) when not matched by source then "
       "delete; select @@rowcount as n",
       "n;3"},
      {"select k, q from m order by k", "k|q;1|9;2|6;3|30"},
      {"merge m using (e right join o on e.FQty = o.FID + 5) on m.k = o.FID when matched then update set q = o.FID; select k, q from m "
       "order by k",
       "k|q;1|1;2|2;3|3"},
  });
}

TEST(Changes, ChangesFromOtherTables) {
  CheckOnOrders({
      {"update o set FAmount = s.q from (select FID, sum(FQty) as q from e group by FID) s where s.FID = o.FID select FID, FAmount from o",
       "FID|FAmount;1|3.0000;2|3.0000;3|NULL"},
      {"update o set FState = 9 from e where e.FID = o.FID and e.FCode = 'A1' select FID from o where FState = 9",
       "FID;1"},
      {"delete e from o where o.FID = e.FID and o.FState = 6 select FEntryID from e", "FEntryID;11;12"},
      {"update o set FState = x.n from o cross apply (select count(*) as n from e where e.FID = o.FID) x select FState from o",
       "FState;2;0;0"},
  });
}

TEST(Changes, Cursors) {
  CheckOnOrders({
      {"declare @k int, @n nvarchar(20), @all nvarchar(99) = N'' declare c cursor local fast_forward for select FID, FName from o where "
       "FState < 10 order by FID desc open c fetch next from c into @k, @n while @@fetch_status = 0 begin set @all += ltrim(str(@k)) + "
       "@n fetch c into @k, @n end close c deallocate c select @all as a, @k as k",
       "a|k;2Bob1张三|1"},
      {"open c", "error 16916: A cursor with the name 'c' does not exist."},
      {"declare @low int = 2 declare @t table (k int) declare g cursor static for select k from @t where k >= @low set @low = 9 insert @t "
       "values (1),(2),(3) open g insert @t values (4) fetch last from g",
       "k;3"},
      {"fetch prior from g", "k;2"},
      {"fetch absolute 9 from g", "k"},
      {"declare @a int fetch relative -1 from g into @a select @a as a, @@fetch_status as s, @@cursor_rows as n",
       "a|s|n;3|0|2"},
      {"declare g cursor for select 1", "error 16915: A cursor with the name 'g' already exists."},
      {"close g fetch g", "error 16917: Cursor is not open."},
      {"deallocate g declare @c cursor set @c = cursor for select FID from o open @c fetch first from @c",
       "error 16911: fetch: The fetch type first cannot be used with forward only cursors."},
  });
}

}  // namespace
}  // namespace tessarlorn
