#include "tsql/values/moment.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include "tessarlorn/date_time.h"
#include "tsql/values/date_text.h"
#include "tsql/values/datum.h"

namespace tessarlorn::tsql {
namespace {

/// Of '2026-11-03 01:08:07.000'.
constexpr std::size_t kUtcLength = 23;

std::string OffsetText(int offset) {
  std::array<char, 16> text{};
  const int minutes = std::abs(offset);
  std::snprintf(text.data(), text.size(), "%c%02d:%02d", offset < 0 ? '-' : '+', minutes / 60, minutes % 60);
  return text.data();
}

}  // namespace

std::string StoredMoment(const Moment& moment) {
  return DateTime(moment.utc).ToString(true) + "Z" + OffsetText(moment.offset);
}

Moment ReadStoredMoment(std::string_view stored) {
  const DateTime utc = DateTime::Parse(stored.substr(0, kUtcLength)).value_or(DateTime());
  return {utc.milliseconds(), ReadOffset(stored.substr(std::min(stored.size(), kUtcLength + 1))).value_or(0)};
}

int CompareStoredMoments(std::string_view a, std::string_view b) {
  return a.substr(0, kUtcLength).compare(b.substr(0, kUtcLength));
}

Moment FitMoment(Moment moment, const SqlType& from, const SqlType& to) {
  moment.utc = FitDate(moment.utc, from, to);
  FitDate(moment.local(), from, to);
  return moment;
}

std::string FormatMoment(const Moment& moment, const SqlType& type, int style) {
  constexpr int kUtcStyle = 127;
  if (style == kUtcStyle) return FormatDate(moment.utc, type, style) + "Z";
  const std::string text = FormatDate(moment.local(), type, style);
  constexpr int kIsoStyle = 126;
  if (style == kIsoStyle) return text + OffsetText(moment.offset);
  // A date alone and a time alone are shorter.
  constexpr std::size_t kLongestPart = 16;
  return text.size() > kLongestPart ? text + " " + OffsetText(moment.offset) : text;
}

}  // namespace tessarlorn::tsql
