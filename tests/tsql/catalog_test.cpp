// What scripts and tools ask of the catalog, with the answers that SQL Server gives.
#include <cstdio>
#include <gtest/gtest.h>

#include "tsql/database_support.h"
#include "tsql/storage/maintenance.h"

namespace tessarlorn {
namespace {

constexpr const char* kObjects = R"(
create table t (a int identity primary key, n nvarchar(20) not null constraint UQ_n unique, d decimal(9,2)
 constraint DF_d default 1.5 check (d > 0))
create table f (x int, y varchar(10), t_id int constraint FK_t references t)
create index ix on f (x desc) include (y) where x > 0
insert t (n) values ('a'), ('b')
)";

void CheckCatalog(std::initializer_list<AnsweredBatch> rows) {
  CheckBatches({kObjects, "create view v (k, nn) as select max(a), n from t group by n",
                "create procedure p @i int, @o nvarchar(9) output as select * from t where a = @i"},
               rows);
}

TEST(Catalog, OldNamesAndFunctions) {
  CheckCatalog({
      {"select name, xtype, type from main..sysobjects where id > 1000000000 and parent_obj = object_id('t') order by name",
       "name|xtype|type;CK_t_d|C |C ;DF_d|D |D ;PK_t|PK|K ;UQ_n|UQ|K "},
      {"select name, length, prec, scale, isnullable, status, object_name(cdefault) as d from dbo.syscolumns where id = object_id('t') "
       "order by colid",
       "name|length|prec|scale|isnullable|status|d;a|4|10|0|0|128|NULL;n|40|20|NULL|0|0|NULL;d|5|9|2|1|8|DF_d"},
      {"select i.name, i.indid, i.status, i.rows from sysindexes i join sys.sysobjects o on o.id = i.id where o.name = 't'",
       "name|indid|status|rows;PK_t|1|2066|2;UQ_n|3|4098|2"},
      {"select c.name, c.max_length as m from sys.all_columns c where object_id = object_id('v') order by column_id",
       "name|m;k|4;nn|40"},
      {"select name from master..sysdatabases union all select name from master.sys.databases", "name;main;main"},
      {"create table #t (a int) if exists (select * from tempdb..sysobjects where id = object_id('tempdb..#t') and xtype = 'U') "
       "drop table #t select count(*) as n from tempdb.sys.tables",
       "n;0"},
      {"select name from master.sys.tables", "error 208: Invalid object name 'master.sys.tables'."},
      {"select objectproperty(object_id('t'), 'IsUserTable') a, objectproperty(object_id('f'), 'TableHasPrimaryKey') b, "
       "columnproperty(object_id('t'), 'a', 'IsIdentity') c, indexproperty(object_id('f'), 'IX', 'IsUnique') d, "
       "objectproperty(0, 'IsTable') e, columnproperty(object_id('t'), 'n', 'Precision') f",
       "a|b|c|d|e|f;1|0|1|0|NULL|20"},
      {"select db_name(1) a, db_id('x') b, user_name(1) c, has_perms_by_name('none', 'OBJECT', 'SELECT') d, "
       "object_definition(object_id('v')) e",
       "a|b|c|d|e;main|NULL|dbo|NULL|create view v (k, nn) as select max(a), n from t group by n"},
  });
}

TEST(Catalog, IncludedColumnsAndHelp) {
  CheckCatalog({
      {"create unique index uu on f (t_id) include (y)", ""},
      {"select i.name, c.name as c, k.key_ordinal as o, k.is_included_column as i, i.filter_definition as f from sys.indexes i join "
       "sys.index_columns k on k.object_id = i.object_id and k.index_id = i.index_id join sys.columns c on c.object_id = k.object_id and "
       "c.column_id = k.column_id where i.object_id = object_id('f') order by i.name, k.index_column_id",
       "name|c|o|i|f;ix|x|1|0|(x > 0);ix|y|0|1|(x > 0);uu|t_id|1|0|NULL;uu|y|0|1|NULL"},
      {"drop index ix on f create index ix on f (y) exec sp_helpindex 'f'",
       "index_name|index_description|index_keys;ix|nonclustered located on PRIMARY|y;uu|nonclustered, unique located on PRIMARY|t_id"},
      {"exec sp_helpconstraint 'f', 'nomsg'",
       "constraint_type|constraint_name|delete_action|update_action|status_enabled|status_for_replication|constraint_keys;FOREIGN "
       "KEY|FK_t|No Action|No Action|Enabled|Is_For_Replication|t_id; | | | | | |REFERENCES main.dbo.t (a)"},
      {"exec sp_helptext 't'", "error 15197: There is no text for object 't'."},
      {"exec sp_help 'none'",
       "error 15009: The object 'none' does not exist in database 'main' or is invalid for this operation."},
  });
}

TEST(Catalog, Renaming) {
  CheckCatalog({
      {"begin tran exec sp_rename 't', 'gone' rollback exec sp_rename '[dbo].[t]', 'tt' exec sp_rename 'tt.a', 'k', 'COLUMN' "
       "exec sp_rename 'f.ix', 'iy', 'INDEX' exec sp_rename 'f', 'ff'",
       ""},
      {"select k, n from tt where k > 1", "k|n;2|b"},
      {"select object_name(object_id) as o, name from sys.indexes where name like 'i%'", "o|name;ff|iy"},
      {"create table #f (a sysname, b sysname, p sysname, pc sysname, d sysname, e sysname, f sysname, fc sysname, s smallint, u "
       "smallint, r smallint, n sysname, k sysname, z smallint) insert #f exec sp_fkeys 'tt' select p, pc, f, fc from #f",
       "p|pc|f|fc;tt|k|ff|t_id"},
      {"select * from v", "error 208: Invalid object name 't'."},
      {"exec sp_rename 'tt.d', 'e', 'COLUMN'",
       "error 15336: Object 'tt.d' cannot be renamed because the object participates in enforced dependencies."},
      {"exec sp_rename 'tt.z', 'e', 'COLUMN'",
       "error 15248: Either the parameter @objname is ambiguous or the claimed @objtype (COLUMN) is wrong."},
      {"exec sp_rename 'tt', 'ff'",
       "error 15335: Error: The new name 'ff' is already in use as a object name and would cause a duplicate that is not permitted."},
      {"exec sp_rename 'tt', '#t'",
       "error 15224: Error: The value for the @newname parameter contains invalid characters or violates a basic restriction (#t)."},
      {"exec sp_rename 't', 'x'",
       "error 15225: No item by the name of 't' could be found in the current database 'main', given that @itemtype was input as "
       "'(null)'."},
  });
}

TEST(Catalog, ChineseNamesByPinyin) {
  const std::string file = std::string(TESSARLORN_TEST_FOLDER) + "/pinyin.db";
  for (const char* end : {"", "-wal", "-shm"}) std::remove((file + end).c_str());
  const std::string string = file + ";Collation=Chinese_PRC_CI_AS";
  const std::string names = "select n from p order by n";
  try {
    const auto connection = OpenEmbedded(string);
    Answer(*connection,
           "create table p (n nvarchar(9) primary key) insert p values (N'张三'), (N'b'), (N'阿'), (N'李'), ('1')");
    EXPECT_EQ(Answer(*connection, names), "n;1;b;阿;李;张三");
    EXPECT_EQ(
        Answer(
            *connection,
            "with t as (select v.n collate Chinese_PRC_Stroke_CI_AS as n from (values (N'张'),(N'一'),(N'阿')) v (n)) "
            "select n, (select max(n) from t) as m from t where n > N'一' order by n"),
        "n|m;张|阿;阿|阿");
    EXPECT_EQ(
        Answer(*connection,
               "select string_agg(n, '') within group (order by n desc) as s from p where n between 'B' and N'李'"),
        "s;李阿b");
    EXPECT_EQ(
        Answer(*connection, "insert p values (N'Ｂ ')"),
        "error 2627: Violation of PRIMARY KEY constraint 'PK_p'. Cannot insert duplicate key in object 'dbo.p'. The duplicate key value is (Ｂ ).");
  } catch (const Error& error) {
    ASSERT_NE(error.description().find("ICU"), std::string::npos) << error.description();
    GTEST_SKIP() << error.description();
  }
  EXPECT_EQ(Answer(*OpenEmbedded(file), names), "n;1;b;阿;李;张三");
  EXPECT_TRUE(CheckEmbedded("Embedded=" + file).faults.empty());
  EXPECT_THROW(OpenEmbedded(file + ";Collation=Chinese_PRC_Stroke_CI_AS"), Error);
}

}  // namespace
}  // namespace tessarlorn
