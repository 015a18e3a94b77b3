#include "tsql/values/text_order.h"

#include <algorithm>
#include <array>
#include <string>
#ifdef TESSARLORN_HAS_ICU
#include <memory>
#include <unicode/ucol.h>
#include <unicode/utf16.h>
#endif

#include "platform/text/text.h"
#include "platform/unicode/collation.h"

namespace tessarlorn::tsql {
namespace {

struct NamedOrder {
  TextOrder order;
  std::string_view name;
  const char* locale;  // ICU's
};

constexpr std::array kOrders = {
    NamedOrder{TextOrder::kCodePoints, "code points", nullptr},
    NamedOrder{TextOrder::kPinyin, "Chinese_PRC_CI_AS", "zh@collation=pinyin"},
    NamedOrder{TextOrder::kStroke, "Chinese_PRC_Stroke_CI_AS", "zh@collation=stroke"},
    NamedOrder{TextOrder::kTaiwanStroke, "Chinese_Taiwan_Stroke_CI_AS", "zh_Hant@collation=stroke"},
};

#ifdef TESSARLORN_HAS_ICU
struct CloseCollator {
  void operator()(UCollator* collator) const noexcept { ucol_close(collator); }
};
using Collator = std::unique_ptr<UCollator, CloseCollator>;

/// The collator of a locale, or null where ICU's data lack it. Letters sort before Chinese characters, as on the
/// server.
Collator OpenCollator(const char* locale) {
  UErrorCode status = U_ZERO_ERROR;
  Collator collator(ucol_open(locale, &status));
  constexpr std::int32_t kLettersFirst = UCOL_REORDER_CODE_NONE;
  if (U_SUCCESS(status)) ucol_setReorderCodes(collator.get(), &kLettersFirst, 1, &status);
  return U_SUCCESS(status) ? std::move(collator) : nullptr;
}

/// Shared by all threads, which only compare with it.
const UCollator* CollatorOf(TextOrder order) {
  static const std::array collators = {Collator(), OpenCollator(kOrders[1].locale), OpenCollator(kOrders[2].locale),
                                       OpenCollator(kOrders[3].locale)};
  return collators.at(static_cast<std::size_t>(order)).get();
}

/// What the comparison sees of a text: narrow, in lower case, without trailing blanks.
std::u16string FoldedText(std::string_view text) {
  std::u16string folded;
  folded.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const char32_t character = FoldCharacter(NextCharacter(text, i));
    if (character > 0xffff) {
      folded += static_cast<char16_t>(U16_LEAD(character));
      folded += static_cast<char16_t>(U16_TRAIL(character));
    } else {
      folded += static_cast<char16_t>(character);
    }
  }
  folded.resize(folded.find_last_not_of(u' ') + 1);
  return folded;
}
#endif

}  // namespace

std::optional<TextOrder> FindTextOrder(std::string_view collation) {
  const auto* const found = std::find_if(kOrders.begin() + 1, kOrders.end(), [&](const NamedOrder& entry) {
    return EqualsIgnoreCase(entry.name, collation);
  });
  if (found == kOrders.end()) return std::nullopt;
  return found->order;
}

std::string_view TextOrderName(TextOrder order) { return kOrders.at(static_cast<std::size_t>(order)).name; }

#ifdef TESSARLORN_HAS_ICU
bool CanSort(TextOrder order) { return order == TextOrder::kCodePoints || CollatorOf(order) != nullptr; }

int CompareTextIn(TextOrder order, std::string_view a, std::string_view b) {
  const int by_code_points = CompareText(a, b);
  if (order == TextOrder::kCodePoints || by_code_points == 0) return by_code_points;
  const std::u16string left = FoldedText(a);
  const std::u16string right = FoldedText(b);
  const UCollationResult result = ucol_strcoll(CollatorOf(order), left.data(), static_cast<std::int32_t>(left.size()),
                                               right.data(), static_cast<std::int32_t>(right.size()));
  return result == UCOL_EQUAL ? by_code_points : result == UCOL_LESS ? -1 : 1;
}
#else
bool CanSort(TextOrder order) { return order == TextOrder::kCodePoints; }

int CompareTextIn(TextOrder, std::string_view a, std::string_view b) { return CompareText(a, b); }
#endif

}  // namespace tessarlorn::tsql
