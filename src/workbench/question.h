// What the workbench page asks beyond the operations, with its values as parameters. Questions read; two change
// something that no operation does, and say so.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tessarlorn/collections.h"
#include "tessarlorn/connection.h"
#include "tessarlorn/contract.h"

namespace tessarlorn::workbench {

/// Most keys of orders that a question answers.
inline constexpr std::int32_t kMostOrders = 100'000;
/// Most keys of orders, or numbers, that a question takes.
inline constexpr std::size_t kMostKeys = 500;

/// Most characters (UTF-16 units) of a text.
inline constexpr std::size_t kLongestText = 1000;

/// Who asks.
struct Asker {
  /// Of the ERP.
  std::int32_t user = 0;
  /// CHS, CHT or another code.
  std::string language;
  /// Whether he may see the orders of every web shop.
  bool every_shop = false;
};

/// A value that is none of those which its key takes. `what()` is one sentence without an end.
class WrongValue : public std::runtime_error {
 public:
  WrongValue(std::string_view key, const std::string& what) : std::runtime_error(what), key_(key) {}
  [[nodiscard]] const std::string& key() const noexcept { return key_; }

 private:
  std::string key_;
};

/// A question that an operation answers, with what it is given.
struct OperationCall {
  std::string_view operation;
  /// The argument that takes the Dictionary.
  std::string_view argument;
  Dictionary values;
};

inline constexpr std::array<std::string_view, 1> kListRight = {"GetListData"};

struct Question {
  std::string_view name;
  /// One paragraph.
  std::string_view help;
  /// What it is asked with. `type` is String, Long, Boolean, Date or Vector: of whole numbers where it stands as a list
  /// of keys, else of texts. No key but a mandatory one has to be there.
  std::span<const Key> keys;
  /// Dates may be NULL. Empty where the operation decides.
  std::span<const Column> columns;
  /// Answers the rows. @param values have the types of `keys`. Raises WrongValue, and what the connection
  /// raises.
  RecordsetPtr (*ask)(Connection& connection, const Asker& asker, const Dictionary& values) = nullptr;
  /// In its place, for a question to an operation.
  OperationCall (*call)(const Dictionary& values) = nullptr;
  /// Operations of which whoever asks must be allowed to call one: it shows or does as much.
  std::span<const std::string_view> rights = kListRight;
  /// It changes the orders whose keys it answers.
  bool writes = false;
};

/// In the order in which the description lists them.
std::span<const Question> Questions();

/// By name; nullptr when there is none.
const Question* FindQuestion(std::string_view name);

}  // namespace tessarlorn::workbench
