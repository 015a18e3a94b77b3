#include "tsql/engine/plans/bind.h"

#include <algorithm>
#include <optional>

#include "platform/text/text.h"
#include "tsql/functions/functions.h"
#include "tsql/translate/common/literals.h"

namespace tessarlorn::tsql {
namespace {

/// Before it computes a constant SQLite compares it with every other one of the statement, to compute it once. For
/// thousands of them that takes longer than all else: it is left out then.
class OneByOne {
 public:
  OneByOne(sqlite3* database, std::size_t constants) : database_(constants > kMany ? database : nullptr) {
    constexpr unsigned kFactorOutConstants = 0x8;
    if (database_ != nullptr) sqlite3_test_control(SQLITE_TESTCTRL_OPTIMIZATIONS, database_, kFactorOutConstants);
  }
  OneByOne(const OneByOne&) = delete;
  OneByOne& operator=(const OneByOne&) = delete;
  ~OneByOne() {
    if (database_ != nullptr) sqlite3_test_control(SQLITE_TESTCTRL_OPTIMIZATIONS, database_, 0U);
  }

 private:
  static constexpr std::size_t kMany = 500;
  sqlite3* database_;
};

Datum LiteralValue(const Token& token, SqlType& type) {
  switch (token.kind) {
    case TokenKind::kInteger: {
      const auto value = WholeNumber<std::int64_t>(token.text);
      if (value && type.is_integer()) return *value;
      break;
    }
    case TokenKind::kFloat:
      return Convert(std::string(token.text), VarCharType(0), FloatType());
    case TokenKind::kMoney:
      return MoneyLiteral(token.text);
    case TokenKind::kBinary:
      return BinaryLiteral(token.text);
    case TokenKind::kString:
    case TokenKind::kNString:
      return token.doubled ? Unquote(token) : std::string(token.text);
    default:
      break;
  }
  const std::optional<Decimal> number = Decimal::Parse(token.text);
  if (!number)
    throw SqlError(1007,
                   "The number '" + std::string(token.text) +
                       "' is out of the range for numeric representation (maximum precision 38).",
                   15);
  if (!type.is_exact()) type = DecimalType(std::max(1, number->precision()), number->scale());
  return FromDecimal(*number, type);
}

}  // namespace

Datum Binder::Value(const BoundParameter& parameter, const Activation& activation) {
  SqlType from = parameter.from;
  Datum value;
  switch (parameter.source) {
    case BoundParameter::Source::kLiteral:
      value = LiteralValue(activation.literals[static_cast<std::size_t>(parameter.index)], from);
      break;
    case BoundParameter::Source::kVariable:
      value = activation.frame->Get(parameter.name).value;
      break;
    case BoundParameter::Source::kSystem:
      value = system_.Get(parameter.name, from);
      break;
    default:
      value = parameter.constant;
      break;
  }
  try {
    return Convert(value, from, parameter.to, StyleFor(parameter.to, parameter.style, database_.runtime().date_order),
                   parameter.fit);
  } catch (const SqlError& error) {
    if (error.number() != 8152 || parameter.column.empty()) throw;
    const std::string* text = std::get_if<std::string>(&value);
    RaiseTruncated(parameter.table, parameter.column, text == nullptr ? "" : *text, parameter.to);
  }
}

std::shared_ptr<const ListItems> Binder::ListValues(const BoundParameter& parameter, const Activation& activation) {
  const Token& list = activation.lists[static_cast<std::size_t>(parameter.index)];
  auto items = std::make_shared<ListItems>();
  items->reserve(list.count);
  for (std::uint32_t i = 0; i < list.count; ++i) {
    const Token& token = (*activation.list_items)[list.id + i];
    const bool text = token.kind == TokenKind::kString || token.kind == TokenKind::kNString;
    SqlType from = text ? NVarCharType(0) : BigIntType();
    Datum value = LiteralValue(token, from);
    items->push_back(
        Convert(value, from, parameter.to, StyleFor(parameter.to, 0, database_.runtime().date_order), Fit::kCompare));
  }
  return items;
}

void Binder::BindParameter(SqliteStatement& statement, int index, const BoundParameter& parameter,
                           const Activation& activation) {
  if (parameter.source == BoundParameter::Source::kList) {
    statement.BindList(index, ListValues(parameter, activation));
    return;
  }
  // The ways of most literals, without a copy: whole numbers, and text that fits. The batch outlives the statement's
  // run.
  if (parameter.source == BoundParameter::Source::kLiteral) {
    const Token& token = activation.literals[static_cast<std::size_t>(parameter.index)];
    if (token.kind == TokenKind::kInteger && parameter.from.is_integer() &&
        (parameter.to.kind == FieldType::kInt || parameter.to.kind == FieldType::kBigInt)) {
      statement.BindInteger(index, WholeNumber<std::int64_t>(token.text).value_or(0));
      return;
    }
    const bool text = token.kind == TokenKind::kString || token.kind == TokenKind::kNString;
    const bool varying = parameter.to.kind == FieldType::kNVarChar || parameter.to.kind == FieldType::kVarChar;
    if (text && varying && !token.doubled &&
        (parameter.to.size == 0 || token.text.size() <= static_cast<std::size_t>(parameter.to.size))) {
      statement.BindStaticText(index, token.text);
      return;
    }
  }
  statement.BindValue(index, Value(parameter, activation));
}

void Binder::Bind(Compiled& compiled, const Activation& activation) {
  if (!compiled.statement.prepared()) {
    const OneByOne guard(database_.handle(), compiled.parameters.size());
    compiled.statement = database_.Prepare(compiled.sql);
  }
  for (std::size_t i = 0; i < compiled.parameters.size(); ++i) {
    BindParameter(compiled.statement, static_cast<int>(i) + 1, compiled.parameters[i], activation);
  }
}

}  // namespace tessarlorn::tsql
