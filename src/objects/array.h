// Automation's array of values, as results and arguments carry it.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/error.h"
#include "platform/object_service.h"
#include "platform/variant.h"

namespace tessarlorn {

/// Values in one or two dimensions, counted from 0. Only held by a Variant, never called.
class Array final : public Object {
 public:
  /// The value at a place below size().
  using Reader = std::function<Variant(std::size_t)>;

  /// In one dimension.
  explicit Array(std::vector<Variant> values) : values_(std::move(values)), size_(values_.size()) {}
  /// @param columns of each row; the values stand row by row
  Array(std::vector<Variant> values, std::size_t columns)
      : values_(std::move(values)), size_(values_.size()), columns_(columns) {}
  /// Of values that are read each time when they are asked for, so that many need not stand in memory twice.
  Array(Reader read, std::size_t size, std::size_t columns) : read_(std::move(read)), size_(size), columns_(columns) {}

  /// 1 or 2.
  [[nodiscard]] int dimensions() const noexcept { return columns_ == 0 ? 1 : 2; }
  /// 0 in one dimension.
  [[nodiscard]] std::size_t columns() const noexcept { return columns_; }
  /// Values in all rows.
  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  /// @pre place < size()
  [[nodiscard]] Variant At(std::size_t place) const { return read_ ? read_(place) : values_[place]; }

  /// All of them.
  [[nodiscard]] std::vector<Variant> Values() const {
    if (!read_) return values_;
    std::vector<Variant> values;
    values.reserve(size_);
    for (std::size_t place = 0; place < size_; ++place) values.push_back(read_(place));
    return values;
  }

  Variant Call(std::string_view method, std::span<const Variant>) override {
    Raise(error_number::kNoSuchMember, "An array has no member " + std::string(method));
  }

 private:
  std::vector<Variant> values_;
  Reader read_;
  std::size_t size_ = 0;
  std::size_t columns_ = 0;
};

/// An array in one dimension as a Variant.
inline Variant ToArray(std::vector<Variant> values) {
  return std::shared_ptr<Object>(std::make_shared<Array>(std::move(values)));
}

}  // namespace tessarlorn
