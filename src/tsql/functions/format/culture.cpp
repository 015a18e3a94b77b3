#include "tsql/functions/format/culture.h"

#include "platform/text/text.h"

namespace tessarlorn::tsql {
namespace {

constexpr CalendarNames kEnglish = {
    {"January", "February", "March", "April", "May", "June", "July", "August", "September", "October", "November",
     "December"},
    {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"},
    {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"},
    {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"},
    "AM",
    "PM"};

constexpr CalendarNames kGerman = {{"Januar", "Februar", "März", "April", "Mai", "Juni", "Juli", "August", "September",
                                    "Oktober", "November", "Dezember"},
                                   {"Jan", "Feb", "Mrz", "Apr", "Mai", "Jun", "Jul", "Aug", "Sep", "Okt", "Nov", "Dez"},
                                   {"Sonntag", "Montag", "Dienstag", "Mittwoch", "Donnerstag", "Freitag", "Samstag"},
                                   {"So", "Mo", "Di", "Mi", "Do", "Fr", "Sa"},
                                   "",
                                   ""};

constexpr CalendarNames kFrench = {
    {"janvier", "février", "mars", "avril", "mai", "juin", "juillet", "août", "septembre", "octobre", "novembre",
     "décembre"},
    {"janv.", "févr.", "mars", "avr.", "mai", "juin", "juil.", "août", "sept.", "oct.", "nov.", "déc."},
    {"dimanche", "lundi", "mardi", "mercredi", "jeudi", "vendredi", "samedi"},
    {"dim.", "lun.", "mar.", "mer.", "jeu.", "ven.", "sam."},
    "",
    ""};

constexpr std::array<std::string_view, 12> kNumberedMonths = {"1月", "2月", "3月", "4月",  "5月",  "6月",
                                                              "7月", "8月", "9月", "10月", "11月", "12月"};

constexpr CalendarNames kChinese = {
    {"一月", "二月", "三月", "四月", "五月", "六月", "七月", "八月", "九月", "十月", "十一月", "十二月"},
    kNumberedMonths,
    {"星期日", "星期一", "星期二", "星期三", "星期四", "星期五", "星期六"},
    {"周日", "周一", "周二", "周三", "周四", "周五", "周六"},
    "上午",
    "下午"};

constexpr CalendarNames kTaiwanese = {kChinese.months,
                                      kNumberedMonths,
                                      {"星期日", "星期一", "星期二", "星期三", "星期四", "星期五", "星期六"},
                                      {"週日", "週一", "週二", "週三", "週四", "週五", "週六"},
                                      "上午",
                                      "下午"};

constexpr CalendarNames kJapanese = {kNumberedMonths,
                                     {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10", "11", "12"},
                                     {"日曜日", "月曜日", "火曜日", "水曜日", "木曜日", "金曜日", "土曜日"},
                                     {"日", "月", "火", "水", "木", "金", "土"},
                                     "午前",
                                     "午後"};

constexpr std::array kCultures = {
    Culture{"en-US", ".", ",", "$", "$n", "($n)", "n%", "/", "M/d/yyyy", "dddd, MMMM d, yyyy", "h:mm tt", "h:mm:ss tt",
            "MMMM d", "MMMM yyyy", &kEnglish},
    Culture{"en-GB", ".", ",", "£", "$n", "-$n", "n%", "/", "dd/MM/yyyy", "dd MMMM yyyy", "HH:mm", "HH:mm:ss", "d MMMM",
            "MMMM yyyy", &kEnglish},
    Culture{"zh-CN", ".", ",", "¥", "$n", "$-n", "n%", "/", "yyyy/M/d", "yyyy'年'M'月'd'日'", "H:mm", "H:mm:ss",
            "M'月'd'日'", "yyyy'年'M'月'", &kChinese},
    Culture{"zh-TW", ".", ",", "NT$", "$n", "-$n", "n%", "/", "yyyy/M/d", "yyyy'年'M'月'd'日'", "tt hh:mm",
            "tt hh:mm:ss", "M'月'd'日'", "yyyy'年'M'月'", &kTaiwanese},
    Culture{"ja-JP", ".", ",", "¥", "$n", "-$n", "n%", "/", "yyyy/MM/dd", "yyyy'年'M'月'd'日'", "H:mm", "H:mm:ss",
            "M'月'd'日'", "yyyy'年'M'月'", &kJapanese},
    Culture{"de-DE", ",", ".", "€", "n $", "-n $", "n %", ".", "dd.MM.yyyy", "dddd, d. MMMM yyyy", "HH:mm", "HH:mm:ss",
            "d. MMMM", "MMMM yyyy", &kGerman},
    Culture{"fr-FR", ",", "\u00a0", "€", "n $", "-n $", "n %", "/", "dd/MM/yyyy", "dddd d MMMM yyyy", "HH:mm",
            "HH:mm:ss", "d MMMM", "MMMM yyyy", &kFrench},
};

}  // namespace

const Culture& DefaultCulture() { return kCultures[0]; }

const Culture* FindCulture(std::string_view name) {
  const bool language_only = name.size() == 2;
  for (const Culture& culture : kCultures) {
    const std::string_view known = language_only ? culture.name.substr(0, 2) : culture.name;
    if (EqualsIgnoreCase(known, name)) return &culture;
  }
  return nullptr;
}

}  // namespace tessarlorn::tsql
