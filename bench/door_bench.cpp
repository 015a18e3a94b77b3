// The operations over HTTP: one order, pages, everything, and the day, against the same in process or without the door.
#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "bench/databases.h"
#include "bench/http_clients.h"
#include "bench/ratios.h"
#include "hosts/calls/json_text.h"
#include "hosts/http/access/tokens.h"
#include "hosts/http/access/users.h"
#include "hosts/http/door.h"
#include "hosts/http/transport/server.h"
#include "platform/text/text.h"
#include "schema/schema_files.h"
#include "tessarlorn/clsGetData.h"
#include "tessarlorn/session.h"

namespace tessarlorn::bench {
namespace {

constexpr int kManyOrders = 100'000;
constexpr int kClients = 16;
constexpr int kReads = 1600;
constexpr int kDayClients = 8;
constexpr int kDayOrders = 200;
constexpr const char* kTenColumns =
    "FID,FOrderID,FWebshopName,FSiteOrderID,FWebshopID,FSitePayDate,FBuyerNick,FConsignee,FLogisticsOrder,FWeight";

/// A server of HTTP on a thread of its own.
class Running {
 public:
  explicit Running(http::Server::Handler handler) {
    Address address = ParseAddress("127.0.0.1:0");
    Descriptor listening = Listen(address);
    port_ = address.port;
    http::TransportOptions options;
    options.refusal = [](int status, std::string_view) { return http::Response{.status = status}; };
    server_ = std::make_unique<http::Server>(std::move(listening), std::move(options), std::move(handler));
    thread_ = std::thread([this] { server_->Run([this] { stopped(); }); });
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;
  ~Running() { End(); }
  /// Serves nobody any more.
  void End() {
    server_->Stop();
    if (thread_.joinable()) thread_.join();
  }
  [[nodiscard]] int port() const { return port_; }
  std::function<void()> stopped = [] {};

 private:
  int port_ = 0;
  std::unique_ptr<http::Server> server_;
  std::thread thread_;
};

/// The door to a database file, with a token of an administrator.
class Served {
 public:
  explicit Served(const std::string& file) {
    const std::unique_ptr<Connection> connection = TheHost().OpenConnection("Embedded=" + file);
    ApplySchema(*connection);
    connection->Execute("DELETE FROM DoorUser DELETE FROM DoorToken DELETE FROM DoorCall");
    http::UserSettings settings;
    settings.erp_user = 16394;
    settings.role = "administrator";
    settings.sql = true;
    settings.password = "bench-bench";
    http::AddUser(*connection, "bench", settings);
    token = http::AddToken(*connection, "bench", "bench", std::nullopt);
    http::DoorOptions options;
    options.database = "Embedded=" + file;
    options.shares_commits = true;
    options.calls_per_caller = 64;
    door_ = std::make_unique<http::Door>(TheHost(), std::move(options));
    server_ = std::make_unique<Running>([this](std::unique_ptr<http::Exchange> e) { door_->Handle(std::move(e)); });
    server_->stopped = [this] { door_->Stop(); };
  }
  Served(const Served&) = delete;
  Served& operator=(const Served&) = delete;
  ~Served() {
    server_->End();
    door_.reset();
    // The next one may have another file of the same name.
    TheHost().CloseIdle();
  }
  [[nodiscard]] int port() const { return server_->port(); }
  std::string token;

 private:
  std::unique_ptr<http::Door> door_;
  std::unique_ptr<Running> server_;
};

const std::string& ManyOrdersFile() {
  static const std::string file = SampleCopy(kManyOrders, "door");
  return file;
}

const Served& ManyOrders() {
  static const Served served(ManyOrdersFile());
  return served;
}

void ReadFixed(benchmark::State& state) {
  const std::string body(1024, 'x');
  Running fixed([&body](std::unique_ptr<http::Exchange> exchange) {
    exchange->Answer({.status = 200, .headers = {{"Content-Type", "text/plain"}}, .body = body});
  });
  HttpClients clients(fixed.port(), kClients);
  for (auto _ : state) {
    int left = kReads;
    clients.Run([&](std::size_t) { return left-- > 0 ? HttpRequest("/", "", "") : std::string(); });
  }
}

/// One order by its key.
void ReadOrders(benchmark::State& state) {
  const Served& served = ManyOrders();
  HttpClients clients(served.port(), kClients);
  int key = 0;
  for (auto _ : state) {
    int left = kReads;
    clients.Run([&](std::size_t) {
      if (left-- <= 0) return std::string();
      const std::string order = std::to_string(key++ % kManyOrders + 1);
      return HttpRequest("/api/v1/clsGetData/GetWeightByFID?dctPara.FID=" + order, served.token, "");
    });
  }
  state.counters["orders/s"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kReads, benchmark::Counter::kIsRate);
}

/// A page of orders to be picked, or all orders for 0.
Dictionary ListFilter(int most) {
  Dictionary filter{{"WebOrderMaxDisplayCount", std::to_string(most)}};
  if (most > 0) filter.SetValue("FOrderStatus", "2");
  return filter;
}

std::string ListRequest(const Served& served, int most) {
  const std::string filter = JsonText(std::make_shared<Dictionary>(ListFilter(most)));
  return HttpRequest(std::string("/api/v1/clsGetData/GetListData?columns=") + kTenColumns, served.token,
                     "{\"Filter\":" + filter + "}", most == 0 ? "Accept: application/x-ndjson\r\n" : "");
}

template <int kMost>
void ListOverHttp(benchmark::State& state) {
  const Served& served = ManyOrders();
  HttpClients client(served.port(), 1);
  const std::string request = ListRequest(served, kMost);
  std::size_t bytes = 0;
  for (auto _ : state) bytes = client.Ask(request);
  state.counters["bytes"] = static_cast<double>(bytes);
}

template <int kMost>
void ListInProcess(benchmark::State& state) {
  const std::string dsn = Dsn(ManyOrdersFile());
  clsGetData get(TheHost());
  const Dictionary filter = ListFilter(kMost);
  for (auto _ : state) {
    const RecordsetPtr rows = get.GetListData(dsn, &filter);
    std::vector<std::size_t> fields;
    for (const std::string_view column : Split(kTenColumns, ',')) fields.push_back(rows->FindField(column).value());
    for (; !rows->eof(); rows->MoveNext()) {
      for (const std::size_t field : fields) benchmark::DoNotOptimize(rows->Get(field));
    }
  }
}

/// The steps of an order, each a call that is committed.
std::vector<std::string> DayOf(const Served& served, int order) {
  const std::string key = std::to_string(order);
  const auto save = [&](const std::string& operation, const std::string& body) {
    return HttpRequest("/api/v1/clsSaveData/" + operation, served.token, body);
  };
  const std::string one = R"({"dctPara":{"FID":")" + key + "\"";
  return {
      save("ConfirmBill", one + R"(,"FPickManNumber":"E001","FPickRem":""}})"),
      save("MarkPickingGoodsStatus", one + R"(,"UserId":7}})"),
      save("SaveLogWeight", R"({"vctPara":[{"FID":)" + key +
                                R"(,"FWeight":1.25,"FLogisticsCost":8,"FWeighttingMan":7,"FWeighttingStatus":1}]})"),
      save("SetUpLogisticsNumberAndWeight", R"({"vctPara":[{"FID":)" + key + R"(,"FLogisticsOrder":"YD)" + key +
                                                R"(","FWeight":"1.25","FLogisticsCost":"8"}]})"),
      save("Delivery", one + "}}"),
      save("UploadStatus", one + "}}")};
}

template <int kCount>
void DayByClients(benchmark::State& state) {
  const Served served(SampleCopy(10'000, "door-day-" + std::to_string(kCount)));
  HttpClients clients(served.port(), kCount);
  for (auto _ : state) {
    int order = 0;
    std::vector<std::vector<std::string>> left(kCount);
    clients.Run([&](std::size_t client) {
      if (left[client].empty()) {
        if (order == kDayOrders) return std::string();
        left[client] = DayOf(served, ++order);
      }
      std::string request = std::move(left[client].front());
      left[client].erase(left[client].begin());
      return request;
    });
  }
  state.counters["orders/s"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kDayOrders, benchmark::Counter::kIsRate);
}

template <bool kKeyed>
void Write(benchmark::State& state) {
  static const Served served(SampleCopy(10'000, kKeyed ? "door-keyed" : "door-unkeyed"));
  static std::atomic<int> number{0};
  HttpClients client(served.port(), 1);
  for (auto _ : state) {
    const std::string key = std::to_string(++number);
    client.Ask(HttpRequest(
        "/api/v1/clsSaveData/DeRemark", served.token,
        R"({"dctPara":{"FID":")" + std::to_string(number % 10'000 + 1) + R"(","FDeliveryRemark":"remark"}})",
        kKeyed ? "Idempotency-Key: k" + key + "\r\n" : ""));
  }
}

}  // namespace

void AddDoorBenchmarks() {
  AddRatio("1,600 reads of one order over HTTP, 16 clients : a fixed body of 1 kB", "<= 2 x", ReadOrders, ReadFixed);
  AddRate("one order over HTTP, 16 clients", ">= 5000 orders/s", ReadOrders);
  AddRatio("page of 50 of 100,000 orders over HTTP : in process", "<= 1.5 x", ListOverHttp<50>, ListInProcess<50>);
  AddRatio("all of 100,000 orders over HTTP : in process", "<= 1.5 x", ListOverHttp<0>, ListInProcess<0>);
  AddRatio("day of 200 orders over HTTP, one client : eight", ">= 3 x", DayByClients<1>, DayByClients<kDayClients>);
  AddRatio("a write over HTTP with a key : without", "<= 1.3 x", Write<true>, Write<false>);
}

}  // namespace tessarlorn::bench
