// The reply to one request: tokens, sent as packets as they come.
#pragma once

#include <atomic>
#include <optional>

#include "hosts/tds/messages/tds_writer.h"
#include "hosts/tds/messages/values.h"
#include "hosts/tds/transport/channel.h"
#include "tessarlorn/connection.h"

namespace tessarlorn::tds {

/// Why a running batch is to end.
enum class Interruption : std::uint8_t { kNone, kAttention, kGone, kShutdown };

/// The client's transaction, by the number that its clients know it by.
struct TransactionState {
  std::uint64_t open = 0;  // 0 when none
  std::uint64_t last = 0;
};

/// Takes what a batch answers and writes it. Rows go out while they are written: no second copy of a result is held.
/// Raises ProtocolError when the client is gone, and Error when the batch is to end.
class Reply : public BatchSink {
 public:
  /// @param done what ends the results: kDone in a batch, kDoneInProcedure in a call
  Reply(Channel& channel, TransactionState& transaction, const std::atomic<Interruption>& interruption, Token done,
        TdsVersion version)
      : channel_(channel), transaction_(transaction), interruption_(interruption), done_(done), writer_(version) {}

  void Rows(RecordsetPtr rows) override;
  [[nodiscard]] bool takes_parts() const override { return true; }
  void PartOfRows(Recordset& rows) override;
  void RowCount(std::int64_t rows) override;
  void Message(std::string_view text, const NativeError& about) override;
  bool StatementFailed(const Error& error) override;
  void Transaction(TransactionEvent event) override;

  /// An error that ends the request.
  void Fail(const Error& error);
  /// Whether something failed since the request or call began.
  [[nodiscard]] bool failed() const noexcept { return failed_; }
  /// For further tokens, behind all results so far. What there is of them is sent when it is much.
  TdsWriter& Tokens();
  /// Ends a batch.
  void Finish();
  /// Ends a call, after its return status and output values; `last` when no other call of the request follows.
  void FinishCall(bool last);
  /// Ends a request that was broken off.
  void FinishBroken();
  /// Answers an attention. It has an answer of its own, behind that of the request which it broke off.
  void AcknowledgeAttention();

 private:
  void WriteRows(Recordset& rows, bool more);
  void SetPending(std::uint16_t status, std::uint16_t command, std::uint64_t rows);
  void PutDone(Done done);
  void SendIfLarge();
  void Send();

  Channel& channel_;
  TransactionState& transaction_;
  const std::atomic<Interruption>& interruption_;
  Token done_;
  TdsWriter writer_;
  // Of the result that is being written.
  std::optional<RowWriter> row_writer_;
  std::uint64_t rows_written_ = 0;
  // The last DONE is held back until it is known whether more follows.
  std::optional<Done> pending_;
  bool failed_ = false;
};

}  // namespace tessarlorn::tds
