// Any bytes of a client at the door's socket: they are answered or end the connection, and nothing else.
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <thread>

#include "hosts/http/door.h"
#include "hosts/http/transport/server.h"
#include "support/http_client.h"
#include "support/sample_database.h"

namespace {

using namespace tessarlorn;

/// Serves until the process ends.
int StartDoor() {
  static SampleDatabase database(2);
  static Address address{"127.0.0.1", 0};
  static http::Server* server = nullptr;
  static http::Door door(TestHost(), {.database = database.database(), .readers = 1});
  server = new http::Server(Listen(address),
                            {.limits = {.header = 4096, .body = 65536},
                             .refusal = [](int status, auto why) { return door.Refused(status, why); }},
                            [](std::unique_ptr<http::Exchange> exchange) { door.Handle(std::move(exchange)); });
  std::thread([] { server->Run(); }).detach();
  return address.port;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const int port = StartDoor();
  const auto begun = std::chrono::steady_clock::now();
  HttpClient client(port);
  client.FreePortAtEnd();
  client.Send({reinterpret_cast<const char*>(data), size});
  client.HangUp();
  // That never comes, so that everything is read.
  (void)client.ReadUntil(std::string(64, '\xFF'));
  // Half a request is answered at once when its client has hung up.
  if (std::chrono::steady_clock::now() - begun > std::chrono::seconds(15)) std::abort();
  return 0;
}
