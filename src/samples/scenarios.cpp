#include "samples/scenarios.h"

namespace tessarlorn::cli {

std::span<const Scenario> OpenScenarios() {
  static constexpr Scenario kScenarios[] = {
      {.quota = 12},
      {.quota = 3, .manual = true},
      {.quota = 2, .transaction_status = code::kClosed},
      {.quota = 2, .refund = Refund::kRequested},
      {.quota = 2, .refund = Refund::kWaitsForVerification},
      {.quota = 1, .refund = Refund::kRefused},
      {.quota = 1, .lock = 1, .lock_reason = "买家要求暂缓发货"},
      {.quota = 2, .lock = 2, .lock_reason = "地址待核实"},
      {.quota = 1, .outside_state = "0"},
      {.quota = 2, .outside_state = "1"},
      {.quota = 1, .outside_state = "2"},
      {.quota = 1, .outside_state = "3"},
      {.quota = 6, .stage = Stage::kConfirmed},
      {.quota = 1, .stage = Stage::kConfirmed, .picking_check_failed = true},
      {.quota = 1, .stage = Stage::kConfirmed, .lock = 2, .lock_reason = "库存盘点"},
      {.quota = 5, .stage = Stage::kChecked},
      {.quota = 3, .stage = Stage::kWeighed},
      {.quota = 2, .stage = Stage::kWeighed, .stock_bill = 1},
      {.quota = 1, .stage = Stage::kWeighed, .outside_state = "1"},
      {.quota = 1, .stage = Stage::kWeighed, .stock_bill = 3, .stock_bill_result = "即时库存不足"},
  };
  return kScenarios;
}

std::span<const Scenario> DeliveredScenarios() {
  constexpr Stage kDelivered = Stage::kDelivered;
  static constexpr Scenario kScenarios[] = {
      {.quota = 30, .stage = kDelivered, .transaction_status = code::kShipped, .upload = 1, .stock_bill = 2},
      {.quota = 49, .stage = kDelivered, .transaction_status = code::kSucceeded, .upload = 1, .stock_bill = 2},
      {.quota = 3, .stage = kDelivered},
      {.quota = 1, .stage = kDelivered, .stock_bill = 1},
      {.quota = 4, .stage = kDelivered, .transaction_status = code::kShipped, .offline = true, .upload = 1},
      {.quota = 3, .stage = kDelivered, .failure = "物流单号重复"},
      {.quota = 1, .stage = kDelivered, .upload = 2, .failure = "店铺授权已过期"},
      {.quota = 1, .stage = kDelivered, .upload = 3},
      {.quota = 3, .stage = kDelivered, .manual = true, .upload = 1, .stock_bill = 2},
      {.quota = 1, .stage = kDelivered, .manual = true},
      {.quota = 2, .stage = kDelivered, .transaction_status = code::kClosed},
      {.quota = 2,
       .stage = kDelivered,
       .transaction_status = code::kShipped,
       .upload = 1,
       .refund = Refund::kRequested},
  };
  return kScenarios;
}

ScenarioDeck::ScenarioDeck(std::span<const Scenario> scenarios) {
  for (const Scenario& scenario : scenarios)
    cards_.insert(cards_.end(), static_cast<std::size_t>(scenario.quota), &scenario);
  next_ = cards_.size();
}

const Scenario& ScenarioDeck::Next(Random& random) {
  if (next_ == cards_.size()) {
    random.Shuffle(std::span(cards_));
    next_ = 0;
  }
  return *cards_[next_++];
}

}  // namespace tessarlorn::cli
