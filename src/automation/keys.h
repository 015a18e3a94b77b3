// The keys that many operations share.
#pragma once

#include "automation/operations.h"

namespace tessarlorn {

constexpr Key Mandatory(std::string_view name, ValueType type, std::string_view help) {
  return {.name = name, .type = type, .need = Need::kMandatory, .fallback = "", .help = help};
}
constexpr Key Optional(std::string_view name, ValueType type, std::string_view fallback, std::string_view help) {
  return {.name = name, .type = type, .need = Need::kOptional, .fallback = fallback, .help = help};
}
/// @param name sDSN, sDsn or sProps, as the operation spells it
constexpr Key ConnectionKey(std::string_view name) {
  return Mandatory(name, ValueType::kString, "Connection string, may name the caller as well");
}

inline constexpr Key kOrdersKey = Mandatory("FID", ValueType::kString, "Order keys (FID), separated by commas");

}  // namespace tessarlorn
