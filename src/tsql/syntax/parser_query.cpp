// Queries: SELECT, VALUES, set operators, FROM with its joins and hints, ORDER BY.
#include <array>
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

// Locks do not differ here: readers see the last committed state, and writers wait for one another.
constexpr std::array kTableHints = std::to_array<std::string_view>({
    "nolock",          "readuncommitted", "readcommitted", "readcommittedlock",
    "repeatableread",  "serializable",    "holdlock",      "snapshot",
    "readpast",        "rowlock",         "paglock",       "tablock",
    "tablockx",        "updlock",         "xlock",         "nowait",
    "fastfirstrow",    "forcescan",       "forceseek",     "noexpand",
    "index",           "keepidentity",    "keepdefaults",  "ignore_constraints",
    "ignore_triggers",
});

constexpr std::array kTableFunctions = std::to_array<std::string_view>({"openjson", "string_split"});

// Advice to the planner, by first word.
constexpr std::array kQueryOptions = std::to_array<std::string_view>({
    "maxdop",
    "recompile",
    "fast",
    "force",
    "hash",
    "loop",
    "merge",
    "order",
    "concat",
    "keep",
    "keepfixed",
    "robust",
    "expand",
    "optimize",
    "querytraceon",
    "maxrecursion",
    "use",
    "max_grant_percent",
    "min_grant_percent",
    "parameterization",
});

QueryPtr MakeQuery(decltype(Query::body) body) {
  auto query = std::make_unique<Query>();
  query->body = std::move(body);
  return query;
}

TableSourcePtr MakeSource(std::uint32_t line, decltype(TableSource::node) node) {
  auto source = std::make_unique<TableSource>();
  source->line = line;
  source->node = std::move(node);
  return source;
}

}  // namespace

QueryPtr Parser::ParseStatementQuery() {
  QueryPtr query = ParseQuery();
  AcceptQueryOptions();
  return query;
}

QueryPtr Parser::ParseQueryInParens() {
  Expect(Op::kLeftParen);
  ++query_depth_;
  QueryPtr query = ParseQuery();
  --query_depth_;
  Expect(Op::kRightParen);
  return query;
}

QueryPtr Parser::ParseQuery() {
  std::vector<CommonTable> with = ParseWith();
  QueryPtr query = ParseUnion();
  query->with = std::move(with);
  ParseOrderBy(*query);
  if (At("for"_kw)) {
    if (At("browse"_kw, 1)) Refuse("FOR BROWSE");
    if (At("xml"_kw, 1) || At("json"_kw, 1)) query->for_clause = ParseForClause();
  }
  return query;
}

std::vector<CommonTable> Parser::ParseWith() {
  std::vector<CommonTable> tables;
  if (!Accept("with"_kw)) return tables;
  do {
    CommonTable& table = tables.emplace_back();
    table.name = ParseName();
    if (At(Op::kLeftParen)) table.columns = ParseNameList();
    Expect("as"_kw);
    table.query = ParseQueryInParens();
  } while (Accept(Op::kComma));
  return tables;
}

QueryPtr Parser::ParseUnion() {
  Chain chain(*this);
  QueryPtr left = ParseIntersect();
  while (At("union"_kw) || At("except"_kw)) {
    chain.AddLink();
    SetOperation both;
    if (Accept("except"_kw)) {
      both.op = SetOperator::kExcept;
    } else {
      Take();
      both.op = Accept("all"_kw) ? SetOperator::kUnionAll : SetOperator::kUnion;
    }
    both.left = std::move(left);
    both.right = ParseIntersect();
    left = MakeQuery(std::move(both));
  }
  return left;
}

QueryPtr Parser::ParseIntersect() {
  Chain chain(*this);
  QueryPtr left = ParseQueryPrimary();
  while (Accept("intersect"_kw)) {
    chain.AddLink();
    QueryPtr right = ParseQueryPrimary();
    left = MakeQuery(SetOperation{SetOperator::kIntersect, std::move(left), std::move(right)});
  }
  return left;
}

QueryPtr Parser::ParseQueryPrimary() {
  const Level level(*this);
  if (At("values"_kw) && query_depth_ > 0) return ParseRows();
  if (Accept(Op::kLeftParen)) {
    QueryPtr query = ParseUnion();
    Expect(Op::kRightParen);
    return query;
  }
  return MakeQuery(ParseSelect());
}

QueryPtr Parser::ParseRows(bool inserted) {
  ValueRows values;
  Expect("values"_kw);
  do {
    Expect(Op::kLeftParen);
    std::vector<ExpressionPtr>& row = values.rows.emplace_back();
    do {
      const bool is_default = inserted && At("default"_kw) && (At(Op::kComma, 1) || At(Op::kRightParen, 1));
      row.push_back(is_default ? MakeExpression(Take().line, DefaultValue{}) : ParseValue());
    } while (Accept(Op::kComma));
    Expect(Op::kRightParen);
  } while (Accept(Op::kComma));
  constexpr std::size_t kMostRows = 1000;
  if (inserted && values.rows.size() > kMostRows) {
    RaiseAt(
        10738,
        "The number of row value expressions in the INSERT statement exceeds the maximum allowed number of 1000 row "
        "values.");
  }
  return MakeQuery(std::move(values));
}

Select Parser::ParseSelect() {
  Select select;
  select.line = Peek().line;
  Expect("select"_kw);
  select.distinct = Accept("distinct"_kw);
  if (!select.distinct) Accept("all"_kw);
  if (Accept("top"_kw)) ParseTop(select);
  do {
    select.items.push_back(ParseSelectItem());
  } while (Accept(Op::kComma));
  if (At("into"_kw) && query_depth_ == 0) {
    Take();
    select.into = ParseObjectName();
  }
  if (Accept("from"_kw)) select.from = ParseFrom();
  if (Accept("where"_kw)) {
    if (At("current"_kw)) Refuse("WHERE CURRENT OF");
    select.where = ParseCondition();
  }
  if (Accept("group"_kw)) ParseGroupBy(select);
  if (Accept("having"_kw)) select.having = ParseCondition();
  return select;
}

SelectItem Parser::ParseSelectItem() {
  SelectItem item;
  if (const std::size_t star = StarAhead(); star != kNoStar) {
    const std::uint32_t line = Peek().line;
    Star all;
    if (star > 0) all.table = Unquote(Peek(star - 2));
    if (star > 2) all.schema = Unquote(Peek(star - 4));
    while (!Accept(Op::kStar)) Take();
    item.expression = MakeExpression(line, std::move(all));
    return item;
  }
  if (Peek().kind == TokenKind::kVariable && query_depth_ == 0 && AcceptSelectAssignment(item)) return item;
  const bool text = Peek().kind == TokenKind::kString || Peek().kind == TokenKind::kNString;
  if ((AtName() || text) && At(Op::kEqual, 1)) {
    item.alias = Unquote(Take());
    Take();
    item.expression = ParseValue();
    return item;
  }
  item.expression = ParseValue();
  item.alias = AcceptAlias();
  return item;
}

// @v = value; @v += value is @v = @v + value.
bool Parser::AcceptSelectAssignment(SelectItem& item) {
  const std::size_t variable_at = position_;
  std::optional<BinaryOp> compound;
  Take();
  if (!AcceptAssignmentOp(compound)) {
    position_ = variable_at;
    return false;
  }
  item.variable = LowerCase(tokens_[variable_at].text);
  item.expression = ParseValue();
  if (!compound) return true;
  const std::uint32_t line = Peek().line;
  ExpressionPtr variable = MakeExpression(line, VariableReference{item.variable});
  item.expression = MakeExpression(line, BinaryOperation{*compound, std::move(variable), std::move(item.expression)});
  return true;
}

// How many tokens ahead the * of "*" or "[schema.]table.*" stands, or kNoStar.
std::size_t Parser::StarAhead() const {
  std::size_t ahead = 0;
  while (AtName(ahead) && At(Op::kDot, ahead + 1)) ahead += 2;
  return At(Op::kStar, ahead) ? ahead : kNoStar;
}

void Parser::ParseTop(Select& select) {
  if (Accept(Op::kLeftParen)) {
    select.top = ParseValue();
    Expect(Op::kRightParen);
  } else {
    if (!AtLiteral()) Fail();
    select.top = ParseLiteral();
  }
  select.top_percent = Accept("percent"_kw);
  if (AcceptBoth("with"_kw, "ties"_kw)) select.top_with_ties = true;
}

// TOP of UPDATE and DELETE.
ExpressionPtr Parser::AcceptStatementTop() {
  if (!Accept("top"_kw)) return nullptr;
  Select select;
  ParseTop(select);
  if (select.top_percent) Refuse("TOP … PERCENT outside of SELECT");
  return std::move(select.top);
}

void Parser::ParseOrderBy(Query& query) {
  if (!Accept("order"_kw)) return;
  Expect("by"_kw);
  query.order_by = ParseOrderItems();
  if (!Accept("offset"_kw)) return;
  query.offset = ParseValue();
  if (!Accept("row"_kw)) Expect("rows"_kw);
  if (!Accept("fetch"_kw)) return;
  if (!Accept("first"_kw)) Expect("next"_kw);
  query.fetch = ParseValue();
  if (!Accept("row"_kw)) Expect("rows"_kw);
  Expect("only"_kw);
}

std::vector<TableSourcePtr> Parser::ParseFrom() {
  std::vector<TableSourcePtr> sources;
  do {
    sources.push_back(ParseSource());
  } while (Accept(Op::kComma));
  return sources;
}

TableSourcePtr Parser::ParseSource() { return ParseJoins(ParseSourcePrimary()); }

TableSourcePtr Parser::ParseJoins(TableSourcePtr left) {
  const Level level(*this);
  Chain chain(*this);
  JoinKind join = JoinKind::kInner;
  while (AcceptJoin(join)) {
    chain.AddLink();
    const std::uint32_t line = left->line;
    Join both{join, std::move(left), ParseSourcePrimary(), nullptr};
    if (join < JoinKind::kCross) {
      // a JOIN b JOIN c ON … ON …: the first ON belongs to the join of b and c.
      if (!At("on"_kw)) both.right = ParseJoins(std::move(both.right));
      Expect("on"_kw);
      both.on = ParseCondition();
    }
    left = MakeSource(line, std::move(both));
  }
  // It is of all that stands before it.
  if (!At("pivot"_kw) && !At("unpivot"_kw)) return left;
  return ParseJoins(AcceptPivot(std::move(left)));
}

bool Parser::AcceptJoin(JoinKind& join) {
  if (AcceptBoth("cross"_kw, "join"_kw)) {
    join = JoinKind::kCross;
    return true;
  }
  if (AcceptBoth("cross"_kw, "apply"_kw)) {
    join = JoinKind::kCrossApply;
    return true;
  }
  if (AcceptBoth("outer"_kw, "apply"_kw)) {
    join = JoinKind::kOuterApply;
    return true;
  }
  join = JoinKind::kInner;
  if (Accept("join"_kw)) return true;
  if (At("left"_kw) || At("right"_kw) || At("full"_kw)) {
    join = At("left"_kw) ? JoinKind::kLeft : At("right"_kw) ? JoinKind::kRight : JoinKind::kFull;
    Take();
    Accept("outer"_kw);
  } else if (!Accept("inner"_kw)) {
    return false;
  }
  constexpr std::array kJoinHints = {"loop"_kw, "hash"_kw, "merge"_kw, "remote"_kw};
  if (AtAny(kJoinHints)) Take();
  Expect("join"_kw);
  return true;
}

TableSourcePtr Parser::ParseSourcePrimary() {
  const Level level(*this);
  if (!At(Op::kLeftParen)) return ParseNamedTable();
  const std::uint32_t line = Peek().line;
  if (!AtQueryInParens()) {
    Take();
    TableSourcePtr source = ParseSource();
    Expect(Op::kRightParen);
    return source;
  }
  DerivedTable derived;
  derived.query = ParseQueryInParens();
  derived.alias = AcceptAlias();
  if (derived.alias.empty()) Fail();
  if (At(Op::kLeftParen)) derived.column_aliases = ParseNameList();
  return MakeSource(line, std::move(derived));
}

TableSourcePtr Parser::ParseNamedTable() {
  const std::uint32_t line = Peek().line;
  if (Peek().kind == TokenKind::kVariable && At(Op::kDot, 1)) Refuse("A method of xml");
  constexpr std::array kRowsets = {"openquery"_kw,      "openrowset"_kw,    "openxml"_kw,
                                   "opendatasource"_kw, "containstable"_kw, "freetexttable"_kw};
  if (AtAny(kRowsets)) Refuse(UpperCase(Peek().text));
  NamedTable table;
  table.name = ParseTarget();
  if (At(Op::kLeftParen) && !IsAmong(kTableHints, Peek(1).text)) {
    return ParseTableFunction(line, std::move(table.name));
  }
  if (At("for"_kw) && At("system_time"_kw, 1)) Refuse("FOR SYSTEM_TIME");
  table.index = AcceptTableHints();
  table.alias = AcceptAlias();
  if (At("tablesample"_kw)) Refuse("TABLESAMPLE");
  if (std::string index = AcceptTableHints(); !index.empty()) table.index = std::move(index);
  return MakeSource(line, std::move(table));
}

TableSourcePtr Parser::ParseTableFunction(std::uint32_t line, ObjectName name) {
  TableFunction function;
  function.name = LowerCase(name.name);
  function.arguments = ParseFunctionArguments();
  if (function.name == "openjson" && At("with"_kw) && At(Op::kLeftParen, 1)) {
    Take();
    function.json_columns = ParseJsonColumns();
  }
  function.alias = AcceptAlias();
  if (!function.alias.empty() && At(Op::kLeftParen)) function.column_aliases = ParseNameList();
  if (function.alias.empty()) function.alias = name.own_name();
  if (!name.qualifier.empty() || !IsAmong(kTableFunctions, name.name)) function.of_database = std::move(name);
  return MakeSource(line, std::move(function));
}

std::vector<JsonColumnDefinition> Parser::ParseJsonColumns() {
  std::vector<JsonColumnDefinition> columns;
  Expect(Op::kLeftParen);
  do {
    JsonColumnDefinition& column = columns.emplace_back();
    column.name = ParseName();
    column.type = ParseType();
    if (AtLiteral()) column.path = ParseLiteral();
    column.as_json = AcceptBoth("as"_kw, "json"_kw);
  } while (Accept(Op::kComma));
  Expect(Op::kRightParen);
  return columns;
}

std::string Parser::AcceptTableHints() {
  if (At("with"_kw) && At(Op::kLeftParen, 1)) Take();
  return At(Op::kLeftParen) ? AcceptHintList() : std::string{};
}

std::string Parser::AcceptHintList() {
  std::string index;
  Expect(Op::kLeftParen);
  do {
    if (!IsAmong(kTableHints, Peek().text)) {
      RaiseAt(321, "\"" + std::string(Peek().text) +
                       "\" is not a recognized table hints option. If it is intended as a parameter to a table-valued "
                       "function or to the CHANGETABLE function, ensure that your database compatibility mode is set "
                       "to 90.");
    }
    const bool names_index = At("index"_kw);
    Take();
    std::string value = AcceptHintValue();
    if (names_index) index = std::move(value);
    Accept(Op::kComma);
  } while (!At(Op::kRightParen));
  Take();
  return index;
}

std::string Parser::AcceptHintValue() {
  std::string name;
  const auto take = [&] {
    if (Peek().kind == TokenKind::kInteger) {
      Take();
    } else {
      name = ParseName();
    }
  };
  if (Accept(Op::kEqual)) {
    take();
  } else if (At(Op::kLeftParen)) {
    if (!At(Op::kRightParen, 2)) return SkipParens(), std::string{};
    Take();
    take();
    Take();
  }
  return name;
}

void Parser::AcceptQueryOptions() {
  if (!Accept("option"_kw)) return;
  if (!At(Op::kLeftParen)) Fail();
  const std::size_t close = MatchingParen(position_);
  do {
    Take();
    if (Peek().kind != TokenKind::kWord || !IsAmong(kQueryOptions, Peek().text)) Fail();
    while (position_ < close && !At(Op::kComma)) {
      if (At(Op::kLeftParen)) {
        SkipParens();
      } else {
        Take();
      }
    }
  } while (At(Op::kComma));
  Expect(Op::kRightParen);
}

}  // namespace tessarlorn::tsql
