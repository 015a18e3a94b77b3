#include "tessarlorn/error.h"

#include <algorithm>
#include <array>

#include "platform/server_messages.h"

namespace tessarlorn {
namespace {

struct ServerNumber {
  std::int32_t native;
  std::int32_t number;
};

// Sorted by the server's number.
constexpr std::array kServerNumbers = {
    ServerNumber{208, error_number::kNoSuchTable},
    ServerNumber{220, error_number::kDataOverflow},
    ServerNumber{229, error_number::kPermissionDenied},
    ServerNumber{230, error_number::kPermissionDenied},
    ServerNumber{241, error_number::kConversionFailed},
    ServerNumber{242, error_number::kConversionFailed},
    ServerNumber{244, error_number::kDataOverflow},
    ServerNumber{245, error_number::kConversionFailed},
    ServerNumber{248, error_number::kDataOverflow},
    ServerNumber{262, error_number::kPermissionDenied},
    ServerNumber{297, error_number::kPermissionDenied},
    ServerNumber{300, error_number::kPermissionDenied},
    ServerNumber{515, error_number::kConstraintBroken},
    ServerNumber{517, error_number::kDataOverflow},
    ServerNumber{547, error_number::kConstraintBroken},
    ServerNumber{596, error_number::kDatabaseFailure},
    ServerNumber{server_message::kOutOfMemory, error_number::kDatabaseFailure},
    ServerNumber{823, error_number::kDatabaseFailure},
    ServerNumber{824, error_number::kDatabaseFailure},
    ServerNumber{1105, error_number::kDatabaseFailure},
    ServerNumber{1205, error_number::kAbortedDeadlock},
    ServerNumber{1222, error_number::kTimeout},
    ServerNumber{2601, error_number::kConstraintBroken},
    ServerNumber{2627, error_number::kConstraintBroken},
    ServerNumber{2628, error_number::kDataOverflow},
    ServerNumber{3617, error_number::kCancelled},
    ServerNumber{3906, error_number::kPermissionDenied},
    ServerNumber{server_message::kCannotOpenDatabase, error_number::kLoginRefused},
    ServerNumber{6005, error_number::kDatabaseFailure},
    ServerNumber{8114, error_number::kConversionFailed},
    ServerNumber{8115, error_number::kDataOverflow},
    ServerNumber{8134, error_number::kDataOverflow},
    ServerNumber{8152, error_number::kDataOverflow},
    ServerNumber{9001, error_number::kDatabaseFailure},
    ServerNumber{9002, error_number::kDatabaseFailure},
    ServerNumber{18456, error_number::kLoginRefused},
    ServerNumber{server_message::kNotSupported, error_number::kNotSupported},
    ServerNumber{40197, error_number::kDatabaseFailure},
    ServerNumber{40501, error_number::kDatabaseFailure},
    ServerNumber{40613, error_number::kDatabaseFailure},
};

constexpr bool IsBefore(const ServerNumber& entry, std::int32_t native) { return entry.native < native; }
static_assert(std::is_sorted(kServerNumbers.begin(), kServerNumbers.end(),
                             [](const ServerNumber& a, const ServerNumber& b) { return IsBefore(a, b.native); }));

}  // namespace

std::optional<std::int32_t> NumberOfServerError(std::int32_t native) {
  const auto* found = std::lower_bound(kServerNumbers.begin(), kServerNumbers.end(), native, IsBefore);
  if (found == kServerNumbers.end() || found->native != native) return std::nullopt;
  return found->number;
}

void Raise(std::int32_t number, const std::string& description) {
  throw Error(number, "TessarLornPickingAndDelivery", description);
}

void RaiseInvalidArgument(const std::string& what) {
  Raise(error_number::kInvalidArgument, "Invalid procedure call or argument: " + what);
}

void RaiseTypeMismatch() { Raise(error_number::kTypeMismatch, "Type mismatch"); }

void RaiseOverflow() { Raise(error_number::kOverflow, "Overflow"); }

}  // namespace tessarlorn
