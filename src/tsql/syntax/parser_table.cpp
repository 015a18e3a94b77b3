// CREATE TABLE and ALTER TABLE: columns and constraints.
#include <array>
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

StatementPtr Parser::ParseCreateTable() {
  const std::uint32_t line = Take().line;
  CreateTableStatement create;
  create.table = ParseObjectName();
  create.elements = ParseTableElements();
  AcceptIndexOptions();
  return MakeStatement(line, std::move(create));
}

TableElements Parser::ParseTableElements() {
  TableElements elements;
  Expect(Op::kLeftParen);
  do {
    if (At(Op::kRightParen) && !elements.columns.empty()) break;  // a comma behind the last column
    ParseTableElement(elements);
  } while (Accept(Op::kComma));
  Expect(Op::kRightParen);
  return elements;
}

StatementPtr Parser::ParseAlterTable() {
  const std::uint32_t line = Take().line;
  AlterTableStatement alter;
  alter.table = ParseObjectName();
  if ((At("enable"_kw) || At("disable"_kw)) && At("trigger"_kw, 1)) {
    return ParseSwitchTriggersOf(std::move(alter.table), line);
  }
  if (AcceptBoth("with"_kw, "nocheck"_kw)) Refuse("ALTER TABLE … WITH NOCHECK");
  AcceptBoth("with"_kw, "check"_kw);
  if (Accept("add"_kw)) {
    AlterTableStatement::Add add;
    do {
      ParseTableElement(add.elements);
    } while (Accept(Op::kComma));
    alter.action = std::move(add);
  } else if (Accept("drop"_kw)) {
    alter.action = ParseDroppedElements();
  } else if (AcceptBoth("alter"_kw, "column"_kw)) {
    AlterTableStatement::AlterColumn change;
    change.column.name = ParseName();
    if (At("add"_kw) || At("drop"_kw)) Refuse("ALTER COLUMN … " + UpperCase(Peek().text));
    change.column.type = ParseType();
    while (AcceptColumnProperty(change.column)) continue;
    if (change.column.identity) Fail();
    alter.action = std::move(change);
  } else {
    if (Peek().kind != TokenKind::kWord) Fail();
    Refuse("ALTER TABLE … " + UpperCase(Peek().text));
  }
  return MakeStatement(line, std::move(alter));
}

AlterTableStatement::Drop Parser::ParseDroppedElements() {
  AlterTableStatement::Drop drop;
  AlterTableStatement::Dropped item;
  do {
    const bool column = Accept("column"_kw);
    if (column || Accept("constraint"_kw) || drop.items.empty()) {
      item.column = column;
      item.if_exists = AcceptBoth("if"_kw, "exists"_kw);
    }
    item.name = ParseName();
    drop.items.push_back(item);
  } while (Accept(Op::kComma));
  return drop;
}

void Parser::ParseTableElement(TableElements& elements) {
  constexpr std::array kConstraintWords = {"constraint"_kw, "primary"_kw, "unique"_kw,
                                           "check"_kw,      "foreign"_kw, "default"_kw};
  if (AtAny(kConstraintWords)) {
    elements.constraints.push_back(ParseTableConstraint());
    return;
  }
  if (At("index"_kw)) Refuse("An INDEX within CREATE TABLE");
  elements.columns.push_back(ParseColumnDefinition(elements.constraints));
}

ColumnDefinition Parser::ParseColumnDefinition(std::vector<TableConstraint>& constraints) {
  ColumnDefinition column;
  column.name = ParseName();
  if (Accept("as"_kw)) {
    ParseDefault(column.computed, column.computed_text);
    column.persisted = Accept("persisted"_kw);
  } else {
    column.type = ParseType();
  }
  while (AcceptColumnProperty(column) || AcceptColumnConstraint(column, constraints)) continue;
  return column;
}

bool Parser::AcceptColumnProperty(ColumnDefinition& column) {
  if (Accept("null"_kw)) {
    column.nullable = true;
    return true;
  }
  if (At("not"_kw) && At("null"_kw, 1)) {
    position_ += 2;
    column.nullable = false;
    return true;
  }
  if (AcceptBoth("not"_kw, "for"_kw)) {
    Expect("replication"_kw);
    return true;
  }
  if (Accept("identity"_kw)) {
    column.identity = true;
    if (Accept(Op::kLeftParen)) {
      column.identity_seed = ParseSignedInteger();
      Expect(Op::kComma);
      column.identity_increment = ParseSignedInteger();
      Expect(Op::kRightParen);
    }
    return true;
  }
  if (Accept("collate"_kw)) {
    column.collation = ParseName();
    return true;
  }
  return Accept("rowguidcol"_kw) || Accept("sparse"_kw);
}

bool Parser::AcceptColumnConstraint(ColumnDefinition& column, std::vector<TableConstraint>& constraints) {
  TableConstraint constraint;
  const bool named = Accept("constraint"_kw);
  if (named) constraint.name = ParseName();
  if (Accept("default"_kw)) {
    ParseDefault(column.default_value, column.default_text);
    column.with_values = AcceptBoth("with"_kw, "values"_kw);
    constraint.rule = DefaultRule{column.name, nullptr, {}};
  } else if (Accept("primary"_kw)) {
    Expect("key"_kw);
    constraint.rule = PrimaryKeyRule{{column.name}};
    column.primary_key = !named;
    AcceptIndexOptions();
  } else if (Accept("unique"_kw)) {
    constraint.rule = UniqueRule{{column.name}};
    column.unique = !named;
    AcceptIndexOptions();
  } else if (Accept("check"_kw)) {
    // Two unnamed checks of one column: the second one is the table's.
    if (!named && column.check == nullptr) {
      ParseCheck(column.check, column.check_text);
      return true;
    }
    CheckRule check;
    ParseCheck(check.condition, check.text);
    if (named) check.column = column.name;
    constraint.rule = std::move(check);
    constraints.push_back(std::move(constraint));
    return true;
  } else if (AcceptBoth("foreign"_kw, "key"_kw) || At("references"_kw)) {
    ForeignKeyRule key{{column.name}, {}, {}};
    ParseReferences(key);
    constraint.rule = std::move(key);
    constraints.push_back(std::move(constraint));
    return true;
  } else {
    if (named) Fail();
    return false;
  }
  if (named) constraints.push_back(std::move(constraint));
  return true;
}

TableConstraint Parser::ParseTableConstraint() {
  TableConstraint constraint;
  if (Accept("constraint"_kw)) constraint.name = ParseName();
  const bool primary = At("primary"_kw);
  if (primary || At("unique"_kw)) {
    Take();
    if (primary) Expect("key"_kw);
    AcceptIndexOptions();
    std::vector<std::string> columns = ParseKeyColumns();
    AcceptIndexOptions();
    if (primary) {
      constraint.rule = PrimaryKeyRule{std::move(columns)};
    } else {
      constraint.rule = UniqueRule{std::move(columns)};
    }
  } else if (Accept("check"_kw)) {
    CheckRule check;
    ParseCheck(check.condition, check.text);
    constraint.rule = std::move(check);
  } else if (Accept("default"_kw)) {
    DefaultRule rule;
    ParseDefault(rule.value, rule.text);
    Expect("for"_kw);
    rule.column = ParseName();
    AcceptBoth("with"_kw, "values"_kw);
    constraint.rule = std::move(rule);
  } else {
    Expect("foreign"_kw);
    Expect("key"_kw);
    ForeignKeyRule key{ParseNameList(), {}, {}};
    ParseReferences(key);
    constraint.rule = std::move(key);
  }
  return constraint;
}

void Parser::ParseReferences(ForeignKeyRule& rule) {
  Expect("references"_kw);
  rule.references = ParseObjectName();
  if (At(Op::kLeftParen)) rule.referenced_columns = ParseNameList();
  while (At("on"_kw) && (At("delete"_kw, 1) || At("update"_kw, 1))) {
    Take();
    const std::string event = UpperCase(Take().text);
    if (!AcceptBoth("no"_kw, "action"_kw)) Refuse("ON " + event + " " + UpperCase(Peek().text));
  }
}

void Parser::ParseDefault(ExpressionPtr& value, std::string& text) {
  const std::size_t begin = position_;
  value = ParseValue();
  text = TextBetween(begin, position_);
}

void Parser::ParseCheck(ExpressionPtr& check, std::string& text) {
  if (AcceptBoth("not"_kw, "for"_kw)) Expect("replication"_kw);
  Expect(Op::kLeftParen);
  const std::size_t begin = position_;
  check = ParseCondition();
  text = TextBetween(begin, position_);
  Expect(Op::kRightParen);
}

std::vector<std::string> Parser::ParseKeyColumns() {
  std::vector<std::string> columns;
  Expect(Op::kLeftParen);
  do {
    columns.push_back(ParseName());
    if (!Accept("asc"_kw)) Accept("desc"_kw);
  } while (Accept(Op::kComma));
  Expect(Op::kRightParen);
  return columns;
}

void Parser::SkipIndexOptions() {
  const std::size_t close = MatchingParen(position_);
  for (std::size_t ahead = 1; position_ + ahead < close; ++ahead) {
    if (At("ignore_dup_key"_kw, ahead) && At("on"_kw, ahead + 2)) Refuse("IGNORE_DUP_KEY = ON");
  }
  SkipParens();
}

// What tells the server where and how to store an index or a table: without meaning here.
void Parser::AcceptIndexOptions() {
  for (;;) {
    if (Accept("clustered"_kw) || Accept("nonclustered"_kw) || Accept("asc"_kw) || Accept("desc"_kw)) continue;
    if (At("with"_kw) && At("ignore_dup_key"_kw, 1)) Refuse("IGNORE_DUP_KEY");
    if (At("with"_kw) && At(Op::kLeftParen, 1)) {
      Take();
      SkipIndexOptions();
    } else if (AcceptBoth("with"_kw, "fillfactor"_kw)) {
      Expect(Op::kEqual);
      ParseSignedInteger();
    } else if ((At("on"_kw) || At("textimage_on"_kw)) && AtName(1)) {
      Take();
      Take();
    } else {
      return;
    }
  }
}

}  // namespace tessarlorn::tsql
