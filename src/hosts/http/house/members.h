// The members of a JSON object that a request sends.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tessarlorn/collections.h"

namespace tessarlorn::http {

/// Each function raises Refusal 400 for a body or a member that is not what is wanted, naming it.
class Members {
 public:
  /// @param known the names that there are
  Members(const Variant& json, std::initializer_list<std::string_view> known);

  [[nodiscard]] std::string RequireText(std::string_view name) const;
  [[nodiscard]] std::optional<std::string> FindText(std::string_view name) const;
  [[nodiscard]] std::optional<std::int32_t> FindNumber(std::string_view name) const;
  [[nodiscard]] std::int32_t RequireNumber(std::string_view name) const;
  [[nodiscard]] std::optional<bool> FindFlag(std::string_view name) const;
  [[nodiscard]] std::vector<std::string> RequireTexts(std::string_view name) const;

 private:
  Dictionary values_;
};

}  // namespace tessarlorn::http
