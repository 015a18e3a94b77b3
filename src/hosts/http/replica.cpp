#include "hosts/http/replica.h"

#include <array>
#include <utility>

#include "hosts/calls/save_point.h"
#include "hosts/http/transport/signals.h"
#include "tessarlorn/sql_command.h"

namespace tessarlorn::http {
namespace {

constexpr std::chrono::seconds kBeat{1};

}  // namespace

Replica::Replica(Host& host, std::string primary, std::string replica, std::chrono::seconds longest_lag)
    : host_(host),
      primary_(std::move(primary)),
      replica_(std::move(replica)),
      longest_lag_(longest_lag),
      thread_([this] { Run(); }) {}

Replica::~Replica() {
  {
    const std::scoped_lock lock(mutex_);
    stopping_ = true;
  }
  stop_.notify_all();
  thread_.join();
}

void Replica::Run() {
  BlockSignals();
  std::unique_lock lock(mutex_);
  while (!stopping_) {
    lock.unlock();
    bool near = false;
    try {
      near = Look();
    } catch (const Error&) {
      // Neither can be asked, or the copy cannot: reads go to the database.
    }
    usable_ = near;
    lock.lock();
    stop_.wait_for(lock, kBeat, [this] { return stopping_; });
  }
}

bool Replica::Look() {
  DateTime now;
  {
    TransactionConnection primary(host_, primary_);
    // Several servers may beat at once; one beat a second is enough.
    const RecordsetPtr beat = primary.get().Query(
        "UPDATE DoorBeat SET FTime = SYSUTCDATETIME() WHERE FID = 1 AND FTime < DATEADD(ms, -900, SYSUTCDATETIME()) "
        "IF NOT EXISTS (SELECT 1 FROM DoorBeat WHERE FID = 1) INSERT INTO DoorBeat VALUES (1, SYSUTCDATETIME()) "
        "SELECT SYSUTCDATETIME() AS Now");
    now = *beat->Get(std::size_t{0}).get_if<DateTime>();
  }
  TransactionConnection replica(host_, replica_);
  const RecordsetPtr beat = replica.get().Query("SELECT FTime FROM DoorBeat WHERE FID = 1");
  if (beat->eof()) return false;
  const std::chrono::milliseconds age(now.milliseconds() -
                                      beat->Get(std::size_t{0}).get_if<DateTime>()->milliseconds());
  return age <= longest_lag_ + kBeat;
}

}  // namespace tessarlorn::http
