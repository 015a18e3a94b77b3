// The served database, read by FreeTDS's db-lib over loopback, against the same statements in process.
#include <array>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <sybfront.h>
// The order matters to these headers.
#include <sybdb.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "bench/databases.h"
#include "bench/ratios.h"
#include "bench/replay_server.h"
#include "hosts/listening/listening.h"
#include "hosts/tds/server.h"
#include "hosts/tds/users.h"
#include "tessarlorn/connection.h"
#include "tessarlorn/error.h"

namespace tessarlorn::bench {
namespace {

constexpr int kOrders = 10000;
constexpr int kReads = 400;
constexpr int kClients = 8;

std::string OneOrder(int key) {
  return "select * from IC_Web2ERPOrders where FID = " + std::to_string(key % kOrders + 1);
}

std::string PageOfOrders(int key) {
  return "select top 50 * from IC_Web2ERPOrders where FID > " + std::to_string(key % (kOrders / 2)) + " order by FID";
}

using Text = std::string (*)(int key);

/// A server for the whole run, of the sample database.
class Served {
 public:
  static Served& Instance() {
    static Served served;
    return served;
  }
  [[nodiscard]] int port() const { return server_.address().port; }

 private:
  Served() : server_(ParseAddress("127.0.0.1:0"), MakeService()), thread_([this] { server_.Run(); }) {}
  ~Served() {
    server_.Stop();
    thread_.join();
  }

  static tds::Service MakeService() {
    const std::string users =
        (std::filesystem::temp_directory_path() / ("serve_bench_" + std::to_string(getpid()))).string();
    tds::AddUser(users, "bench", "bench");
    tds::Service service(TheHost());
    service.users = tds::Users::Read(users);
    std::filesystem::remove(users);
    service.database_string = "Embedded=" + SampleFile(kOrders);
    service.log = [](const std::string&) {};
    return service;
  }

  tds::Server server_;
  std::thread thread_;
};

/// A client of db-lib with an open connection.
class DbLibClient {
 public:
  explicit DbLibClient(int port) {
    static const bool ready = dbinit() == SUCCEED;
    LOGINREC* const login = ready ? dblogin() : nullptr;
    if (login == nullptr) Raise(error_number::kInternalError, "db-lib cannot be started");
    DBSETLUSER(login, "bench");
    DBSETLPWD(login, "bench");
    DBSETLVERSION(login, DBVERSION_74);
    DBSETLCHARSET(login, "UTF-8");
    process_ = dbopen(login, ("127.0.0.1:" + std::to_string(port)).c_str());
    dbloginfree(login);
    if (process_ == nullptr) Raise(error_number::kLoginRefused, "db-lib cannot log in");
  }
  DbLibClient(const DbLibClient&) = delete;
  DbLibClient& operator=(const DbLibClient&) = delete;
  ~DbLibClient() { dbclose(process_); }

  /// Runs a text and reads every value; answers the number of rows.
  int Read(const std::string& text) {
    dbcmd(process_, text.c_str());
    if (dbsqlexec(process_) != SUCCEED) Raise(error_number::kStatementError, "db-lib: the batch failed");
    int rows = 0;
    while (dbresults(process_) == SUCCEED) {
      const int width = dbnumcols(process_);
      for (; dbnextrow(process_) != NO_MORE_ROWS; ++rows) {
        for (int i = 1; i <= width; ++i) benchmark::DoNotOptimize(dbdata(process_, i));
      }
    }
    return rows;
  }

 private:
  DBPROCESS* process_ = nullptr;
};

template <Text kText, int kRows>
void ReadServed(benchmark::State& state) {
  DbLibClient client(Served::Instance().port());
  int key = 0;
  for (auto _ : state) {
    if (client.Read(kText(++key)) != kRows) state.SkipWithError("not the rows that were wanted");
  }
}

/// The same reads of a server that looks nothing up.
template <Text kText, int kRows>
void ReadReplayed(benchmark::State& state) {
  Recorder recorder(Served::Instance().port());
  {
    DbLibClient recorded(recorder.port());
    recorded.Read(kText(1));
  }
  const ReplayServer replay(recorder.Take());
  DbLibClient client(replay.port());
  int key = 0;
  for (auto _ : state) {
    if (client.Read(kText(++key)) != kRows) state.SkipWithError("not the rows that were wanted");
  }
}

/// Reads no value: what is measured is the way of the parameters.
class NoRows final : public BatchSink {
 public:
  void Rows(RecordsetPtr rows) override { benchmark::DoNotOptimize(rows->RecordCount()); }
};

/// sp_executesql with five parameters, as the server hands it to the database.
void ReadWithParameters(benchmark::State& state) {
  const std::unique_ptr<Connection> connection = TheHost().OpenConnection("Embedded=" + SampleFile(kOrders));
  NoRows sink;
  int key = 0;
  for (auto _ : state) {
    SqlParameter parameters[] = {
        {"", "nvarchar(max)",
         "select FID, FOrderID from IC_Web2ERPOrders where FID = @key and FOrderStatus > @status and FOrderID <> @number "
         "and FWeight >= @weight and FOrderDate > @date"},
        {"", "nvarchar(max)", "@key int, @status int, @number nvarchar(40), @weight decimal(18,4), @date datetime"},
        {"@key", "int", ++key % kOrders + 1},
        {"@status", "int", 0},
        {"@number", "nvarchar(40)", "x" + std::to_string(key)},
        {"@weight", "decimal(18,4)", Decimal::FromScaled(-key, 4)},
        {"@date", "datetime", DateTime(key)},
    };
    connection->Call("sp_executesql", parameters, sink);
  }
}

void ReadWithLiterals(benchmark::State& state) {
  const std::unique_ptr<Connection> connection = TheHost().OpenConnection("Embedded=" + SampleFile(kOrders));
  NoRows sink;
  int key = 0;
  for (auto _ : state) {
    ++key;
    connection->ExecuteAll("select FID, FOrderID from IC_Web2ERPOrders where FID = " +
                               std::to_string(key % kOrders + 1) + " and FOrderStatus > 0 and FOrderID <> N'x" +
                               std::to_string(key) + "' and FWeight >= " + Decimal::FromScaled(-key, 4).ToString() +
                               " and FOrderDate > '" + DateTime(key).ToString() + "'",
                           sink);
  }
}

template <Text kText>
void ReadInProcess(benchmark::State& state) {
  const std::unique_ptr<Connection> connection = TheHost().OpenConnection("Embedded=" + SampleFile(kOrders));
  int key = 0;
  for (auto _ : state) {
    for (const RecordsetPtr rows = connection->Execute(kText(++key)); !rows->eof(); rows->MoveNext()) {
      for (std::size_t i = 0; i < rows->fields().size(); ++i) benchmark::DoNotOptimize(rows->Get(i));
    }
  }
}

/// kReads reads by so many clients at once.
template <int kCount>
void ReadByClients(benchmark::State& state) {
  std::vector<std::unique_ptr<DbLibClient>> clients;
  for (int i = 0; i < kCount; ++i) clients.push_back(std::make_unique<DbLibClient>(Served::Instance().port()));
  for (auto _ : state) {
    std::vector<std::thread> threads;
    for (int i = 0; i < kCount; ++i) {
      threads.emplace_back([&client = *clients[static_cast<std::size_t>(i)], i] {
        for (int read = 0; read < kReads / kCount; ++read) client.Read(OneOrder(i * kReads + read));
      });
    }
    for (std::thread& thread : threads) thread.join();
  }
}

}  // namespace

void AddServeBenchmarks() {
  AddRatio("served, one client, one order : the same bytes replayed", "<= 1.5 x", ReadServed<OneOrder, 1>,
           ReadReplayed<OneOrder, 1>);
  AddRatio("sp_executesql with five parameters : the text with literals", "<= 1.3 x", ReadWithParameters,
           ReadWithLiterals);
  AddRatio("served, one client, page of 50 orders : in process", "<= 4 x", ReadServed<PageOfOrders, 50>,
           ReadInProcess<PageOfOrders>);
  AddRatio("served, 400 reads by eight clients : by one", "<= 1 x", ReadByClients<kClients>, ReadByClients<1>);
}

}  // namespace tessarlorn::bench
