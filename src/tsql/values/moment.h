// Moments with the offset of the clock that told them: the values of datetimeoffset.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tsql/values/types.h"

namespace tessarlorn::tsql {

struct Moment {
  /// Milliseconds since 1900-01-01, of UTC.
  std::int64_t utc = 0;
  /// Minutes that the clock is before UTC, -840 to 840.
  int offset = 0;

  /// What the clock shows, in milliseconds since 1900-01-01.
  [[nodiscard]] std::int64_t local() const noexcept { return utc + std::int64_t{offset} * 60'000; }
  static Moment OfClock(std::int64_t local, int offset) { return {local - std::int64_t{offset} * 60'000, offset}; }
};

/// As it stands in SQLite: '2026-11-03 01:08:07.000Z+08:00', date and time of UTC and then the offset. The collation
/// MOMENT compares the UTC, and nothing else.
std::string StoredMoment(const Moment& moment);
/// @pre StoredMoment made the text
Moment ReadStoredMoment(std::string_view stored);
int CompareStoredMoments(std::string_view a, std::string_view b);

/// A moment rounded to the places of the type `to`. Raises 242 when UTC or clock leave the years 1 to 9999; `from` is
/// for the message.
Moment FitMoment(Moment moment, const SqlType& from, const SqlType& to);

/// With a CONVERT style: '2026-11-03 09:08:07.000 +08:00' without one; no offset where the style has no date or no
/// time. Raises 281 for unknown styles.
std::string FormatMoment(const Moment& moment, const SqlType& type, int style);

}  // namespace tessarlorn::tsql
