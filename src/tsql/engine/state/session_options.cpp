#include "tsql/engine/state/session_options.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/text/text.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::array<std::string_view, 8> kAlwaysOn = {
    "ansi_nulls",        "ansi_padding",      "ansi_warnings", "arithabort", "concat_null_yields_null",
    "quoted_identifier", "ansi_null_dflt_on", "ansi_defaults"};
constexpr std::array<std::string_view, 7> kAlwaysOff = {
    "numeric_roundabort", "noexec", "parseonly", "showplan_all", "showplan_text", "showplan_xml", "ansi_null_dflt_off"};

template <std::size_t kSize>
bool Contains(const std::array<std::string_view, kSize>& options, std::string_view option) {
  return std::find(options.begin(), options.end(), option) != options.end();
}

[[noreturn]] void Refuse(const std::string& option, const char* state, std::uint32_t line) {
  RaiseUnsupported("SET " + UpperCase(option) + " " + state, line);
}

DateOrder ParseDateOrder(const std::string& word) {
  constexpr std::array<std::string_view, 6> kOrders = {"mdy", "dmy", "ymd", "ydm", "myd", "dym"};
  const auto* const found = std::find(kOrders.begin(), kOrders.end(), LowerCase(word));
  if (found == kOrders.end()) throw SqlError(2741, "SET DATEFORMAT date order '" + word + "' is invalid.");
  return static_cast<DateOrder>(found - kOrders.begin());
}

int FirstWeekday(const std::int64_t* wanted) {
  if (wanted == nullptr || *wanted < 1 || *wanted > 7) {
    throw SqlError(2742,
                   "SET DATEFIRST " + (wanted == nullptr ? "NULL" : std::to_string(*wanted)) + " is out of range.");
  }
  return static_cast<int>(*wanted);
}

}  // namespace

void SessionOptions::Apply(const SetSwitchStatement& set, std::uint32_t line) {
  if (set.option == "xact_abort") {
    options_.xact_abort = set.on;
  } else if (set.option == "nocount") {
    options_.no_count = set.on;
  } else if (set.option == "fmtonly") {
    options_.format_only = set.on;
  } else if (set.option == "implicit_transactions") {
    options_.implicit_transactions = set.on;
  } else if (!set.on && Contains(kAlwaysOn, set.option)) {
    Refuse(set.option, "OFF", line);
  } else if (set.on && Contains(kAlwaysOff, set.option)) {
    Refuse(set.option, "ON", line);
  }
  // Others, as STATISTICS, change no result here.
}

void SessionOptions::Apply(const SetValueStatement& set, std::uint32_t line, const std::function<Datum()>& evaluate) {
  const std::string& option = set.option;
  if (option == "language" && !EqualsIgnoreCase(set.word, "us_english") && !EqualsIgnoreCase(set.word, "english")) {
    RaiseUnsupported("SET LANGUAGE " + set.word, line);
  }
  if (option == "dateformat") {
    runtime_.date_order = ParseDateOrder(set.word);
    return;
  }
  const bool counts = option == "rowcount" || option == "datefirst" || option == "lock_timeout";
  if (!counts || set.value == nullptr) return;
  const Datum value = evaluate();
  const auto* wanted = std::get_if<std::int64_t>(&value);
  if (option == "rowcount" && (wanted == nullptr || *wanted != 0)) Refuse(option, "with a number", line);
  if (option == "datefirst") runtime_.first_weekday = FirstWeekday(wanted);
  if (option == "lock_timeout") {
    options_.lock_timeout.reset();
    if (wanted != nullptr && *wanted >= 0) options_.lock_timeout = std::chrono::milliseconds(*wanted);
  }
  // Others, as TEXTSIZE, change no result here.
}

void SessionOptions::Apply(const SetIdentityInsertStatement& set, const Catalog& catalog) {
  const CatalogObjectPtr table = catalog.Find(set.table.name);
  if (table == nullptr || table->kind != CatalogKind::kTable) {
    throw SqlError(1088, "Cannot find the object \"" + set.table.name +
                             "\" because it does not exist or you do not have permissions.");
  }
  if (table->identity_column() < 0) {
    throw SqlError(
        8106, "Table '" + table->own_name() + "' does not have the identity property. Cannot perform SET operation.");
  }
  const bool same = AllowsIdentityOf(table->name);
  const CatalogObjectPtr other = same || identity_insert_.empty() ? nullptr : catalog.Find(identity_insert_);
  if (set.on && other != nullptr) {
    throw SqlError(8107, "IDENTITY_INSERT is already ON for table '" + other->shown_name() +
                             "'. Cannot perform SET operation for table '" + table->own_name() + "'.");
  }
  if (set.on) identity_insert_ = set.table.name;
  if (!set.on && same) identity_insert_.clear();
}

void SessionOptions::Reset() {
  identity_insert_.clear();
  GiveBack({});
}

bool SessionOptions::AllowsIdentityOf(const std::string& table) const {
  return EqualsIgnoreCase(identity_insert_, table);
}

CallOptions SessionOptions::OfCaller() const {
  CallOptions options = options_;
  options.date_order = runtime_.date_order;
  options.first_weekday = runtime_.first_weekday;
  return options;
}

void SessionOptions::GiveBack(const CallOptions& options) {
  options_ = options;
  runtime_.date_order = options.date_order;
  runtime_.first_weekday = options.first_weekday;
}

}  // namespace tessarlorn::tsql
