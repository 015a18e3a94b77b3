// Automation's array of values, as results and arguments carry it.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "hosts/objects/value_taker.h"
#include "tessarlorn/error.h"
#include "tessarlorn/object.h"
#include "tessarlorn/variant.h"

namespace tessarlorn {

/// Values that are read each time when they are asked for, so that many need not stand in memory twice.
class ArraySource {
 public:
  virtual ~ArraySource() = default;
  /// @pre place is below the array's size()
  [[nodiscard]] virtual Variant At(std::size_t place) const = 0;
  /// @param size of the array
  virtual void Each(std::size_t size, ValueTaker& taker) const {
    for (std::size_t place = 0; place < size; ++place) taker.Take(At(place));
  }
};

/// Values in one or two dimensions, counted from 0. Only held by a Variant, never called.
class Array final : public Object {
 public:
  /// In one dimension.
  explicit Array(std::vector<Variant> values) : values_(std::move(values)), size_(values_.size()) {}
  /// @param columns of each row; the values stand row by row
  Array(std::vector<Variant> values, std::size_t columns)
      : values_(std::move(values)), size_(values_.size()), columns_(columns) {}
  /// @pre the source is not nullptr
  /// @param columns 0 in one dimension
  Array(std::unique_ptr<const ArraySource> source, std::size_t size, std::size_t columns)
      : source_(std::move(source)), size_(size), columns_(columns) {}

  /// Where the values are read, or nullptr.
  [[nodiscard]] const ArraySource* source() const noexcept { return source_.get(); }
  /// 1 or 2; 2 for an array of a client's with more.
  [[nodiscard]] int dimensions() const noexcept { return columns_ == 0 ? 1 : 2; }
  /// 0 in one dimension.
  [[nodiscard]] std::size_t columns() const noexcept { return columns_; }
  /// Values in all rows.
  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  /// @pre place < size()
  [[nodiscard]] Variant At(std::size_t place) const { return source_ ? source_->At(place) : values_[place]; }
  void Each(ValueTaker& taker) const {
    if (source_) return source_->Each(size_, taker);
    for (const Variant& value : values_) taker.Take(value);
  }
  /// All of them.
  [[nodiscard]] std::vector<Variant> Values() const {
    if (!source_) return values_;
    std::vector<Variant> values;
    values.reserve(size_);
    for (std::size_t place = 0; place < size_; ++place) values.push_back(source_->At(place));
    return values;
  }

  Variant Call(std::string_view method, std::span<const Variant>) override {
    Raise(error_number::kNoSuchMember, "An array has no member " + std::string(method));
  }

 private:
  std::vector<Variant> values_;
  std::unique_ptr<const ArraySource> source_;
  std::size_t size_ = 0;
  std::size_t columns_ = 0;
};

/// An array in one dimension as a Variant.
inline Variant ToArray(std::vector<Variant> values) {
  return std::shared_ptr<Object>(std::make_shared<Array>(std::move(values)));
}

}  // namespace tessarlorn
