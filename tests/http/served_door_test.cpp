// The served door while it is killed and started again, and while clients of all kinds come and go.
#include <atomic>
#include <map>
#include <random>
#include <thread>

#include "http/door_support.h"
#include "support/process_state.h"
#include "support/served_database.h"

namespace tessarlorn::http {
namespace {

constexpr const char* kRemarkPath = "POST /api/v1/clsSaveData/OrderRemark";
constexpr int kServedOrders = 60;

/// The command that serves HTTP, with a caller.
struct ServedDoor {
  explicit ServedDoor(std::vector<std::string> more = {}) {
    std::vector<std::string> options = {
        "--http", "127.0.0.1:0", "--max-calls", "1000", "--max-waiting", "1000", "--max-http-connections", "5000"};
    options.insert(options.end(), more.begin(), more.end());
    server = std::make_unique<ServedDatabase>(options, kServedOrders);
    connection = OpenConnection("Embedded=" + server->file("served.db"));
    ann = AddCaller(*connection, "ann", 16394, "administrator");
  }

  std::unique_ptr<ServedDatabase> server;
  std::unique_ptr<Connection> connection;
  std::string ann;
};

/// TESSARLORN_WRITES=2000 and TESSARLORN_KILLS=30 make it longer.
TEST(ServedDoorThreads, EachWriteIsMadeOnceThoughTheServerIsKilled) {
  const int writes = OfEnvironment("TESSARLORN_WRITES", 200);
  const int kills = OfEnvironment("TESSARLORN_KILLS", 5);
  const ServedDoor door;
  std::atomic<int> next = 0;
  std::atomic<int> answered = 0;
  std::atomic<int> asked = 0;
  std::atomic<int> replayed = 0;
  std::vector<std::thread> clients;
  for (int i = 0; i < 8; ++i) {
    clients.emplace_back([&] {
      for (int n = 0; (n = next++) < writes; ++answered) {
        const std::string body = R"({"dctPara":{"FID":")" + std::to_string(1 + n % kServedOrders) +
                                 R"(","FSellerMessage":"w)" + std::to_string(n) + "\"}}";
        const std::string headers = door.ann + "Idempotency-Key: " + std::to_string(n) + "\r\n";
        for (HttpAnswer answer; answer.status != 200; ++asked) {
          answer = HttpClient(door.server->http_port()).Ask(kRemarkPath, headers, body);
          EXPECT_THAT(answer.status, testing::AnyOf(0, 200, 409, 503)) << answer.body;
          if (!answer.Header("Idempotency-Replayed").empty()) ++replayed;
          if (answer.status == 0) std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
      }
    });
  }
  for (int kill = 1; kill <= kills; ++kill) {
    while (answered < writes * kill / (kills + 1)) std::this_thread::yield();
    door.server->Restart();
  }
  for (std::thread& client : clients) client.join();
  const std::string counts =
      Cells(*door.connection,
            "SELECT COUNT(*), COUNT(DISTINCT FNewValue), (SELECT COUNT(*) FROM DoorCall WHERE FKey "
            "IS NOT NULL) FROM IC_TradeFieldLog WHERE FNewValue LIKE 'w%'");
  const std::string wanted = std::to_string(writes) + "|";
  EXPECT_EQ(counts, wanted + wanted + wanted);
  std::printf("%d writes, %d kills: %d requests, %d answers repeated, rows %s\n", writes, kills, asked.load(),
              replayed.load(), counts.c_str());
}

/// Five hundred clients at once: most call and read, some send garbage or half a request, some leave without reading,
/// some read no events. Answers the statuses of those that read, and how many had each.
std::map<int, int> ComeAndGo(const ServedDoor& door, std::mt19937& random) {
  const std::string list = HttpClient::Request("GET /api/v1/clsGetData/GetListData", door.ann);
  const std::string remark =
      HttpClient::Request(kRemarkPath, door.ann, R"({"dctPara":{"FID":"7","FSellerMessage":"soak"}})");
  const std::string kinds[] = {list,
                               remark,
                               HttpClient::Request("GET /api/v1/me", door.ann),
                               Garbage(random),
                               list.substr(0, 1 + random() % (list.size() - 1)),
                               list,
                               list + list + list,
                               HttpClient::Request("GET /api/v1/events", door.ann)};
  std::vector<std::unique_ptr<HttpClient>> clients;
  for (int i = 0; i < 500; ++i) {
    clients.push_back(std::make_unique<HttpClient>(door.server->http_port()));
    clients.back()->FreePortAtEnd();
    clients.back()->Send(kinds[i % 8]);
  }
  std::map<int, int> statuses;
  for (std::size_t i = 0; i < clients.size(); ++i) {
    if (i % 8 < 3) ++statuses[clients[i]->Read().status];
  }
  return statuses;
}

/// TESSARLORN_SOAK_SECONDS=60 makes it last a minute.
TEST(ServedDoorThreads, KeepsItsMemoryWhileClientsComeAndGo) {
  setenv("MALLOC_ARENA_MAX", "1", 1);
  const ServedDoor door;
  const pid_t process = door.server->process();
  const std::size_t threads = Entries(process, "task");
  std::mt19937 random(7);
  ExpectSteadyMemory(process, [&](int) { EXPECT_EQ(ComeAndGo(door, random), (std::map<int, int>{{200, 189}})); });
  EXPECT_EQ(Entries(process, "task"), threads);
  // Nobody is left, and nothing waits.
  const auto metrics = [&] {
    HttpClient client(door.server->http_port());
    // Streams find by what happens that nobody reads them any more.
    (void)client.Ask(kRemarkPath, door.ann, R"({"dctPara":{"FID":"7","FSellerMessage":"end"}})");
    return client.Ask("GET /metrics", door.ann).body;
  };
  for (const char* idle :
       {"connections 1\n", "reads_waiting 0\n", "writes_waiting 0\n", "calls_running 0\n", "event_streams 0\n"}) {
    EXPECT_TRUE(WaitUntil([&] { return metrics().find(idle) != std::string::npos; })) << metrics();
  }
  EXPECT_EQ(door.server->Stop(SIGTERM), 0);
}

}  // namespace
}  // namespace tessarlorn::http
