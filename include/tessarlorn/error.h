// The one error type of the component, and the automation error numbers that it raises itself.
#pragma once

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace tessarlorn {

/// Automation's own error numbers, as raised by conversions and collections.
namespace error_number {
inline constexpr std::int32_t kInvalidArgument = 5;
inline constexpr std::int32_t kOverflow = 6;
inline constexpr std::int32_t kOutOfMemory = 7;
inline constexpr std::int32_t kSubscriptOutOfRange = 9;
inline constexpr std::int32_t kDivisionByZero = 11;
inline constexpr std::int32_t kTypeMismatch = 13;
inline constexpr std::int32_t kInternalError = 51;
inline constexpr std::int32_t kObjectNotSet = 91;
inline constexpr std::int32_t kInvalidUseOfNull = 94;
inline constexpr std::int32_t kCannotCreateObject = 429;
inline constexpr std::int32_t kNoSuchMember = 438;
inline constexpr std::int32_t kNoSuchNamedArgument = 448;
inline constexpr std::int32_t kArgumentNotOptional = 449;
inline constexpr std::int32_t kWrongArgumentCount = 450;
inline constexpr std::int32_t kKeyExists = 457;
inline constexpr std::int32_t kNoCurrentRecord = 3021;
inline constexpr std::int32_t kItemNotFound = 3265;
inline constexpr std::int32_t kObjectClosed = 3704;

// The numbers that OLE DB gives for SQL Server; every driver maps its errors to them.
constexpr std::int32_t FromHresult(std::uint32_t hresult) { return static_cast<std::int32_t>(hresult); }
inline constexpr std::int32_t kDatabaseFailure = FromHresult(0x80004005);
inline constexpr std::int32_t kNotSupported = FromHresult(0x80004001);
inline constexpr std::int32_t kStatementError = FromHresult(0x80040E14);
inline constexpr std::int32_t kConversionFailed = FromHresult(0x80040E07);
inline constexpr std::int32_t kConstraintBroken = FromHresult(0x80040E2F);
inline constexpr std::int32_t kTimeout = FromHresult(0x80040E31);
inline constexpr std::int32_t kNoSuchTable = FromHresult(0x80040E37);
inline constexpr std::int32_t kDataOverflow = FromHresult(0x80040E57);
inline constexpr std::int32_t kCancelled = FromHresult(0x80040E4E);
inline constexpr std::int32_t kPermissionDenied = FromHresult(0x80040E09);
inline constexpr std::int32_t kLoginRefused = FromHresult(0x80040E4D);
inline constexpr std::int32_t kAbortedDeadlock = FromHresult(0x8004D00E);
}  // namespace error_number

/// The number for an error of SQL Server's own number, or nothing when the error is none of those that have one:
/// OLE DB calls it an error in the statement then.
std::optional<std::int32_t> NumberOfServerError(std::int32_t native);

/// What the database itself said: its native number and SQLSTATE. 0 and "" when the error is not the database's.
struct NativeError {
  std::int32_t number = 0;
  std::string sqlstate;
  int severity = 16;
  int state = 1;
  /// Line of the batch or procedure, from 1.
  int line = 1;
  /// The stored procedure that it stands in, "" for none or when the driver does not tell.
  std::string procedure = {};
};

/// A failed operation: number, Source, description, and the database's own words beside them.
/// `what()` is the description, in UTF-8.
class Error : public std::runtime_error {
 public:
  Error(std::int32_t number, std::string source, const std::string& description, NativeError native = {})
      : std::runtime_error(description), number_(number), source_(std::move(source)), native_(std::move(native)) {}

  [[nodiscard]] std::int32_t number() const noexcept { return number_; }
  [[nodiscard]] const std::string& source() const noexcept { return source_; }
  [[nodiscard]] std::string description() const { return what(); }
  [[nodiscard]] const NativeError& native() const noexcept { return native_; }

  /// The same error under another Source.
  [[nodiscard]] Error WithSource(std::string source) const { return {number_, std::move(source), what(), native_}; }

 private:
  std::int32_t number_;
  std::string source_;
  NativeError native_;
};

/// Raise automation's standard errors. Their Source is "TessarLornPickingAndDelivery".
[[noreturn]] void RaiseTypeMismatch();
/// Raises 5 "Invalid procedure call or argument: " and what is wrong.
[[noreturn]] void RaiseInvalidArgument(const std::string& what);
[[noreturn]] void RaiseOverflow();
/// @param number one of `error_number`; @param description names the thing at fault.
[[noreturn]] void Raise(std::int32_t number, const std::string& description);

}  // namespace tessarlorn
