// Schemas beside dbo: what stands in them, its names and its errors.
#include <cstdio>
#include <gtest/gtest.h>

#include "tsql/database_support.h"
#include "tsql/storage/maintenance.h"

namespace tessarlorn {
namespace {

void CheckSchemas(std::initializer_list<AnsweredBatch> cases) {
  CheckBatches(
      {"create schema s authorization dbo",
       "create table t (id int primary key, c int) insert t values (1, 100) create table s.t (id int identity primary key, c int not "
       "null unique, check (t.id > 0)) create index ix on s.t (c, id) insert s.t (c) values (1), (2) create sequence s.q start with 5",
       "create view s.v as select id, c from s.t", "create procedure s.p @x int as select @x + count(*) as n from s.v",
       "create function s.f (@x int) returns int as begin return @x * 2 end",
       "create function s.g (@x int) returns table as return select id, @x as x from s.t"},
      cases);
}

TEST(Schemas, NamesWithTheirSchema) {
  CheckSchemas({
      {"select s.t.*, dbo.t.c, u.id from dbo.t, main.s.t join [S].[T] u on u.id = s.t.id where s.t.id > 1",
       "id|c|c|id;2|2|100|2"},
      {"select dbo.t.c from s.t", "error 4104: The multi-part identifier \"dbo.t.c\" could not be bound."},
      {"select t.c from t, s.t", "error 209: Ambiguous column name 'c'."},
      {"s.p @x = 4", "n;6"},
      {"select main.s.f(g.id) as f, g.x from s.v cross apply s.g(v.id) g where g.id = v.id", "f|x;2|1;4|2"},
      {"create table s.c (id int primary key, t int references s.t, n int default (next value for s.q)) insert s.c (id, t) "
       "output inserted.n values (1, 2) drop table s.c",
       "n;5"},
      {"update s.t set c = 20 where t.id = 2 delete s.t from s.t where s.t.id = 2 select count(*) as n from t", "n;1"},
      {"merge s.t using (values (1, 7), (9, 8)) z (id, c) on s.t.id = z.id when matched then update set c = z.c when not matched then "
       "insert (c) values (z.c); select * from s.v where v.c > 6 order by c",
       "id|c;1|7;3|8"},
      {"select * into s.made from s.t delete s.made output deleted.id into t (id) where id = 3 truncate table s.made set identity_insert "
       "s.made on insert s.made (id, c) values (5, 5) select id from s.made union all select id from t",
       "id;5;1;3"},
  });
}

TEST(Schemas, ObjectsLookIntoTheirOwnSchemaFirst) {
  CheckSchemas({
      {"create view s.own as select t.c from t", ""},
      {"create procedure s.inner_one as select sum(c) as c from t", ""},
      {"create procedure s.outer_one as exec inner_one", ""},
      {"create procedure inner_one as select 0 as other", ""},
      {"exec sp_rename 's.t', 'u' exec s.outer_one", "c;100"},
      {"exec sp_rename 's.u', 't' exec s.outer_one", "c;3"},
      {"create procedure s.clear as truncate table t insert t (c) exec ('select 8')", ""},
      {"create trigger s.tr on s.t after insert as select c as new from inserted where c in (select c from t)", ""},
      {"exec s.clear", "new;8"},
      {"select c from t union all select c from s.own", "c;100;8"},
  });
}

TEST(Schemas, Errors) {
  CheckSchemas({
      {"select 1 as a create schema u", "error 111: 'CREATE SCHEMA' must be the first statement in a query batch."},
      {"create view u.v as select 1 as a",
       "error 2760: The specified schema name \"u\" either does not exist or you do not have permission to use it."},
      {"set identity_insert s.t on insert s.t (id, c) values (1, 9)",
       "error 2627: Violation of PRIMARY KEY constraint 'PK_t'. Cannot insert duplicate key in object 's.t'. The duplicate key value is (1)."},
      {"set identity_insert s.t off create unique index ux on s.t (c) insert s.t (c) values (1)",
       "error 2601: Cannot insert duplicate key row in object 's.t' with unique index 'ux'. The duplicate key value is (1)."},
      {"drop index s.t.ux drop schema s",
       "error 3729: Cannot drop schema 's' because it is being referenced by object 't'."},
      {"drop schema if exists u begin tran exec('create schema u') rollback select schema_id('u') as u", "u;NULL"},
  });
}

TEST(Schemas, TheCatalog) {
  CheckSchemas({
      {"select schema_name(schema_id) as s, name, type from sys.objects where name in ('t', 'PK_t', 'v') order by 1, 2",
       "s|name|type;dbo|PK_t|PK;dbo|t|U ;s|PK_t|PK;s|t|U ;s|v|V "},
      {"select object_name(object_id('s.t')) as n, object_schema_name(object_id('[main].[s].[t]')) as s, object_id('s.none') as x, "
       "schema_id('S') as i, ident_current('s.t') as c",
       "n|s|x|i|c;t|s|NULL|5|2"},
  });
}

TEST(Schemas, NamesThatChange) {
  CheckSchemas({
      {"create table s (a int) create index x on s (a) exec sp_rename 's', 'other' exec sp_rename 's.t', 'u' exec sp_rename 's.u.c', "
       "'d', 'COLUMN' exec sp_rename 's.u.ix', 'iy', 'INDEX' select d from s.u with (index (iy))",
       "d;1;2"},
      {"create trigger tr on s.u after insert as select d as new from inserted", ""},
      {"alter schema dbo transfer s.u insert u (d) values (3)", "new;3"},
      {"disable trigger tr on u alter schema s transfer u alter table s.u enable trigger tr insert s.u (d) values (4)",
       "new;4"},
      {"alter schema s transfer t alter schema dbo transfer s.t create table s.t (a int) alter schema s transfer object::t",
       "error 15530: The object with name \"t\" already exists."},
  });
}

TEST(Schemas, OfAFile) {
  const std::string file = std::string(TESSARLORN_TEST_FOLDER) + "/schemas.db";
  for (const char* end : {"", "-wal", "-shm"}) std::remove((file + end).c_str());
  {
    const auto one = OpenEmbedded(file);
    const auto other = OpenEmbedded(file);
    EXPECT_EQ(Answer(*one, "create schema s"), "");
    EXPECT_EQ(Answer(*other, "create table s.t (a int identity, b int) insert s.t values (1)"), "");
    EXPECT_EQ(Answer(*one, "alter table s.t alter column b bigint"), "");
  }
  EXPECT_EQ(Answer(*OpenEmbedded(file), "insert s.t (b) values (5) select * from s.t"), "a|b;1|1;2|5");
  EXPECT_TRUE(CheckEmbedded("Embedded=" + file).faults.empty());
}

}  // namespace
}  // namespace tessarlorn
