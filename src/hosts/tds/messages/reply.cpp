#include "hosts/tds/messages/reply.h"

#include <utility>

#include "platform/server_messages.h"

namespace tessarlorn::tds {
namespace {

constexpr std::uint16_t kSelectCommand = 0xC1;
constexpr std::uint16_t kChangeCommand = 0xC5;
constexpr std::int32_t kUserError = 50000;
/// So much is written before it is sent.
constexpr std::size_t kSendSize = 32768;

std::string DescriptorBytes(std::uint64_t transaction) {
  TdsWriter writer;
  writer.U64(transaction);
  return writer.bytes();
}

}  // namespace

void Reply::PutDone(Done done) {
  if (transaction_.open != 0) done.status |= kDoneInTransaction;
  writer_.Put(done);
}

TdsWriter& Reply::Tokens() {
  if (pending_) {
    pending_->status |= kDoneMore;
    PutDone(*pending_);
    pending_.reset();
  }
  SendIfLarge();
  return writer_;
}

void Reply::SetPending(std::uint16_t status, std::uint16_t command, std::uint64_t rows) {
  pending_ = Done{done_, status, command, rows};
}

void Reply::SendIfLarge() {
  if (writer_.size() < kSendSize) return;
  channel_.Send(writer_.bytes(), false);
  writer_.Clear();
}

void Reply::Send() {
  channel_.Send(writer_.bytes(), true);
  writer_.Clear();
}

void Reply::WriteRows(Recordset& rows, bool more) {
  if (!row_writer_) {
    row_writer_.emplace(rows, more, writer_.version());
    row_writer_->WriteColumns(Tokens());
    rows_written_ = 0;
  }
  for (; !rows.eof(); rows.MoveNext(), ++rows_written_) {
    if (interruption_.load(std::memory_order_relaxed) != Interruption::kNone) {
      Raise(error_number::kCancelled, "The statement was cancelled.");
    }
    row_writer_->WriteRow(writer_, rows);
    SendIfLarge();
  }
}

void Reply::PartOfRows(Recordset& rows) { WriteRows(rows, true); }

void Reply::Rows(RecordsetPtr rows) {
  WriteRows(*rows, false);
  row_writer_.reset();
  SetPending(kDoneCount, kSelectCommand, rows_written_);
}

void Reply::RowCount(std::int64_t rows) {
  Tokens();
  SetPending(kDoneCount, kChangeCommand, static_cast<std::uint64_t>(rows));
}

void Reply::Message(std::string_view text, const NativeError& about) {
  // It belongs to the error before it, and so stands before the end of that statement.
  TdsWriter& tokens = about.number == server_message::kStatementTerminated.number ? writer_ : Tokens();
  tokens.Put(ToMessage(text, about));
}

bool Reply::StatementFailed(const Error& error) {
  Fail(error);
  return true;
}

void Reply::Fail(const Error& error) {
  row_writer_.reset();
  const NativeError& native = error.native();
  // What has no number of the database's own is an error in the server's eyes all the same.
  Tokens().Put(native.number == 0 ? ToMessage(error.what(), {kUserError, "42000"}) : ToMessage(error.what(), native));
  failed_ = true;
  SetPending(kDoneError, 0, 0);
}

void Reply::Transaction(TransactionEvent event) {
  TdsWriter& tokens = Tokens();
  // Clients before 7.2 know no transactions by number, and are told of none.
  if (event == TransactionEvent::kBegun) {
    transaction_.open = ++transaction_.last;
    if (!tokens.version().is_72()) return;
    tokens.PutEnvironmentBytes(Environment::kTransactionBegun, DescriptorBytes(transaction_.open), "");
    return;
  }
  if (!tokens.version().is_72()) {
    transaction_.open = 0;
    return;
  }
  const auto kind =
      event == TransactionEvent::kCommitted ? Environment::kTransactionCommitted : Environment::kTransactionRolledBack;
  tokens.PutEnvironmentBytes(kind, "", DescriptorBytes(std::exchange(transaction_.open, 0)));
}

void Reply::Finish() {
  if (pending_) {
    PutDone(*std::exchange(pending_, std::nullopt));
  } else {
    PutDone({done_, 0, 0, 0});
  }
  Send();
}

void Reply::FinishCall(bool last) {
  Tokens();
  const auto status = static_cast<std::uint16_t>((failed_ ? kDoneError : 0) | (last ? 0 : kDoneMore));
  PutDone({Token::kDoneProcedure, status, 0, 0});
  failed_ = false;
  if (last) Send();
}

void Reply::FinishBroken() {
  Tokens();
  PutDone({Token::kDone, kDoneError, 0, 0});
  Send();
}

void Reply::AcknowledgeAttention() {
  PutDone({Token::kDone, kDoneAttention, 0, 0});
  Send();
}

}  // namespace tessarlorn::tds
