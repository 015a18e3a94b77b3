// A statement that grows with its parameters.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tessarlorn/connection.h"
#include "tessarlorn/sql_command.h"
#include "workbench/question.h"

namespace tessarlorn::workbench {

/// Text from users goes into its parameters only.
class Statement {
 public:
  explicit Statement(std::string text = {}) : text_(std::move(text)) {}

  Statement& Add(std::string_view text) {
    text_ += text;
    return *this;
  }
  /// @param name with its @
  Statement& Set(std::string name, std::string type, Variant value) {
    parameters_.push_back({.name = std::move(name), .type = std::move(type), .value = std::move(value)});
    return *this;
  }
  /// Leaves the orders t1 of the web shops that the asker may see. Once for each statement's parameters.
  Statement& SetShops(const Asker& asker);

  RecordsetPtr Run(Connection& connection) { return connection.ExecuteAnswer({text_, parameters_}); }

 private:
  std::string text_;
  std::vector<SqlParameter> parameters_;
};

/// The keys of orders that a question was asked with, with commas between them.
std::string KeyList(const Dictionary& values);

/// The text as LIKE … ESCAPE '\\' takes it letter by letter.
std::string EscapedForLike(const std::string& text);

/// The unique code that a number on a parcel may be; nothing for one that is none.
Variant UniqueCodeOf(const std::string& text);

/// Leaves the orders t1 that are not locked, for counts: the few locked ones are read at once, instead of the extension
/// of each order.
inline constexpr std::string_view kNotLocked =
    "t1.FID NOT IN (SELECT FID FROM IC_Web2ERPOrdersEx with(nolock) WHERE FIsLock > 0 OR FIsLock < 0)";

/// The condition behind AND that leaves the orders t1 of web shops that the asker may see; it wants @user. "" for one
/// who sees every shop.
std::string_view OfShops(const Asker& asker);

}  // namespace tessarlorn::workbench
