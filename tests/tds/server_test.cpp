// The served database under clients that come and go, with garbage among them.
#include <gmock/gmock.h>
#include <list>
#include <poll.h>
#include <random>
#include <sys/ioctl.h>

#include "support/client_socket.h"
#include "support/process_state.h"
#include "support/served_database.h"
#include "tds/certificate.h"
#include "tds/tds_support.h"

namespace tessarlorn::tds {
namespace {

using testing::HasSubstr;

constexpr int kOrders = 60;
/// In the answer to a login.
const std::string kLoggedIn = Wide("main");

class Client : public ClientSocket {
 public:
  using ClientSocket::ClientSocket;

  /// What the server answers to the login.
  [[nodiscard]] std::string LogIn() { return Ask(LoginMessage()); }
  /// The server's next message, once these bytes are sent.
  [[nodiscard]] std::string Ask(std::string_view bytes) {
    Send(bytes);
    return Receive();
  }
  /// What comes up to the end of a message, or of the connection.
  [[nodiscard]] std::string Receive() {
    for (std::size_t end = 0;;) {
      while (arrived_.size() >= end + kPacketHeaderSize) {
        const bool last = arrived_[end + 1] == 1;
        const std::size_t next = end + ((static_cast<std::size_t>(static_cast<std::uint8_t>(arrived_[end + 2])) << 8) |
                                        static_cast<std::uint8_t>(arrived_[end + 3]));
        if (arrived_.size() < next) break;
        end = next;
        if (last) return Take(end);
      }
      if (!ReadMore()) return std::exchange(arrived_, {});
    }
  }
  /// Bytes that came and are not read.
  [[nodiscard]] int waiting() const {
    int bytes = 0;
    ioctl(socket_.get(), FIONREAD, &bytes);
    return bytes;
  }
  /// Whether the server ends the connection within ten seconds.
  [[nodiscard]] bool IsEnded() {
    pollfd wanted{socket_.get(), POLLIN | POLLRDHUP, 0};
    while (poll(&wanted, 1, 10'000) > 0) {
      if (!ReadMore()) return true;
    }
    return false;
  }
};

/// Waits until those of the clients that left have ended.
void WaitForThreads(const ServedDatabase& server, std::size_t threads) {
  EXPECT_TRUE(WaitUntil([&] { return Entries(server.process(), "task") == threads; }));
}

std::size_t Count(std::string_view text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

/// Two hundred clients at once: most log in and read, one in four sends garbage before or behind its login.
void ComeAndGo(int port, std::mt19937& random) {
  std::vector<std::unique_ptr<Client>> clients;
  for (int i = 0; i < 200; ++i) {
    clients.push_back(std::make_unique<Client>(port));
    clients.back()->Send(i % 8 == 3 ? Garbage(random) : LoginMessage());
  }
  for (std::size_t i = 0; i < clients.size(); ++i) {
    if (i % 8 == 3) continue;
    EXPECT_THAT(clients[i]->Receive(), HasSubstr(kLoggedIn));
    clients[i]->Send(i % 8 == 7 ? Garbage(random) : BatchMessage("select top 5 * from IC_Web2ERPOrders order by FID"));
  }
  for (std::size_t i = 0; i < clients.size(); ++i) {
    if (i % 4 == 3) continue;
    EXPECT_THAT(clients[i]->Receive(), HasSubstr(Wide("FOrderID")));
  }
}

/// TESSARLORN_SOAK_SECONDS=60 makes it last a minute.
TEST(ServerThreads, KeepsItsMemoryWhileClientsComeAndGo) {
  // Threads that share their memory leave less of it unused.
  setenv("MALLOC_ARENA_MAX", "1", 1);
  const ServedDatabase server({"--max-connections", "1000"}, kOrders);
  const std::size_t threads = Entries(server.process(), "task");
  std::size_t descriptors = 0;
  std::mt19937 random(7);
  ExpectSteadyMemory(server.process(), [&](int round) {
    ComeAndGo(server.port(), random);
    WaitForThreads(server, threads);
    if (round == 0) descriptors = Entries(server.process(), "fd");
  });
  // The database keeps a descriptor of its file for each client that was there at once, and uses it again: a round may
  // have more of them at once than those before.
  EXPECT_LE(Entries(server.process(), "fd"), descriptors + 200);
}

TEST(ServerThreads, ADatabaseInMemoryLivesAsLongAsTheServer) {
  const ServedDatabase server({}, 0, "Embedded=:memory:kept");
  const std::size_t threads = Entries(server.process(), "task");
  for (const char* batch : {"create table T (n int) insert T values (7)", "select n from T"}) {
    std::string answer;
    {
      Client client(server.port());
      client.Send(LoginMessage() + BatchMessage(batch));
      EXPECT_THAT(client.Receive(), HasSubstr(kLoggedIn));
      answer = client.Receive();
    }
    WaitForThreads(server, threads);
    EXPECT_THAT(answer, testing::Not(HasSubstr("\xAA"))) << batch;
  }
}

TEST(ServerThreads, WhatALeavingClientHadBegunIsRolledBackAtOnce) {
  const ServedDatabase server;
  Client staying(server.port());
  EXPECT_THAT(staying.LogIn(), HasSubstr(kLoggedIn));
  (void)staying.Ask(BatchMessage("create table T (n int)"));
  {
    Client leaving(server.port());
    (void)leaving.LogIn();
    (void)leaving.Ask(BatchMessage("begin tran insert T values (1)"));
  }
  // It waits for the lock as long as a writer does; nobody else comes meanwhile.
  const std::string answer = staying.Ask(BatchMessage("insert T values (2) select n + 70 n from T"));
  EXPECT_THAT(answer, testing::Not(HasSubstr("\xAA")));
  EXPECT_THAT(answer, HasSubstr(std::string("\xD1\x04\x48\x00\x00\x00", 6)));
}

TEST(ServerThreads, ABatchEndsWithItsClientWhateverElseTheClientSent) {
  const ServedDatabase server;
  std::size_t gone = 0;
  // Half a packet's head; more of the next request than is read meanwhile.
  for (const std::string& more : {std::string("\x01"), BatchMessage(std::string(50'000, ' '))}) {
    {
      Client client(server.port());
      EXPECT_THAT(client.LogIn(), HasSubstr(kLoggedIn));
      client.Send(BatchMessage("declare @n int = 0; while 1 = 1 set @n = @n + 1") + more);
      ++gone;
      EXPECT_TRUE(WaitUntil([&] { return Count(server.Log(), "while 1 = 1") == gone; }));
    }
    EXPECT_TRUE(WaitUntil([&] { return Count(server.Log(), "the client went away") == gone; })) << more.size();
  }
}

TEST(ServerThreads, KeepsToItsLimits) {
  const ServedDatabase server(
      {"--max-connections", "2", "--login-timeout", "1", "--idle-timeout", "1", "--send-timeout", "1"}, kOrders);
  Client silent(server.port());
  EXPECT_TRUE(silent.IsEnded());
  EXPECT_TRUE(server.WaitForLog("did not come within 1 seconds"));
  {
    Client first(server.port());
    EXPECT_THAT(first.LogIn(), HasSubstr(kLoggedIn));
    Client second(server.port());
    EXPECT_THAT(second.LogIn(), HasSubstr(kLoggedIn));
    EXPECT_THAT(Client(server.port()).LogIn(), HasSubstr(Wide("maximum number of '2' user connections")));
    EXPECT_TRUE(server.WaitForLog("there are 2 clients already"));
    EXPECT_TRUE(first.IsEnded()) << "idle";
  }
  // Many megabytes for a client that reads nothing. On a busy machine the two that went are counted for a while.
  std::unique_ptr<Client> slow;
  EXPECT_TRUE(WaitUntil([&] {
    slow = std::make_unique<Client>(server.port());
    return slow->LogIn().find(kLoggedIn) != std::string::npos;
  }));
  slow->Send(
      BatchMessage("declare @t nvarchar(max) = replicate(cast('x' as nvarchar(max)), 8000) "
                   "select @t a from IC_Web2ERPOrders x cross join IC_Web2ERPOrders y"));
  EXPECT_TRUE(server.WaitForLog("the client does not read what it asked for"));
}

TEST(ServerThreads, SilentConnectionsLeavePlaceForLogins) {
  const ServedDatabase server({"--max-connections", "1"});
  std::list<Client> silent;
  for (int i = 0; i < 100; ++i) silent.emplace_back(server.port());
  EXPECT_THAT(Client(server.port()).LogIn(), HasSubstr(kLoggedIn));
  EXPECT_TRUE(silent.front().IsEnded());
  EXPECT_TRUE(server.WaitForLog("the oldest one is dropped"));
  EXPECT_EQ(Count(server.Log(), "the oldest one is dropped"), 1U);
}

TEST(ServerThreads, ALoginHasOneTimeHoweverItComes) {
  std::vector<std::string> options = CertificateOptions();
  options.insert(options.end(), {"--login-timeout", "1"});
  const ServedDatabase server(options);
  Client empty(server.port());
  empty.Send(PreLoginMessage(1) + ClientMessage(PacketType::kPreLogin, ""));
  EXPECT_TRUE(empty.IsEnded());
  EXPECT_TRUE(server.WaitForLog("TLS was agreed, and did not begin"));
  // A handshake of many thousand bytes, one at a time.
  Client slow(server.port());
  slow.Send(PreLoginMessage(1) + ClientMessage(PacketType::kPreLogin, std::string("\x16\x03\x01\x40\x00", 5)));
  EXPECT_TRUE(WaitUntil([&] {
    slow.Send(ClientMessage(PacketType::kPreLogin, "\x01"));
    return Count(server.Log(), "did not come within 1 seconds") > 0;
  }));
  EXPECT_TRUE(slow.IsEnded());
}

TEST(ServerThreads, AClientThatDoesNotReadKeepsNoServer) {
  ServedDatabase server({"--send-timeout", "3600"});
  Client slow(server.port());
  slow.Send(LoginMessage() + BatchMessage("declare @t nvarchar(max) = replicate(cast('x' as nvarchar(max)), 30000000)\n"
                                          "print 'made'\nselect @t a"));
  EXPECT_THAT(slow.Receive(), HasSubstr(kLoggedIn));
  // It writes until nothing more fits; the second signal ends that.
  EXPECT_TRUE(WaitUntil([&] { return slow.waiting() > 0; }));
  const std::size_t descriptors = Entries(server.process(), "fd");
  kill(server.process(), SIGINT);
  EXPECT_TRUE(WaitUntil([&] { return Entries(server.process(), "fd") < descriptors; })) << "it listens no more";
  EXPECT_EQ(server.Stop(SIGINT), 0);
}

TEST(ServerThreads, AnAttentionEndsTheBatchAndKeepsTheSession) {
  const ServedDatabase server({}, kOrders);
  Client client(server.port());
  EXPECT_THAT(client.LogIn(), HasSubstr(kLoggedIn));
  TdsWriter acknowledged;
  acknowledged.Put(Done{Token::kDone, kDoneAttention, 0, 0});
  for (const char* batch : {"declare @n int = 0; while 1 = 1 set @n = @n + 1", "waitfor delay '01:00:00'",
                            "select count(*) n from IC_Web2ERPOrders a cross join IC_Web2ERPOrders b cross join "
                            "IC_Web2ERPOrders c cross join IC_Web2ERPOrders d cross join IC_Web2ERPOrders e"}) {
    // While it runs, and together with it.
    for (const bool waits : {true, false}) {
      client.Send(BatchMessage(batch));
      if (waits) {
        EXPECT_TRUE(WaitUntil([&] { return Count(server.Log(), ": " + std::string(batch)) > 0; }));
      }
      (void)client.Ask(ClientMessage(PacketType::kAttention, ""));
      EXPECT_EQ(Payload(client.Receive()), acknowledged.bytes()) << batch;
    }
  }
  EXPECT_THAT(client.Ask(BatchMessage("select 1 a")), HasSubstr(std::string("\xD1\x04\x01\x00\x00\x00", 6)));
}

}  // namespace
}  // namespace tessarlorn::tds
