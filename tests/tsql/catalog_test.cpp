// What scripts and tools ask of the catalog, with the answers that SQL Server gives.
#include <gtest/gtest.h>

#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

struct CatalogCase {
  const char* batch;
  const char* answer;
};

void CheckCatalog(std::initializer_list<CatalogCase> rows) {
  const auto connection = OpenEmbedded();
  ASSERT_EQ(
      Answer(
          *connection,
          "create table t (a int identity primary key, n nvarchar(20) not null constraint UQ_n unique, d decimal(9,2) "
          "constraint DF_d default 1.5 check (d > 0)) create table f (x int, y varchar(10), t_id int constraint FK_t "
          "references t) create index ix on f (x desc) include (y) where x > 0 insert t (n) values ('a'), ('b')"),
      "");
  ASSERT_EQ(Answer(*connection, "create view v (k, nn) as select a, n from t"), "");
  ASSERT_EQ(Answer(*connection, "create procedure p @i int, @o nvarchar(9) output as select * from t where a = @i"),
            "");
  for (const CatalogCase& row : rows) EXPECT_EQ(Answer(*connection, row.batch), row.answer) << row.batch;
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
      {"select name from master.sys.tables", "error 208: Invalid object name 'master.sys.tables'."},
      {"select objectproperty(object_id('t'), 'IsUserTable') a, objectproperty(object_id('f'), 'TableHasPrimaryKey') b, "
       "columnproperty(object_id('t'), 'a', 'IsIdentity') c, indexproperty(object_id('f'), 'IX', 'IsUnique') d, "
       "objectproperty(0, 'IsTable') e, columnproperty(object_id('t'), 'n', 'Precision') f",
       "a|b|c|d|e|f;1|0|1|0|NULL|20"},
      {"select db_name(1) a, db_id('x') b, user_name(1) c, has_perms_by_name('none', 'OBJECT', 'SELECT') d, "
       "object_definition(object_id('v')) e",
       "a|b|c|d|e;main|NULL|dbo|NULL|create view v (k, nn) as select a, n from t"},
  });
}

}  // namespace
}  // namespace tessarlorn
