// A client's whole session, over a stream in memory.
#include "hosts/tds/client_session.h"

#include <gmock/gmock.h>

#include "hosts/tds/messages/type_codes.h"
#include "platform/text/text.h"
#include "support/sample_database.h"
#include "support/temporary_folder.h"
#include "tds/tds_support.h"

namespace tessarlorn::tds {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ClientSessionTest : public testing::Test {
 protected:
  ClientSessionTest() {
    const TemporaryFolder folder;
    AddUser(folder.file("users"), "ann", "s3cret", 1);
    service_.users = Users::Read(folder.file("users"));
    service_.database_string = database_.database();
    service_.log = [this](const std::string& line) { log_.push_back(line); };
  }

  /// All that the server answers to these bytes, without the packets' heads.
  std::string Answer(const std::string& input) {
    MemoryStream stream(input);
    ClientSession session(stream, service_, "peer", nullptr);
    session.Run();
    return Payload(stream.output());
  }
  /// What is answered behind the login.
  std::string AnswerAfterLogin(const std::string& input) {
    const std::string login = Answer(LoginMessage());
    const std::string all = Answer(LoginMessage() + input);
    EXPECT_EQ(all.substr(0, login.size()), login);
    return all.substr(login.size());
  }

  /// A call that prepares a statement and runs it.
  static std::string Prepare(const std::string& text) {
    return CallHead(13) + std::string("\x00\x01\x26\x04\x00", 5) + TextParameter("") + TextParameter(text);
  }
  static std::string DoneBytes(std::uint16_t status, std::uint16_t command = 0, std::uint64_t rows = 0) {
    TdsWriter writer;
    writer.Put(Done{Token::kDone, status, command, rows});
    return writer.bytes();
  }

  SampleDatabase database_;
  Service service_{TestHost()};
  std::vector<std::string> log_;
};

TEST_F(ClientSessionTest, LetsUsersIn) {
  LoginWords words;
  words.user = "ANN";
  words.database = "Main";
  const std::string answer = Answer(PreLoginMessage(2) + LoginMessage(words));
  EXPECT_THAT(answer, AllOf(HasSubstr(Wide("Changed database context to 'main'.")), HasSubstr(Wide("us_english")),
                            Not(HasSubstr(Wide("Deutsch")))));
  EXPECT_TRUE(answer.ends_with(DoneBytes(0)));
  EXPECT_THAT(log_, IsEmpty());
}

TEST_F(ClientSessionTest, RefusesOthersAndSaysWhyInTheLog) {
  using Case = std::tuple<LoginWords, std::string, std::string>;
  for (const auto& [words, said, log] : {
           Case{{.password = "S3cret"}, "Login failed for user 'ann'.", "wrong password"},
           Case{{.user = "bob"}, "Login failed for user 'bob'.", "refused user 'bob'"},
           Case{{.password = ""}, "Login failed for user 'ann'.", "wrong password"},
           Case{{.database = "master"}, "Cannot open database \"master\"", "unknown database 'master'"},
       }) {
    log_.clear();
    const std::string answer = Answer(LoginMessage(words) + BatchMessage("select 1 a"));
    EXPECT_THAT(answer, HasSubstr(Wide(said)));
    EXPECT_TRUE(answer.ends_with(DoneBytes(kDoneError)));
    ASSERT_EQ(log_.size(), 1U) << log;
    EXPECT_THAT(log_[0], AllOf(HasSubstr(log), Not(HasSubstr("cret"))));
  }
}

TEST_F(ClientSessionTest, RefusesOldClientsAsTheyReadIt) {
  LoginWords words;
  words.version = TdsVersion(0x70000000);
  const std::string refusal = Answer(LoginMessage(words));
  EXPECT_THAT(refusal, HasSubstr(Wide("the client speaks an older version.")));
  const std::string done("\xFD\x02\x00\x00\x00\x00\x00\x00\x00", 9);
  EXPECT_TRUE(refusal.ends_with(std::string("\0\x01\0", 3) + done)) << "line and count are short";
  const std::string narrow = Answer(ClientMessage(PacketType::kOldLogin, std::string(512, 'x')));
  EXPECT_THAT(narrow, AllOf(HasSubstr("the client speaks an older version."), testing::EndsWith(done)));
  EXPECT_EQ(log_.size(), 2U);
}

TEST_F(ClientSessionTest, EndsMalformedStreamsOnly) {
  std::string shifted = LoginMessage();
  shifted[kPacketHeaderSize + 41] = '\x7f';
  using Case = std::pair<std::string, std::string>;
  for (const auto& [input, log] : {
           Case{"GET / HTTP/1.1\r\n\r\n", "unknown type"},
           Case{BatchMessage("select 1 a"), "before the login"},
           Case{PreLoginMessage(1), "wants encryption"},
           Case{PreLoginMessage(2) + PreLoginMessage(2), "before the login"},
           Case{shifted, "outside of it"},
           Case{LoginMessage() + ClientMessage(PacketType::kSqlBatch, "xx"), "too early"},
           Case{LoginMessage() + ClientMessage(PacketType::kSqlBatch, std::string("\xff\xff\xff\xff", 4)), "too early"},
           Case{LoginMessage() + LoginMessage(), "does not belong here"},
           Case{LoginMessage().substr(0, 50), "inside a message"},
       }) {
    log_.clear();
    Answer(input);
    ASSERT_EQ(log_.size(), 1U) << log;
    EXPECT_THAT(log_[0], HasSubstr(log));
  }
}

TEST_F(ClientSessionTest, AnswersBatchesInOrder) {
  const std::string answer = AnswerAfterLogin(
      BatchMessage("create table #t (n int primary key)\ninsert #t values (1), (2)\nprint 'half'\nset nocount on\n"
                   "insert #t values (3)\nset nocount off\ninsert #t values (3)\nselect n from #t where n = 2"));
  const std::vector<std::string> parts = {
      DoneBytes(kDoneCount | kDoneMore, 0xC5, 2),
      Wide("half"),
      Wide("Violation of PRIMARY KEY"),
      Wide("The statement has been terminated."),
      DoneBytes(kDoneError | kDoneMore),
      std::string("\xD1\x04\x02\x00\x00\x00", 6),
      DoneBytes(kDoneCount, 0xC1, 1),
  };
  std::size_t at = 0;
  for (const std::string& part : parts) {
    const std::size_t found = answer.find(part, at);
    ASSERT_NE(found, std::string::npos) << "part behind " << at;
    at = found + part.size();
  }
  EXPECT_EQ(at, answer.size());
}

TEST_F(ClientSessionTest, SaysWhereMessagesAndErrorsComeFrom) {
  TdsWriter expected;
  expected.Put(ServerMessage{102, 1, 15, 3, "Incorrect syntax near 'selec'."});
  EXPECT_EQ(AnswerAfterLogin(BatchMessage("select 1 a\n\nselec 2")), expected.bytes() + DoneBytes(kDoneError));
  AnswerAfterLogin(BatchMessage("create procedure Talks as\n  raiserror(N'low', 5, 7)\n  raiserror('high', 16, 2)"));
  const std::string answer = AnswerAfterLogin(BatchMessage("\nexec Talks"));
  TdsWriter low;
  low.Put(ServerMessage{50000, 7, 5, 2, "low", "Talks"});
  TdsWriter high;
  high.Put(ServerMessage{50000, 2, 16, 3, "high", "Talks"});
  EXPECT_THAT(answer, AllOf(HasSubstr(low.bytes()), HasSubstr(high.bytes())));
}

TEST_F(ClientSessionTest, SendsALongResultWhileItIsRead) {
  // A thousand rows of 400 bytes, of which the server holds a part only.
  const std::string query =
      "create table #digits (d int)\ninsert #digits values (0),(1),(2),(3),(4),(5),(6),(7),(8),(9)\n"
      "select cast(replicate('x', 400) as varchar(400)) LongText, 1 / (a.d * 100 + b.d * 10 + c.d - HOLE) q\n"
      "from #digits a cross join #digits b cross join #digits c";
  const auto rows_in = [](const std::string& answer) {
    std::size_t rows = 0;
    const std::string row = "\xD1\x90\x01" + std::string(400, 'x');
    for (std::size_t at = answer.find(row); at != std::string::npos; at = answer.find(row, at + row.size())) ++rows;
    return rows;
  };
  const std::string whole = AnswerAfterLogin(BatchMessage(ReplaceAll(query, "HOLE", "1000")));
  EXPECT_EQ(rows_in(whole), 1000U);
  EXPECT_TRUE(whole.ends_with(DoneBytes(kDoneCount, 0xC1, 1000)));
  EXPECT_EQ(whole.find(Wide("LongText")), whole.rfind(Wide("LongText"))) << "columns come once";

  const std::string broken = AnswerAfterLogin(BatchMessage(ReplaceAll(query, "HOLE", "950") + "\nselect 7 as Behind"));
  EXPECT_GT(rows_in(broken), 500U) << "the rows of the parts before the error are the client's";
  const std::size_t error = broken.find(Wide("Divide by zero error encountered."));
  ASSERT_NE(error, std::string::npos);
  EXPECT_LT(broken.rfind("\xD1\x90\x01x"), error);
  EXPECT_LT(error, broken.find(Wide("Behind")));
}

TEST_F(ClientSessionTest, SendsALongAnswerWithoutRowsWhileItIsMade) {
  MemoryStream stream(LoginMessage() +
                      BatchMessage("declare @n int = 0\nwhile @n < 2000 begin select 1 / 0 set @n = @n + 1 end"));
  ClientSession session(stream, service_, "peer", nullptr);
  session.Run();
  EXPECT_GT(stream.output().size(), 200'000U);
  EXPECT_LT(stream.largest_write(), 70'000U);
}

TEST_F(ClientSessionTest, ShowsTransactionsToItsClient) {
  TdsWriter begin;
  WriteHeaders(begin);
  begin.U16(5);
  begin.U8(2);
  begin.U8(0);
  const std::string answer =
      AnswerAfterLogin(ClientMessage(PacketType::kTransactionManager, begin.bytes()) + BatchMessage("rollback"));
  TdsWriter expected;
  const std::string number("\x01\0\0\0\0\0\0\0", 8);
  expected.PutEnvironmentBytes(Environment::kTransactionBegun, number, "");
  expected.Put(Done{Token::kDone, kDoneInTransaction, 0, 0});
  expected.PutEnvironmentBytes(Environment::kTransactionRolledBack, "", number);
  expected.Put(Done{});
  EXPECT_EQ(answer, expected.bytes());
}

TEST_F(ClientSessionTest, IsAsNewWhenItsClientWantsItReset) {
  const std::string acknowledged("\xE3\x03\x00\x12\x00\x00", 6);
  const std::string answer =
      AnswerAfterLogin(BatchMessage("begin tran create table #t (n int)") + CallsMessage(Prepare("select 7 n")) +
                       BatchMessage("select @@trancount t", kResetConnection) + BatchMessage("select n from #t") +
                       CallsMessage(CallHead(12) + std::string("\x00\x00\x26\x04\x04\x01\x00\x00\x00", 9)));
  EXPECT_THAT(answer, AllOf(HasSubstr(acknowledged), HasSubstr(std::string("\xD1\x04\x00\x00\x00\x00", 6)),
                            HasSubstr(Wide("Invalid object name '#t'.")),
                            HasSubstr(Wide("Could not find prepared statement with handle 1."))));
  const std::string kept =
      AnswerAfterLogin(BatchMessage("begin tran") + BatchMessage("select @@trancount t", kResetKeepingTransaction) +
                       BatchMessage("select @@trancount t"));
  EXPECT_THAT(kept, AllOf(HasSubstr(Wide("A connection is not reset while its transaction goes on.")),
                          Not(HasSubstr(acknowledged)), HasSubstr(std::string("\xD1\x04\x01\x00\x00\x00", 6))));
}

TEST_F(ClientSessionTest, AcknowledgesAnAttentionThatCameTooLate) {
  EXPECT_EQ(AnswerAfterLogin(ClientMessage(PacketType::kAttention, "")), DoneBytes(kDoneAttention));
}

TEST_F(ClientSessionTest, AnswersWhatBecameOfAMessageAndGoesOn) {
  service_.limits.message = 1000;
  const std::string unfinished =
      BatchMessage("create table T (n int)" + std::string(5000, ' ')).substr(0, kDefaultPacket);
  EXPECT_EQ(AnswerAfterLogin(BatchMessage("create table T (n int)", kIgnoreMessage)), DoneBytes(kDoneError));
  EXPECT_EQ(AnswerAfterLogin(unfinished + ClientMessage(PacketType::kAttention, "")), DoneBytes(kDoneAttention));
  const std::string answer = AnswerAfterLogin(BatchMessage("create table T (n int)" + std::string(2000, ' ')) +
                                              BatchMessage("select object_id('T') a"));
  EXPECT_THAT(answer, HasSubstr(Wide("The request has more than 1000 bytes.")));
  EXPECT_THAT(answer, HasSubstr("\xD2\x01")) << "T was not made";
  EXPECT_THAT(log_, IsEmpty());
  Answer(ClientMessage(PacketType::kLogin7, std::string(200'000, ' ')));
  EXPECT_THAT(log_, ElementsAre(HasSubstr("before the login is too long")));
}

TEST_F(ClientSessionTest, AnswersCallsOneByOne) {
  const auto run = [](const std::string& text) { return CallHead(10) + TextParameter(text); };
  AnswerAfterLogin(CallsMessage(run("create table T (n int)") + '\xff' + run("insert T values (1)") + '\xfe' +
                                run("insert T values (2)") + '\xff' + run("insert T values (3)") + '\xff' +
                                CallHead(99) + '\xff' + run("insert T values (4)")));
  EXPECT_EQ(database_.connection().Execute("select sum(n) from T")->Get(0).ToInt32(), 4)
      << "neither the one that is not wanted, nor what follows one that cannot be read";
  // A value that its type does not have ends its request only.
  const std::string no_number("\x00\x00\x6D\x08\x08\x00\x00\x00\x00\x00\x00\xF8\x7F", 13);
  const std::string answer =
      AnswerAfterLogin(CallsMessage(CallHead(10) + TextParameter("select @f") + TextParameter("@f float") + no_number) +
                       BatchMessage("select 7 n"));
  EXPECT_THAT(answer, AllOf(HasSubstr(Wide("not a valid instance of data type float")),
                            HasSubstr(std::string("\xD1\x04\x07\x00\x00\x00", 6))));
}

TEST_F(ClientSessionTest, HandsOverResultsThatAreNamedAsItsOwn) {
  TdsWriter call;
  call.U16(1);
  call.Text("P");
  call.U16(0);
  const std::string answer = AnswerAfterLogin(
      BatchMessage("create procedure P as select 7 as [$tds_output], 8 x return 5") + CallsMessage(call.bytes()));
  EXPECT_THAT(answer, HasSubstr(std::string("\xD1\x04\x07\x00\x00\x00\x04\x08\x00\x00\x00", 11)));
  EXPECT_THAT(answer, HasSubstr(std::string("\x79\x05\x00\x00\x00", 5)));
}

TEST_F(ClientSessionTest, GivesNoHandleToAStatementThatFails) {
  const std::string answer = AnswerAfterLogin(CallsMessage(Prepare("select * from Nowhere")) +
                                              CallsMessage(Prepare("selec 1")) + CallsMessage(Prepare("select 1 a")));
  const std::string given("\x26\x04\x04\x03\x00\x00\x00", 7);
  EXPECT_THAT(answer, HasSubstr(given));
  EXPECT_EQ(answer.find('\xac'), answer.find(given) - 11) << "one handle";
}

}  // namespace
}  // namespace tessarlorn::tds
