// The constants that the type library names.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace tessarlorn {

struct Constant {
  std::string_view name;
  std::int32_t value = 0;
};

struct Enumeration {
  std::string_view name;
  std::string_view help;
  std::span<const Constant> constants;
};

/// The transaction modes of containers, and what of ADO's constants a recordset takes or answers.
std::span<const Enumeration> Enumerations();

}  // namespace tessarlorn
