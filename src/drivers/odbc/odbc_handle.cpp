#include "drivers/odbc/odbc_handle.h"

#include <array>
#include <atomic>

#include "platform/unicode/utf16.h"
#include "tessarlorn/error.h"

namespace tessarlorn::odbc {
namespace {

constexpr std::string_view kServerPrefix = "[SQL Server]";

std::atomic<bool> handles_are_abandoned{false};

}  // namespace

Handle::Handle(SQLSMALLINT type, SQLHANDLE parent) : type_(type) {
  if (!SQL_SUCCEEDED(SQLAllocHandle(type, parent, &handle_))) {
    handle_ = nullptr;
    Raise(error_number::kDatabaseFailure, "ODBC gives no handle");
  }
}

Handle::~Handle() {
  if (handle_ != nullptr && !HandlesAreAbandoned()) SQLFreeHandle(type_, handle_);
}

std::vector<Diagnostic> Handle::Diagnostics() const {
  std::vector<Diagnostic> records;
  std::u16string text(512, u'\0');
  for (SQLSMALLINT number = 1;; ++number) {
    std::array<SQLWCHAR, 6> state{};
    SQLINTEGER native = 0;
    SQLSMALLINT length = 0;
    const auto read = [&] {
      return SQLGetDiagRecW(type_, handle_, number, state.data(), &native, Units(text),
                            static_cast<SQLSMALLINT>(text.size()), &length);
    };
    SQLRETURN result = read();
    if (SQL_SUCCEEDED(result) && length >= static_cast<SQLSMALLINT>(text.size())) {
      text.resize(static_cast<std::size_t>(length) + 1);
      result = read();
    }
    if (!SQL_SUCCEEDED(result)) return records;
    Diagnostic record;
    for (const SQLWCHAR unit : state) {
      if (unit != 0) record.sqlstate += static_cast<char>(unit);
    }
    record.native = static_cast<std::int32_t>(native);
    const std::string message = FromUtf16(std::u16string_view(text).substr(0, static_cast<std::size_t>(length)));
    record.text = WithoutPrefixes(message);
    records.push_back(std::move(record));
  }
}

void AbandonHandles() noexcept { handles_are_abandoned.store(true); }
bool HandlesAreAbandoned() noexcept { return handles_are_abandoned.load(); }

std::string_view WithoutPrefixes(std::string_view message) {
  std::string_view rest = message;
  while (rest.starts_with('[')) {
    const std::size_t end = rest.find(']');
    if (end == std::string_view::npos) break;
    const bool server = rest.starts_with(kServerPrefix);
    rest.remove_prefix(end + 1);
    if (server) return rest;
  }
  return rest.empty() ? message : rest;
}

}  // namespace tessarlorn::odbc
