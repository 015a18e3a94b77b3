#include "hosts/http/safety/order_access.h"

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "automation/order_list.h"
#include "platform/text/text.h"
#include "tessarlorn/collections.h"

namespace tessarlorn::http {
namespace {

/// What a value names, in the form in which the database answers it: numbers without zeros in front.
using Named = std::pair<Names, std::string>;

constexpr std::size_t kMostUniqueCodeDigits = 23;

bool IsUniqueCode(std::string_view text) {
  return !text.empty() && text.size() <= kMostUniqueCodeDigits &&
         text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// Nothing for what can be no such key.
std::optional<Named> NamedBy(Names names, std::string_view text) {
  if (names == Names::kWaybill) {
    // Without one, every order is meant that has none.
    if (Trim(text).empty()) return std::nullopt;
    // The server would read it as a unique code, and perhaps as another one than we.
    const bool digits = text.find_first_not_of("0123456789") == std::string_view::npos;
    if (IsNumeric(std::string(text)) && !digits) return std::nullopt;
    return Named(names, text);
  }
  if (names == Names::kUniqueCode) {
    if (!IsUniqueCode(text)) return std::nullopt;
    return Named(names, text.substr(std::min(text.find_first_not_of('0'), text.size() - 1)));
  }
  const std::optional<std::int32_t> number = WholeNumber<std::int32_t>(text, 0);
  if (!number) return std::nullopt;
  return Named(names, std::to_string(*number));
}

/// Whether the value names no order: a key that is not given, a line that is none. An empty waybill number names all
/// orders that have none.
bool NamesNone(Names names, std::string_view text) {
  return names == Names::kNothing || (text.empty() && names != Names::kWaybill) ||
         (names == Names::kOrderLines && text == "0");
}

/// Hears of each value that names orders: answers whether it stays. @param alone it is the only one of its place
using Keep = std::function<bool(Names names, std::string_view text, bool alone)>;

/// The value without what `keep` drops; nothing when all of it stays. A single value stays.
std::optional<Variant> CutText(ValueType type, Standing stands, Names names, const Variant& value, const Keep& keep) {
  const std::string text = value.is_object() ? std::string() : value.ToText();
  if (NamesNone(names, text)) return std::nullopt;
  if (!TakesKeyList(type, stands, names)) {
    keep(names, text, true);
    return std::nullopt;
  }
  std::string left;
  bool cut = false;
  for (const std::string_view key : Split(text, ',')) {
    if (!NamesNone(names, key) && !keep(names, key, false)) {
      cut = true;
    } else {
      left.append(left.empty() ? "" : ",").append(key);
    }
  }
  return cut ? std::optional<Variant>(std::move(left)) : std::nullopt;
}

std::optional<Variant> CutItems(std::span<const Key> keys, const Variant& value, const Keep& keep) {
  const std::shared_ptr<Vector> items = value.ToVector();
  if (!items) return std::nullopt;
  Vector left;
  for (const Variant& item : *items) {
    const std::shared_ptr<Dictionary> entry = item.ToDictionary();
    bool stays = true;
    for (const Key& key : keys) {
      const Variant* const named = entry ? entry->Find(key.name) : nullptr;
      if (named == nullptr || named->is_object() || NamesNone(key.names, named->ToText())) continue;
      stays = keep(key.names, named->ToText(), false) && stays;
    }
    if (stays) left.Add(item);
  }
  return left.size() < items->size() ? std::optional<Variant>(std::move(left)) : std::nullopt;
}

std::optional<Variant> CutKeys(std::span<const Key> keys, const Variant& value, const Keep& keep) {
  const std::shared_ptr<Dictionary> values = value.ToDictionary();
  if (!values) return std::nullopt;
  std::optional<Dictionary> copy;
  for (const Key& key : keys) {
    const Variant* const entry = values->Find(key.name);
    if (entry == nullptr) {
      if (!NamesNone(key.names, {})) keep(key.names, {}, true);
      continue;
    }
    std::optional<Variant> left = key.item_keys.empty() ? CutText(key.type, key.stands, key.names, *entry, keep)
                                                        : CutItems(key.item_keys, *entry, keep);
    if (!left) continue;
    if (!copy) copy = *values;
    copy->SetValue(key.name, *std::move(left));
  }
  return copy ? std::optional<Variant>(*std::move(copy)) : std::nullopt;
}

std::optional<Variant> CutEntries(Names names, const Variant& value, const Keep& keep) {
  const std::shared_ptr<Dictionary> values = value.ToDictionary();
  if (!values || names == Names::kNothing) return std::nullopt;
  Dictionary left;
  for (const auto& [name, entry] : *values) {
    if (keep(names, name, false)) left.SetValue(name, entry);
  }
  return left.size() < values->size() ? std::optional<Variant>(std::move(left)) : std::nullopt;
}

std::optional<Variant> Cut(const Argument& argument, const Variant& value, const Keep& keep) {
  if (argument.any_key) return CutEntries(argument.names, value, keep);
  if (argument.type == ValueType::kVector) return CutItems(argument.keys, value, keep);
  if (argument.type == ValueType::kDictionary) return CutKeys(argument.keys, value, keep);
  return CutText(argument.type, argument.stands, argument.names, value, keep);
}

/// The orders of what is named, as far as all of them may be seen.
using VisibleOrders = std::map<Named, std::vector<std::int32_t>>;

/// Asks for the visible orders that fulfil a condition.
class Lookup {
 public:
  Lookup(Connection& connection, std::int32_t user) : connection_(connection), user_(user) {}

  void Find(const std::set<Named>& named) {
    constexpr std::size_t kKeysOfStatement = 2000;
    std::map<Names, std::vector<std::string>> keys;
    for (const auto& [names, text] : named) {
      if (names == Names::kWaybill) {
        FindWaybill(text);
        continue;
      }
      std::vector<std::string>& waiting = keys[names];
      waiting.push_back(text);
      if (waiting.size() == kKeysOfStatement) FindKeys(names, std::exchange(waiting, {}));
    }
    for (const auto& [names, waiting] : keys) FindKeys(names, waiting);
  }

  /// A value is missing that has an order which may not be seen.
  [[nodiscard]] VisibleOrders Answer() && {
    for (const Named& named : hidden_) orders_.erase(named);
    return std::move(orders_);
  }

 private:
  /// @param list numbers that were checked
  void FindKeys(Names names, const std::vector<std::string>& list) {
    if (list.empty()) return;
    const auto [named, line] = [names]() -> std::pair<const char*, const char*> {
      switch (names) {
        case Names::kOrderLines:
          return {"t3.FEntryID", "INNER JOIN IC_Web2ERPOrdersEntry t3 with(nolock) ON t1.FID = t3.FID "};
        case Names::kUniqueCode:
          return {"t1.FUniqueCode", ""};
        case Names::kCostInvoices:
          // 0 is no invoice, though an empty text reads as it.
          return {"CAST(NULLIF(t1.FFeeBillNO, '') AS int)", ""};
        default:
          return {"t1.FID", ""};
      }
    }();
    std::string condition = std::string(named) + " IN (";
    for (const std::string& key : list) condition.append(key).append(&key == &list.back() ? ")" : ",");
    Collect(names, named, line, condition, {});
  }

  /// As the operations do that take a waybill number or a unique code.
  void FindWaybill(const std::string& text) {
    std::string condition = "t1.FLogisticsOrder = @waybill";
    if (IsUniqueCode(text)) condition += " OR t1.FUniqueCode = @waybill";
    Collect(Names::kWaybill, "@waybill", "", condition, text);
  }

  void Collect(Names names, std::string_view named, std::string_view line, std::string_view condition,
               const std::string& waybill) {
    std::string text = "SELECT ";
    text.append(named)
        .append(
            " AS FNamed, t1.FID, CASE WHEN EXISTS (SELECT 1 FROM IC_WebShopAccessData t2 with(nolock) WHERE "
            "t2.FIsAccess = 1 AND t2.FUserID = @user AND t2.FWebShopID = t1.FWebshopID) THEN 1 ELSE 0 END AS "
            "FVisible FROM IC_Web2ERPOrders t1 with(nolock) ")
        .append(line)
        .append("WHERE ")
        .append(condition);
    SqlParameter parameters[] = {{"@user", "int", user_}, {"@waybill", "varchar(8000)", waybill}};
    const std::span<SqlParameter> all(parameters);
    const RecordsetPtr rows = connection_.Query({text, all.first(names == Names::kWaybill ? 2 : 1)});
    for (; !rows->eof(); rows->MoveNext()) {
      // Of a waybill number the server may answer another text that counts as equal.
      const Named key(names, names == Names::kWaybill ? waybill : rows->Get("FNamed").ToText());
      orders_[key].push_back(rows->Get("FID").ToInt32());
      if (rows->Get("FVisible").ToInt32() != 1) hidden_.insert(key);
    }
  }

  Connection& connection_;
  std::int32_t user_;
  VisibleOrders orders_;
  std::set<Named> hidden_;
};

void AddOnce(std::vector<std::int32_t>& orders, std::set<std::int32_t>& known, std::int32_t order) {
  if (known.insert(order).second) orders.push_back(order);
}

/// Lets `keep` hear of all values of a call that name orders, and takes out what it drops.
void CutAll(const Operation& operation, std::span<Variant> arguments, const Keep& keep) {
  const std::size_t count = std::min(arguments.size(), operation.argument_count);
  for (std::size_t i = 0; i < count; ++i) {
    if (std::optional<Variant> left = Cut(operation.arguments()[i], arguments[i], keep)) {
      arguments[i] = *std::move(left);
    }
  }
}

/// What the values of a call name.
struct FoundNames {
  std::set<Named> named;
  /// Keys of orders among them, each once.
  std::vector<std::int32_t> orders;
  /// There is a value that names something, though perhaps nothing that could be.
  bool any = false;
};

FoundNames FindNamed(const Operation& operation, std::span<Variant> arguments) {
  FoundNames found;
  std::set<std::int32_t> known;
  CutAll(operation, arguments, [&](Names names, std::string_view text, bool) {
    found.any = true;
    if (const std::optional<Named> one = NamedBy(names, text)) {
      found.named.insert(*one);
      if (names == Names::kOrders) AddOnce(found.orders, known, *WholeNumber<std::int32_t>(one->second));
    }
    return true;
  });
  return found;
}

}  // namespace

bool SeesEveryShop(Connection& connection, std::int32_t user) {
  SqlParameter parameters[] = {{"@user", "int", user}};
  const RecordsetPtr seen = connection.Query(
      {"SELECT FValue FROM t_SystemProfile WHERE FCategory = 'EC' AND FKey = 'WebShopAccess' AND FValue = 0 "
       "UNION SELECT 1 FROM t_Group WHERE FGroupID = 1 AND FUserID = @user",
       parameters});
  return !seen->eof();
}

OrderAccess NamedOrders(const Operation& operation, std::span<Variant> arguments) {
  OrderAccess access;
  access.orders = FindNamed(operation, arguments).orders;
  return access;
}

OrderAccess CutHiddenOrders(const Operation& operation, std::span<Variant> arguments, std::int32_t user,
                            Connection& connection) {
  OrderAccess access;
  FoundNames found_names = FindNamed(operation, arguments);
  if (!found_names.any && !operation.contract->reaches_any_order) return access;
  if (SeesEveryShop(connection, user)) {
    access.orders = std::move(found_names.orders);
    return access;
  }
  access.unbounded = operation.contract->reaches_any_order;
  if (access.unbounded) return access;

  Lookup lookup(connection, user);
  lookup.Find(found_names.named);
  const VisibleOrders visible = std::move(lookup).Answer();
  std::set<std::string> hidden;
  std::set<std::int32_t> known;
  bool some_left = false;
  CutAll(operation, arguments, [&](Names names, std::string_view text, bool alone) {
    const std::optional<Named> one = NamedBy(names, text);
    const auto found = one ? visible.find(*one) : visible.end();
    if (found != visible.end()) {
      some_left = true;
      for (const std::int32_t order : found->second) AddOnce(access.orders, known, order);
      return true;
    }
    if (hidden.emplace(text).second) access.hidden.emplace_back(text);
    access.single = access.single || alone;
    return false;
  });
  access.single = access.single || (!access.hidden.empty() && !some_left);
  return access;
}

std::set<std::int32_t> HiddenOrders(std::span<const std::int32_t> orders, std::int32_t user, Connection& connection) {
  if (orders.empty() || SeesEveryShop(connection, user)) return {};
  std::set<std::int32_t> hidden(orders.begin(), orders.end());
  std::set<Named> named;
  for (const std::int32_t order : hidden) named.emplace(Names::kOrders, std::to_string(order));
  Lookup lookup(connection, user);
  lookup.Find(named);
  for (const auto& [key, visible] : std::move(lookup).Answer()) {
    for (const std::int32_t order : visible) hidden.erase(order);
  }
  return hidden;
}

}  // namespace tessarlorn::http
