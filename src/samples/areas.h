// Provinces, cities and districts for the sample data.
#pragma once

#include <span>
#include <string_view>

namespace tessarlorn::cli {

struct Area {
  int id = 0;
  std::string_view name;
  std::string_view name_traditional;
};

inline constexpr int kCountryId = 86;

/// Six-digit ids: two for the province, two for the city, two for the district; zeros where there is none.
std::span<const Area> Areas();

/// 1 province, 2 city, 3 district.
constexpr int AreaLevel(int id) { return id % 10000 == 0 ? 1 : id % 100 == 0 ? 2 : 3; }
/// The area in which it lies; the country of a province.
constexpr int AreaParent(int id) {
  return AreaLevel(id) == 1 ? kCountryId : AreaLevel(id) == 2 ? id / 10000 * 10000 : id / 100 * 100;
}

}  // namespace tessarlorn::cli
