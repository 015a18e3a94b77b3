// Automation's array of values, as results and arguments carry it.
#pragma once

#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "platform/error.h"
#include "platform/object_service.h"
#include "platform/variant.h"

namespace tessarlorn {

/// Values in one or two dimensions, counted from 0. Only held by a Variant, never called.
class Array final : public Object {
 public:
  /// @param columns of each row; the values stand row by row
  Array(std::vector<Variant> values, std::size_t columns) : values_(std::move(values)), columns_(columns) {}
  /// In one dimension.
  explicit Array(std::vector<Variant> values) : values_(std::move(values)) {}

  /// 1 or 2.
  [[nodiscard]] int dimensions() const noexcept { return columns_ == 0 ? 1 : 2; }
  /// 0 in one dimension.
  [[nodiscard]] std::size_t columns() const noexcept { return columns_; }
  [[nodiscard]] std::span<const Variant> values() const noexcept { return values_; }

  Variant Call(std::string_view method, std::span<const Variant>) override {
    Raise(error_number::kNoSuchMember, "An array has no member " + std::string(method));
  }

 private:
  std::vector<Variant> values_;
  std::size_t columns_ = 0;
};

/// An array in one dimension as a Variant.
inline Variant ToArray(std::vector<Variant> values) {
  return std::shared_ptr<Object>(std::make_shared<Array>(std::move(values)));
}

}  // namespace tessarlorn
