// The states that sample orders are in, and how often each is dealt.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "samples/random.h"
#include "samples/settings.h"

namespace tessarlorn::cli {

/// How far an order has come; each stage includes those before it.
enum class Stage : std::uint8_t { kWaiting, kConfirmed, kChecked, kWeighed, kDelivered };
inline constexpr int kStages = 5;

/// 2, 6 or 14.
constexpr int OrderStatus(Stage stage) { return stage == Stage::kWaiting ? 2 : stage == Stage::kDelivered ? 14 : 6; }

enum class Refund : std::uint8_t { kNone, kRequested, kWaitsForVerification, kRefused };

struct Scenario {
  /// How many of a deck.
  int quota = 1;
  Stage stage = Stage::kWaiting;
  int transaction_status = code::kPaid;
  bool manual = false;
  bool offline = false;
  /// FUpLoadStatus, and why it failed.
  int upload = 0;
  std::string_view failure = {};
  Refund refund = Refund::kNone;
  /// FLockStatus; 0 = not locked.
  int lock = 0;
  std::string_view lock_reason = {};
  bool picking_check_failed = false;
  /// FTplStatus; none = not at an outside warehouse.
  std::string_view outside_state = {};
  /// FStockBillStatus; 0 = not queued.
  int stock_bill = 0;
  std::string_view stock_bill_result = {};
};

/// Orders of the last days that are still in the house.
std::span<const Scenario> OpenScenarios();
/// Older ones, delivered.
std::span<const Scenario> DeliveredScenarios();

/// Deals scenarios in random order, each as often as its quota says before any comes again.
class ScenarioDeck {
 public:
  explicit ScenarioDeck(std::span<const Scenario> scenarios);
  const Scenario& Next(Random& random);

 private:
  std::vector<const Scenario*> cards_;
  std::size_t next_ = 0;
};

}  // namespace tessarlorn::cli
