#include "platform/collections.h"

#include "platform/error.h"

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

bool Dictionary::Exists(std::string_view key) const { return index_.find(key) != index_.end(); }

const Variant* Dictionary::Find(std::string_view key) const {
  const auto found = index_.find(key);
  return found == index_.end() ? nullptr : &entries_[found->second].second;
}

Variant Dictionary::GetValue(std::string_view key, Variant fallback) const {
  const Variant* value = Find(key);
  if (value != nullptr) return *value;
  return fallback;
}

void Dictionary::SetValue(std::string_view key, Variant value) {
  const auto found = index_.find(key);
  if (found != index_.end()) {
    entries_[found->second].second = std::move(value);
    return;
  }
  entries_.emplace_back(key, std::move(value));
  index_.emplace(key, entries_.size() - 1);
}

bool Dictionary::Remove(std::string_view key) {
  const auto found = index_.find(key);
  if (found == index_.end()) return false;
  const std::size_t position = found->second;
  index_.erase(found);
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(position));
  for (auto& [name, place] : index_) {
    if (place > position) --place;
  }
  return true;
}

const Dictionary::Entry& Dictionary::At(std::size_t position) const { return ItemAt(entries_, position); }

const Variant& Vector::At(std::size_t position) const { return ItemAt(items_, position); }

}  // namespace tessarlorn
