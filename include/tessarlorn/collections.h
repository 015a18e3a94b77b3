// The two collections in which operations take and answer values: Dictionary and Vector.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "tessarlorn/variant.h"

namespace tessarlorn {

/// Keyed collection: keys are case-sensitive texts, the order is that of insertion, entries can be read by position.
class Dictionary {
 public:
  using Entry = std::pair<std::string, Variant>;

  Dictionary() = default;
  Dictionary(std::initializer_list<Entry> entries);

  [[nodiscard]] std::size_t size() const noexcept { return entries_.size(); }
  [[nodiscard]] bool empty() const noexcept { return entries_.empty(); }
  [[nodiscard]] bool Exists(std::string_view key) const;
  /// The value under `key`, or nullptr.
  [[nodiscard]] const Variant* Find(std::string_view key) const;
  /// The value under `key`; `fallback` when there is none.
  [[nodiscard]] Variant GetValue(std::string_view key, Variant fallback = {}) const;
  /// Writes: a new key goes to the end, an existing one keeps its place.
  void SetValue(std::string_view key, Variant value);
  bool Remove(std::string_view key);
  /// Gives an entry another key in its place; false when there is none under `key`. @pre nothing is under `new_key`
  bool Rename(std::string_view key, std::string_view new_key);

  /// Entry by position, counted from 1. Raises 9 "Subscript out of range".
  [[nodiscard]] const Entry& At(std::size_t position) const;
  [[nodiscard]] auto begin() const noexcept { return entries_.begin(); }
  [[nodiscard]] auto end() const noexcept { return entries_.end(); }

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>{}(text); }
  };
  /// Up to so many keys are searched one by one.
  static constexpr std::size_t kMostUnindexed = 12;
  static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);
  [[nodiscard]] std::size_t Position(std::string_view key) const;

  std::vector<Entry> entries_;
  /// Of every key, once there are more than kMostUnindexed; empty before.
  std::unordered_map<std::string, std::size_t, Hash, std::equal_to<>> index_;
};

/// Ordered collection, counted from 1.
class Vector {
 public:
  Vector() = default;
  Vector(std::initializer_list<Variant> items) : items_(items) {}

  [[nodiscard]] std::size_t size() const noexcept { return items_.size(); }
  [[nodiscard]] bool empty() const noexcept { return items_.empty(); }
  void Add(Variant item) { items_.push_back(std::move(item)); }
  /// Item by position, counted from 1. Raises 9 "Subscript out of range".
  [[nodiscard]] const Variant& At(std::size_t position) const;
  /// Raise 9 as At() does.
  void Set(std::size_t position, Variant item);
  void Remove(std::size_t position);
  [[nodiscard]] auto begin() const noexcept { return items_.begin(); }
  [[nodiscard]] auto end() const noexcept { return items_.end(); }

 private:
  std::vector<Variant> items_;
};

}  // namespace tessarlorn
