#include "tsql/engine/state/system_values.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <sqlite3.h>

#include "platform/clock.h"
#include "platform/text/text.h"
#include "tsql/translate/common/parameters.h"
#include "tsql/values/moment.h"

namespace tessarlorn::tsql {
namespace {

/// Clients read the server's version out of it: what stands behind " - ".
constexpr const char* kVersionText =
    "Microsoft SQL Server 2012 as spoken by the TessarLorn embedded database - 11.0.7001.0 on SQLite ";

/// Milliseconds since 1900-01-01.
std::int64_t UtcNow() {
  constexpr std::int64_t kUnixEpoch = 25567LL * 86'400'000;
  return kUnixEpoch + UtcMilliseconds();
}

Datum Whole(std::int64_t value, SqlType& type) {
  type = BigIntType();
  return value;
}

Datum Whole(std::optional<std::int64_t> value, SqlType& type) { return value ? Whole(*value, type) : Datum{}; }

/// @param local by the session's clock
Datum MomentAt(std::int64_t local) {
  const double minutes = std::round(static_cast<double>(local - UtcNow()) / 60'000);
  // A clock that a test set is not the host's; it counts as UTC.
  constexpr double kMost = 14 * 60;
  return StoredMoment(Moment::OfClock(local, std::fabs(minutes) <= kMost ? static_cast<int>(minutes) : 0));
}

}  // namespace

Datum SystemValues::Get(const std::string& name, SqlType& type) const {
  if (name == "getdate") return clock_().milliseconds();
  if (name == "getutcdate") return UtcNow();
  if (name == "sysdatetimeoffset") return MomentAt(clock_().milliseconds());
  if (name == "@@rowcount" || name == "rowcount_big") return Whole(results_.row_count(), type);
  if (name == "@@error") return Whole(std::int64_t{errors_.last_number}, type);
  if (name == "@@trancount") return Whole(std::int64_t{transaction_.depth()}, type);
  if (name == "@@fetch_status") return Whole(std::int64_t{cursors_.fetch_status}, type);
  if (name == "@@cursor_rows") return Whole(cursors_.rows, type);
  if (name == "@@spid") return Whole(std::int64_t{1}, type);
  if (name == "xact_state") {
    return Whole(std::int64_t{transaction_.doomed() ? -1 : transaction_.depth() > 0 ? 1 : 0}, type);
  }
  if (name == "@@identity") return Whole(transaction_.identity(), type);
  if (name == "scope_identity") return Whole(transaction_.scope_identity, type);
  if (name == "trigger_nestlevel") return Whole(static_cast<std::int64_t>(triggers_.firing.size()), type);
  if (name.starts_with(kUpdatedColumn)) return Whole(IsUpdated(name.substr(kUpdatedColumn.size())), type);
  if (name == "@@version") return std::string(kVersionText) + sqlite3_libversion();
  if (name.starts_with("error_")) return OfError(name, type);
  if (name == "db_name") return std::string("main");
  if (name == "suser_sname" || name == "suser_name" || name == "user_name") return std::string("dbo");
  return std::string("localhost");
}

std::int64_t SystemValues::IsUpdated(std::string_view column) const {
  if (triggers_.firing.empty()) throw SqlError(140, "Can only use IF UPDATE within a CREATE TRIGGER statement.", 15);
  const TriggerState::Firing& firing = triggers_.firing.back();
  if (firing.table->FindColumn(column) < 0) {
    throw SqlError(207, "Invalid column name '" + std::string(column) + "'.");
  }
  if (firing.change->event != RowEvent::kUpdate) return firing.change->event == RowEvent::kInsert ? 1 : 0;
  const std::vector<std::string>& set = firing.change->columns;
  return std::any_of(set.begin(), set.end(), [&](const std::string& name) { return EqualsIgnoreCase(name, column); });
}

// Of the error whose CATCH block runs.
Datum SystemValues::OfError(const std::string& name, SqlType& type) const {
  if (errors_.caught.empty()) return {};
  const SqlError& error = errors_.caught.back();
  if (name == "error_number") return Whole(std::int64_t{error.number()}, type);
  if (name == "error_severity") return Whole(std::int64_t{error.severity()}, type);
  if (name == "error_state") return Whole(std::int64_t{error.state()}, type);
  if (name == "error_line") return Whole(std::int64_t{error.line()}, type);
  if (name == "error_procedure") return error.procedure().empty() ? Datum{} : Datum(error.procedure());
  return std::string(error.what());
}

}  // namespace tessarlorn::tsql
