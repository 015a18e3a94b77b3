// Tables that change: constraints and columns that come, go and become others, with the rows that stand.
#include <cstdio>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include "tsql/database_support.h"
#include "tsql/storage/maintenance.h"

namespace tessarlorn {
namespace {

void CheckAlterations(std::initializer_list<AnsweredBatch> cases) {
  CheckBatches({"create table p (id int not null, n varchar(10), k int) create table f (a int identity(3,1), pid int) "
                "insert p values (1, 'a', 1), (2, 'b', null), (3, 'c', 3) insert f (pid) values (1), (2)"},
               cases);
}

TEST(Alteration, ConstraintsComeAndGo) {
  CheckAlterations({
      {"insert p values (2, 'd', 4) alter table p add constraint pk primary key (id)",
       "error 1505: The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the object name 'dbo.p' and the "
       "index name 'pk'. The duplicate key value is (2)."},
      {"delete p where n = 'd' alter table p add constraint pk primary key (id), constraint uk unique (k), check (id < 10) "
       "alter table f add constraint fk foreign key (pid) references p, x int not null default 7, constraint dk default 3 for pid "
       "insert f default values select * from f",
       "a|pid|x;3|1|7;4|2|7;5|3|7"},
      {"select name, type from sys.objects where parent_object_id = object_id('p')", "name|type;pk|PK;uk|UQ;CK_p|C "},
      {"insert p values (4, 'x', null)",
       "error 2627: Violation of UNIQUE KEY constraint 'uk'. Cannot insert duplicate key in object 'dbo.p'. The duplicate key value is (<NULL>)."},
      {"insert f (pid) values (9)",
       "error 547: The INSERT statement conflicted with the FOREIGN KEY constraint \"fk\". The conflict occurred in database \"main\", table "
       "\"dbo.p\", column 'id'."},
      {"alter table p drop pk",
       "error 3725: The constraint 'pk' is being referenced by table 'f', foreign key constraint 'fk'."},
      {"begin tran alter table p drop uk, CK_p, column k rollback delete p where id = 1",
       "error 547: The DELETE statement conflicted with the REFERENCE constraint \"fk\". The conflict occurred in database \"main\", table "
       "\"dbo.f\", column 'pid'."},
      {"insert p values (14, 'x', 8)",
       "error 547: The INSERT statement conflicted with the CHECK constraint \"CK_p\". The conflict occurred in database \"main\", table "
       "\"dbo.p\"."},
      {"alter table f drop constraint if exists none, fk, dk, DF_f_x, column x insert f default values insert p values (9, 'x', 2) "
       "select * from f where a > 4",
       "a|pid;5|3;6|NULL"},
      {"alter table f drop fk", "error 3728: 'fk' is not a constraint."},
      {"alter table f add constraint fk foreign key (a) references p (id)",
       "error 547: The ALTER TABLE statement conflicted with the FOREIGN KEY constraint \"fk\". The conflict occurred in database "
       "\"main\", table \"dbo.p\", column 'id'."},
      {"alter table f add constraint c check (pid > 1)",
       "error 547: The ALTER TABLE statement conflicted with the CHECK constraint \"c\". The conflict occurred in database \"main\", "
       "table \"dbo.f\"."},
      {"alter table f add constraint uk unique (a)",
       "error 2714: There is already an object named 'uk' in the database."},
      {"alter table p add primary key (id)", "error 1779: Table 'p' already has a primary key defined on it."},
      {"alter table f add primary key (pid)",
       "error 8111: Cannot define PRIMARY KEY constraint on nullable column in table 'f'."},
      {"alter table f add constraint d default 1 for pid alter table f add default 2 for pid",
       "error 1781: Column already has a DEFAULT bound to it."},
      {"create table #t (a varchar(3)) insert #t values ('x'), ('y') alter table #t add id int identity(10,1) primary key, b int "
       "default 1 with values check (b > 0), c int unique insert #t (a, c) values ('z', 2)",
       "error 1505: The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the object name 'dbo.#t' and the "
       "index name 'UQ_#t_c'. The duplicate key value is (<NULL>)."},
      {"alter table #t add id int identity(10,1) primary key, b int default 1 with values insert #t (a) values ('z') select * from #t",
       "a|id|b;x|10|1;y|11|1;z|12|1"},
  });
}

TEST(Alteration, ColumnsBecomeOthers) {
  CheckAlterations({
      {"create unique index ix on p (n) include (k) where k is not null alter table p alter column n varchar(20) "
       "alter table p alter column n varchar(9)",
       "error 5074: The index 'ix' is dependent on column 'n'."},
      {"alter table p alter column k bigint", "error 5074: The index 'ix' is dependent on column 'k'."},
      {"drop index ix on p alter table p alter column n int",
       "error 245: Conversion failed when converting the varchar value 'a' to data type int."},
      {"alter table p alter column k int not null",
       "error 515: Cannot insert the value NULL into column 'k', table 'main.dbo.p'; column does not allow nulls. UPDATE fails."},
      {"update p set n = 'long' alter table p alter column n varchar(3)",
       "error 2628: String or binary data would be truncated in table 'main.dbo.p', column 'n'. Truncated value: 'lon'."},
      {"alter table p alter column k decimal(9,2) alter table p alter column id varchar(4) not null select id + 'x' i, k from p",
       "i|k;1x|1.00;2x|NULL;3x|3.00"},
      {"insert p (id) values (null)",
       "error 515: Cannot insert the value NULL into column 'id', table 'main.dbo.p'; column does not allow nulls. INSERT fails."},
      {"alter table f alter column a bigint insert f (pid) values (5) select max(a) m, ident_current('f') i from f",
       "m|i;5|5"},
      {"alter table p alter column none int",
       "error 4924: ALTER TABLE ALTER COLUMN failed because column 'none' does not exist in table 'p'."},
  });
}

TEST(Alteration, ComputedColumns) {
  CheckAlterations({
      {"create table t (c as a * b, a int, b decimal(9,2), u as upper(n) + '!' persisted not null, n varchar(9)) "
       "insert t values (2, 1.5, 'x') insert t (a, b, n) output inserted.c, inserted.u values (3, 2, 'y')",
       "c|u;6.00|Y!"},
      {"alter table t add d as a + 1, e as a * 2 persisted select * from t where c > 3",
       "c|a|b|u|n|d|e;6.00|3|2.00|Y!|y|4|6"},
      {"merge t using (select 2 a, 'q' n) s on t.a = s.a when matched then update set n = s.n output inserted.u;",
       "u;Q!"},
      {"insert t (a, c) values (1, 2)",
       "error 271: The column \"c\" cannot be modified because it is either a computed column or is the result of a UNION operator."},
      {"create unique index iu on t (u) insert t values (9, 9, 'Q')",
       "error 2601: Cannot insert duplicate key row in object 'dbo.t' with unique index 'iu'. The duplicate key value is (Q!)."},
      {"alter table t add f as c + 1",
       "error 1759: Computed column 'c' in table 't' is not allowed to be used in another computed-column definition."},
      {"alter table t alter column a bigint", "error 5074: The column 'c' is dependent on column 'a'."},
      {"exec sp_rename 't.n', 'm', 'COLUMN'",
       "error 15336: Object 't.n' cannot be renamed because the object participates in enforced dependencies."},
      {"select name, definition, is_persisted from sys.computed_columns where name < 'd' or is_persisted = 1 order by 1",
       "name|definition|is_persisted;c|(a * b)|0;e|(a * 2)|1;u|(upper(n) + '!')|1"},
      {"create table k (a int primary key, b as a * 1e-9) insert k values (1), (2) update k set a = a + 1 select * into l from k "
       "update l set b = 1 where a = 2 select b from l",
       "b;1;0.000000003"},
      {"declare @v table (a int, b as a + 1) insert @v values (4) begin tran insert @v values (5) rollback select * from @v",
       "a|b;4|5;5|6"},
      {"create table #q (a int) begin tran alter table #q add b int rollback begin tran drop table #q rollback insert #q values (1) "
       "select * from #q",
       "a;1"},
      {"create table g (a int, b as getdate())",
       "error 40000: A CHECK constraint or computed column that is not made of columns and constants is not supported by the embedded "
       "database."},
  });
}

TEST(Alteration, IdentitiesCountByAnyNumber) {
  CheckAlterations({
      {"create table t (id int identity(10, -5) primary key, n varchar(5)) select ident_seed('t') s, ident_incr('t') i, "
       "ident_current('t') c insert t values ('a'), ('b')",
       "s|i|c;10|-5|10"},
      {"begin tran insert t values ('r') rollback insert t output inserted.id values ('c')", "id;-5"},
      {"set identity_insert t on insert t (id, n) values (100, 'e') insert t (id, n) values (-100, 'f') set identity_insert t off "
       "insert t values ('g') select scope_identity() s, @@identity i",
       "s|i;-105|-105"},
      {"merge t using (values ('a'), ('y'), ('z')) s (n) on t.n = s.n when not matched then insert (n) values (s.n) output inserted.id;",
       "id;-110;-115"},
      {"alter table t add x int not null default 1, check (id < 200) exec sp_rename 't', 'tt' insert tt (n) values ('q') "
       "select min(id) m from tt",
       "m;-120"},
      {"truncate table tt insert tt (n) values ('a') select seed_value, increment_value, last_value from sys.identity_columns where "
       "object_id = object_id('tt')",
       "seed_value|increment_value|last_value;10|-5|10"},
      {"create table u (id tinyint identity(250, 3), n int) insert u values (1), (2) insert u values (3)",
       "error 8115: Arithmetic overflow error converting IDENTITY to data type tinyint."},
      {"create table w (n int) insert w values (7), (8) alter table w add id int identity(0,1) insert w values (9) select * from w",
       "n|id;7|0;8|1;9|2"},
      {"create table y (id int identity(5,1), n int) insert y values (1) truncate table y insert y values (1) select id from y",
       "id;5"},
  });
}

TEST(Alteration, IsSeenByOthersAndKept) {
  const std::string file = std::string(TESSARLORN_TEST_FOLDER) + "/alteration.db";
  for (const char* end : {"", "-wal", "-shm"}) std::remove((file + end).c_str());
  {
    const auto one = OpenEmbedded(file);
    const auto other = OpenEmbedded(file);
    Answer(*one,
           "create table t (a varchar(9), b int, c as b + 1, id int identity(1,2)) insert t values ('1', 1), ('2', 2)");
    EXPECT_EQ(Answer(*other, "select * from t where a = '2'"), "a|b|c|id;2|2|3|3");
    EXPECT_EQ(Answer(*one, "alter table t alter column a int alter table t add constraint d default 7 for b"), "");
    EXPECT_EQ(Answer(*other, "insert t (a) values (3) select * from t where a >= 2"), "a|b|c|id;2|2|3|3;3|7|8|5");
  }
  EXPECT_EQ(Answer(*OpenEmbedded(file), "alter table t drop d insert t (a) values (4) select * from t where a > 2"),
            "a|b|c|id;3|7|8|5;4|NULL|NULL|7");
  EXPECT_TRUE(CheckEmbedded("Embedded=" + file).faults.empty());
  // An earlier version noted no constraints: they are not lost.
  Answer(*OpenEmbedded(file), "create table o (a int, b varchar(9) unique) insert o values (1, 'x')");
  sqlite3* tool = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &tool), SQLITE_OK);
  sqlite3_exec(tool, "UPDATE \"$objects\" SET definition = ''", nullptr, nullptr, nullptr);
  sqlite3_close(tool);
  EXPECT_EQ(
      Answer(*OpenEmbedded(file), "alter table o add c int alter table o alter column a varchar(5)"),
      "error 40000: Changing the table 'o', whose constraints an earlier version did not note, is not supported by "
      "the embedded database.");
  EXPECT_EQ(Answer(*OpenEmbedded(file), "insert o (b) values ('x')"),
            "error 2627: Violation of UNIQUE KEY constraint on 'o.b'. Cannot insert duplicate key in object 'dbo.o'.");
}

}  // namespace
}  // namespace tessarlorn
