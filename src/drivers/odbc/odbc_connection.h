// The connection of the ODBC driver: batches, the container's transaction, cleaning, and a login anew where that is
// safe.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "drivers/odbc/batch_effects.h"
#include "drivers/odbc/cancel_watch.h"
#include "drivers/odbc/connection_options.h"
#include "drivers/odbc/odbc_link.h"
#include "tessarlorn/connection.h"
#include "tessarlorn/odbc_driver.h"

namespace tessarlorn::odbc {

/// A connection that went idle and turns out to be dead in its first call is replaced by a new login without the caller
/// seeing it: when that call begins a transaction or only reads, it is sent again, and before one that writes the
/// server is asked for a sign of life. Everything later raises 0x80004005.
class OdbcConnection final : public Connection {
 public:
  /// Logs in.
  OdbcConnection(ConnectionOptions options, OdbcCancelling cancelling);

  void BeginTransaction() override;
  void CommitTransaction() override;
  void RollbackTransaction() override;
  void Join(void* transaction) override;
  /// Asks the server only when a batch since the last time may have left something behind. False when that may be more
  /// than can be taken back.
  bool Reset() noexcept override;
  [[nodiscard]] bool usable() const noexcept override;
  void Cancel() noexcept override;

 protected:
  void Run(SqlCommand& command, bool first_only, BatchSink& sink) override;

 private:
  void RunOnLink(SqlCommand& command, bool first_only, bool prints, BatchSink& sink);
  /// Runs a batch of the driver's own; answers the number that its only result holds, 0 when it has none.
  std::int32_t Ask(std::string_view text);
  void Send(std::string_view text);
  bool Clean();
  /// Calls `action`; when it finds the idle connection dead before anything was answered, once more on a new login.
  template <typename Action>
  void WithNewLogin(const Action& action, const bool& answered);

  ConnectionOptions options_;
  std::unique_ptr<OdbcLink> link_;
  std::shared_ptr<CancelState> cancel_;
  /// Of everything since it was handed back.
  BatchEffects effects_;
  /// Nothing was sent since it was handed back.
  bool idle_ = false;
  bool resets_with_batch_ = true;
};

}  // namespace tessarlorn::odbc
