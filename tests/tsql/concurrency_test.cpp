// Several threads and processes on one database file: locks are waited for, commits outlive a kill.
#include <atomic>
#include <fstream>
#include <gmock/gmock.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "support/temporary_folder.h"
#include "support/wait_until.h"
#include "tsql/database_support.h"

namespace tessarlorn {
namespace {

/// Does something on a thread of its own. Is made once that thread waits for something, or is done.
class Waiting {
 public:
  template <typename Action>
  explicit Waiting(const Action& action)
      : thread_([this, action] {
          id_ = gettid();
          action();
          done_ = true;
        }) {
    EXPECT_TRUE(WaitUntil([this] { return done_ || (id_ != 0 && IsAsleep()); }));
  }
  void Join() { thread_.join(); }
  [[nodiscard]] bool done() const { return done_; }

 private:
  [[nodiscard]] bool IsAsleep() const {
    std::ifstream file("/proc/self/task/" + std::to_string(id_) + "/stat");
    std::string word;
    for (int i = 0; i < 3; ++i) file >> word;
    return word == "S";
  }

  std::atomic<pid_t> id_{0};
  std::atomic<bool> done_{false};
  std::thread thread_;
};

std::int32_t Number(Connection& connection, std::string_view query) {
  return connection.Execute(query)->Get(0).ToInt32();
}

TEST(EmbeddedThreads, WritersWaitForEachOtherAndLoseNothing) {
  const TemporaryFolder folder;
  const std::string file = folder.file("counter.db");
  OpenEmbedded(file)->Execute("create table n (FID int not null primary key, FValue int) insert n values (1, 0)");
  constexpr int kThreads = 4;
  constexpr int kRounds = 100;
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&file] {
      const auto connection = OpenConnection("Embedded=" + file + ";Synchronous=Normal");
      for (int i = 0; i < kRounds; ++i) {
        // Read and write in one statement, and in a transaction of two batches.
        connection->Execute(
            "declare @v int if exists (select 1 from n where FID = 1) update n set @v = FValue, FValue = FValue + 1 where FID = 1");
        connection->BeginTransaction();
        connection->Execute("update n set FValue = FValue + 1");
        connection->Execute("update n set FValue = FValue + 1");
        connection->CommitTransaction();
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Number(*OpenEmbedded(file), "select FValue from n"), kThreads * kRounds * 3);
}

TEST(EmbeddedThreads, ReadersSeeTheLastCommitAndDoNotWait) {
  const TemporaryFolder folder;
  const std::string file = folder.file("read.db");
  const auto writer = OpenEmbedded(file);
  writer->Execute("create table n (FValue int) insert n values (1)");
  writer->BeginTransaction();
  writer->Execute("update n set FValue = 2");
  std::thread([&file] {
    EXPECT_EQ(Number(*OpenConnection("Embedded=" + file + ";Timeout=0"), "select FValue from n"), 1);
  }).join();
  EXPECT_EQ(Number(*writer, "select FValue from n"), 2);
  writer->RollbackTransaction();
  EXPECT_EQ(Number(*writer, "select FValue from n"), 1);
}

TEST(EmbeddedThreads, AReaderWaitsForAProgramThatClosesTheFile) {
  const TemporaryFolder folder;
  const std::string file = folder.file("closing.db");
  OpenEmbedded(file)->Execute("create table n (FValue int) insert n values (1)");
  sqlite3* closing = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &closing), SQLITE_OK);
  sqlite3_exec(closing, "PRAGMA locking_mode = EXCLUSIVE; SELECT * FROM n", nullptr, nullptr, nullptr);
  std::string answer;
  Waiting reader([&] { answer = Answer(*OpenConnection("Embedded=" + file + ";Timeout=0"), "select FValue from n"); });
  sqlite3_close(closing);
  reader.Join();
  EXPECT_EQ(answer, "FValue;1");
}

TEST(EmbeddedThreads, DefinitionsOfOthersAreSeenByWhoeverWaited) {
  const TemporaryFolder folder;
  const std::string file = folder.file("defined.db");
  const auto one = OpenEmbedded(file);
  const auto other = OpenEmbedded(file);
  one->Execute("create table m (v decimal(9,2))");
  constexpr const char* kBatch = "insert into m values (1.5) select v from m";
  EXPECT_EQ(Answer(*other, kBatch), "v;1.50");
  for (const auto& [type, answer] : {std::pair("decimal(9,4)", "v;1.5000"), std::pair("varchar(10)", "v;1.5"),
                                     std::pair("datetime", "v;1900-01-02 12:00:00"), std::pair("int", "v;1")}) {
    one->BeginTransaction();
    one->Execute(std::string("drop table m create table m (v ") + type + ")");
    std::string got;
    Waiting waiting([&] { got = Answer(*other, kBatch); });
    one->CommitTransaction();
    waiting.Join();
    EXPECT_EQ(got, answer);
  }
  // A batch that reads twice reads what stands then.
  std::vector<std::string> answers;
  other->ExecuteAll("select v from m select v from m", [&](const RecordsetPtr& rows) {
    answers.push_back(TextOf(rows));
    if (answers.size() == 1) one->Execute("drop table m create table m (v decimal(9,4)) insert into m values (1.5)");
  });
  EXPECT_THAT(answers, testing::ElementsAre("v;1", "v;1.5000"));
}

TEST(EmbeddedThreads, AWaitForALockEndsWhenItsClientSaysSo) {
  const TemporaryFolder folder;
  const std::string file = folder.file("awaited.db");
  const auto holder = OpenEmbedded(file);
  holder->Execute("create table n (FValue int)");
  holder->BeginTransaction();
  holder->Execute("insert n values (1)");
  const auto other = OpenConnection("Embedded=" + file + ";Timeout=600");
  EXPECT_THAT(Answer(*other, "set lock_timeout 50 insert n values (2)"),
              testing::HasSubstr("error 1222: Lock request time out period exceeded"));
  ASSERT_TRUE(other->Reset());
  Waiting waiting([&] { EXPECT_THAT(Answer(*other, "insert n values (2)"), testing::HasSubstr("error 3617")); });
  EXPECT_TRUE(WaitUntil([&] {
    other->Cancel();
    return waiting.done();
  }));
  waiting.Join();
}

TEST(EmbeddedProcesses, WhatWasCommittedOutlivesAKill) {
  const TemporaryFolder folder;
  const std::string file = folder.file("killed.db");
  OpenEmbedded(file)->Execute("create table n (FID int not null primary key, FPart int)");
  // The child commits a pair of rows a batch and says so; it is killed somewhere in a later batch.
  int pipe_ends[2];
  ASSERT_EQ(pipe(pipe_ends), 0);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const auto connection = OpenEmbedded(file);
    for (int i = 1;; i += 2) {
      connection->Execute("insert n values (" + std::to_string(i) + ", 1) insert n values (" + std::to_string(i + 1) +
                          ", 2)");
      if (write(pipe_ends[1], &i, sizeof i) != sizeof i) _exit(1);
    }
  }
  close(pipe_ends[1]);
  int committed = 0;
  for (int i = 0; i < 50; ++i)
    ASSERT_EQ(read(pipe_ends[0], &committed, sizeof committed), static_cast<ssize_t>(sizeof committed));
  kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  while (read(pipe_ends[0], &committed, sizeof committed) > 0) continue;
  close(pipe_ends[0]);
  const auto connection = OpenEmbedded(file);
  EXPECT_GE(Number(*connection, "select max(FID) from n"), committed + 1);
  EXPECT_EQ(Number(*connection, "select sum(case FPart when 1 then 1 else -1 end) from n"), 0) << "half a batch";
  EXPECT_EQ(Answer(*connection, "insert n values (0, 0)"), "");
}

}  // namespace
}  // namespace tessarlorn
