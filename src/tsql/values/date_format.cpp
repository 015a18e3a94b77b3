// The texts of dates and floats that CONVERT makes.
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "tsql/values/date_text.h"
#include "tsql/values/datum.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::array<const char*, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                 "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

struct StylePattern {
  int style;
  // %Y year of four digits, %y of two, %m %d with two digits, %e day with blank, %b month name, %H %M %S, %I hour of
  // 12 with blank, %p AM or PM, %f milliseconds.
  const char* date;
  const char* time;
};

constexpr std::array kStyles = {
    StylePattern{0, "%b %e %Y", "%I:%M%p"},
    StylePattern{100, "%b %e %Y", "%I:%M%p"},
    StylePattern{1, "%m/%d/%y", ""},
    StylePattern{101, "%m/%d/%Y", ""},
    StylePattern{2, "%y.%m.%d", ""},
    StylePattern{102, "%Y.%m.%d", ""},
    StylePattern{3, "%d/%m/%y", ""},
    StylePattern{103, "%d/%m/%Y", ""},
    StylePattern{4, "%d.%m.%y", ""},
    StylePattern{104, "%d.%m.%Y", ""},
    StylePattern{5, "%d-%m-%y", ""},
    StylePattern{105, "%d-%m-%Y", ""},
    StylePattern{6, "%d %b %y", ""},
    StylePattern{106, "%d %b %Y", ""},
    StylePattern{7, "%b %d, %y", ""},
    StylePattern{107, "%b %d, %Y", ""},
    StylePattern{8, "", "%H:%M:%S"},
    StylePattern{108, "", "%H:%M:%S"},
    StylePattern{24, "", "%H:%M:%S"},
    StylePattern{9, "%b %e %Y", "%I:%M:%S:%f%p"},
    StylePattern{109, "%b %e %Y", "%I:%M:%S:%f%p"},
    StylePattern{10, "%m-%d-%y", ""},
    StylePattern{110, "%m-%d-%Y", ""},
    StylePattern{11, "%y/%m/%d", ""},
    StylePattern{111, "%Y/%m/%d", ""},
    StylePattern{12, "%y%m%d", ""},
    StylePattern{112, "%Y%m%d", ""},
    StylePattern{13, "%d %b %Y", "%H:%M:%S:%f"},
    StylePattern{113, "%d %b %Y", "%H:%M:%S:%f"},
    StylePattern{14, "", "%H:%M:%S:%f"},
    StylePattern{114, "", "%H:%M:%S:%f"},
    StylePattern{20, "%Y-%m-%d", "%H:%M:%S"},
    StylePattern{120, "%Y-%m-%d", "%H:%M:%S"},
    StylePattern{21, "%Y-%m-%d", "%H:%M:%S.%f"},
    StylePattern{121, "%Y-%m-%d", "%H:%M:%S.%f"},
    StylePattern{25, "%Y-%m-%d", "%H:%M:%S.%f"},
    StylePattern{23, "%Y-%m-%d", ""},
    StylePattern{126, "%Y-%m-%d", "T%H:%M:%S.%f"},
    StylePattern{127, "%Y-%m-%d", "T%H:%M:%S.%f"},
};

void AppendNumber(std::string& text, int value, int width, char pad = '0') {
  const std::string digits = std::to_string(value);
  text.append(static_cast<std::size_t>(width) > digits.size() ? static_cast<std::size_t>(width) - digits.size() : 0,
              pad);
  text += digits;
}

/// @param places of the second; without any the sign before them falls away, too
void AppendPattern(std::string& text, const char* pattern, const CivilTime& civil, int places) {
  for (const char* c = pattern; *c != '\0'; ++c) {
    if (*c != '%') {
      text += *c;
      continue;
    }
    switch (*++c) {
      case 'Y':
        AppendNumber(text, civil.year, 4);
        break;
      case 'y':
        AppendNumber(text, civil.year % 100, 2);
        break;
      case 'm':
        AppendNumber(text, civil.month, 2);
        break;
      case 'd':
        AppendNumber(text, civil.day, 2);
        break;
      case 'e':
        AppendNumber(text, civil.day, 2, ' ');
        break;
      case 'b':
        text += kMonths[static_cast<std::size_t>(civil.month - 1)];
        break;
      case 'H':
        AppendNumber(text, civil.hour, 2);
        break;
      case 'I':
        AppendNumber(text, civil.hour % 12 == 0 ? 12 : civil.hour % 12, 2, ' ');
        break;
      case 'M':
        AppendNumber(text, civil.minute, 2);
        break;
      case 'S':
        AppendNumber(text, civil.second, 2);
        break;
      case 'f':
        if (places == 0) {
          text.pop_back();
          break;
        }
        AppendNumber(text, civil.millisecond, 3);
        text.resize(text.size() - 3 + static_cast<std::size_t>(places), '0');
        break;
      default:
        text += civil.hour < 12 ? "AM" : "PM";
        break;
    }
  }
}

}  // namespace

std::string FormatDate(std::int64_t milliseconds, const SqlType& type, int style) {
  const FieldType kind = type.kind;
  const int places = kind == FieldType::kTime || !type.is_old_date() ? type.scale : 3;
  if (style == 0 && kind == FieldType::kDate) style = 23;
  if (style == 0 && kind != FieldType::kDate && !type.is_old_date()) style = 121;
  for (const StylePattern& pattern : kStyles) {
    if (pattern.style != style) continue;
    const CivilTime civil = DateTime(milliseconds).ToCivil();
    std::string text;
    if (kind != FieldType::kTime) AppendPattern(text, pattern.date, civil, places);
    if (kind != FieldType::kDate && *pattern.time != '\0') {
      if (!text.empty() && *pattern.time != 'T') text += ' ';
      const bool whole = (style == 126 || style == 127) && type.is_old_date() && civil.millisecond == 0;
      AppendPattern(text, pattern.time, civil, whole ? 0 : places);
    }
    return text;
  }
  throw SqlError(281, std::to_string(style) + " is not a valid style number when converting from " +
                          std::string(TypeNameText(type)) + " to a character string.");
}

std::string FormatFloat(double value, int style) {
  std::array<char, 64> text{};
  const int digits = style == 1 ? 8 : style == 2 ? 16 : style == 3 ? 17 : 6;
  if (style == 0) {
    // SQL Server writes plain digits between 1e-4 and 1e6 and three exponent digits elsewhere.
    const double magnitude = std::fabs(value);
    if (magnitude == 0.0) return "0";
    if (magnitude >= 1e-4 && magnitude < 1e6) {
      std::snprintf(text.data(), text.size(), "%.*g", digits, value);
      if (std::string_view(text.data()).find('e') == std::string_view::npos) return text.data();
    }
    std::snprintf(text.data(), text.size(), "%.*g", digits, value);
  } else {
    std::snprintf(text.data(), text.size(), "%.*e", digits - 1, value);
  }
  std::string result = text.data();
  const std::size_t exponent = result.find('e');
  if (exponent == std::string::npos) {
    std::snprintf(text.data(), text.size(), "%.*e", digits - 1, value);
    result = text.data();
  }
  const std::size_t at = result.find('e');
  std::string power = result.substr(at + 2);
  while (power.size() < 3) power.insert(0, "0");
  return result.substr(0, at + 2) + power;
}

}  // namespace tessarlorn::tsql
