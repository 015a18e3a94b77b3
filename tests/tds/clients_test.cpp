// Clients that others wrote, at a database that the built command serves: FreeTDS's tsql and freebcp, tedious,
// and SQLAlchemy over ODBC and over FreeTDS's own library.
#include <fstream>
#include <gmock/gmock.h>
#include <pty.h>
#include <termios.h>

#include "platform/text/text.h"
#include "support/served_database.h"
#include "tds/certificate.h"

namespace tessarlorn::tds {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kClients = TESSARLORN_SOURCE_ROOT "/tests/tds/clients/";

class ClientsTest : public testing::Test {
 protected:
  explicit ClientsTest(const std::vector<std::string>& options = {}) : server_(options, 60) {
    std::ofstream conf(server_.file("freetds.conf"));
    for (const auto& [name, more] : {std::pair{"served", "tds version = 7.4"},
                                     {"old", "tds version = 7.1"},
                                     {"encrypted", "tds version = 7.4\nencryption = require"}}) {
      conf << "[" << name << "]\nhost = 127.0.0.1\nport = " << server_.port() << "\nclient charset = UTF-8\n"
           << more << "\n";
    }
  }
  /// What a client that is given the text prints within half a minute.
  [[nodiscard]] std::string Pipe(const std::string& text, const std::string& client) const {
    std::ofstream(server_.file("in")) << text;
    return RunLine("FREETDSCONF='" + server_.file("freetds.conf") + "' timeout 30 " + client + " -U ann -P s3cret <'" +
                   server_.file("in") + "' 2>&1")
        .text;
  }
  [[nodiscard]] std::string Tsql(const std::string& text, const std::string& server = "served") const {
    return Pipe(text, "tsql -o q -S " + server);
  }
  /// A batch that never ends, in a process that is answered; what is before it has been done then.
  [[nodiscard]] std::string StartEndless(const std::string& before) const {
    std::ofstream(server_.file("endless")) << before << "\ngo\ndeclare @n int = 0; while 1 = 1 set @n = @n + 1\ngo\n";
    const Outcome started =
        RunLine("FREETDSCONF='" + server_.file("freetds.conf") + "' tsql -S served -U ann -P s3cret -o q <'" +
                server_.file("endless") + "' >'" + server_.file("endless.out") + "' 2>&1 & echo $!");
    EXPECT_TRUE(server_.WaitForLog("while 1 = 1"));
    return started.text;
  }

  ServedDatabase server_;
};

TEST_F(ClientsTest, Tsql) {
  EXPECT_THAT(Tsql("select count(*) from IC_Web2ERPOrders\ngo\n"), HasSubstr("60\n"));
  EXPECT_THAT(Tsql("exec sp_executesql N'select @a + 1 n, @t t', N'@a int, @t nvarchar(20)', 41, N'中😀'\ngo\n"),
              HasSubstr("42\t中😀\n"));
  EXPECT_THAT(Tsql("create table T (n int primary key)\ngo\nbegin tran\ninsert T values (1)\nrollback\n"
                   "begin tran insert T values (2) commit\ngo\nselect n, @@trancount from T\ngo\n"),
              AllOf(HasSubstr("2\t0\n"), Not(HasSubstr("1\t"))));
  EXPECT_THAT(Tsql("print N'讯息'\ninsert T values (2)\n\nselect * from Nowhere\ngo\nselect 5\ngo\n"),
              AllOf(HasSubstr("讯息"), HasSubstr("Msg 2627 (severity 14, state 1)"),
                    HasSubstr("Msg 208 (severity 16, state 1) from TessarLorn Line 4:"), HasSubstr("5\n")));
}

TEST_F(ClientsTest, TsqlOfAnOldVersion) {
  EXPECT_THAT(
      Tsql("select N'中' a, cast(N'货' as varchar(9)) b, cast('2024-02-29' as date) c, cast(N'长' as nvarchar(max)) d\n"
           "print N'讯息'\ngo\nexec sp_executesql N'select @a + 1', N'@a int', 41\ngo\nselect * from Nowhere\ngo\n",
           "old"),
      AllOf(HasSubstr("中\t货\t2024-02-29\t长\n"), HasSubstr("讯息"), HasSubstr("42\n"),
            HasSubstr("Invalid object name 'Nowhere'.")));
}

TEST_F(ClientsTest, Freebcp) {
  (void)Tsql(
      "create table B (id int identity(5,1) primary key, n int, t nvarchar(max), d datetime)\n"
      "insert B values (1, N'中😀', '2026-11-03 09:08:07.123'), (null, null, null)\n"
      "create table C (id int identity(100,1) primary key, n int, t nvarchar(max), d datetime)\ngo\n");
  for (const std::string words : {"B out ROWS", "C in ROWS -E", "C in ROWS"}) {
    const std::string copied =
        Pipe("", "freebcp main.dbo." + ReplaceAll(words, "ROWS", server_.file("rows")) + " -c -S served");
    EXPECT_THAT(copied, HasSubstr("2 rows copied.")) << words;
  }
  EXPECT_THAT(Tsql("select id, n, t, convert(varchar(30), d, 121) from C order by id\ngo\n"),
              AllOf(HasSubstr("5\t1\t中😀\t2026-11-03 09:08:07.123\n6\tNULL"), HasSubstr("100\t1\t中😀"),
                    HasSubstr("101\tNULL\tNULL\tNULL")));
}

/// What client.js prints.
constexpr const char* kTediousLines = R"(orders: [[60]]
types: [["i","IntN",4,null,null],["d","DecimalN",9,10,3],["t","NVarChar",8000,null,null],["n","Date",null,null,null],["w","DateTime2",null,null,3]]
values: [[7,1.25,"中😀",null,"2024-02-29T12:34:56.500Z"]]
parameters: [[-42,"9007199254740993",0.1,12345.678,"it's 中😀",5000,"0001ff","6F9619FF-8B86-D011-B42D-00C04FC964FF","2024-02-29T12:34:56.789Z",null]]
procedure: [[[21]],{"twice":42}]
prepared: [2,42]
changed: 2
rolled back: [[0]]
committed: [[3]]
loaded: [2,[[5,"中😀",1.5],[6,null,7]]]
not loaded: [515,[[2]]]
not loaded in a transaction: [[3]]
error: [2627,14,1,"Violation of PRIMARY KEY constraint 'PK_Kept'. Cannot insert duplicate key in object 'dbo.Kept'. The duplicate key value is (3)."]
error: [208,16,1,"Invalid object name 'Nowhere'."]
error: [102,15,2,"Incorrect syntax near '2'."]
cancelled: "ECANCEL"
after: [[0]]
refused: ["ELOGIN","Login failed for user 'ann'."]
)";

/// Runs client.js; the packages that it needs are installed in the build folder when they are not there.
std::string RunTedious(int port, const std::string& more) {
  const std::string folder = TESSARLORN_TEST_FOLDER "/serve_clients";
  const std::string source = kClients;
  return RunLine("mkdir -p '" + folder + "' && cd '" + folder + "' && exec 9>lock && flock 9 && cp '" + source +
                 "client.js' . && if ! cmp -s '" + source + "package-lock.json' installed; then cp '" + source +
                 "'package*.json . && npm ci --no-audit --no-fund >npm.log 2>&1 || { cat npm.log; exit 1; }; "
                 "cp package-lock.json installed; fi; flock -u 9; timeout 60 node --no-deprecation client.js " +
                 std::to_string(port) + " ann s3cret " + more + " 2>&1")
      .text;
}

TEST_F(ClientsTest, Tedious) { EXPECT_EQ(RunTedious(server_.port(), ""), kTediousLines); }

TEST_F(ClientsTest, SqlAlchemy) {
  for (const char* driver : {"pyodbc", "pymssql"}) {
    const Outcome outcome = RunLine("timeout 60 /usr/bin/python3 '" + std::string(kClients) + "client.py' " + driver +
                                    " " + std::to_string(server_.port()) + " ann s3cret 2>&1");
    EXPECT_EQ(outcome.text, R"(columns: id INTEGER parent INTEGER label NVARCHAR
keys: {'constrained_columns': ['id'], 'name': 'PK_children'} [('FK_kid', 'parents')] [['label']]
inserted: [1, 2] 0.000 None None
error: True
kept: [1, 2]
returned: [(3, 'c')] [('c',)]
)") << driver;
  }
}

TEST_F(ClientsTest, CtrlCEndsTheServerAndTellsItsClients) {
  (void)StartEndless("create table T (n int)\ngo\nbegin tran insert T values (1)");
  EXPECT_EQ(server_.Stop(SIGINT), 0);
  EXPECT_TRUE(WaitUntil(
      [&] { return ReadFile(server_.file("endless.out")).find("SHUTDOWN is in progress.") != std::string::npos; }));
  EXPECT_EQ(RunLine("'" TESSARLORN_COMMAND "' sql --csv 'select count(*) n from T' --dsn Embedded='" +
                    server_.file("served.db") + "'")
                .text,
            "n\r\n0\r\n");
}

class EncryptedClientsTest : public ClientsTest {
 protected:
  EncryptedClientsTest() : ClientsTest(CertificateOptions()) {}
};

TEST_F(EncryptedClientsTest, EncryptTheLoginOrAll) {
  EXPECT_THAT(Tsql("select 40 + 2\ngo\n", "served"), HasSubstr("42\n"));
  EXPECT_THAT(Tsql("select 40 + 2\ngo\n", "encrypted"), HasSubstr("42\n"));
  EXPECT_EQ(RunTedious(server_.port(), "encrypt"), kTediousLines);
}

TEST(ServeCommand, RefusesToServeInAnUnsafeWay) {
  using Case = std::pair<std::string, std::string>;
  const TemporaryFolder folder;
  const std::string users = folder.file("users");
  AddUser(users, "ann", "s3cret", 10);
  for (const auto& [words, fault] : {
           Case{"", "--http ADDRESS:PORT is required"},
           Case{"--tds 127.0.0.1:0", "no users: give --users FILE; 'tessarlorn serve --add-user NAME --users FILE'"},
           Case{"--tds 127.0.0.1:0 --users " + users + " --dsn 'Driver=FreeTDS;Server=erp;UID=sa;PWD=s3cret'",
                "only an embedded database is served"},
           Case{"--tds 127.0.0.1:0 --users nowhere", "nowhere cannot be read: No such file or directory"},
           Case{"--tds 0.0.0.0:0 --users " + users, "give --allow-remote if that is wanted"},
           Case{"--tds '[::]:0' --allow-remote --users " + users, "wants --certificate and --key, or --allow-plain"},
           Case{"--tds 127.0.0.1:0 --certificate a --users " + users, "--certificate and --key belong together"},
           Case{"--tds 127.0.0.1:0 --certificate a --key b --users " + users, "The certificate a cannot be used"},
           Case{"--tds example.org:1 --users " + users, "is no address and port"},
           Case{"--tds 127.0.0.1:70000 --users " + users, "is no address and port"},
           Case{"--add-user ann </dev/null", "--add-user wants --users FILE"},
           Case{"--add-user ann --users " + users + " </dev/null", "The password is empty"},
       }) {
    const Outcome outcome =
        RunLine("TESSARLORN_DSN=Embedded=:memory: timeout 10 '" TESSARLORN_COMMAND "' serve " + words + " 2>&1");
    EXPECT_EQ(outcome.status, 2) << words;
    EXPECT_THAT(outcome.text, HasSubstr(fault));
  }
  EXPECT_EQ(RunLine("echo pass | '" TESSARLORN_COMMAND "' serve --add-user bob --users " + users + " 2>&1").text,
            "user bob is in " + users + "\n");
  EXPECT_TRUE(Users::Read(users).Check("bob", "pass"));
}

TEST(ServeCommand, CtrlCAtThePasswordShowsAgainWhatIsTyped) {
  const TemporaryFolder folder;
  const std::string users = folder.file("users");
  int terminal = -1;
  const pid_t process = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (process == 0) {
    execl(TESSARLORN_COMMAND, "tessarlorn", "serve", "--add-user", "ann", "--users", users.c_str(), nullptr);
    _exit(127);
  }
  std::string shown;
  std::array<char, 256> buffer{};
  while (shown.find("Password of ann: ") == std::string::npos) {
    const ssize_t size = read(terminal, buffer.data(), buffer.size());
    ASSERT_GT(size, 0) << shown;
    shown.append(buffer.data(), static_cast<std::size_t>(size));
  }
  termios settings{};
  ASSERT_EQ(tcgetattr(terminal, &settings), 0);
  EXPECT_EQ(settings.c_lflag & static_cast<tcflag_t>(ECHO), 0U);
  ASSERT_EQ(write(terminal, "\x03", 1), 1);
  int status = 0;
  waitpid(process, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 130);
  ASSERT_EQ(tcgetattr(terminal, &settings), 0);
  EXPECT_NE(settings.c_lflag & static_cast<tcflag_t>(ECHO), 0U);
  close(terminal);
}

}  // namespace
}  // namespace tessarlorn::tds
