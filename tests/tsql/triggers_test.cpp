// Triggers: what they see, when they fire, and what is left when they fail.
#include <gtest/gtest.h>

#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

constexpr const char* kShelf =
    "create table shelf (id int primary key, n int default 0, check (n < 90)) create table book (nr int identity, was int, now int, "
    "id int, lvl int, check (now < 60))";
constexpr const char* kKeepsBook =
    "create trigger keeps_book on dbo.shelf for insert, update, delete as insert book (was, now, id, lvl) select d.n, i.n, "
    "isnull(i.id, d.id), @@rowcount * 10 + trigger_nestlevel() from inserted i full join deleted d on d.id = i.id";

TEST(Triggers, SeeTheRowsOfEachKindOfChange) {
  CheckBatches(
      {kShelf, kKeepsBook},
      {
          {"insert shelf values (1,5),(2,6) select @@rowcount r, @@identity i, scope_identity() s, @@trancount t",
           "r|i|s|t;2|2|NULL|0"},
          {"update t set n += 1 from shelf t where id = 2; with c as (select * from shelf where id = 1) delete c; update shelf set id += "
           "1 merge shelf t using (values (3,1),(4,9)) s (id, n) on s.id = t.id when matched then update set n = s.n when not matched "
           "then insert values (id, n); insert shelf exec('select 8, 8')",
           ""},
          {"select was, now, id, lvl from book order by nr",
           "was|now|id|lvl;NULL|5|1|21;NULL|6|2|21;6|7|2|11;5|NULL|1|11;NULL|7|3|11;7|NULL|2|11;7|1|3|21;NULL|9|4|21;NULL|8|8|11"},
          {"disable trigger keeps_book on shelf truncate table book update shelf set n = 2 alter table shelf enable trigger all "
           "truncate table shelf select count(*) n from book",
           "n;0"},
          {"insert shelf values (1,1),(2,2) truncate table book merge shelf t using (values (1,2),(2,1),(7,7)) s (a, b) on t.id = s.a "
           "when matched then update set id = s.b when not matched then insert values (s.a, 7); select was, now, id from book order "
           "by id",
           "was|now|id;1|2|1;2|1|2;NULL|7|7"},
          {"truncate table shelf update shelf set n = 1 output inserted.n",
           "error 334: The target table 'shelf' of the DML statement cannot have any enabled triggers if the statement contains an "
           "OUTPUT clause without INTO clause."},
          {"select name, is_disabled, object_name(parent_id) t from sys.triggers drop table shelf select * from sys.triggers",
           "name|is_disabled|t;keeps_book|0|shelf"},
      });
}

TEST(Triggers, UndoTheChangeThatFiredThem) {
  CheckBatches(
      {kShelf, kKeepsBook, "insert shelf values (1,1)"},
      {
          {"begin try insert shelf values (2,70) end try begin catch select error_number() e, error_procedure() p, @@trancount t "
           "end catch select count(*) n from shelf",
           "e|p|t;547|keeps_book|0"},
          {"begin tran insert shelf values (3,3) begin try update shelf set n = 80 end try begin catch select xact_state() x "
           "rollback end catch",
           "x;-1"},
          {"insert shelf values (4,4) insert shelf values (5,95) insert shelf values (6,6)",
           "error 547: The INSERT statement conflicted with the CHECK constraint \"CK_shelf\". The conflict occurred in database "
           "\"main\", table \"dbo.shelf\"."},
          {"insert shelf values (7,70) insert shelf values (8,8)",
           "error 547: The INSERT statement conflicted with the CHECK constraint \"CK_book\". The conflict occurred in database "
           "\"main\", table \"dbo.book\"."},
          {"select (select string_agg(id, ' ') within group (order by id) from shelf) s, (select sum(now) from book) b",
           "s|b;1 4 6|11"},
      });
}

TEST(Triggers, Refuse) {
  CheckBatches(
      {kShelf, "insert shelf values (1,1)",
       "create trigger guards on shelf after update as if update(n) begin raiserror('no', 16, 1) rollback end",
       "create trigger loops on book after insert as update book set lvl += 1 from inserted i where i.nr = book.nr"},
      {
          {"begin tran insert shelf values (2,2) update shelf set n = 3 select 'not reached'", "error 50000: no"},
          {"update shelf set id = 9 select id, @@trancount t from shelf", "id|t;9|0"},
          {"insert book (lvl) values (1) select lvl from book", "lvl;2"},
          {"create trigger swallows on book for delete as begin try declare @x int = 1 / 0 end try begin catch print 'x' end catch",
           ""},
          {"begin try delete book end try begin catch select error_number() e, @@trancount t, xact_state() x end catch",
           "e|t|x;3616|0|0"},
          {"alter trigger swallows on book for delete as save tran s", ""},
          {"begin tran save tran s delete book rollback tran s delete book commit select count(*) n from book", "n;0"},
          {"create trigger x on shelf for insert as delete deleted", ""},
          {"insert shelf values (2,2)", "error 286: The logical tables INSERTED and DELETED cannot be updated."},
          {"alter trigger x on shelf for insert as exec('select * from inserted')", ""},
          {"insert shelf values (2,2)", "error 208: Invalid object name 'inserted'."},
          {"alter trigger x on shelf for insert as insert shelf select id + 1, 0 from inserted where id < 9", ""},
          {"create trigger y on book for insert as insert shelf select nr + 100, 0 from inserted", ""},
          {"alter trigger x on shelf for insert as insert book (id) select id from inserted", ""},
          {"insert shelf values (2,2)",
           "error 217: Maximum stored procedure, function, trigger, or view nesting level exceeded (limit 32)."},
          {"create trigger z on nowhere for insert as return",
           "error 8197: The object 'nowhere' does not exist or is invalid for this operation."},
          {"select id from shelf if update(n) print 1",
           "error 140: Can only use IF UPDATE within a CREATE TRIGGER statement."},
      });
}

}  // namespace
}  // namespace tessarlorn
