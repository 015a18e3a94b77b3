#include "tsql/functions/format/format_date.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include "tessarlorn/date_time.h"
#include "tsql/functions/format/mask_reader.h"
#include "tsql/values/datum.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::int64_t kMinutesOfHour = 60;

std::string Padded(std::int64_t number, std::size_t width) {
  std::string text = std::to_string(number);
  return text.size() < width ? std::string(width - text.size(), '0') + text : text;
}

/// So many decimal places of a second. @param short_form without the zeros at the end
std::string SecondFraction(int millisecond, std::size_t places, bool short_form) {
  std::string text = Padded(millisecond, 3);
  text.resize(places, '0');
  while (short_form && !text.empty() && text.back() == '0') text.pop_back();
  return text;
}

class DateDrawer {
 public:
  DateDrawer(const Moment& moment, bool has_offset, const Culture& culture)
      : moment_(moment), has_offset_(has_offset), culture_(culture), civil_(DateTime(moment.local()).ToCivil()) {}

  std::optional<std::string> Draw(std::string_view mask) const {
    std::string text;
    MaskReader reader(mask);
    while (const std::optional<MaskRun> run = reader.Next("dfFghHKmMstyz")) {
      if (run->letter == '\0') {
        Copy(text, *run);
      } else if (!Add(text, run->letter, run->count)) {
        return std::nullopt;
      }
    }
    return text;
  }

 private:
  void Copy(std::string& text, const MaskRun& run) const {
    if (!run.quoted && run.text == "/") {
      text += culture_.date_separator;
    } else if (run.quoted || run.text != "%") {
      text += run.text;
    }
  }
  [[nodiscard]] std::size_t WeekDay() const {
    const std::int64_t day = DaysFromCivil(civil_.year, civil_.month, civil_.day) + 1;  // 1900-01-01 was a Monday
    return static_cast<std::size_t>(((day % 7) + 7) % 7);
  }
  bool Add(std::string& text, char letter, std::size_t count) const {
    const std::size_t two = std::min<std::size_t>(count, 2);
    switch (letter) {
      case 'd':
        text += count > 3    ? std::string(culture_.names->days[WeekDay()])
                : count == 3 ? std::string(culture_.names->short_days[WeekDay()])
                             : Padded(civil_.day, two);
        return true;
      case 'f':
      case 'F':
        return AddFraction(text, count, letter == 'F');
      case 'g':
        text += "A.D.";
        return true;
      case 'h':
        text += Padded((civil_.hour + 11) % 12 + 1, two);
        return true;
      case 'H':
        text += Padded(civil_.hour, two);
        return true;
      case 'm':
        text += Padded(civil_.minute, two);
        return true;
      case 'M': {
        const auto month = static_cast<std::size_t>(civil_.month - 1);
        text += count > 3    ? std::string(culture_.names->months[month])
                : count == 3 ? std::string(culture_.names->short_months[month])
                             : Padded(civil_.month, two);
        return true;
      }
      case 's':
        text += Padded(civil_.second, two);
        return true;
      case 't': {
        const std::string_view half = civil_.hour < 12 ? culture_.names->morning : culture_.names->afternoon;
        // The first character, which may have three bytes.
        text += count > 1 ? half : CutText(half, 1, true);
        return true;
      }
      case 'y':
        text += count > 2 ? Padded(civil_.year, count) : Padded(civil_.year % 100, two);
        return true;
      default:
        AddOffset(text, letter, count);
        return true;
    }
  }
  bool AddFraction(std::string& text, std::size_t count, bool short_form) const {
    constexpr std::size_t kMost = 7;
    if (count > kMost) return false;
    const std::string fraction = SecondFraction(civil_.millisecond, count, short_form);
    if (fraction.empty() && text.ends_with('.')) text.pop_back();
    text += fraction;
    return true;
  }
  // K and z
  void AddOffset(std::string& text, char letter, std::size_t count) const {
    if (letter == 'K' && !has_offset_) return;
    const int minutes = std::abs(moment_.offset);
    text += moment_.offset < 0 ? '-' : '+';
    text += Padded(minutes / kMinutesOfHour, letter == 'K' || count > 1 ? 2 : 1);
    if (letter == 'K' || count > 2) text += ":" + Padded(minutes % kMinutesOfHour, 2);
  }

  const Moment& moment_;
  bool has_offset_;
  const Culture& culture_;
  CivilTime civil_;
};

/// What a mask of one letter stands for, "" for none.
std::string StandardMask(char letter, bool has_offset, const Culture& culture) {
  const auto joined = [](std::string_view date, std::string_view time) {
    return std::string(date) + " " + std::string(time);
  };
  switch (letter) {
    case 'd':
      return std::string(culture.short_date);
    case 'D':
      return std::string(culture.long_date);
    case 'f':
      return joined(culture.long_date, culture.short_time);
    case 'F':
      return joined(culture.long_date, culture.long_time);
    case 'g':
      return joined(culture.short_date, culture.short_time);
    case 'G':
      return joined(culture.short_date, culture.long_time);
    case 'm':
    case 'M':
      return std::string(culture.month_day);
    case 'o':
    case 'O':
      return "yyyy'-'MM'-'dd'T'HH':'mm':'ss'.'fffffffK";
    case 'r':
    case 'R':
      return "ddd, dd MMM yyyy HH':'mm':'ss 'GMT'";
    case 's':
      return "yyyy'-'MM'-'dd'T'HH':'mm':'ss";
    case 't':
      return std::string(culture.short_time);
    case 'T':
      return std::string(culture.long_time);
    case 'u':
      return "yyyy'-'MM'-'dd HH':'mm':'ss'Z'";
    case 'U':
      return has_offset ? "" : joined(culture.long_date, culture.long_time);
    case 'y':
    case 'Y':
      return std::string(culture.year_month);
    default:
      return {};
  }
}

}  // namespace

std::optional<std::string> FormatDateMask(const Moment& moment, bool has_offset, std::string_view mask,
                                          const Culture& culture) {
  if (mask.empty()) mask = "G";
  if (mask.size() > 1) return DateDrawer(moment, has_offset, culture).Draw(mask);
  const std::string standard = StandardMask(mask[0], has_offset, culture);
  if (standard.empty()) return std::nullopt;
  const char letter = mask[0];
  const bool english = letter == 'r' || letter == 'R';
  // Of a datetimeoffset these two show UTC.
  const Moment shown = english || letter == 'u' ? Moment{moment.utc, 0} : moment;
  return DateDrawer(shown, has_offset, english ? DefaultCulture() : culture).Draw(standard);
}

std::optional<std::string> FormatTimeMask(std::int64_t time, std::string_view mask) {
  const CivilTime civil = DateTime(time).ToCivil();
  if (mask.empty() || mask == "c" || mask == "t" || mask == "T")
    mask = civil.millisecond == 0 ? R"(hh\:mm\:ss)" : R"(hh\:mm\:ss\.fffffff)";
  if (mask == "g") mask = R"(h\:mm\:ss\.FFFFFFF)";
  if (mask == "G") mask = R"(0\:hh\:mm\:ss\.fffffff)";
  std::string text;
  MaskReader reader(mask);
  while (const std::optional<MaskRun> run = reader.Next("dfFhms")) {
    if (run->letter == '\0') {
      if (!run->quoted && run->text != "%") return std::nullopt;
      if (run->quoted) text += run->text;
    } else if (run->letter == 'f' || run->letter == 'F') {
      const std::string fraction =
          SecondFraction(civil.millisecond, std::min<std::size_t>(run->count, 7), run->letter == 'F');
      if (fraction.empty() && text.ends_with('.')) text.pop_back();
      text += fraction;
    } else if (run->count > 2 && run->letter != 'd') {
      return std::nullopt;
    } else {
      text += Padded(run->letter == 'h'   ? civil.hour
                     : run->letter == 'm' ? civil.minute
                     : run->letter == 's' ? civil.second
                                          : 0,
                     run->count);
    }
  }
  return text;
}

}  // namespace tessarlorn::tsql
