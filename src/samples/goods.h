// Units, goods and their attributes for the sample data.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace tessarlorn::cli {

struct Unit {
  int id;
  int group;
  std::string_view number;
  std::string_view name;
  /// How many make one base unit of the group, in ten-thousandths.
  std::int64_t coefficient;
};
inline constexpr int kNoUnit = 1;
inline constexpr int kKilogram = 11;
inline constexpr int kGram = 12;
std::span<const Unit> Units();

enum class Tracking : std::uint8_t { kNone, kBatch, kSerial };

struct Goods {
  int id;
  std::string_view number;
  std::string_view name;
  std::string_view model;
  int unit;
  std::int64_t price_cents;
  /// Gross weight of one unit in the weight unit, in ten-thousandths.
  std::int64_t weight;
  int weight_unit;
  Tracking tracking = Tracking::kNone;
};
std::span<const Goods> SampleGoods();
/// Packages of goods, items themselves.
std::span<const Goods> SamplePackages();
/// No goods: what is paid for a difference in price, one yuan a piece.
std::span<const Goods> SamplePriceDifferences();

struct Attribute {
  int id;
  std::string_view name;
};
std::span<const Attribute> SampleAttributes();

}  // namespace tessarlorn::cli
