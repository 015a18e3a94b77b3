// Takes values where they stand, so that a host need not copy what it converts.
#pragma once

#include <string_view>

#include "tessarlorn/variant.h"

namespace tessarlorn {

/// Takes one value after the other.
class ValueTaker {
 public:
  ValueTaker() = default;
  ValueTaker(const ValueTaker&) = delete;
  ValueTaker& operator=(const ValueTaker&) = delete;
  virtual ~ValueTaker() = default;
  /// A text, good for as long as the call.
  virtual void TakeText(std::string_view text) = 0;
  virtual void Take(const Variant& value) = 0;
};

}  // namespace tessarlorn
