#include "tessarlorn/session.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <thread>

#include "platform/driver.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

/// What happened to the connections of the driver under test, in order: "open 1", "begin 1", "reset 1" …
std::vector<std::string> events;

class LoggedConnection : public Connection {
 public:
  explicit LoggedConnection(int number) : number_(number) {}
  ~LoggedConnection() override { Note("close"); }

  void BeginTransaction() override { Note("begin"); }
  void CommitTransaction() override {
    Note("commit");
    if (fails_to_commit) Raise(error_number::kDatabaseFailure, "commit failed");
  }
  void RollbackTransaction() override { Note("rollback"); }
  void Join(void* transaction) override { Note("join " + *static_cast<std::string*>(transaction)); }
  bool Reset() noexcept override {
    Note("reset");
    return resets;
  }
  [[nodiscard]] bool usable() const noexcept override { return !lost; }
  void Cancel() noexcept override {}

  bool resets = true;
  bool lost = false;
  bool fails_to_commit = false;

 protected:
  void Run(SqlCommand&, bool, BatchSink&) override {}

 private:
  void Note(const std::string& what) const { events.push_back(what + " " + std::to_string(number_)); }
  int number_;
};

class LoggedDriver : public Driver {
 public:
  [[nodiscard]] std::vector<std::string> Keys() const override { return {"Logged"}; }
  [[nodiscard]] std::unique_ptr<Connection> Open(std::string_view) override {
    events.push_back("open " + std::to_string(++opened_));
    return std::make_unique<LoggedConnection>(opened_);
  }

 private:
  int opened_ = 0;
};

class SessionTest : public testing::Test {
 protected:
  SessionTest() {
    events.clear();
    host_.AddDriver(std::make_shared<LoggedDriver>());
  }
  std::shared_ptr<DataSession> Open(std::string_view dsn = "Logged=a") {
    auto session = SessionFactory::ForThisThread(host_).NewSession();
    session->OpenSession(dsn);
    return session;
  }
  static LoggedConnection& Logged(DataSession& session) {
    return dynamic_cast<LoggedConnection&>(session.GetConnection());
  }
  using Events = std::vector<std::string>;

  Host host_;
};

TEST_F(SessionTest, HandsIdleConnectionsOutAgainForTheSameDatabase) {
  Open("Connect=Logged=a;User=1");
  const auto again = Open("Connect=Logged=a;User=2;Language=CHT;Client=10.0.0.5");
  const auto other = Open("Logged=b");
  EXPECT_EQ(events, (Events{"open 1", "reset 1", "open 2"}));
  EXPECT_EQ(again->GetContext().GetCallerInfo(), "User=2");
  EXPECT_EQ(again->GetContext().GetLanguage(), "CHT");
  EXPECT_EQ(again->GetDsn(), "Connect=Logged=a;User=2;Language=CHT;Client=10.0.0.5");
  EXPECT_NE(&again->GetConnection(), &other->GetConnection());
}

TEST_F(SessionTest, JoinsTheTransactionOfTheHostWithConnectionsThatAreHandedToNobody) {
  std::shared_ptr<void> transaction;
  host_.SetTransaction([&] { return transaction; });
  Open();
  transaction = std::make_shared<std::string>("T");
  static_cast<void>(Open()->GetAlternateConnection());
  EXPECT_EQ(events, (Events{"open 1", "reset 1", "open 2", "join T 2", "open 3", "close 3", "close 2"}));
  // A session goes along into a transaction, into the next one and out again.
  events.clear();
  transaction = nullptr;
  const auto session = Open();
  for (const char* const name : {"T", "U", ""}) {
    transaction = *name == 0 ? nullptr : std::make_shared<std::string>(name);
    static_cast<void>(session->GetConnection());
  }
  EXPECT_EQ(events, (Events{"open 4", "join T 4", "reset 1", "open 5", "join U 5", "close 4", "close 5"}));
}

TEST_F(SessionTest, KeepsSixteenIdleConnectionsAndNoSpoiltOne) {
  {
    std::vector<std::shared_ptr<DataSession>> sessions;
    for (int i = 0; i < 17; ++i) sessions.push_back(Open());
  }
  EXPECT_EQ(std::count_if(events.begin(), events.end(), [](auto& event) { return event.starts_with("close"); }), 1);
  host_.CloseIdle();
  events.clear();
  Logged(*Open()).resets = false;
  EXPECT_EQ(events, (Events{"open 18", "reset 18", "close 18"}));
  events.clear();
  Logged(*Open()).lost = true;
  EXPECT_EQ(events, (Events{"open 19", "close 19"}));
}

TEST_F(SessionTest, HandsOutNoConnectionThatWasLostWhileItWasIdle) {
  LoggedConnection& idle = Logged(*Open());
  idle.lost = true;
  Open();
  EXPECT_EQ(events, (Events{"open 1", "reset 1", "close 1", "open 2", "reset 2"}));
}

TEST_F(SessionTest, IsNotOpenBeforeOpenSessionNorAfterReset) {
  const auto session = SessionFactory::ForThisThread(host_).NewSession();
  EXPECT_EQ(session->GetDsn(), "");
  EXPECT_EQ(session->GetContext().GetLanguage(), "CHS");
  EXPECT_THROW((void)session->GetConnection(), Error);
  session->OpenSession("Logged=a");
  session->Reset();
  EXPECT_THROW((void)session->GetConnection(), Error);
  EXPECT_THROW((void)session->GetAlternateConnection(), Error);
  EXPECT_THROW(session->OpenSession("Unheard=a"), Error);
}

TEST_F(SessionTest, TransactionSpansTheSessionsOfADatabase) {
  const auto before = Open();
  events.clear();
  {
    ContainerTransaction transaction(host_);
    EXPECT_THROW(ContainerTransaction second(host_), Error);
    const auto first = Open();
    const auto second = Open();
    const auto other = Open("Logged=b");
    EXPECT_EQ(&first->GetConnection(), &second->GetConnection());
    EXPECT_EQ(&before->GetConnection(), &first->GetConnection()) << "an earlier session joins when it is used";
    EXPECT_NE(&first->GetAlternateConnection(), &first->GetConnection());
    transaction.Commit();
    EXPECT_THROW(transaction.Commit(), Error);
    EXPECT_EQ(events, (Events{"open 2", "begin 2", "open 3", "begin 3", "reset 1", "commit 2", "commit 3"}));
  }
  EXPECT_NE(&Open()->GetConnection(), &before->GetConnection()) << "a connection still held is not idle";
}

TEST_F(SessionTest, UncommittedTransactionRollsBack) {
  {
    const ContainerTransaction transaction(host_);
    Open();
  }
  EXPECT_EQ(events, (Events{"open 1", "begin 1", "rollback 1", "reset 1"}));
  events.clear();
  {
    ContainerTransaction transaction(host_);
    const auto first = Open("Logged=a");
    const auto second = Open("Logged=b");
    Logged(*first).fails_to_commit = true;
    EXPECT_THROW(transaction.Commit(), Error);
  }
  EXPECT_EQ(events, (Events{"begin 1", "open 2", "begin 2", "commit 1", "rollback 2", "reset 2", "reset 1"}));
}

TEST_F(SessionTest, ThreadsHandTheirConnectionsOnAndShareNoTransaction) {
  {
    const ContainerTransaction transaction(host_);
    std::thread([this] { Open(); }).join();
    EXPECT_EQ(events, (Events{"open 1", "reset 1"})) << "a thread that ends closes nothing";
    Open();
  }
  EXPECT_EQ(events, (Events{"open 1", "reset 1", "begin 1", "rollback 1", "reset 1"}));
}

TEST_F(SessionTest, HostsOfOneProcessDoNotMeet) {
  Open();
  events.clear();
  Host other;
  EXPECT_THROW((void)other.OpenConnection("Logged=a"), Error) << "drivers";
  other.AddDriver(std::make_shared<LoggedDriver>());
  host_.AddObject("A.B", [] { return nullptr; });
  EXPECT_THROW((void)other.CreateInstance("A.B"), Error) << "neighbours";
  host_.SetClock([] { return DateTime(); });
  EXPECT_NE(other.LocalNow(), host_.LocalNow());
  std::string heard;
  host_.ObserveStatements([&](std::string_view text) { heard += text; });
  {
    const ContainerTransaction transaction(host_);
    const auto session = SessionFactory::ForThisThread(other).NewSession();
    session->OpenSession("Logged=a");
    session->GetConnection().Execute("select 1");
    Open()->GetConnection().Execute("select 2");
  }
  EXPECT_EQ(heard, "select 2");
  EXPECT_EQ(events, (Events{"open 1", "begin 1", "reset 1", "rollback 1", "reset 1"})) << "idle connections";
}

}  // namespace
}  // namespace tessarlorn
