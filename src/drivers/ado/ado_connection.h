// A connection through ADO, early bound, with its rows at the client.
#pragma once

#include <string_view>

#include "com_base/apartment.h"
#include "com_base/pointers.h"
#include "drivers/ado/ado_error.h"
#include "drivers/ado/ado_interfaces.h"
#include "drivers/ado/connection_options.h"
#include "tessarlorn/connection.h"

namespace tessarlorn::ado {

/// Lives on the thread that opened it. A recordset that is handed out without being detached keeps ADO's connection
/// open behind it.
class AdoConnection final : public Connection {
 public:
  /// Opens it. Raises 429 where ADO is missing, and what ADO raises.
  explicit AdoConnection(const ConnectionOptions& options);
  ~AdoConnection() override;

  void BeginTransaction() override;
  void CommitTransaction() override;
  void RollbackTransaction() override;
  /// OLE DB joins the transaction of the thread's context when the connection opens.
  void Join(void* /*transaction*/) override {}
  /// Answers false: whether a connection is kept for the next one is up to OLE DB.
  bool Reset() noexcept override;
  [[nodiscard]] bool usable() const noexcept override;
  void Cancel() noexcept override;

 protected:
  void Run(SqlCommand& command, bool first_only, BatchSink& sink) override;

 private:
  std::int32_t Ask(std::string_view text);
  void Send(std::string_view text);
  /// Hands over what a batch answers, of which `rows` is the first result, and raises how it failed.
  void TakeAnswers(Report report, com::Pointer<IAdoRecordset> rows, bool first_only, BatchSink& sink);

  const com::Apartment apartment_;
  const int statement_timeout_;
  com::Pointer<IAdoConnection> connection_;
  bool in_transaction_ = false;
  bool lost_ = false;
};

}  // namespace tessarlorn::ado
