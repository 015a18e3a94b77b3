// The contract of an operation: one row that the frame, the table of operations, the help and the pages read.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace tessarlorn {

/// The types of automation that arguments, keys, results and columns have. kVariant is a value of any type.
enum class ValueType : std::uint8_t {
  kString,
  kLong,
  kInteger,
  kDouble,
  kBoolean,
  kDate,
  kDictionary,
  kVector,
  kRecordset,
  kVariant,
  /// An exact number: VT_DECIMAL, or VT_CY where the database says money.
  kDecimal,
};

/// "String", "Long", …
std::string_view TypeName(ValueType type);

/// Whether an operation needs a value. Without one that is given or mandatory it does nothing: no session, no error,
/// the empty result.
enum class Need : std::uint8_t {
  kOptional,
  /// The operation does not look; the database refuses the statement that lacks it.
  kUnchecked,
  /// The key is there, whatever its value.
  kGiven,
  /// It is there and not the empty text.
  kMandatory,
};

/// How a value stands in the SQL that the operation sends.
enum class Standing : std::uint8_t {
  /// It does not: it decides, is looked up, or goes to a sibling only.
  kNowhere,
  /// Between single quotes, as it is unless the connection string says Escape=Yes.
  kQuoted,
  /// Between single quotes, which the operation takes out of it unless the connection string says Escape=Yes.
  kStripped,
  /// As a number: what reads it has converted it.
  kNumber,
  /// Bare, where a number is meant.
  kBareNumber,
  /// Bare, as a list of keys with commas between them.
  kKeyList,
  /// Bare, as the name of a table.
  kName,
  /// Bare, as a piece of SQL.
  kSql,
};

/// "between quotes", "as a number", …
std::string_view StandingText(Standing stands);

/// Which orders a value selects. What is stored with an order, as a new waybill number, selects none.
enum class Names : std::uint8_t {
  kNothing,
  /// Those with the key (FID), or with the keys of a list.
  kOrders,
  /// Those that have the line (FEntryID), or the lines of a list; 0 is no line.
  kOrderLines,
  /// Those with the waybill number or, when it reads as one, the unique code.
  kWaybill,
  /// Those with the unique code. Of an argument of which every key counts, the keys.
  kUniqueCode,
  /// Those that the cost invoice covers, or the invoices of a list.
  kCostInvoices,
};

/// "orders", "order lines", …; "" for kNothing.
std::string_view NamesText(Names names);

/// A key that an operation reads from a Dictionary.
struct Key {
  std::string_view name;
  ValueType type = ValueType::kString;
  Standing stands = Standing::kNowhere;
  Need need = Need::kOptional;
  /// What an absent key counts as, as text; "" for an empty text or for nothing at all.
  std::string_view fallback;
  /// One line.
  std::string_view help;
  /// The keys of the Dictionaries in it, for a Vector.
  std::span<const Key> item_keys = {};
  Names names = Names::kNothing;

  /// Whether it holds the connection string.
  [[nodiscard]] constexpr bool is_connection() const noexcept {
    return name == "sDSN" || name == "sDsn" || name == "sProps";
  }
  /// `help`, and what happens without the key where that is more than that it counts as an empty text.
  [[nodiscard]] std::string Explanation() const;
};

/// A column of the Recordset that an operation answers, or a key of its Dictionary or of those in its Vector.
struct Column {
  std::string_view name;
  /// Of every value that is not Null.
  ValueType type = ValueType::kString;
  /// One line.
  std::string_view help;
  /// The keys of the Dictionaries in it, for a Vector.
  std::span<const Column> item_columns = {};
};

/// What the columns of an answer of that type are: "Columns of the answer", "Keys of the answer", …
std::string_view ColumnsTitle(ValueType result);

/// What the signature of the member function does not tell about an argument.
struct ArgumentContract {
  std::string_view name;
  /// Of a value that is no Dictionary or Vector. Where every key counts, that of the values; the keys stand bare then,
  /// as numbers.
  Standing stands = Standing::kNowhere;
  Need need = Need::kOptional;
  /// The keys of a Dictionary, or of the Dictionaries in a Vector.
  std::span<const Key> keys = {};
  /// Every key counts, whatever its name; `keys` is empty.
  bool any_key = false;
  /// A client may leave it out.
  bool optional = false;
  Names names = Names::kNothing;

  /// Whether it is the connection string.
  [[nodiscard]] constexpr bool is_connection() const noexcept {
    return name == "sDsn" || name == "strDSN" || name == "PropsString";
  }
};

/// Up to eight arguments in their order.
class ArgumentList {
 public:
  static constexpr std::size_t kMost = 8;

  consteval ArgumentList(std::initializer_list<ArgumentContract> arguments) : count_(arguments.size()) {
    std::copy(arguments.begin(), arguments.end(), list_.begin());
  }
  [[nodiscard]] constexpr std::size_t size() const noexcept { return count_; }
  [[nodiscard]] constexpr const ArgumentContract& operator[](std::size_t i) const noexcept { return list_[i]; }
  [[nodiscard]] constexpr const ArgumentContract* begin() const noexcept { return list_.data(); }
  [[nodiscard]] constexpr const ArgumentContract* end() const noexcept { return list_.data() + count_; }

 private:
  std::array<ArgumentContract, kMost> list_{};
  std::size_t count_;
};

struct Contract {
  std::string_view name;
  /// Under which its errors come out; "" for those that keep theirs, or raise nothing.
  std::string_view source;
  ArgumentList arguments;
  /// One paragraph: what it does, and what it answers when parameters are missing or nothing matches.
  std::string_view help;
  /// What it raises beside the database's errors, as it stands behind "Raises with Source X, "; "" for nothing.
  std::string_view errors = {};
  /// What it answers, in this order, where neither data nor settings decide that; else none.
  std::span<const Column> columns = {};
  /// It works on orders that none of its values names.
  bool reaches_any_order = false;
  /// It must see what was written just before: a copy of the database that is a little behind does not do.
  bool needs_latest = false;

  /// The keys of its first Dictionary, none when it takes none.
  [[nodiscard]] constexpr std::span<const Key> keys() const noexcept {
    for (const ArgumentContract& argument : arguments) {
      if (!argument.keys.empty()) return argument.keys;
    }
    return {};
  }
  /// `help` and what it raises.
  [[nodiscard]] std::string Explanation() const;
};

/// The row of a member function of the service classes, which stands in contracts.h of its room. A member without one
/// is nullptr, which is no Contract.
template <auto kMember>
inline constexpr std::nullptr_t kContract = nullptr;

}  // namespace tessarlorn
