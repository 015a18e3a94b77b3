// What the drivers of database servers have in common: the batches that begin and end the container's transaction, what
// is refused without the server, and the time-outs of a connection string.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "tessarlorn/connection.h"

namespace tessarlorn {

// Batches, so that time-outs and cancelling hold for them as for any other. The first two answer how many transactions
// were open.
inline constexpr std::string_view kBeginBatch = "SELECT @@TRANCOUNT AS FOpen IF @@TRANCOUNT = 0 BEGIN TRANSACTION";
/// Batches may have begun further ones; only the outermost commit can fail, and is tried once.
inline constexpr std::string_view kCommitBatch =
    "SELECT @@TRANCOUNT AS FOpen WHILE @@TRANCOUNT > 1 AND XACT_STATE() = 1 COMMIT TRANSACTION "
    "IF @@TRANCOUNT > 0 COMMIT TRANSACTION";
inline constexpr std::string_view kRollbackBatch = "IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION";

/// Keeps the number that the only result of a batch holds.
class NumberSink final : public BatchSink {
 public:
  void Rows(RecordsetPtr rows) override {
    if (!rows->eof()) number_ = rows->Get(0).ToInt32();
  }
  /// Raises 0x80004005 when none came: nobody knows what the server did then.
  [[nodiscard]] std::int32_t Number(std::string_view driver) const;

 private:
  std::optional<std::int32_t> number_;
};

// Raise in the server's own numbers and words where it has some, with the driver as Source.
[[noreturn]] void RaiseTransactionOpen(std::string_view driver);
[[noreturn]] void RaiseNoTransaction(std::string_view driver);
/// Drivers end the text at a character U+0000 and would run the first part alone.
void RefuseNul(std::string_view batch, std::string_view driver);

inline constexpr int kDefaultLoginTimeout = 15;

/// The component's own keys in a connection string, LoginTimeout and StatementTimeout: seconds, 0 to 86400; 0 = no
/// limit.
struct TimeOuts {
  int login_timeout = kDefaultLoginTimeout;
  int statement_timeout = 0;

  /// Whether the key is one of them, whose value then counts. Raises 0x80040E4D naming the key for no number of
  /// seconds.
  bool Take(std::string_view key, std::string_view value, std::string_view driver);
};

}  // namespace tessarlorn
