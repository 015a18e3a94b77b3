#include "hosts/objects/recordset/row_order.h"

#include <algorithm>
#include <string>

#include "hosts/objects/recordset/row_text.h"
#include "platform/unicode/collation.h"

namespace tessarlorn {
namespace {

struct SortKey {
  std::size_t field = 0;
  bool descending = false;
};

std::vector<SortKey> ReadOrder(std::string_view order, const Recordset& rows) {
  std::vector<SortKey> keys;
  RowText text(order);
  if (text.AtEnd()) return keys;
  do {
    SortKey key;
    key.field = text.TakeField(rows);
    key.descending = text.AcceptWord("DESC");
    if (!key.descending) text.AcceptWord("ASC");
    keys.push_back(key);
  } while (text.Accept(","));
  if (!text.AtEnd()) text.Fail();
  return keys;
}

template <typename T>
int Order(const T& a, const T& b) {
  return a < b ? -1 : b < a ? 1 : 0;
}

}  // namespace

int CompareValues(const Variant& a, const Variant& b) {
  if (a.is_null() || b.is_null()) return Order(b.is_null(), a.is_null());
  const auto* a_text = a.get_if<std::string>();
  const auto* b_text = b.get_if<std::string>();
  if (a_text != nullptr && b_text != nullptr) return Order(CompareText(*a_text, *b_text), 0);
  if (a.holds<std::int32_t>() && b.holds<std::int32_t>()) return Order(a.ToInt32(), b.ToInt32());
  if (a.holds<bool>() && b.holds<bool>()) return Order(a.ToBool(), b.ToBool());
  if (a.holds<DateTime>() || b.holds<DateTime>()) return Order(a.ToDateTime(), b.ToDateTime());
  if (a.holds<double>() || b.holds<double>()) return Order(a.ToDouble(), b.ToDouble());
  const auto* a_bytes = a.get_if<Bytes>();
  const auto* b_bytes = b.get_if<Bytes>();
  if (a_bytes != nullptr && b_bytes != nullptr) return Order(*a_bytes, *b_bytes);
  return Order(a.ToDecimal(), b.ToDecimal());
}

void SortRows(std::string_view order, Recordset& rows, std::vector<std::size_t>& numbers) {
  const std::vector<SortKey> keys = ReadOrder(order, rows);
  // The last field first: each sort keeps the order of the one before among its equals.
  std::for_each(keys.rbegin(), keys.rend(), [&](const SortKey& key) {
    std::vector<Variant> values(rows.RecordCount());
    for (const std::size_t number : numbers) {
      rows.MoveTo(number);
      values[number] = rows.Get(key.field);
    }
    std::stable_sort(numbers.begin(), numbers.end(), [&](std::size_t a, std::size_t b) {
      const int compared = CompareValues(values[a], values[b]);
      return key.descending ? compared > 0 : compared < 0;
    });
  });
}

}  // namespace tessarlorn
