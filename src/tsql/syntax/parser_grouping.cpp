// GROUP BY with its grouping sets, PIVOT and UNPIVOT.
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/parser_core.h"

namespace tessarlorn::tsql {
namespace {

using Sets = std::vector<std::vector<std::size_t>>;

/// (a, b, c), (a, b), (a), () of the items a, b and c.
Sets Rollup(const Sets& items) {
  Sets sets;
  for (std::size_t size = items.size() + 1; size-- > 0;) {
    std::vector<std::size_t>& set = sets.emplace_back();
    for (std::size_t i = 0; i < size; ++i) set.insert(set.end(), items[i].begin(), items[i].end());
  }
  return sets;
}

/// Every choice of the items.
Sets Cube(const Sets& items) {
  Sets sets;
  for (std::size_t choice = std::size_t{1} << items.size(); choice-- > 0;) {
    std::vector<std::size_t>& set = sets.emplace_back();
    for (std::size_t i = 0; i < items.size(); ++i) {
      if ((choice >> i & 1) != 0) set.insert(set.end(), items[i].begin(), items[i].end());
    }
  }
  return sets;
}

/// Each of the sets with each of the others.
Sets Product(const Sets& sets, const Sets& others) {
  Sets product;
  for (const std::vector<std::size_t>& set : sets) {
    for (const std::vector<std::size_t>& other : others) {
      product.push_back(set);
      product.back().insert(product.back().end(), other.begin(), other.end());
    }
  }
  return product;
}

}  // namespace

void Parser::ParseGroupBy(Select& select) {
  constexpr std::size_t kMostSets = 4096;
  Expect("by"_kw);
  if (At("all"_kw)) Refuse("GROUP BY ALL");
  Sets sets = {{}};
  bool plain = true;
  do {
    const bool special =
        ((At("rollup"_kw) || At("cube"_kw)) && At(Op::kLeftParen, 1)) || (At("grouping"_kw) && At("sets"_kw, 1));
    plain = plain && !special;
    sets = Product(sets, special ? ParseGroupingItem(select) : Sets{ParseGroupingSet(select)});
    if (sets.size() > kMostSets) RaiseAt(10703, "Too many grouping sets. The maximum number is 4096.");
  } while (Accept(Op::kComma));
  if (At("with"_kw) && (At("rollup"_kw, 1) || At("cube"_kw, 1))) {
    Take();
    Sets items;
    for (std::size_t i = 0; i < select.group_by.size(); ++i) items.push_back({i});
    sets = Accept("rollup"_kw) ? Rollup(items) : (Take(), Cube(items));
    plain = false;
  }
  if (!plain) select.grouping_sets = std::move(sets);
}

Parser::GroupingSets Parser::ParseGroupingItem(Select& select) {
  constexpr std::size_t kMostOfCube = 12;
  if (AcceptBoth("grouping"_kw, "sets"_kw)) return ParseGroupingSets(select);
  const bool rollup = At("rollup"_kw);
  Take();
  Expect(Op::kLeftParen);
  Sets items;
  do {
    items.push_back(ParseGroupingSet(select));
  } while (Accept(Op::kComma));
  Expect(Op::kRightParen);
  if (rollup) return Rollup(items);
  if (items.size() > kMostOfCube) RaiseAt(10703, "Too many grouping sets. The maximum number is 4096.");
  return Cube(items);
}

Parser::GroupingSets Parser::ParseGroupingSets(Select& select) {
  Expect(Op::kLeftParen);
  Sets sets;
  do {
    const bool special = (At("rollup"_kw) || At("cube"_kw)) && At(Op::kLeftParen, 1);
    const Sets more = special ? ParseGroupingItem(select) : Sets{ParseGroupingSet(select)};
    sets.insert(sets.end(), more.begin(), more.end());
  } while (Accept(Op::kComma));
  Expect(Op::kRightParen);
  return sets;
}

std::vector<std::size_t> Parser::ParseGroupingSet(Select& select) {
  const std::size_t first = select.group_by.size();
  if (At(Op::kLeftParen) && At(Op::kRightParen, 1)) {
    Take();
    Take();
  } else if (At(Op::kLeftParen) && HoldsComma(position_)) {
    Take();
    for (ExpressionPtr& value : ParseValues()) select.group_by.push_back(std::move(value));
    Expect(Op::kRightParen);
  } else {
    select.group_by.push_back(ParseValue());
  }
  std::vector<std::size_t> set;
  for (std::size_t i = first; i < select.group_by.size(); ++i) set.push_back(i);
  return set;
}

bool Parser::HoldsComma(std::size_t parenthesis) const {
  int depth = 0;
  for (std::size_t i = parenthesis + 1; i < MatchingParen(parenthesis); ++i) {
    depth += tokens_[i].op == Op::kLeftParen ? 1 : tokens_[i].op == Op::kRightParen ? -1 : 0;
    if (depth == 0 && tokens_[i].op == Op::kComma) return true;
  }
  return false;
}

TableSourcePtr Parser::AcceptPivot(TableSourcePtr source) {
  const std::uint32_t line = Peek().line;
  const bool pivot = At("pivot"_kw);
  Take();
  Expect(Op::kLeftParen);
  PivotTable table;
  if (pivot) {
    table.aggregate = ParseValue();
  } else {
    table.alias = ParseName();
  }
  Expect("for"_kw);
  table.name = ParseName();
  if (Accept(Op::kDot)) table.name = ParseName();
  Expect("in"_kw);
  table.columns = ParseNameList();
  Expect(Op::kRightParen);
  if (!pivot) {
    std::string value = std::move(table.alias);
    UnpivotTable unpivot{std::move(source), std::move(value), std::move(table.name), std::move(table.columns),
                         AcceptAlias()};
    if (unpivot.alias.empty()) Fail();
    return std::make_unique<TableSource>(TableSource{line, std::move(unpivot)});
  }
  table.source = std::move(source);
  table.alias = AcceptAlias();
  if (table.alias.empty()) Fail();
  return std::make_unique<TableSource>(TableSource{line, std::move(table)});
}

}  // namespace tessarlorn::tsql
