// The keys and columns that many operations share.
#pragma once

#include <span>
#include <string_view>

#include "tessarlorn/contract.h"

namespace tessarlorn {

constexpr Key Mandatory(std::string_view name, ValueType type, Standing stands, std::string_view help) {
  return {.name = name, .type = type, .stands = stands, .need = Need::kMandatory, .fallback = "", .help = help};
}
constexpr Key Optional(std::string_view name, ValueType type, Standing stands, std::string_view fallback,
                       std::string_view help) {
  return {.name = name, .type = type, .stands = stands, .fallback = fallback, .help = help};
}
/// The operation goes on without it, and sends a statement that the database refuses.
constexpr Key Unchecked(std::string_view name, ValueType type, Standing stands, std::string_view help) {
  return {.name = name, .type = type, .stands = stands, .need = Need::kUnchecked, .fallback = "", .help = help};
}
/// It counts even when it is empty.
constexpr Key Given(std::string_view name, ValueType type, Standing stands, std::string_view help) {
  return {.name = name, .type = type, .stands = stands, .need = Need::kGiven, .fallback = "", .help = help};
}
/// The same key, which selects orders.
constexpr Key Naming(Names names, Key key) {
  key.names = names;
  return key;
}
/// @param name sDSN, sDsn or sProps, as the operation spells it
constexpr Key ConnectionKey(std::string_view name) {
  return Mandatory(name, ValueType::kString, Standing::kNowhere, "Connection string, may name the caller as well");
}

/// The row of a key; there must be one.
consteval const Key& KeyNamed(std::string_view name, std::span<const Key> keys) {
  for (const Key& key : keys) {
    if (key.name == name) return key;
  }
  throw "no such key";  // does not compile
}

inline constexpr Key kOrdersKey = Naming(
    Names::kOrders, Mandatory("FID", ValueType::kString, Standing::kKeyList, "Order keys (FID), separated by commas"));
inline constexpr Key kOrderKey =
    Naming(Names::kOrders, Mandatory("FID", ValueType::kLong, Standing::kBareNumber, "Order key"));

inline constexpr Key kConnection[] = {ConnectionKey("sDSN")};
inline constexpr Key kOrders[] = {ConnectionKey("sDSN"), kOrdersKey};
inline constexpr Key kOrder[] = {ConnectionKey("sDSN"), kOrderKey};

// Columns that many operations answer.
inline constexpr Column kOrderKeyColumn = {"FID", ValueType::kLong, "Order key"};
inline constexpr Column kOrderNumberColumn = {"FOrderID", ValueType::kString, "Order number"};
inline constexpr Column kOrderNames[] = {kOrderKeyColumn, kOrderNumberColumn};

}  // namespace tessarlorn
