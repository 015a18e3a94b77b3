// Dates and times as texts: every form that SQL Server reads.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>

#include "platform/text/date_scanner.h"
#include "platform/text/text.h"
#include "tsql/values/date_text.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::array<std::string_view, 12> kMonths = {"january",   "february", "march",    "april",
                                                      "may",       "june",     "july",     "august",
                                                      "september", "october",  "november", "december"};

/// 1 to 12, 0 for no month. Three letters are enough.
int MonthOf(std::string_view word) {
  for (std::size_t i = 0; i < kMonths.size(); ++i) {
    if (EqualsIgnoreCase(word, kMonths[i]) || EqualsIgnoreCase(word, kMonths[i].substr(0, 3))) {
      return static_cast<int>(i) + 1;
    }
  }
  return 0;
}

bool IsHalfOfDay(std::string_view word) { return EqualsIgnoreCase(word, "am") || EqualsIgnoreCase(word, "pm"); }

/// Two digits: 49 is 2049, 50 is 1950.
int FullYear(int year, std::size_t digits) {
  if (digits > 2) return year;
  return year < 50 ? 2000 + year : 1900 + year;
}

struct Part {
  int value = 0;
  std::size_t digits = 0;
};

class Reader {
 public:
  Reader(std::string_view text, DateOrder order, bool newer) : scan_(text), order_(order), newer_(newer) {}

  std::optional<CivilTime> Read() {
    bool date = false;
    bool time = false;
    for (scan_.SkipBlanks(); !scan_.done(); scan_.SkipBlanks()) {
      if (AtTime()) {
        if (time || !ReadTime()) return std::nullopt;
        time = true;
      } else {
        if (date || !ReadDate()) return std::nullopt;
        date = true;
        if ((scan_.peek() == 'T' || scan_.peek() == 't') && scan_.Behind(1).Digits() > 0) {
          scan_ = scan_.Behind(1);
        } else if (!scan_.done() && scan_.peek() != ' ' && scan_.peek() != '\t' && !AtTime()) {
          return std::nullopt;
        }
      }
    }
    return civil_;
  }
  [[nodiscard]] int offset() const { return offset_; }

  bool TakeOffset() {
    const bool west = scan_.peek() == '-';
    int hours = 0;
    int minutes = 0;
    scan_ = scan_.Behind(1);
    if (scan_.Digits() != 2 || !scan_.TakeNumber(hours, 2) || !scan_.Take(':')) return false;
    if (scan_.Digits() != 2 || !scan_.TakeNumber(minutes, 2)) return false;
    constexpr int kMost = 14 * 60;
    offset_ = (hours * 60 + minutes) * (west ? -1 : 1);
    return minutes < 60 && std::abs(offset_) <= kMost;
  }
  [[nodiscard]] bool AtOffset() const { return scan_.peek() == '+' || scan_.peek() == '-'; }
  [[nodiscard]] bool done() const { return scan_.done(); }

 private:
  [[nodiscard]] bool AtTime() const {
    const std::size_t digits = scan_.Digits();
    if (digits == 0 || digits > 2) return false;
    DateScanner behind = scan_.Behind(digits);
    if (behind.peek() == ':') return true;
    behind.SkipBlanks();
    return IsHalfOfDay(behind.Word());
  }

  bool ReadTime() {
    if (!scan_.TakeNumber(civil_.hour, 2)) return false;
    if (scan_.Take(':')) {
      if (!scan_.TakeNumber(civil_.minute, 2)) return false;
      if (scan_.Take(':')) {
        if (!scan_.TakeNumber(civil_.second, 2)) return false;
        if (scan_.peek() == '.' || scan_.peek() == ':') {
          const bool point = scan_.peek() == '.';
          scan_ = scan_.Behind(1);
          if (!ReadFraction(point)) return false;
        }
      }
    }
    scan_.SkipBlanks();
    if (IsHalfOfDay(DateScanner(scan_).Word())) {
      const bool morning = (scan_.Word()[0] | 0x20) == 'a';
      if (civil_.hour > 12 && morning) return false;
      if (civil_.hour <= 12) civil_.hour = civil_.hour % 12 + (morning ? 0 : 12);
    } else if (scan_.peek() == 'Z' || scan_.peek() == 'z') {
      scan_ = scan_.Behind(1);
      return true;
    }
    scan_.SkipBlanks();
    return !newer_ || !AtOffset() || TakeOffset();
  }

  // Behind a point digits are decimal places, behind a colon a number of milliseconds.
  bool ReadFraction(bool point) {
    const std::size_t digits = scan_.Digits();
    if (digits == 0 || digits > (point ? 9U : 3U)) return false;
    int value = scan_.Number(digits);
    for (std::size_t i = digits; point && i < 3; ++i) value *= 10;
    for (std::size_t i = digits; i > 3; --i) value = i == 4 ? (value + 5) / 10 : value / 10;
    civil_.millisecond = value;
    return true;
  }

  bool ReadDate() {
    const std::size_t digits = scan_.Digits();
    if (digits == 8 || digits == 6) {
      const std::size_t year = digits - 4;
      civil_.year = FullYear(scan_.Number(year), year);
      civil_.month = scan_.Number(2);
      civil_.day = scan_.Number(2);
      return true;
    }
    if (scan_.Letters() > 0) return ReadNamed();
    if (digits == 0 || digits > 4 || digits == 3) return false;
    DateScanner behind = scan_.Behind(digits);
    const char separator = behind.peek();
    if (separator == '-' || separator == '/' || separator == '.') {
      if (behind.Behind(1).Letters() == 0) return ReadSeparated(separator);
    } else if (digits == 4 && behind.done()) {
      civil_ = {};
      civil_.year = scan_.Number(4);
      civil_.month = civil_.day = 1;
      return true;
    }
    return ReadNamed();
  }

  bool ReadSeparated(char separator) {
    std::array<Part, 3> parts;
    for (std::size_t i = 0; i < parts.size(); ++i) {
      if (i > 0 && !scan_.Take(separator)) return false;
      parts[i].digits = scan_.Digits();
      if (parts[i].digits == 0 || parts[i].digits == 3 || parts[i].digits > 4) return false;
      parts[i].value = scan_.Number(parts[i].digits);
    }
    // Where the year stands is told by its four digits, else by the order.
    std::array<int, 3> place = {2, 0, 1};  // of year, month, day
    const bool day_first = order_ == DateOrder::kDmy || order_ == DateOrder::kYdm || order_ == DateOrder::kDym;
    const auto years = std::count_if(parts.begin(), parts.end(), [](const Part& part) { return part.digits == 4; });
    if (years > 1) return false;
    if (years == 1) {
      place[0] = parts[0].digits == 4 ? 0 : parts[1].digits == 4 ? 1 : 2;
    } else {
      const bool first = order_ == DateOrder::kYmd || order_ == DateOrder::kYdm;
      place[0] = first ? 0 : order_ == DateOrder::kMyd || order_ == DateOrder::kDym ? 1 : 2;
    }
    // With a T behind it the text is that of ISO 8601, in no other order.
    const bool behind_t = (scan_.peek() == 'T' || scan_.peek() == 't') && scan_.Behind(1).Digits() > 0;
    const bool iso = place[0] == 0 && (newer_ || behind_t);
    const int low = place[0] == 0 ? 1 : 0;
    const int high = place[0] == 2 ? 1 : 2;
    place[1] = day_first && !iso ? high : low;
    place[2] = day_first && !iso ? low : high;
    const Part& year = parts[static_cast<std::size_t>(place[0])];
    civil_.year = FullYear(year.value, year.digits);
    civil_.month = parts[static_cast<std::size_t>(place[1])].value;
    civil_.day = parts[static_cast<std::size_t>(place[2])].value;
    return true;
  }

  // A month by its name, and beside it a day, a year or both, in any order.
  bool ReadNamed() {
    std::array<Part, 2> numbers;
    std::size_t count = 0;
    int month = 0;
    for (int i = 0; i < 3 && !scan_.done() && !AtTime(); ++i) {
      if (const std::size_t digits = scan_.Digits(); digits > 0) {
        if (count == 2 || digits > 4 || digits == 3) return false;
        numbers[count].digits = digits;
        numbers[count++].value = scan_.Number(digits);
      } else {
        if (month != 0) return false;
        month = MonthOf(scan_.Word());
        if (month == 0) return false;
      }
      const bool more = i < 2;
      while (more && (scan_.Take(' ') || scan_.Take(',') || scan_.Take('-') || scan_.Take('/') || scan_.Take('.'))) {
      }
    }
    if (month == 0 || count == 0) return false;
    const std::size_t year = numbers[0].digits == 4 ? 0 : count == 2 ? 1 : 0;
    if (count == 1 && numbers[0].digits != 4) return false;
    civil_.year = FullYear(numbers[year].value, numbers[year].digits);
    civil_.month = month;
    civil_.day = count == 1 ? 1 : numbers[1 - year].value;
    return true;
  }

  DateScanner scan_;
  DateOrder order_;
  bool newer_;
  CivilTime civil_;
  int offset_ = 0;
};

}  // namespace

DateOrder OrderOfStyle(int style) {
  switch (style) {
    case 3:
    case 4:
    case 5:
    case 6:
    case 103:
    case 104:
    case 105:
    case 106:
      return DateOrder::kDmy;
    case 2:
    case 11:
    case 12:
    case 20:
    case 21:
    case 23:
    case 25:
    case 102:
    case 111:
    case 112:
    case 120:
    case 121:
    case 126:
    case 127:
      return DateOrder::kYmd;
    default:
      return style < 0 ? static_cast<DateOrder>(-style) : DateOrder::kMdy;
  }
}

std::optional<CivilTime> ReadDateText(std::string_view text, int style, bool newer, int* offset) {
  Reader reader(text, OrderOfStyle(style), newer);
  const std::optional<CivilTime> civil = reader.Read();
  if (offset != nullptr) *offset = reader.offset();
  return civil;
}

std::optional<int> ReadOffset(std::string_view text) {
  Reader reader(text, DateOrder::kMdy, true);
  if (!reader.AtOffset() || !reader.TakeOffset() || !reader.done()) return std::nullopt;
  return reader.offset();
}

}  // namespace tessarlorn::tsql
