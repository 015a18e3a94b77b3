// What a call answers: its results, and status and output values out of the result that the server itself asked for.
#pragma once

#include "hosts/tds/messages/reply.h"
#include "hosts/tds/messages/rpc.h"

namespace tessarlorn::tds {

/// Hands everything on to the reply but the last result of a call's text. See CallText.
class CallReply final : public BatchSink {
 public:
  CallReply(Reply& reply, const Call& call, const CallText& text) : reply_(reply), call_(call), text_(text) {}

  void Rows(RecordsetPtr rows) override;
  [[nodiscard]] bool takes_parts() const override { return true; }
  void PartOfRows(Recordset& rows) override;
  void RowCount(std::int64_t rows) override { Next().RowCount(rows); }
  void Message(std::string_view text, const NativeError& about) override { Next().Message(text, about); }
  bool StatementFailed(const Error& error) override;
  void Transaction(TransactionEvent event) override { Next().Transaction(event); }

  /// Whether a statement failed.
  [[nodiscard]] bool failed() const noexcept { return failed_; }
  /// Return status and output values, once the text has run.
  void WriteEnd();

 private:
  void WriteOutputHead(const Parameter& parameter, std::size_t ordinal);

  /// The reply for what comes now: a result that was held back was not the last one.
  Reply& Next();

  Reply& reply_;
  const Call& call_;
  const CallText& text_;
  // A result that is named as the server's own, which is the last one.
  RecordsetPtr outputs_;
  bool in_parts_ = false;
  bool failed_ = false;
};

}  // namespace tessarlorn::tds
