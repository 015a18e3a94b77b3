#include "hosts/tds/messages/call_reply.h"

#include <utility>

#include "hosts/tds/messages/values.h"

namespace tessarlorn::tds {

Reply& CallReply::Next() {
  if (outputs_ != nullptr) reply_.Rows(std::exchange(outputs_, nullptr));
  return reply_;
}

void CallReply::Rows(RecordsetPtr rows) {
  Reply& reply = Next();
  const bool was_begun = std::exchange(in_parts_, false);
  if (!was_begun && text_.has_result && !rows->fields().empty() && rows->fields()[0].name == kOutputColumn) {
    outputs_ = std::move(rows);
  } else {
    reply.Rows(std::move(rows));
  }
}

void CallReply::PartOfRows(Recordset& rows) {
  Next().PartOfRows(rows);
  in_parts_ = true;
}

bool CallReply::StatementFailed(const Error& error) {
  in_parts_ = false;
  failed_ = true;
  return Next().StatementFailed(error);
}

void CallReply::WriteOutputHead(const Parameter& parameter, std::size_t ordinal) {
  constexpr std::uint8_t kOutput = 0x01;
  constexpr std::uint16_t kNullable = 0x01;
  TdsWriter& tokens = reply_.Tokens();
  tokens.Put(Token::kReturnValue);
  tokens.U16(static_cast<std::uint16_t>(ordinal));
  tokens.ShortText(parameter.name);
  tokens.U8(kOutput);
  tokens.Number(0, tokens.version().is_72() ? 4 : 2);
  tokens.U16(kNullable);
}

void CallReply::WriteEnd() {
  constexpr std::uint32_t kFailedStatus = static_cast<std::uint32_t>(-6);
  TdsWriter& tokens = reply_.Tokens();
  tokens.Put(Token::kReturnStatus);
  if (outputs_ != nullptr && !outputs_->eof()) {
    tokens.U32(static_cast<std::uint32_t>(outputs_->Get(0).ToInt32()));
  } else {
    tokens.U32(failed_ ? kFailedStatus : 0);
  }
  if (text_.handle && !call_.parameters.empty()) {
    WriteOutputHead(call_.parameters[0], 0);
    WriteTypeAndInteger(tokens, *text_.handle);
  }
  if (outputs_ == nullptr || outputs_->eof()) return;
  const RowWriter values(*outputs_, false, tokens.version());
  for (std::size_t i = 0; i < text_.outputs.size(); ++i) {
    WriteOutputHead(call_.parameters[text_.outputs[i]], text_.outputs[i]);
    values.WriteTypeAndValue(tokens, *outputs_, i + 1);
  }
}

}  // namespace tessarlorn::tds
