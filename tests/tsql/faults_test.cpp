// What goes wrong, told with the names that a server tells.
#include <gtest/gtest.h>

#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

TEST(Faults, NameTheConstraint) {
  CheckBatches(
      {"create table p (id int constraint pk_p primary key, k int constraint uk_p unique, n int) create unique index ix on p (n) create "
       "table f (id int identity constraint pk_f primary key, pid int constraint fk_p references p, k int constraint fk_k references "
       "p (k), up int constraint fk_up references f) insert p values (1, 1, 1), (2, 2, 2) insert f values (1, 1, null), (2, null, 1)"},
      {
          {"insert p values (1, 3, 3)",
           "error 2627: Violation of PRIMARY KEY constraint 'pk_p'. Cannot insert duplicate key in object 'dbo.p'. The duplicate key value is (1)."},
          {"insert p values (3, null, 3) insert p values (4, null, 4)",
           "error 2627: Violation of UNIQUE KEY constraint 'uk_p'. Cannot insert duplicate key in object 'dbo.p'. The duplicate key value is (<NULL>)."},
          {"create table #t (k varchar(9) constraint pk_t primary key) insert #t values ('a'), ('A')",
           "error 2627: Violation of PRIMARY KEY constraint 'pk_t'. Cannot insert duplicate key in object 'dbo.#t'. The duplicate key value is (A)."},
          {"create sequence q as int start with 5 insert p select 7, next value for q, 2 insert p select 7, next value for q, 30 select k "
           "from p where id = 7",
           "error 2601: Cannot insert duplicate key row in object 'dbo.p' with unique index 'ix'. The duplicate key value is (2)."},
          {"select k from p where id = 7", "k;6"},
          {"declare @n int = 0 begin try update p set n = 2, @n = @n + 1 end try begin catch select @n as n end catch",
           "n;4"},
          {"create unique index iz on f (pid) where pid = 1 create unique index iy on p (n) where n < 0 alter table p add z int create "
           "unique index iw on p (z)",
           "error 1505: The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the object name 'dbo.p' and "
           "the index name 'iw'. The duplicate key value is (<NULL>)."},
          {"update f set k = 9 output inserted.id where id = 2",
           "error 547: The UPDATE statement conflicted with the FOREIGN KEY constraint \"fk_k\". The conflict occurred in database "
           "\"main\", table \"dbo.p\", column 'k'."},
          {"merge f using (values (9)) s (p) on f.id = s.p when not matched then insert (pid) values (s.p);",
           "error 547: The MERGE statement conflicted with the FOREIGN KEY constraint \"fk_p\". The conflict occurred in database "
           "\"main\", table \"dbo.p\", column 'id'."},
          {"begin tran update p set n = 7 where id = 1 update p set k = 5 where id = 1 select n from p where id = 1 commit",
           "error 547: The UPDATE statement conflicted with the REFERENCE constraint \"fk_k\". The conflict occurred in database "
           "\"main\", table \"dbo.f\", column 'k'."},
          {"delete f where id = 1",
           "error 547: The DELETE statement conflicted with the SAME TABLE REFERENCE constraint \"fk_up\". The conflict occurred in "
           "database \"main\", table \"dbo.f\", column 'up'."},
          {"exec sp_rename 'dbo.fk_k', 'fk_2', 'OBJECT' exec sp_rename 'pk_p', 'pk_2' select name from sys.objects where name "
           "in ('fk_k', 'fk_2', 'pk_2') order by 1",
           "name;fk_2;pk_2"},
          {"create table c (a int constraint ck check (a > 0)) exec sp_rename 'ck', 'ck_2' insert c values (0)",
           "error 547: The INSERT statement conflicted with the CHECK constraint \"ck_2\". The conflict occurred in database \"main\", "
           "table \"dbo.c\", column 'a'."},
          {"exec sp_rename 'ck_2', 'fk_2'",
           "error 15335: Error: The new name 'fk_2' is already in use as a object name and would cause a duplicate that is not "
           "permitted."},
      });
}

TEST(Faults, OfKeysThatMove) {
  CheckBatches(
      {"create table p (id int primary key) create table c (p int constraint fk references p) create table e (id int primary key, "
       "boss int constraint fk_boss references e) insert p values (1), (2) insert c values (1) insert e values (1, null), (2, 1)"},
      {
          {"update p set id = id + 1 output deleted.id",
           "error 547: The UPDATE statement conflicted with the REFERENCE constraint \"fk\". The conflict occurred in database "
           "\"main\", table \"dbo.c\", column 'p'."},
          {"merge p using (values (1, 2), (2, 3)) s (a, b) on p.id = s.a when matched then update set id = s.b;",
           "error 547: The MERGE statement conflicted with the REFERENCE constraint \"fk\". The conflict occurred in database "
           "\"main\", table \"dbo.c\", column 'p'."},
          {"update e set id = 9 where id = 1",
           "error 547: The UPDATE statement conflicted with the SAME TABLE REFERENCE constraint \"fk_boss\". The conflict occurred in "
           "database \"main\", table \"dbo.e\", column 'boss'."},
          {"update e set boss = 9 where id = 1",
           "error 547: The UPDATE statement conflicted with the FOREIGN KEY SAME TABLE constraint \"fk_boss\". The conflict occurred "
           "in database \"main\", table \"dbo.e\", column 'id'."},
          {"update p set id = 3 - id begin try insert c values (7) end try begin catch select @@rowcount r end catch",
           "r;0"},
      });
}

TEST(Faults, OfIdentities) {
  CheckBatches(
      {"create table t (id int identity(10, 5) primary key, t int references t, k int unique) insert t (k) values (1) create table u "
       "(id int identity, v int)"},
      {
          {"begin try insert t (t, k) values (7, 2) end try begin catch select scope_identity() s, @@identity i end catch",
           "s|i;NULL|10"},
          {"insert t (k) values (3) select max(id) m from t", "m;20"},
          {"insert u values (5, 6)",
           "error 8101: An explicit value for the identity column in table 'u' can only be specified when a column list is used and "
           "IDENTITY_INSERT is ON."},
          {"begin try insert u (id) values (5) end try begin catch select error_number() e end catch", "e;544"},
          {"set identity_insert u on set identity_insert t off begin try insert u default values end try begin catch select "
           "error_number() e end catch",
           "e;545"},
          {"set identity_insert t on",
           "error 8107: IDENTITY_INSERT is already ON for table 'main.dbo.u'. Cannot perform SET operation for table 't'."},
      });
}

TEST(Faults, NameTheObject) {
  CheckBatches(
      {"create table t (a int, b int)", "create view v with schemabinding as select a from dbo.t",
       "create function f() returns table as return select 1 as a"},
      {
          {"drop procedure if exists dbo.f",
           "error 3705: Cannot use DROP PROCEDURE with 'dbo.f' because 'dbo.f' is a function. Use DROP FUNCTION."},
          {"exec f", "error 2809: The request for procedure 'f' failed because 'f' is a table valued function object."},
          {"drop table dbo.t", "error 3729: Cannot DROP TABLE 'dbo.t' because it is being referenced by object 'v'."},
          {"alter table t drop column b alter table t drop column a",
           "error 5074: The object 'v' is dependent on column 'a'."},
          {"exec sp_rename 't', 'u'",
           "error 15336: Object 't' cannot be renamed because the object participates in enforced dependencies."},
          {"create view w as select 1",
           "error 4511: Create View or Function failed because no column name was specified for column 1."},
          {"select 1 as a, 2 as A into #t",
           "error 2705: Column names in each table must be unique. Column name 'A' in table '#t' is specified more than once."},
          {"drop view v drop table t", ""},
          {"alter view v as select 1 as a", "error 208: Invalid object name 'v'."},
          {"alter procedure f as select 1",
           "error 2010: Cannot perform alter on 'f' because it is an incompatible object type."},
          {"begin tran a save tran s save tran z rollback tran s rollback tran z",
           "error 6401: Cannot roll back z. No transaction or savepoint of that name was found."},
          {"begin tran b rollback tran b",
           "error 6401: Cannot roll back b. No transaction or savepoint of that name was found."},
          {"rollback tran a select @@trancount n", "n;0"},
          {"create table k (a int constraint pk_k primary key, schemabinding int check (a < 5)) exec sp_rename 'k.pk_k', 'pk_2', "
           "'INDEX' select name from sys.indexes where name like 'pk%'",
           "name;pk_2"},
          {"create view w as select a, schemabinding from dbo.k", ""},
          {"delete k output deleted.a into k (a)",
           "error 333: The target table 'k' of the OUTPUT INTO clause cannot have any enabled check constraints or any enabled rules. "
           "Found check constraint or rule 'CK_k_schemabinding'."},
          {"drop table k create table #c (a int references nowhere) insert #c values (1) select a from #c", "a;1"},
      });
}

TEST(Faults, OfDeclarations) {
  CheckBatches(
      {"create procedure p @a int as if @a = 1 begin declare @t table (a int) insert @t values (9) end insert @t values (@a) "
       "select * from @t",
       "create table n (a int)",
       "create function g() returns @r table (a int) as begin insert @r values (1) return end"},
      {
          {"insert n values (1) declare @t table (a int) declare @t table (b int)",
           "error 134: The variable name '@t' has already been declared. Variable names must be unique within a query batch or stored "
           "procedure."},
          {"create procedure q @a int as declare @a table (a int)",
           "error 134: The variable name '@a' has already been declared. Variable names must be unique within a query batch or stored "
           "procedure."},
          {"select count(*) as n from n where exists (select 1 from dbo.g() z where z.a > 1)", "n;0"},
          {"if 1 = 1 begin create table l (a varchar(9) check (a > ''), b as case when a = 'x' then 1 else 'what ?1' end) end insert l "
           "values ('y') select b from l",
           "error 245: Conversion failed when converting the varchar value 'what ?1' to data type int."},
          {"exec p 0", "a;0"},
          {"exec p 1", "a;9;1"},
          {"declare @i int = 0 while @i < 2 begin declare @t table (a int) declare @z int = 5 insert @t values (@z) set @z = 9 set @i += "
           "1 end select * from @t",
           "a;5;5"},
          {"create table s (id int primary key, k char unique) insert s values (1, 'a'), (2, 'b'), (3, 'c') merge s using (values (1, 2), "
           "(2, 1), (3, 0), (9, 9)) x (a, b) on s.id = x.a when matched and x.b = 0 then delete when not matched then insert values "
           "(3, 'c') when matched then update set id = x.b; select * from s",
           "id|k;1|b;2|a;3|c"},
          {"create table i (id int identity(10, -5), n int) insert i values (1), (2), (3) select * into j from i insert j values (4) "
           "truncate table i select min(id) m, ident_seed('j') s, ident_incr('j') c from j",
           "m|s|c;-5|10|-5"},
      });
}

}  // namespace
}  // namespace tessarlorn
