// Master data of the sample installation: who and what its orders point to.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tessarlorn/connection.h"

namespace tessarlorn::cli {

struct Shop {
  int id = 0;
  int type = 0;
  int stock = 0;
};
struct Stock {
  int id = 0;
  /// Its stock places; none when it is not kept by stock places.
  std::vector<int> places;
};
struct Employee {
  int id = 0;
  std::string number;
};
struct Place {
  int province = 0;
  int city = 0;
  int district = 0;
};
struct Item {
  int id = 0;
  std::string number;
  std::string name;
  int unit = 0;
  std::int64_t price_cents = 0;
  bool batch = false;
  /// Gross weight of one unit in grams.
  std::int64_t grams = 0;
};

/// What sample orders choose from. Nothing is empty.
struct MasterData {
  std::vector<Shop> shops;
  std::vector<Stock> stocks;
  std::vector<Employee> employees;
  std::vector<int> users;
  /// Those with a code.
  std::vector<int> carriers;
  std::vector<int> currencies;
  std::vector<int> promotions;
  std::vector<int> attributes;
  std::vector<int> trace_states;
  std::vector<Place> places;
  std::vector<Item> items;
  /// Items without goods, which make good a difference in price; one of key 0 where there is none.
  std::vector<Item> price_differences;
  std::vector<int> packages;
  /// The warehouses of outside providers that are in use, for goods in order.
  std::vector<int> outside_stocks;
  /// 0 where there is none.
  int carrier_without_code = 0;
  /// The carrier that gives waybills over the wire; 0 where there is none.
  int courier = 0;
  std::vector<int> electronic_carriers;
  int country = 0;
};

/// Fills each master table that is empty, then reads what the tables hold. Raises what the database raises.
MasterData PrepareMasterData(Connection& connection);

}  // namespace tessarlorn::cli
