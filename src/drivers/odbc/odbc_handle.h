// Handles of ODBC that free themselves, and the diagnostics that a call leaves on them.
#pragma once

#ifdef _WIN32
#include <windows.h>
#endif
#include <cstdint>
#include <sql.h>
#include <sqlext.h>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessarlorn::odbc {

// Text goes through ODBC's wide functions as UTF-16.
static_assert(sizeof(SQLWCHAR) == sizeof(char16_t));

/// One diagnostic record.
struct Diagnostic {
  std::string sqlstate;
  std::int32_t native = 0;
  /// The text behind the prefixes "[…][…]" that drivers put before it.
  std::string text;
};

/// Owns a handle; empty when it was moved from.
class Handle {
 public:
  Handle() = default;
  /// @param type SQL_HANDLE_ENV, SQL_HANDLE_DBC or SQL_HANDLE_STMT. Raises 0x80004005 when there is no memory for it.
  Handle(SQLSMALLINT type, SQLHANDLE parent);
  Handle(Handle&& other) noexcept : type_(other.type_), handle_(std::exchange(other.handle_, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(type_, other.type_);
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Handle();

  [[nodiscard]] SQLHANDLE get() const noexcept { return handle_; }
  /// What the last call on the handle had to say, in order.
  [[nodiscard]] std::vector<Diagnostic> Diagnostics() const;

 private:
  SQLSMALLINT type_ = SQL_HANDLE_ENV;
  SQLHANDLE handle_ = nullptr;
};

/// From now on no handle is freed, and none may be used.
void AbandonHandles() noexcept;
[[nodiscard]] bool HandlesAreAbandoned() noexcept;

/// The message without the names of driver and component that stand before it in brackets; "" when the server said "".
std::string_view WithoutPrefixes(std::string_view message);

/// A number as the pointer that attribute functions take.
inline SQLPOINTER AsPointer(std::uintptr_t value) { return reinterpret_cast<SQLPOINTER>(value); }

/// The units of a text as ODBC's functions take them.
inline SQLWCHAR* Units(std::u16string& text) { return reinterpret_cast<SQLWCHAR*>(text.data()); }

}  // namespace tessarlorn::odbc
