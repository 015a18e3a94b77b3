// Any bytes as a batch on a small database: it answers or raises, and the next batch works.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <signal.h>
#include <string_view>
#include <unistd.h>

#include "support/test_host.h"
#include "tessarlorn/error.h"

namespace {

tessarlorn::Connection* running = nullptr;

void CancelRunning(int) {
  if (running != nullptr) running->Cancel();
  alarm(1);
}

std::unique_ptr<tessarlorn::Connection> OpenSmallDatabase() {
  static int number = 0;
  auto connection = tessarlorn::OpenConnection("Embedded=:memory:fuzz" + std::to_string(++number));
  connection->Execute(
      "create table o (FID int not null primary key, FName nvarchar(20), FDate datetime, FAmount decimal(14,4), FCode decimal(23,0)) "
      "create table e (FEntryID int identity(1,1) primary key, FID int, FQty float, FFlag bit)");
  connection->Execute(
      "insert o values (1,N'货','2026-11-01',1.5,7),(2,'x',null,null,null) insert e (FID,FQty,FFlag) values (1,2,1),(2,3,0)");
  return connection;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool ready = [] {
    signal(SIGALRM, CancelRunning);
    return true;
  }();
  if (!ready || size > 4000) return 0;
  const auto connection = OpenSmallDatabase();
  running = connection.get();
  alarm(1);
  try {
    const std::string_view batch(reinterpret_cast<const char*>(data), size);
    connection->ExecuteAll(batch, [](const tessarlorn::RecordsetPtr&) {});
  } catch (const tessarlorn::Error&) {
    // A refusal is an answer.
  }
  alarm(0);
  running = nullptr;
  if (!connection->Reset() || connection->Execute("select 1 as a")->RecordCount() != 1) std::abort();
  return 0;
}
