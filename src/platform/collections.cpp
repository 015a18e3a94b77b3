#include "tessarlorn/collections.h"

#include <algorithm>

#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

template <typename Items>
const auto& ItemAt(const Items& items, std::size_t position) {
  if (position < 1 || position > items.size()) Raise(error_number::kSubscriptOutOfRange, "Subscript out of range");
  return items[position - 1];
}

}  // namespace

Dictionary::Dictionary(std::initializer_list<Entry> entries) {
  for (const auto& [key, value] : entries) SetValue(key, value);
}

std::size_t Dictionary::Position(std::string_view key) const {
  if (index_.empty()) {
    const auto found =
        std::find_if(entries_.begin(), entries_.end(), [key](const Entry& entry) { return entry.first == key; });
    return found == entries_.end() ? kNowhere : static_cast<std::size_t>(found - entries_.begin());
  }
  const auto found = index_.find(key);
  return found == index_.end() ? kNowhere : found->second;
}

bool Dictionary::Exists(std::string_view key) const { return Position(key) != kNowhere; }

const Variant* Dictionary::Find(std::string_view key) const {
  const std::size_t position = Position(key);
  return position == kNowhere ? nullptr : &entries_[position].second;
}

Variant Dictionary::GetValue(std::string_view key, Variant fallback) const {
  const Variant* value = Find(key);
  if (value != nullptr) return *value;
  return fallback;
}

void Dictionary::SetValue(std::string_view key, Variant value) {
  const std::size_t position = Position(key);
  if (position != kNowhere) {
    entries_[position].second = std::move(value);
    return;
  }
  entries_.emplace_back(key, std::move(value));
  if (entries_.size() <= kMostUnindexed) return;
  if (index_.empty()) {
    for (const Entry& entry : entries_) index_.emplace(entry.first, index_.size());
  } else {
    index_.emplace(key, entries_.size() - 1);
  }
}

bool Dictionary::Remove(std::string_view key) {
  const std::size_t position = Position(key);
  if (position == kNowhere) return false;
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(position));
  if (index_.empty()) return true;
  index_.erase(index_.find(key));
  for (auto& [name, place] : index_) {
    if (place > position) --place;
  }
  return true;
}

bool Dictionary::Rename(std::string_view key, std::string_view new_key) {
  const std::size_t position = Position(key);
  if (position == kNowhere) return false;
  if (!index_.empty()) {
    index_.erase(index_.find(key));
    index_.emplace(new_key, position);
  }
  entries_[position].first = new_key;
  return true;
}

const Dictionary::Entry& Dictionary::At(std::size_t position) const { return ItemAt(entries_, position); }

const Variant& Vector::At(std::size_t position) const { return ItemAt(items_, position); }

void Vector::Set(std::size_t position, Variant item) {
  static_cast<void>(At(position));
  items_[position - 1] = std::move(item);
}

void Vector::Remove(std::size_t position) {
  static_cast<void>(At(position));
  items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(position - 1));
}

}  // namespace tessarlorn
