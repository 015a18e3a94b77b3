// What a call answers: its results, and status and output values out of the result that the server itself asked for.
#pragma once

#include "serve/reply.h"
#include "serve/rpc.h"

namespace tessarlorn::serve {

/// Hands everything on to the reply but the last result of a call's text. See CallText.
class CallReply final : public BatchSink {
 public:
  CallReply(Reply& reply, const Call& call, const CallText& text) : reply_(reply), call_(call), text_(text) {}

  void Rows(RecordsetPtr rows) override;
  [[nodiscard]] bool takes_parts() const override { return true; }
  void PartOfRows(Recordset& rows) override { reply_.PartOfRows(rows); }
  void RowCount(std::int64_t rows) override { reply_.RowCount(rows); }
  void Message(std::string_view text, const NativeError& about) override { reply_.Message(text, about); }
  bool StatementFailed(const Error& error) override;
  void Transaction(TransactionEvent event) override { reply_.Transaction(event); }

  /// Return status and output values, once the text has run.
  void WriteEnd();

 private:
  void WriteOutputHead(const Parameter& parameter, std::size_t ordinal);

  Reply& reply_;
  const Call& call_;
  const CallText& text_;
  RecordsetPtr outputs_;
  bool failed_ = false;
};

}  // namespace tessarlorn::serve
