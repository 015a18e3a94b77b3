// Opening embedded databases, files that are none, full disks, and who else sees a definition.
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/error_of.h"
#include "support/full_disk.h"
#include "support/temporary_folder.h"
#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

using testing::HasSubstr;

std::string OpenError(const std::string& text) {
  return ErrorOf([&] { OpenConnection(text)->Execute("select 1 as a"); }).description();
}

TEST(EmbeddedDriver, NamesWhatIsWrongWithTheConnectionString) {
  const TemporaryFolder folder;
  EXPECT_THAT(OpenError("Embedded="), HasSubstr("names no file"));
  EXPECT_THAT(OpenError("Embedded=x.db;Timeout=soon"), HasSubstr("Timeout in the connection string is no number"));
  EXPECT_THAT(OpenError("Embedded=x.db;Timeout=99999"), HasSubstr("0 to 3600"));
  EXPECT_THAT(OpenError("Embedded=x.db;Synchronous=No"), HasSubstr("Full or Normal"));
  EXPECT_THAT(OpenError("Embedded=x.db;Colour=red"), HasSubstr("'Colour'"));
  EXPECT_THAT(OpenError("Embedded=" + folder.file("gone/x.db")), HasSubstr("gone' does not exist"));
  EXPECT_THAT(OpenError("Embedded=" + folder.file("")), HasSubstr("is a folder"));
}

TEST(EmbeddedDriver, SaysThatAFileIsNoDatabaseOrDamaged) {
  const TemporaryFolder folder;
  const std::string text = folder.file("text.db");
  std::ofstream(text) << std::string(5000, 'x');
  EXPECT_THAT(OpenError("Embedded=" + text), HasSubstr("is damaged or is no database"));

  const std::string file = folder.file("damaged.db");
  {
    const auto connection = OpenEmbedded(file);
    connection->Execute("create table n (FID int not null primary key, FText nvarchar(200))");
    connection->Execute(
        "declare @i int = 0 while @i < 500 begin set @i += 1 insert n values (@i, replicate('x', 150)) end");
  }
  {
    std::fstream pages(file, std::ios::in | std::ios::out | std::ios::binary);
    pages.seekp(8192);
    const std::string noise(40000, '\x5a');
    pages.write(noise.data(), static_cast<std::streamsize>(noise.size()));
  }
  EXPECT_THAT(OpenError("Embedded=" + file + ";Timeout=1"), testing::AnyOf("none", HasSubstr("damaged")));
  const auto connection = OpenEmbedded(file);
  EXPECT_THAT(Answer(*connection, "select count(FText) as n from n where FText like '%y%'"), HasSubstr("error 824"));
}

TEST(EmbeddedDriver, AFullDiskIsAnErrorThatLosesNothing) {
  const TemporaryFolder folder;
  const auto connection = OpenEmbedded(folder.file("full.db"));
  connection->Execute("create table n (FText nvarchar(4000)) insert n values ('kept')");
  OpenEmbedded(folder.file("closed.db"))->Execute("create table n (FText nvarchar(20)) insert n values ('read')");
  std::string answer;
  {
    const FullDisk full(300000);
    answer = Answer(*connection,
                    "declare @i int = 0 while @i < 2000 begin set @i += 1 insert n values (replicate('x', 4000)) end");
  }
  {
    const FullDisk full(0);
    const auto reader = OpenEmbedded(folder.file("closed.db"));
    EXPECT_EQ(Answer(*reader, "select FText from n"), "FText;read");
    EXPECT_THAT(Answer(*reader, "insert n values ('written')"), HasSubstr("error 1105"));
    EXPECT_FALSE(reader->usable());
  }
  EXPECT_THAT(answer, HasSubstr("error 1105"));
  EXPECT_EQ(Answer(*OpenEmbedded(folder.file("closed.db")), "insert n values ('written')"), "");
  EXPECT_EQ(Answer(*connection, "select FText from n where FText not like 'xx%'"), "FText;kept");
  EXPECT_EQ(Answer(*connection, "insert n values ('goes on') select count(*) as n from n where FText = 'goes on'"),
            "n;1");
}

TEST(EmbeddedDriver, AChangeOfManyPagesCanBeTakenBack) {
  const TemporaryFolder folder;
  const auto connection = OpenEmbedded(folder.file("large.db"));
  connection->Execute(
      "create table n (FKey int identity primary key, FText nvarchar(200)) insert n values (replicate('x', 200)) "
      "declare @i int = 0 while @i < 15 begin set @i += 1 insert n select FText from n end");
  EXPECT_EQ(
      Answer(*connection,
             "begin transaction save transaction s update n set FText = replicate('y', 200) rollback transaction s "
             "update n set FText = 'z' where FKey % 2 = 0 commit select count(*) as n from n where FText like 'x%'"),
      "n;16384");
}

TEST(EmbeddedDriver, SaysInOneWayThatItMayNotWrite) {
  const TemporaryFolder folder;
  const std::string file = folder.file("shown.db");
  OpenEmbedded(file)->Execute("create table n (FValue int)");
  // The administrator may write everything.
  const uid_t user = geteuid();
  constexpr uid_t kNobody = 65534;
  const std::string wal = file + "-wal";
  const std::string place = folder.file("");
  const struct { mode_t folder, file, wal; } cases[] = {{0777, 0444, 0}, {0555, 0666, 0}, {0777, 0666, 0444}};
  for (const auto& c : cases) {
    if (c.wal != 0) std::ofstream(wal).flush();
    chmod(wal.c_str(), c.wal);
    chmod(file.c_str(), c.file);
    chmod(place.c_str(), c.folder);
    ASSERT_EQ(seteuid(user == 0 ? kNobody : user), 0);
    EXPECT_THAT(OpenError("Embedded=" + file), HasSubstr("(-wal, -shm) may not be written")) << c.folder << c.file;
    ASSERT_EQ(seteuid(user), 0);
  }
  chmod(place.c_str(), 0777);
}

TEST(EmbeddedDriver, ANewDatabaseTellsThatItHasNothing) {
  const TemporaryFolder folder;
  for (const char* view : {"sys.objects", "sys.columns", "sys.indexes", "information_schema.tables"}) {
    const auto connection = OpenEmbedded(folder.file("new.db"));
    EXPECT_EQ(Answer(*connection, "select count(*) as n from " + std::string(view)), "n;0") << view;
  }
}

TEST(EmbeddedDriver, ResetTakesBackIdentityInsert) {
  const auto connection = OpenEmbedded();
  connection->Execute("create table n (FID int identity(1,1) primary key, FValue int) set identity_insert n on");
  ASSERT_TRUE(connection->Reset());
  EXPECT_THAT(Answer(*connection, "insert n (FID, FValue) values (5, 1)"), HasSubstr("error 544"));
}

TEST(EmbeddedDriver, ListsTablesAndColumnsAsClientsAsk) {
  const auto connection = OpenEmbedded();
  connection->Execute(
      "create table Kept (id bigint identity primary key, t nvarchar(50) not null default 'x', d decimal(14,4), "
      "w datetime, m varchar(max))");
  connection->Execute("create view Seen as select id from Kept");
  EXPECT_EQ(TextOf(connection->Execute("exec sp_tables @table_type = '''VIEW'''")),
            "TABLE_QUALIFIER|TABLE_OWNER|TABLE_NAME|TABLE_TYPE|REMARKS;main|dbo|Seen|VIEW|NULL");
  const RecordsetPtr columns = connection->Execute("exec sp_columns 'Kept', @ODBCVer = 3");
  std::string text;
  for (; !columns->eof(); columns->MoveNext()) {
    for (const char* name : {"COLUMN_NAME", "DATA_TYPE", "TYPE_NAME", "PRECISION", "LENGTH", "SCALE", "NULLABLE"}) {
      text += CellText(columns->Get(name)) + "|";
    }
  }
  EXPECT_EQ(text,
            "id|-5|bigint|19|8|0|0|t|-9|nvarchar|50|100|NULL|0|d|3|decimal|14|16|4|1|w|93|datetime|23|16|3|1|"
            "m|12|varchar|0|0|NULL|1|");
}

}  // namespace
}  // namespace tessarlorn
