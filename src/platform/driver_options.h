// What drivers share when they read their connection strings.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tessarlorn {

/// Raises 0x80040E4D (SQLSTATE 08001) with the driver as Source.
[[noreturn]] void RaiseLogin(std::string_view driver, const std::string& description, std::int32_t native = 0);

/// An option of a connection string whose value is a whole number.
struct NumberOption {
  std::string_view key;
  int least;
  int most;
  /// What is counted: "seconds".
  std::string_view unit;

  /// Raises 0x80040E4D naming the key. The value is not named: it may be a part of a password.
  [[nodiscard]] int Read(std::string_view value, std::string_view driver, std::int32_t native = 0) const;
};

}  // namespace tessarlorn
