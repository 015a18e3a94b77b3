#include "drivers/ado/ado_connection.h"

#include <utility>

#include "drivers/ado/ado_class.h"
#include "drivers/ado/ado_command.h"
#include "drivers/ado/ado_error.h"
#include "drivers/ado/ado_rows.h"

namespace tessarlorn::ado {
namespace {

bool IsOpen(IAdoRecordset& rows) {
  LONG state = kStateClosed;
  return SUCCEEDED(rows.get_State(&state)) && state != kStateClosed;
}

bool KnowsNoMoreResults(HRESULT status) { return status == E_NOTIMPL || status == kFeatureNotAvailable; }

}  // namespace

AdoConnection::AdoConnection(const ConnectionOptions& options)
    : statement_timeout_(options.statement_timeout),
      connection_(Create<IAdoConnection>("ADODB.Connection", kConnectionClass, kConnectionInterface,
                                         kConnectionInterfaceBefore)) {
  IAdoConnection* const ado = connection_.get();
  Check(ado->put_CursorLocation(kUseClient), ado, "Connection.CursorLocation");
  // The default is ADO's, too.
  if (options.login_timeout != kDefaultLoginTimeout) {
    Check(ado->put_ConnectionTimeout(options.login_timeout), ado, "Connection.ConnectionTimeout");
  }
  Check(ado->put_CommandTimeout(statement_timeout_), ado, "Connection.CommandTimeout");
  const com::OwnedBstr text(options.ado_string);
  const com::OwnedBstr none("");
  SetErrorInfo(0, nullptr);
  Check(ado->Open(text.get(), none.get(), none.get(), kConnectUnspecified), ado, "Connection.Open");
  // Servers greet with messages about database and language.
  ReportOf(S_OK, ado, "Connection.Open");
  // What OLE DB pools may have kept another level. Some providers take a batch that answers nothing for a failure.
  Send("SET TRANSACTION ISOLATION LEVEL READ COMMITTED SELECT 1 AS FAlive");
}

AdoConnection::~AdoConnection() {
  try {
    if (usable()) RollbackTransaction();
  } catch (const std::exception&) {
    // The server rolls back when the connection closes.
  }
}

std::int32_t AdoConnection::Ask(std::string_view text) {
  NumberSink sink;
  SqlCommand command(text);
  Run(command, true, sink);
  return sink.Number(kSource);
}

void AdoConnection::Send(std::string_view text) {
  NumberSink unread;
  SqlCommand command(text);
  Run(command, true, unread);
}

void AdoConnection::BeginTransaction() {
  in_transaction_ = true;
  if (Ask(kBeginBatch) > 0) RaiseTransactionOpen(kSource);
}

void AdoConnection::CommitTransaction() {
  std::int32_t open = 0;
  try {
    open = Ask(kCommitBatch);
  } catch (const Error&) {
    // What could not be committed is rolled back.
    if (usable()) RollbackTransaction();
    throw;
  }
  in_transaction_ = false;
  if (open == 0) RaiseNoTransaction(kSource);
}

void AdoConnection::RollbackTransaction() {
  if (!in_transaction_) return;
  Send(kRollbackBatch);
  in_transaction_ = false;
}

void AdoConnection::Run(SqlCommand& command, bool first_only, BatchSink& sink) {
  // ADO has no empty batch.
  if (command.text.empty()) return;
  RefuseNul(command.text, kSource);
  IAdoConnection* const ado = connection_.get();
  com::Pointer<IAdoRecordset> rows;
  if (command.parameters.empty() && !command.is_procedure) {
    const com::OwnedBstr batch(command.text);
    SetErrorInfo(0, nullptr);
    const HRESULT status = ado->Execute(batch.get(), nullptr, kOptionUnspecified, rows.Receive());
    TakeAnswers(ReportOf(status, ado, "Connection.Execute"), std::move(rows), first_only, sink);
  } else {
    AdoCommand call(ado, command, statement_timeout_);
    const HRESULT status = call.Execute(rows.Receive());
    TakeAnswers(ReportOf(status, ado, "Command.Execute"), std::move(rows), first_only, sink);
    call.TakeOutputs();
  }
}

void AdoConnection::TakeAnswers(Report report, com::Pointer<IAdoRecordset> rows, bool first_only, BatchSink& sink) {
  for (bool wanted = true;;) {
    for (const Error& message : report.messages) sink.Message(message.description(), message.native());
    if (report.failure) {
      lost_ = lost_ || IsConnectionLost(*report.failure);
      throw Error(*report.failure);
    }
    if (!rows) return;
    // ADO clears a recordset for the next result of its batch, and only then tells whether there is one; a clone
    // outlives that.
    const bool answers = wanted && IsOpen(*rows.get());
    com::Pointer<IAdoRecordset> hold;
    if (answers) static_cast<void>(rows->Clone(kLockUnspecified, hold.Receive()));
    com::Pointer<IAdoRecordset> next;
    const HRESULT status = rows->NextRecordset(nullptr, next.Receive());
    report = ReportOf(KnowsNoMoreResults(status) ? S_OK : status, connection_.get(), "Recordset.NextRecordset");
    if (answers) {
      wanted = !first_only;
      if (IsOpen(*rows.get())) hold = std::move(rows);
      if (!hold) throw Error(error_number::kDatabaseFailure, kSource, "ADO gave up a result for the one behind it.");
      sink.Rows(ToRecordset(std::move(hold)));
    }
    rows = std::move(next);
  }
}

bool AdoConnection::Reset() noexcept { return false; }

bool AdoConnection::usable() const noexcept { return !lost_; }

// ADO promises it for what runs asynchronously only; whether a provider heeds it otherwise is its own affair.
void AdoConnection::Cancel() noexcept { connection_->Cancel(); }

}  // namespace tessarlorn::ado
