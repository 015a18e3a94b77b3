#include "tsql/functions/format/drawn_number.h"

#include <algorithm>
#include <vector>

#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

/// A sign of a mask: a place for a digit, the point, or text to be copied.
struct MaskPart {
  enum class Kind { kZero, kDigit, kPoint, kText };
  Kind kind = Kind::kText;
  std::string text;
};

/// One section of a mask.
struct Section {
  std::vector<MaskPart> parts;
  int whole_places = 0;
  /// How many digits stand before the point at least.
  int least_whole = 0;
  int fraction_places = 0;
  int least_fraction = 0;
  bool grouped = false;
  /// Powers of ten: two for each percent sign, three for each per mille sign, minus three for each comma behind the
  /// last digit.
  int shift = 0;
};

class SectionReader {
 public:
  explicit SectionReader(std::string_view text) : text_(text) {}

  Section Read() {
    while (at_ < text_.size()) Take();
    if (pending_commas_ > 0 && !point_) section_.shift -= 3 * pending_commas_;
    return std::move(section_);
  }

 private:
  void Take() {
    const char c = text_[at_++];
    switch (c) {
      case '0':
      case '#':
        return Place(c == '0');
      case '.':
        if (point_) return;
        section_.shift -= 3 * pending_commas_;
        point_ = true;
        section_.parts.push_back({MaskPart::Kind::kPoint, {}});
        return;
      case ',':
        if (section_.whole_places > 0 && !point_) ++pending_commas_;
        return;
      case '%':
        section_.shift += 2;
        return Copy("%");
      case '\'':
      case '"': {
        const std::size_t end = std::min(text_.find(c, at_), text_.size());
        Copy(text_.substr(at_, end - at_));
        at_ = std::min(end + 1, text_.size());
        return;
      }
      case '\\':
        if (at_ < text_.size()) Copy(text_.substr(at_++, 1));
        return;
      default:
        return TakeOther();
    }
  }
  void TakeOther() {
    constexpr std::string_view kPerMille = "\u2030";
    const std::string_view rest = text_.substr(at_ - 1);
    if (rest.starts_with(kPerMille)) {
      section_.shift += 3;
      at_ += kPerMille.size() - 1;
      return Copy(kPerMille);
    }
    const std::size_t digit = rest.size() > 1 && (rest[1] == '+' || rest[1] == '-') ? 2 : 1;
    if ((rest[0] == 'E' || rest[0] == 'e') && rest.size() > digit && rest[digit] == '0') {
      RaiseUnsupported("FORMAT with an exponent in its mask");
    }
    Copy(rest.substr(0, 1));
  }
  void Copy(std::string_view text) { section_.parts.push_back({MaskPart::Kind::kText, std::string(text)}); }
  void Place(bool zero) {
    section_.parts.push_back({zero ? MaskPart::Kind::kZero : MaskPart::Kind::kDigit, {}});
    if (point_) {
      ++section_.fraction_places;
      if (zero) section_.least_fraction = section_.fraction_places;
      return;
    }
    section_.grouped = section_.grouped || pending_commas_ > 0;
    pending_commas_ = 0;
    ++section_.whole_places;
    if (zero || section_.least_whole > 0) ++section_.least_whole;
  }

  std::string_view text_;
  std::size_t at_ = 0;
  bool point_ = false;
  int pending_commas_ = 0;
  Section section_;
};

/// The mask in its sections; ';' within quotes parts nothing.
std::vector<std::string_view> Sections(std::string_view mask) {
  std::vector<std::string_view> sections;
  std::size_t begin = 0;
  char quote = '\0';
  for (std::size_t i = 0; i < mask.size(); ++i) {
    const char c = mask[i];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == '\\') {
      ++i;
    } else if (c == ';') {
      sections.push_back(mask.substr(begin, i - begin));
      begin = i + 1;
    }
  }
  sections.push_back(mask.substr(begin));
  return sections;
}

DigitText Scaled(const DigitText& value, const Section& section) {
  DigitText scaled = value;
  scaled.point += section.shift;
  return scaled.Rounded(section.fraction_places);
}

std::string Draw(const DigitText& rounded, const Section& section, const Culture& culture) {
  const std::string whole = rounded.Whole(section.least_whole);
  std::string fraction = rounded.Fraction();
  while (fraction.size() > static_cast<std::size_t>(section.least_fraction) && fraction.back() == '0') {
    fraction.pop_back();
  }
  std::string text;
  int place = 0;
  std::size_t fraction_place = 0;
  bool behind_point = false;
  const auto give_whole = [&](std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < to; ++i) {
      text += whole[i];
      const std::size_t left = whole.size() - i - 1;
      if (section.grouped && left > 0 && left % 3 == 0) text += culture.group_separator;
    }
  };
  for (const MaskPart& part : section.parts) {
    if (part.kind == MaskPart::Kind::kText) {
      text += part.text;
    } else if (part.kind == MaskPart::Kind::kPoint) {
      if (section.whole_places == 0) give_whole(0, whole.size());
      behind_point = true;
      if (!fraction.empty()) text += culture.decimal_point;
    } else if (behind_point) {
      if (fraction_place < fraction.size()) text += fraction[fraction_place++];
    } else {
      // The first place takes what is more than there are places.
      const auto left_of = [&](int at) {
        const int rest = static_cast<int>(whole.size()) - (section.whole_places - at);
        return static_cast<std::size_t>(std::max(rest, 0));
      };
      give_whole(place == 0 ? 0 : left_of(place), left_of(place + 1));
      ++place;
    }
  }
  return text;
}

}  // namespace

std::string Grouped(const std::string& digits, std::string_view separator) {
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) text += separator;
    text += digits[i];
  }
  return text;
}

std::string DrawnNumber(const DigitText& value, std::string_view mask, const Culture& culture) {
  const std::vector<std::string_view> sections = Sections(mask);
  const bool own_negative = value.negative && sections.size() > 1 && !sections[1].empty();
  Section section = SectionReader(sections[own_negative ? 1 : 0]).Read();
  DigitText rounded = Scaled(value, section);
  if (rounded.is_zero() && sections.size() > 2 && !sections[2].empty()) {
    section = SectionReader(sections[2]).Read();
    rounded = Scaled(value, section);
  }
  const std::string text = Draw(rounded, section, culture);
  return value.negative && !own_negative && !rounded.is_zero() ? "-" + text : text;
}

}  // namespace tessarlorn::tsql
