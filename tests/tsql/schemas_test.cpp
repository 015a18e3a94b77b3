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
       "create table t (id int primary key, c int) insert t values (1, 100) "
       "create table s.t (id int identity primary key, c int not null unique, check (t.id > 0)) create index ix on "
       "s.t (c, id) insert s.t (c) values (1), (2)",
       "create view s.v as select id, c from s.t", "create procedure s.p @x int as select @x + count(*) as n from s.v",
       "create function s.f (@x int) returns int as begin return @x * 2 end",
       "create function s.g (@x int) returns table as return select id, @x as x from s.t",
       "create sequence s.q start with 5"},
      cases);
}

TEST(Schemas, NamesWithTheirSchema) {
  CheckSchemas({
      {"select s.t.c, dbo.t.c, t2.* from dbo.t, main.s.t join [S].[T] t2 on t2.id = s.t.id where s.t.id > 1",
       "c|c|id|c;2|100|2|2"},
      {"select s.t.* from t join s.t on dbo.t.id = s.t.id", "id|c;1|1"},
      {"select x.t.c from s.t", "error 4104: The multi-part identifier \"x.t.c\" could not be bound."},
      {"select dbo.t.c from s.t", "error 4104: The multi-part identifier \"dbo.t.c\" could not be bound."},
      {"select t.c from t, s.t", "error 209: Ambiguous column name 'c'."},
      {"select id, s.t.c from s.t group by id",
       "error 8120: Column 's.t.c' is invalid in the select list because it is not contained in either an aggregate function or the "
       "GROUP BY clause."},
      {"exec s.p 3", "n;5"},
      {"s.p @x = 4", "n;6"},
      {"exec s.p", "error 201: Procedure or function 'p' expects parameter '@x', which was not supplied."},
      {"exec p 3", "error 2812: Could not find stored procedure 'p'."},
      {"select main.s.f(g.id) as f, g.x from s.v cross apply s.g(v.id) g where g.id = v.id", "f|x;2|1;4|2"},
      {"select s.none(1)",
       "error 4121: Cannot find either column \"s\" or the user-defined function or aggregate \"s.none\", or the name "
       "is ambiguous."},
      {"select next value for s.q as a alter sequence s.q restart with 9", "a;5"},
      {"create table s.c (id int primary key, t int references s.t, n int default (next value for s.q)) insert s.c (id, t) output "
       "inserted.n values (1, 2)",
       "n;9"},
      {"insert s.c (id, t) values (2, 7)",
       "error 547: The INSERT statement conflicted with the FOREIGN KEY constraint."},
      {"drop table s.t",
       "error 3726: Could not drop object 's.t' because it is referenced by a FOREIGN KEY constraint."},
      {"drop table s.c update s.t set c = 20 where t.id = 2 delete s.t from s.t where s.t.id = 2 select count(*) as n from t",
       "n;1"},
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
      {"create function s.rows () returns table as return select c from t union all select c from only_dbo",
       "error 208: Invalid object name 'only_dbo'."},
      {"create procedure s.inner_one as select sum(c) as c from t", ""},
      {"create procedure s.outer_one as exec inner_one", ""},
      {"create procedure dbo.inner_one as select sum(c) as other from t", ""},
      {"exec inner_one", "other;100"},
      {"exec s.outer_one", "c;3"},
      {"alter schema dbo transfer s.t", "error 15530: The object with name \"t\" already exists."},
      {"exec sp_rename 's.t', 'u' exec s.outer_one", "c;100"},
      {"exec sp_rename 's.u', 't' exec s.outer_one", "c;3"},
      {"select sum(c) as c from s.own union all select sum(c) from t", "c;3;100"},
      {"create procedure s.clear as truncate table t insert t (c) exec ('select 8')", ""},
      {"create trigger s.tr on s.t after insert as select c as new from inserted where c in (select c from t)", ""},
      {"exec s.clear", "new;8"},
      {"select c from t", "c;100"},
  });
}

TEST(Schemas, Errors) {
  CheckSchemas({
      {"select 1 as a create schema u", "error 111: 'CREATE SCHEMA' must be the first statement in a query batch."},
      {"create schema S", "error 2714: There is already an object named 'S' in the database."},
      {"create schema sys", "error 2714: There is already an object named 'sys' in the database."},
      {"create schema u create table t (a int)",
       "error 40000: CREATE SCHEMA with elements is not supported by the embedded database."},
      {"create table u.t (a int)",
       "error 2760: The specified schema name \"u\" either does not exist or you do not have permission to use it."},
      {"create table [s.x] (a int)",
       "error 40000: The name 's.x' in dbo, beside a schema is not supported by the embedded database."},
      {"create table s.t (a int)", "error 2714: There is already an object named 't' in the database."},
      {"select * from u.t", "error 208: Invalid object name 'u.t'."},
      {"drop table s.none",
       "error 3701: Cannot drop the table 's.none', because it does not exist or you do not have permission."},
      {"insert s.t (c) values (1)",
       "error 2627: Violation of UNIQUE KEY constraint on 's.t.c'. Cannot insert duplicate key in object "
       "'s.t'."},
      {"set identity_insert s.t on insert s.t (id, c) values (1, 9)",
       "error 2627: Violation of PRIMARY KEY constraint 'PK_t'. Cannot insert duplicate key in object 's.t'."},
      {"insert s.t (c) values (null)",
       "error 515: Cannot insert the value NULL into column 'c', table 's.t'; column does not allow nulls. INSERT fails."},
      {"create unique index ux on s.t (c) insert s.t (c) values (1)",
       "error 2601: Cannot insert duplicate key row in object 's.t' with unique index 'ux'."},
      {"drop index s.t.ux drop index s.t.ux",
       "error 3701: Cannot drop the index 's.t.ux', because it does not exist or you do not have permission."},
      {"drop schema s", "error 3729: Cannot drop schema 's' because it is being referenced by object 't'."},
      {"drop schema dbo", "error 15150: Cannot drop the schema 'dbo'."},
      {"drop schema u",
       "error 15151: Cannot drop the schema 'u', because it does not exist or you do not have permission."},
      {"drop schema if exists u exec('create schema u') drop schema u select schema_id('u') as u", "u;NULL"},
      {"begin tran exec('create schema u') create table u.t (a int) rollback select * from u.t",
       "error 208: Invalid object name 'u.t'."},
      {"create trigger dbo.tr on s.t after insert as print 'x'",
       "error 2103: Cannot create trigger 'dbo.tr' because its schema is different from the schema of the target table or view."},
  });
}

TEST(Schemas, TheCatalog) {
  CheckSchemas({
      {"select schema_name(schema_id) as s, name, type from sys.objects where name in ('t', 'PK_t', 'v') order by 1, 2",
       "s|name|type;dbo|PK_t|PK;dbo|t|U ;s|PK_t|PK;s|t|U ;s|v|V "},
      {"select object_name(object_id('s.t')) as n, object_schema_name(object_id('[main].[s].[t]')) as s, object_id('s.none') as x, "
       "schema_id('S') as i, objectproperty(object_id('s.v'), 'SchemaId') as p, ident_current('s.t') as c, object_schema_name("
       "object_id('t')) as d",
       "n|s|x|i|p|c|d;t|s|NULL|5|5|2|dbo"},
      {"select table_schema, table_name from information_schema.tables union all select schema_name, '' from "
       "information_schema.schemata order by 1, 2",
       "table_schema|table_name;dbo|;dbo|t;s|;s|t;s|v"},
      {"select count(*) as n from information_schema.columns where table_schema = 's' and table_name = 't'", "n;2"},
      {"select specific_schema s, specific_name n, parameter_name p from information_schema.parameters where parameter_name = '@x' "
       "order by 2",
       "s|n|p;s|f|@x;s|g|@x;s|p|@x"},
      {"exec sp_pkeys 't', 's'",
       "TABLE_QUALIFIER|TABLE_OWNER|TABLE_NAME|COLUMN_NAME|KEY_SEQ|PK_NAME;main|s|t|id|1|PK_t"},
      {"exec sp_helptext 's.v'", "Text;create view s.v as select id, c from s.t"},
      {"exec sp_helpindex 's.t'",
       "index_name|index_description|index_keys;ix|nonclustered located on PRIMARY|c, id;PK_t|clustered, unique, primary key located on "
       "PRIMARY|id;UQ_t_c|nonclustered, unique, unique key located on PRIMARY|c"},
  });
}

TEST(Schemas, NamesThatChange) {
  CheckSchemas({
      {"create table s.c (id int constraint fk references s.t) alter table s.c add constraint PK_t check (id > 0)",
       "error 2714: There is already an object named 'PK_t' in the database."},
      {"create table s (a int) create index x on s (a) exec sp_rename 's', 'other' exec sp_rename 's.t', 'u' exec sp_rename 's.u.c', "
       "'d', 'COLUMN' exec sp_rename 's.u.ix', 'iy', 'INDEX' select d from s.u with (index (iy))",
       "d;1;2"},
      {"insert s.c values (5)", "error 547: The INSERT statement conflicted with the FOREIGN KEY constraint."},
      {"drop table s.c", ""},
      {"create trigger tr on s.u after insert as select d as new from inserted", ""},
      {"alter schema dbo transfer s.u insert u (d) values (3)", "new;3"},
      {"disable trigger tr on u alter schema s transfer object::dbo.u alter table s.u enable trigger tr insert s.u (d) values (4)",
       "new;4"},
      {"select schema_name(o.schema_id) as s, o.name from sys.objects o where type in ('TR', 'UQ') order by 2",
       "s|name;s|tr;s|UQ_t_c"},
      {"alter schema s transfer t alter schema dbo transfer s.t create table s.t (a int) alter schema s transfer t",
       "error 15530: The object with name \"t\" already exists."},
      {"alter schema none transfer t",
       "error 15151: Cannot alter the schema 'none', because it does not exist or you do not have permission."},
  });
}

TEST(Schemas, OfAFile) {
  const std::string file = std::string(TESSARLORN_TEST_FOLDER) + "/schemas.db";
  for (const char* end : {"", "-wal", "-shm"}) std::remove((file + end).c_str());
  {
    const auto one = OpenEmbedded(file);
    const auto other = OpenEmbedded(file);
    EXPECT_EQ(Answer(*other, "select schema_id('s') as s"), "s;NULL");
    EXPECT_EQ(Answer(*one, "create schema s"), "");
    EXPECT_EQ(
        Answer(
            *other,
            "create table s.t (a int identity, b int) insert s.t values (1) alter table s.t add c int not null default 2"),
        "");
    EXPECT_EQ(Answer(*one, "select * from s.t"), "a|b|c;1|1|2");
    EXPECT_EQ(Answer(*one, "create table t (a int) drop table t alter table s.t alter column b bigint"), "");
  }
  EXPECT_EQ(Answer(*OpenEmbedded(file), "insert s.t (b) values (5) select * from s.t"), "a|b|c;1|1|2;2|5|2");
  EXPECT_TRUE(CheckEmbedded("Embedded=" + file).faults.empty());
}

}  // namespace
}  // namespace tessarlorn
