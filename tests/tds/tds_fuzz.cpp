// Any bytes of a client, before and behind its login, in its TLS handshake and while a batch runs: they are answered or
// end the connection, and nothing else.
#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <sys/socket.h>
#include <unistd.h>
#include <vector>

#include "hosts/tds/client_session.h"
#include "hosts/tds/transport/socket.h"
#include "support/temporary_folder.h"
#include "support/test_host.h"
#include "tds/certificate.h"
#include "tds/tds_support.h"

namespace {

using namespace tessarlorn;

tds::ClientSession* running = nullptr;
int seconds_running = 0;

/// Batches that do not end are no fault; an input is one that goes on when they are cancelled.
void EndRunning(int) {
  if (running == nullptr) return;
  if (++seconds_running == 10) std::abort();
  running->Stop();
  running->CancelIfWanted();
  alarm(1);
}

const tds::Service& TheService() {
  static const tds::Service service = [] {
    std::signal(SIGALRM, EndRunning);
    const TemporaryFolder folder;
    tds::AddUser(folder.file("users"), "ann", "s3cret", 1);
    const std::vector<std::string> words = tds::CertificateOptions();
    tds::Service made(TestHost());
    made.users = tds::Users::Read(folder.file("users"));
    made.tls = std::make_shared<tds::TlsContext>(words[1], words[3]);
    made.database_string = "Embedded=:memory:fuzz";
    made.log = [](const std::string& line) {
      if (line.starts_with("fuzz: failed: ") || line.starts_with("fuzz: inner error: ")) std::abort();
    };
    made.gate->Stop();  // failed logins wait for nothing
    made.limits.message = std::size_t{1} << 20;
    made.limits.idle = std::chrono::milliseconds(20);
    made.limits.send = std::chrono::milliseconds(200);
    return made;
  }();
  return service;
}

void Run(tds::ByteStream& stream, tds::Watcher* watcher) {
  tds::ClientSession session(stream, TheService(), "fuzz", watcher);
  seconds_running = 0;
  running = &session;
  alarm(1);
  session.Run();
  alarm(0);
  running = nullptr;
}

/// The alarm is for the thread that runs sessions.
std::unique_ptr<tds::Watcher> MakeWatcher() {
  sigset_t alarms;
  sigemptyset(&alarms);
  sigaddset(&alarms, SIGALRM);
  pthread_sigmask(SIG_BLOCK, &alarms, nullptr);
  auto watcher = std::make_unique<tds::Watcher>();
  pthread_sigmask(SIG_UNBLOCK, &alarms, nullptr);
  return watcher;
}

/// The bytes come over a socket while a batch runs, long enough that the watcher looks at them.
void RunWatched(std::string_view rest, bool hangs_up) {
  static const std::unique_ptr<tds::Watcher> watcher = MakeWatcher();
  std::array<int, 2> pair{};
  if (socketpair(AF_UNIX, SOCK_STREAM, 0, pair.data()) != 0) std::abort();
  const Descriptor client(pair[1]);
  tds::Socket stream(Descriptor(pair[0]), TheService().limits.send);
  const std::string input = tds::LoginMessage() + tds::BatchMessage("waitfor delay '00:00:00.050'");
  for (const std::string_view part : {std::string_view(input), rest}) {
    (void)send(client.get(), part.data(), part.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
  }
  if (hangs_up) shutdown(client.get(), SHUT_WR);
  Run(stream, watcher.get());
}

}  // namespace

// The first byte tells how the rest is meant: as it is, behind a login, as the payload of one kind of message, or
// as what comes while a batch runs.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0 || size > 16'384) return 0;
  const std::string rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  constexpr int kWays = 10;
  constexpr int kWatched = 6;
  const int way = data[0] % kWays;
  if (way == kWatched) {
    RunWatched(rest, data[0] >= 128);
    return 0;
  }
  using tds::BatchMessage;
  using tds::ClientMessage;
  using tds::PacketType;
  const std::string login = tds::LoginMessage();
  tds::LoginWords old;
  old.version = tds::kTds71;
  tds::TdsWriter headers;
  tds::WriteHeaders(headers);
  const std::string inputs[kWays] = {
      rest,
      login + rest,
      ClientMessage(PacketType::kPreLogin, rest) + login,
      ClientMessage(PacketType::kLogin7, rest),
      login + ClientMessage(PacketType::kTransactionManager, rest),
      tds::PreLoginMessage(1) + ClientMessage(PacketType::kPreLogin, rest),
      "",
      tds::LoginMessage(old) + ClientMessage(PacketType::kRpc, rest),
      login + BatchMessage("create table B (a int, b nvarchar(10) default 'x')") +
          BatchMessage("insert bulk B (a int, b nvarchar(10))") + ClientMessage(PacketType::kBulkLoad, rest) +
          BatchMessage("drop table B"),
      login + ClientMessage(PacketType::kRpc, headers.bytes() + rest),
  };
  tds::MemoryStream stream(inputs[way]);
  Run(stream, nullptr);
  return 0;
}
