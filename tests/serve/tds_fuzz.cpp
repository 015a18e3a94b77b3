// Any bytes of a client, before and behind its login: they are answered or end the connection, and nothing else.
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <unistd.h>

#include "drivers/embedded/embedded_driver.h"
#include "serve/client_session.h"
#include "serve/tds_support.h"

namespace {

using namespace tessarlorn;

serve::ClientSession* running = nullptr;

/// Batches that do not end are no fault.
void EndRunning(int) {
  if (running == nullptr) return;
  running->Stop();
  running->CancelIfWanted();
  alarm(1);
}

const serve::Service& TheService() {
  static const serve::Service service = [] {
    std::signal(SIGALRM, EndRunning);
    RegisterEmbeddedDriver();
    const std::string file =
        (std::filesystem::temp_directory_path() / ("tds_fuzz_" + std::to_string(getpid()))).string();
    serve::AddUser(file, "ann", "s3cret", 1);
    serve::Service made;
    made.users = serve::Users::Read(file);
    std::filesystem::remove(file);
    made.database_string = "Embedded=:memory:fuzz";
    made.log = [](const std::string& line) {
      if (line.starts_with("fuzz: failed: ")) std::abort();
    };
    made.limits.message = std::size_t{1} << 20;
    return made;
  }();
  return service;
}

}  // namespace

// The first byte tells how the rest is meant: as it is, behind a login, or as the payload of one kind of message.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0 || size > 16'384) return 0;
  const std::string rest(reinterpret_cast<const char*>(data) + 1, size - 1);
  using serve::PacketType;
  std::string input;
  switch (data[0] % 6) {
    case 0:
      input = rest;
      break;
    case 1:
      input = serve::LoginMessage() + rest;
      break;
    case 2:
      input = serve::ClientMessage(PacketType::kPreLogin, rest) + serve::LoginMessage();
      break;
    case 3:
      input = serve::ClientMessage(PacketType::kLogin7, rest);
      break;
    case 4:
      input = serve::LoginMessage() + serve::ClientMessage(PacketType::kTransactionManager, rest);
      break;
    default: {
      serve::TdsWriter headers;
      serve::WriteHeaders(headers);
      input = serve::LoginMessage() + serve::ClientMessage(PacketType::kRpc, headers.bytes() + rest);
    }
  }
  serve::MemoryStream stream(input);
  serve::ClientSession session(stream, TheService(), "fuzz", nullptr);
  running = &session;
  alarm(1);
  session.Run();
  alarm(0);
  running = nullptr;
  return 0;
}
