// Whose file it is, and checking, copying and putting back a database.
#include "tsql/storage/maintenance.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <thread>

#include "support/error_of.h"
#include "support/shell.h"
#include "support/temporary_folder.h"
#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

void RunSqlite(const std::string& file, const char* sql) {
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(database);
  sqlite3_close(database);
}

template <typename Action>
std::string Refusal(const Action& action) {
  return ErrorOf(action).description();
}
void WriteNoise(const std::string& file, std::streamoff from, std::size_t size) {
  std::fstream pages(file, std::ios::in | std::ios::out | std::ios::binary);
  pages.seekp(from);
  pages << std::string(size, '\x5a');
}

class MaintenanceTest : public testing::Test {
 protected:
  MaintenanceTest() {
    OpenEmbedded(file_)->Execute(
        "create table n (FID int not null primary key, FText nvarchar(50)) create index i on n (FText) "
        "declare @i int = 0 while @i < 2000 begin set @i += 1 insert n values (@i, N'Text') end");
  }
  [[nodiscard]] std::string Rows(const std::string& file) const {
    return Answer(*OpenEmbedded(file), "select count(*) as n, count(distinct FText) as t from n");
  }

  TemporaryFolder folder_;
  std::string file_ = folder_.file("orders.db");
  std::string database_ = "Embedded=" + file_;
  std::string backup_ = folder_.file("backup.db");
};

TEST_F(MaintenanceTest, LeavesAnotherProgramsFileAlone) {
  const std::string file = folder_.file("other.db");
  for (const char* sql : {"CREATE TABLE a (b)", "PRAGMA application_id = 77", "PRAGMA journal_mode = WAL"}) {
    RunSqlite(file, sql);
    const std::string before = ReadFile(file);
    EXPECT_THAT(Refusal([&] { OpenEmbedded(file); }), HasSubstr("other.db': it is a file of another program")) << sql;
    EXPECT_THAT(Refusal([&] { BackUpEmbedded(database_, file, {}); }), HasSubstr("no database of ours"));
    EXPECT_THAT(Refusal([&] { RestoreEmbedded(database_, file, {}); }), HasSubstr("another program"));
    EXPECT_EQ(ReadFile(file), before);
    EXPECT_FALSE(std::filesystem::exists(file + "-wal"));
  }
  EXPECT_EQ(Rows(file_), "n|t;2000|1");
}

TEST_F(MaintenanceTest, MarksAnOlderFileWhenItIsFirstWritten) {
  RunSqlite(file_, "PRAGMA application_id = 0");
  const std::string before = ReadFile(file_);
  EXPECT_EQ(Rows(file_), "n|t;2000|1");
  EXPECT_EQ(ReadFile(file_), before);
  OpenEmbedded(file_)->Execute("delete n where FID = 1");
  EXPECT_EQ(ReadFile(file_).substr(68, 4), "TLpd");
}

TEST_F(MaintenanceTest, CopiesOneCommitWhileOthersWrite) {
  std::atomic<bool> done{false};
  std::thread writer([&] {
    const auto connection = OpenConnection(database_ + ";Synchronous=Normal");
    for (int i = 0; !done; ++i) connection->Execute("update n set FText = N'" + std::to_string(i) + "'");
  });
  // The second one replaces the first.
  for (int i = 0; i < 2; ++i) {
    BackUpEmbedded(database_, backup_, {});
    EXPECT_EQ(Rows(backup_), "n|t;2000|1");
  }
  done = true;
  writer.join();
  EXPECT_THAT(CheckEmbedded("Embedded=" + backup_).faults, IsEmpty());
  const std::string before = ReadFile(backup_);
  EXPECT_THAT(Refusal([&] { BackUpEmbedded(database_, backup_, [](int, int) { Raise(1, "stopped"); }); }), "stopped");
  EXPECT_EQ(ReadFile(backup_), before);
  EXPECT_THAT(Refusal([&] { BackUpEmbedded(database_, file_, {}); }), HasSubstr("is the database itself"));
  const auto user = OpenEmbedded(backup_);
  EXPECT_THAT(Refusal([&] { BackUpEmbedded(database_, backup_, {}); }), HasSubstr("is in use"));
  for (const auto& entry : std::filesystem::directory_iterator(folder_.file(""))) {
    EXPECT_THAT(entry.path().string(), Not(HasSubstr(".part-")));
  }
}

TEST_F(MaintenanceTest, PutsACopyBackUnderItsUsers) {
  BackUpEmbedded(database_, backup_, {});
  const auto user = OpenEmbedded(file_);
  user->Execute("drop table n create table later (a int)");
  RestoreEmbedded(database_, backup_, {});
  EXPECT_EQ(Answer(*user, "select count(*) as n from n"), "n;2000");
  EXPECT_THAT(Answer(*user, "select * from later"), HasSubstr("error 208"));
  EXPECT_THAT(Refusal([&] { RestoreEmbedded(database_, backup_, [](int, int) { Raise(1, "stopped"); }); }), "stopped");
  EXPECT_EQ(Answer(*user, "insert n values (0, N'')"), "");
  EXPECT_THAT(CheckEmbedded(database_).faults, IsEmpty());
  RestoreEmbedded("Embedded=" + folder_.file("new.db"), backup_, {});
  EXPECT_EQ(Rows(folder_.file("new.db")), "n|t;2000|1");
}

TEST_F(MaintenanceTest, FindsDamageAndDoesNotSpreadIt) {
  BackUpEmbedded(database_, backup_, {});
  const auto size = static_cast<std::streamoff>(std::filesystem::file_size(file_));
  WriteNoise(file_, size - 20000, 10000);
  const EmbeddedCheck check = CheckEmbedded(database_);
  EXPECT_THAT(check.faults, Not(IsEmpty()));
  EXPECT_THAT(Refusal([&] { RestoreEmbedded("Embedded=" + backup_, file_, {}); }), HasSubstr("is damaged"));
  EXPECT_EQ(Rows(backup_), "n|t;2000|1");
  RestoreEmbedded(database_, backup_, {});
  EXPECT_THAT(CheckEmbedded(database_).faults, IsEmpty());
  RunSqlite(file_, "DELETE FROM \"$columns\" WHERE name = 'FText'; DROP TABLE n");
  EXPECT_THAT(CheckEmbedded(database_).faults,
              testing::ElementsAre("table n is defined and not there", "column n.FID is defined and not there"));
}

}  // namespace
}  // namespace tessarlorn
