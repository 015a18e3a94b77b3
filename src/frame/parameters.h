// Reading an operation's parameters, once for all operations: presence tests, texts and defaults.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "tessarlorn/collections.h"
#include "tessarlorn/contract.h"

namespace tessarlorn {

/// A view of a parameter Dictionary; Nothing (nullptr) has no keys. Must not outlive the Dictionary.
class Parameters {
 public:
  explicit Parameters(const Dictionary* values) : values_(values) {}

  [[nodiscard]] bool empty() const noexcept { return values_ == nullptr || values_->empty(); }
  [[nodiscard]] bool Has(std::string_view key) const { return Find(key) != nullptr; }
  /// Whether the key exists and its value is not the empty text. Raises 13 for a value that has no text form.
  [[nodiscard]] bool HasText(std::string_view key) const { return !Text(key).empty(); }
  /// Whether each of the keys is there that is needed, and the mandatory ones have a text.
  [[nodiscard]] bool HasAllOf(std::span<const Key> keys) const;
  /// The text of the one that holds the connection string.
  [[nodiscard]] std::string Dsn(std::span<const Key> keys) const;
  /// The value's text, "" when the key is missing. Raises 13 for a value that has no text form.
  [[nodiscard]] std::string Text(std::string_view key) const;
  /// The same, with what the contract says of a missing key.
  [[nodiscard]] std::string TextOrDefault(const Key& key) const;
  /// The value as a number, 0 for a missing key, Empty, Null and the empty text. Raises 13 "Type mismatch" for any
  /// other value that cannot be read as a number, 6 for one beyond 32 bits.
  [[nodiscard]] std::int32_t Number(std::string_view key) const;
  /// The value itself, empty when the key is missing.
  [[nodiscard]] const Variant& Value(std::string_view key) const;
  /// Whether the value is that number, or a text that reads as it; False for a missing key, Empty, Null and the empty
  /// text. Raises 13 "Type mismatch" for any other value that cannot be read as a number.
  [[nodiscard]] bool IsNumber(std::string_view key, std::int32_t number) const;

 private:
  [[nodiscard]] const Variant* Find(std::string_view key) const {
    return values_ == nullptr ? nullptr : values_->Find(key);
  }
  const Dictionary* values_;
};

/// The Dictionary that a Vector's item holds. Raises 13 "Type mismatch" for any other item.
std::shared_ptr<Dictionary> ItemDictionary(const Variant& item);

}  // namespace tessarlorn
