#include "upload/upload_items.h"

#include <algorithm>
#include <cstddef>
#include <unordered_map>

#include "tessarlorn/collections.h"
#include "tessarlorn/error.h"
#include "tessarlorn/recordset.h"

namespace tessarlorn {
namespace {

/// A field of a recordset by name, found once.
class Column {
 public:
  Column(const Recordset& rows, std::string_view name) : rows_(rows), position_(rows.FindField(name)) {
    if (!position_) Raise(error_number::kItemNotFound, "Item cannot be found: " + std::string(name));
  }
  [[nodiscard]] Variant Value() const { return rows_.Get(*position_); }
  /// Valid as long as the recordset.
  [[nodiscard]] std::string_view Text() const { return rows_.GetText(*position_); }

 private:
  const Recordset& rows_;
  std::optional<std::size_t> position_;
};

/// What the lines of one marketplace order have in common.
struct SiteOrder {
  std::int32_t child_orders = 0;
  std::int32_t lines = 0;
  /// Parts of the lines' waybill numbers, joined by commas.
  std::ptrdiff_t waybills = 0;
  bool listed = false;

  [[nodiscard]] bool split() const noexcept {
    constexpr std::ptrdiff_t kSplitFrom = 3;
    return waybills >= kSplitFrom || child_orders > lines;
  }
};

Dictionary ReadCarriers(Connection& connection, const std::string& query) {
  Dictionary carriers;
  const RecordsetPtr rows = connection.Query(query);
  for (; !rows->eof(); rows->MoveNext()) carriers.SetValue(rows->Get("FItemID").ToText(), rows->Get("FNumber"));
  return carriers;
}

}  // namespace

std::vector<UploadItem> CollectUploadItems(Connection& connection, const UploadQueries& queries) {
  const Dictionary carriers = ReadCarriers(connection, queries.carriers);
  const RecordsetPtr counts = connection.Query(queries.child_orders);
  const RecordsetPtr lines = connection.Query(queries.lines);

  // The keys are the recordsets' own texts.
  std::unordered_map<std::string_view, SiteOrder> site_orders;
  const Column counted(*counts, "FSiteOrderID");
  const Column count(*counts, "Num");
  for (; !counts->eof(); counts->MoveNext()) site_orders[counted.Text()].child_orders = count.Value().ToInt32();
  const Column site_order(*lines, "FSiteOrderID");
  const Column waybill(*lines, "FLogisticsOrder");
  for (; !lines->eof(); lines->MoveNext()) {
    const std::string_view numbers = waybill.Text();
    SiteOrder& order = site_orders[site_order.Text()];
    ++order.lines;
    order.waybills += 1 + std::count(numbers.begin(), numbers.end(), ',');
  }

  const Column child_order(*lines, "FChildOrderID");
  const Column web_shop(*lines, "FWebshopID");
  const Column carrier(*lines, "FLogisticsID");
  const Column number(*lines, "FOrderID");
  const Column key(*lines, "FID");
  std::vector<UploadItem> items;
  for (lines->MoveFirst(); !lines->eof(); lines->MoveNext()) {
    SiteOrder& order = site_orders[site_order.Text()];
    const bool split = order.split();
    if (!split && order.listed) continue;
    order.listed = true;
    items.push_back({.site_order = std::string(site_order.Text()),
                     .child_orders = split ? std::string(child_order.Text()) : std::string(),
                     .split = split,
                     .web_shop = web_shop.Value(),
                     .carrier_code = carriers.GetValue(carrier.Value().ToText(), ""),
                     .waybill = std::string(waybill.Text()),
                     .order_number = std::string(number.Text()),
                     .order_key = key.Value()});
  }
  return items;
}

}  // namespace tessarlorn
