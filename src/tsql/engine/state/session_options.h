// What SET changes in a session.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "tsql/functions/runtime.h"
#include "tsql/storage/catalog.h"
#include "tsql/syntax/statement.h"

namespace tessarlorn::tsql {

/// Options that a procedure or text leaves as they were when it was called.
struct CallOptions {
  bool xact_abort = false;
  bool no_count = false;
  bool implicit_transactions = false;
  bool format_only = false;
  std::optional<std::chrono::milliseconds> lock_timeout;
  DateOrder date_order = DateOrder::kMdy;
  int first_weekday = 7;
};

class SessionOptions {
 public:
  explicit SessionOptions(Runtime& runtime) : runtime_(runtime) {}

  /// Options whose other state is not supported are refused by name.
  void Apply(const SetSwitchStatement& set, std::uint32_t line);
  /// @param evaluate answers the option's value as a whole number, or NULL
  void Apply(const SetValueStatement& set, std::uint32_t line, const std::function<Datum()>& evaluate);
  /// Raises 1088, 8106 and 8107.
  void Apply(const SetIdentityInsertStatement& set, const Catalog& catalog);
  /// SET XACT_ABORT ON, as a trigger begins with it.
  void AbortOnErrors() { options_.xact_abort = true; }
  void Reset();

  [[nodiscard]] bool xact_abort() const { return options_.xact_abort; }
  [[nodiscard]] bool no_count() const { return options_.no_count; }
  [[nodiscard]] bool implicit_transactions() const { return options_.implicit_transactions; }
  [[nodiscard]] bool format_only() const { return options_.format_only; }
  [[nodiscard]] std::optional<std::chrono::milliseconds> lock_timeout() const { return options_.lock_timeout; }
  /// The table whose identity column may be given, "" for none.
  [[nodiscard]] const std::string& identity_insert() const { return identity_insert_; }
  [[nodiscard]] bool AllowsIdentityOf(const std::string& table) const;

  [[nodiscard]] CallOptions OfCaller() const;
  void GiveBack(const CallOptions& options);

 private:
  Runtime& runtime_;  // row functions read the order of dates and the first day of weeks from it
  CallOptions options_;
  std::string identity_insert_;
};

}  // namespace tessarlorn::tsql
