// Sample data: a believable shop's orders in every state, for trying the component out, for tests and for benchmarks.
#pragma once

#include <cstdint>
#include <functional>

#include "tessarlorn/connection.h"
#include "tessarlorn/date_time.h"

namespace tessarlorn::cli {

/// When the orders of the samples were placed: the delivered ones first, then the open ones, up to the end.
struct SampleDays {
  DateTime end = *DateTime::FromCivil({.year = 2026, .month = 6, .day = 30, .hour = 18});
  int delivered = 355;
  int open = 10;
  /// Whether nothing is of a time behind the end, as on a day that is still going on.
  bool until_end = false;
};

struct SeedOptions {
  /// 0 puts in master data and settings only.
  int orders = 1000;
  /// The same number gives the same orders on every machine, their times included where `days` are the same.
  std::uint64_t random_seed = 1;
  /// Which days the orders are of.
  SampleDays days = {};
};

/// Fills a database that has the schema. Master data and settings that are there already are used as they are; user
/// 16394 is the administrator of those it brings. Works in one transaction on the connection, which must have none
/// open; every few thousand orders and at the end `progress` is told how many orders of how many are in.
///
/// Raises 5 when the database already holds orders or `orders` is negative, 0x80040E31 when another program is writing
/// for longer than the connection waits, and what the database raises; nothing is in then.
void Seed(Connection& connection, const SeedOptions& options, const std::function<void(int done, int total)>& progress);

}  // namespace tessarlorn::cli
