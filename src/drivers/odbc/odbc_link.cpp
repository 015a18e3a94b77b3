#include "drivers/odbc/odbc_link.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "drivers/odbc/bound_parameters.h"
#include "drivers/odbc/odbc_error.h"
#include "platform/server_messages.h"
#include "platform/unicode/utf16.h"

namespace tessarlorn::odbc {
namespace {

/// Of SQL Server's own ODBC driver: the server resets the session when the next batch comes.
constexpr SQLINTEGER kResetConnection = 1246;
constexpr std::uintptr_t kResetYes = 1;

/// Of the ODBC drivers that know the system's transaction coordinator; its value to take no more part in one.
constexpr SQLINTEGER kEnlist = 1207;
constexpr SQLPOINTER kEnlistDone = nullptr;

// Said of every batch that changes the database or language, and behind every failed statement.
constexpr std::int32_t kDatabaseChanged = 5701;
constexpr std::int32_t kLanguageChanged = 5703;

bool IsForUser(const Diagnostic& record) {
  return record.sqlstate == "01000" && record.native != kDatabaseChanged && record.native != kLanguageChanged &&
         record.native != server_message::kStatementTerminated.number;
}

}  // namespace

OdbcLink::OdbcLink(const ConnectionOptions& options) : environment_(SQL_HANDLE_ENV, nullptr) {
  SQLSetEnvAttr(environment_.get(), SQL_ATTR_ODBC_VERSION, AsPointer(SQL_OV_ODBC3), 0);
  connection_ = Handle(SQL_HANDLE_DBC, environment_.get());
  SQLSetConnectAttr(connection_.get(), SQL_ATTR_LOGIN_TIMEOUT,
                    AsPointer(static_cast<std::uintptr_t>(options.login_timeout)), 0);
  std::u16string text = ToUtf16(options.odbc_string);
  const SQLRETURN result =
      SQLDriverConnectW(connection_.get(), nullptr, Units(text), static_cast<SQLSMALLINT>(text.size()), nullptr, 0,
                        nullptr, SQL_DRIVER_NOPROMPT);
  if (!SQL_SUCCEEDED(result)) {
    Diagnostic cause = LoginCause(connection_.Diagnostics());
    cause.text = options.WithoutPassword(cause.text);
    throw ToLoginError(cause);
  }
  statement_ = Handle(SQL_HANDLE_STMT, connection_.get());
  const auto timeout = static_cast<std::uintptr_t>(options.statement_timeout);
  SQLSetStmtAttr(statement_.get(), SQL_ATTR_QUERY_TIMEOUT, AsPointer(timeout), 0);
  BoundParameters::LeaveTextsAlone(statement_.get());
  reader_ = std::make_unique<ResultReader>(statement_.get(), check_);
}

OdbcLink::~OdbcLink() {
  statement_ = Handle();
  if (connection_.get() == nullptr || HandlesAreAbandoned()) return;
  // What was done stays in the transaction, and the connection may go before that ends.
  if (enlisted_) SQLSetConnectAttr(connection_.get(), kEnlist, kEnlistDone, SQL_IS_POINTER);
  SQLDisconnect(connection_.get());
}

void OdbcLink::RaiseCause(const std::vector<Diagnostic>& records) {
  Diagnostic cause = Cause(records);
  lost_ = lost() || std::any_of(records.begin(), records.end(), IsConnectionLost);
  if (lost_) cause = OfLostConnection(std::move(cause));
  goes_on_ = !lost_ && GoesOn(cause);
  throw ToError(cause);
}

SQLRETURN OdbcLink::Check(SQLRETURN result) {
  if (result == SQL_SUCCESS) return result;
  const std::vector<Diagnostic> records = statement_.Diagnostics();
  bool failed = result != SQL_SUCCESS_WITH_INFO && result != SQL_NO_DATA;
  for (const Diagnostic& record : records) {
    failed = failed || !IsInformation(record);
    if (IsForUser(record) && sink_ != nullptr) sink_->Message(record.text, {record.native, record.sqlstate, 0});
  }
  if (failed) RaiseCause(records);
  return result;
}

void OdbcLink::Run(SqlCommand& command, bool first_only, bool prints, BatchSink& sink) {
  BoundParameters parameters(statement_.get(), command);
  // Whatever ends the batch, the statement is free for the next one.
  struct Closing {
    OdbcLink& link;
    ~Closing() {
      SQLFreeStmt(link.statement_.get(), SQL_CLOSE);
      SQLFreeStmt(link.statement_.get(), SQL_UNBIND);
      link.sink_ = nullptr;
    }
  } const closing{*this};
  sink_ = &sink;
  goes_on_ = true;
  std::u16string units = ToUtf16(parameters.text());
  bool wanted = true;
  std::optional<Error> failure;
  const SQLHSTMT statement = statement_.get();
  SQLRETURN result = SQLExecDirectW(statement, Units(units), static_cast<SQLINTEGER>(units.size()));
  for (bool first = true;; first = false) {
    const bool failed_before = failure.has_value();
    RecordsetPtr rows;
    try {
      // A statement that changed no row answers "no data" as well.
      if (Check(result) == SQL_NO_DATA && !first) break;
      SQLSMALLINT columns = 0;
      Check(SQLNumResultCols(statement, &columns));
      if (columns > 0 && wanted && !failure) reader_->Read(columns, prints, sink, rows);
      if (columns == 0 && !failure) {
        SQLLEN count = -1;
        if (SQL_SUCCEEDED(SQLRowCount(statement, &count)) && count >= 0) sink.RowCount(count);
      }
    } catch (const Error& error) {
      if (error.source() != kSource) throw;
      if (!failure) failure = error;
      if (!goes_on_) break;
    }
    if (rows && !failed_before) {
      sink.Rows(std::move(rows));
      if (first_only) wanted = false;
    }
    result = SQLMoreResults(statement);
  }
  if (failure) throw Error(*failure);
  parameters.TakeOutputs();
}

bool OdbcLink::ResetWithNextBatch() noexcept {
  return SQL_SUCCEEDED(SQLSetConnectAttr(connection_.get(), kResetConnection, AsPointer(kResetYes), SQL_IS_UINTEGER));
}

void OdbcLink::Enlist(void* transaction) {
  if (!SQL_SUCCEEDED(SQLSetConnectAttr(connection_.get(), kEnlist, transaction, SQL_IS_POINTER))) {
    Diagnostic cause = Cause(connection_.Diagnostics());
    cause.text = "The ODBC driver cannot take part in the container's transaction: " + cause.text;
    throw ToError(cause);
  }
  enlisted_ = true;
}

bool OdbcLink::lost() const noexcept {
  if (lost_) return true;
  SQLUINTEGER dead = SQL_CD_FALSE;
  const SQLRETURN result =
      SQLGetConnectAttr(connection_.get(), SQL_ATTR_CONNECTION_DEAD, &dead, SQL_IS_UINTEGER, nullptr);
  return SQL_SUCCEEDED(result) && dead == SQL_CD_TRUE;
}

}  // namespace tessarlorn::odbc
