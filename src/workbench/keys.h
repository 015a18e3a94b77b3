// How the keys of questions are written down.
#pragma once

#include <string_view>

#include "workbench/question.h"

namespace tessarlorn::workbench {

constexpr Key Optional(std::string_view name, ValueType type, std::string_view help) {
  return {.name = name, .type = type, .fallback = {}, .help = help};
}
constexpr Key Mandatory(std::string_view name, ValueType type, std::string_view help) {
  return {.name = name, .type = type, .need = Need::kMandatory, .fallback = {}, .help = help};
}

inline constexpr Key kOrderKeys = {.name = "keys",
                                   .type = ValueType::kVector,
                                   .stands = Standing::kKeyList,
                                   .need = Need::kMandatory,
                                   .fallback = {},
                                   .help = "Keys of orders (FID), 1 to 500"};

}  // namespace tessarlorn::workbench
