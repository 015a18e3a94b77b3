#include "drivers/embedded/plan.h"

#include <algorithm>

#include "drivers/embedded/keywords.h"

namespace tessarlorn::embedded {
namespace {

constexpr std::size_t kKeyTokens = 6;

bool IsLiteral(TokenKind kind) {
  return kind == TokenKind::kInteger || kind == TokenKind::kDecimal || kind == TokenKind::kFloat ||
         kind == TokenKind::kBinary || kind == TokenKind::kString || kind == TokenKind::kNString;
}

/// What of a literal is part of the shape: whole numbers beyond an int and decimals have types of their own.
std::uint64_t LiteralClass(const Token& token) {
  std::string_view digits = token.text;
  if (token.kind == TokenKind::kInteger) {
    while (digits.size() > 1 && digits.front() == '0') digits.remove_prefix(1);
    const bool fits = digits.size() < 10 || (digits.size() == 10 && digits <= "2147483647");
    return fits ? 0 : digits.size();
  }
  if (token.kind == TokenKind::kDecimal) {
    const std::size_t point = digits.find('.');
    const std::size_t leading = std::min(digits.find_first_not_of('0'), point);
    return ((point - leading) << 8) | (digits.size() - point - 1) | 0x10000;
  }
  return 0;
}

std::uint64_t ShapeOf(const Token& token, const Tokens& tokens) {
  const auto kind = static_cast<std::uint64_t>(token.kind) << 56;
  if (IsLiteral(token.kind)) return kind | LiteralClass(token);
  if (token.kind == TokenKind::kList) {
    return kind | static_cast<std::uint64_t>(tokens.list_items[token.id].kind != TokenKind::kInteger);
  }
  return kind | static_cast<std::uint64_t>(token.op) << 48 | token.id;
}

/// Whether a statement that was complete before such a token is complete before it again: the token can begin a new
/// statement, and can go on with none.
bool EndsStatement(const Token& token) {
  if (token.kind == TokenKind::kEnd || token.op == Op::kSemicolon) return true;
  if (token.kind != TokenKind::kWord) return false;
  switch (static_cast<Keyword>(token.id)) {
    case "if"_kw:
    case "select"_kw:
    case "update"_kw:
    case "insert"_kw:
    case "delete"_kw:
    case "declare"_kw:
    case "exec"_kw:
    case "while"_kw:
    case "begin"_kw:
    case "drop"_kw:
    case "create"_kw:
    case "print"_kw:
      return true;
    default:
      return false;
  }
}

void Classify(const Statement& statement, Plan& plan) {
  using Kind = Statement::Kind;
  switch (statement.kind) {
    case Kind::kInsert:
    case Kind::kUpdate:
    case Kind::kDelete:
    case Kind::kTruncate:
      // An alias may hide a temporary table; taking the lock for it does no harm.
      plan.writes = plan.writes || !statement.table.temporary();
      break;
    case Kind::kSelect:
      if (statement.query->select != nullptr && !statement.query->select->into.name.empty()) {
        plan.defines = true;
        plan.writes = plan.writes || !statement.query->select->into.temporary();
      }
      break;
    case Kind::kCreateTable:
    case Kind::kAlterTable:
    case Kind::kCreateIndex:
    case Kind::kDropIndex:
    case Kind::kCreateView:
    case Kind::kCreateProcedure:
      plan.defines = true;
      plan.writes = plan.writes || !statement.table.temporary();
      break;
    case Kind::kDropTable:
      plan.defines = true;
      for (const ObjectName& name : statement.tables) plan.writes = plan.writes || !name.temporary();
      break;
    case Kind::kExecute:
      plan.defines = true;
      break;
    case Kind::kDeclare:
      plan.declares = true;
      break;
    default:
      break;
  }
  for (const StatementPtr& child : statement.body) Classify(*child, plan);
  for (const StatementPtr& child : statement.catch_body) Classify(*child, plan);
  if (statement.execute != nullptr) Classify(*statement.execute, plan);
}

}  // namespace

std::uint64_t PlanCache::Key(std::span<const std::uint64_t> shape) {
  std::uint64_t key = 0x9e3779b97f4a7c15ULL;
  for (std::size_t i = 0; i < std::min(kKeyTokens, shape.size()); ++i) {
    key = (key ^ shape[i]) * 0xff51afd7ed558ccdULL;
    key ^= key >> 32;
  }
  return key;
}

std::shared_ptr<Plan> PlanCache::Find(const Batch& batch, std::span<const std::uint64_t> shape, std::size_t begin,
                                      std::size_t first_literal) {
  const auto found = plans_.find(Key(shape.subspan(begin)));
  if (found == plans_.end()) return nullptr;
  for (std::size_t i = 0; i < found->second.size(); ++i) {
    const std::shared_ptr<Plan>& plan = found->second[i];
    const std::size_t size = plan->shape.size();
    if (size > shape.size() - begin || !EndsStatement(batch.tokens.tokens[begin + size])) continue;
    if (!std::equal(plan->shape.begin(), plan->shape.end(), shape.begin() + static_cast<std::ptrdiff_t>(begin))) continue;
    const bool same_pins =
        std::all_of(plan->dependencies.pinned.begin(), plan->dependencies.pinned.end(), [&](const Dependencies::Pinned& pin) {
          return Unquote(batch.literals[first_literal + static_cast<std::size_t>(pin.literal)]) == pin.text;
        });
    if (!same_pins) continue;
    plan->last_used = ++clock_;
    return plan;
  }
  return nullptr;
}

void PlanCache::Keep(const std::shared_ptr<Plan>& plan) {
  if (++count_ > kMostPlans) {
    // Let the half go that was not used for longest.
    const std::uint64_t limit = clock_ - kMostPlans / 2;
    count_ = 0;
    for (auto& [key, plans] : plans_) {
      std::erase_if(plans, [&](const std::shared_ptr<Plan>& old) { return old->last_used < limit; });
      count_ += plans.size();
    }
    std::erase_if(plans_, [](const auto& entry) { return entry.second.empty(); });
  }
  plan->last_used = ++clock_;
  plans_[Key(plan->shape)].push_back(plan);
}

void PlanCache::Parse(std::string_view text, Batch& batch) {
  batch.statements.clear();
  batch.literals.clear();
  batch.lists.clear();
  TokenizeBatch(text, names_, batch.tokens);
  const std::vector<Token>& tokens = batch.tokens.tokens;
  shape_.clear();
  shape_.reserve(tokens.size());
  // How many literals and lists stand before each statement is told by their running numbers.
  std::vector<std::uint32_t>& literals_before = literals_before_;
  literals_before.clear();
  std::vector<std::uint32_t>& lists_before = lists_before_;
  lists_before.clear();
  for (const Token& token : tokens) {
    shape_.push_back(ShapeOf(token, batch.tokens));
    literals_before.push_back(static_cast<std::uint32_t>(batch.literals.size()));
    lists_before.push_back(static_cast<std::uint32_t>(batch.lists.size()));
    if (IsLiteral(token.kind)) batch.literals.push_back(token);
    if (token.kind == TokenKind::kList) batch.lists.push_back(token);
  }
  const std::span<const std::uint64_t> shape(shape_);
  std::size_t begin = 0;
  while (tokens[begin].kind != TokenKind::kEnd) {
    if (tokens[begin].op == Op::kSemicolon) {
      ++begin;
      continue;
    }
    const std::size_t first_literal = literals_before[begin];
    BatchStatement entry;
    entry.plan = Find(batch, shape, begin, first_literal);
    std::size_t end = begin;
    if (entry.plan != nullptr) {
      end = begin + entry.plan->shape.size();
    } else {
      ParsedStatement parsed = ParseStatement(text, batch.tokens, begin);
      end = parsed.end;
      std::size_t last = end;
      while (last > begin && tokens[last - 1].op == Op::kSemicolon) --last;
      entry.plan = std::make_shared<Plan>();
      entry.plan->statement = std::move(parsed.statement);
      entry.plan->shape.assign(shape_.begin() + static_cast<std::ptrdiff_t>(begin),
                               shape_.begin() + static_cast<std::ptrdiff_t>(last));
      Classify(*entry.plan->statement, *entry.plan);
      // A statement that keeps its own text is different with every text.
      const bool keeps_text = entry.plan->statement->kind == Statement::Kind::kCreateView ||
                              entry.plan->statement->kind == Statement::Kind::kCreateProcedure ||
                              entry.plan->statement->kind == Statement::Kind::kCreateTable ||
                              entry.plan->statement->kind == Statement::Kind::kAlterTable;
      const bool first_of_batch = begin == 0 && tokens[0].kind != TokenKind::kWord;
      entry.plan->lifted = !keeps_text && !first_of_batch;
      if (entry.plan->lifted && EndsStatement(tokens[last])) Keep(entry.plan);
    }
    entry.literals = std::span<const Token>(batch.literals).subspan(first_literal);
    entry.lists = std::span<const Token>(batch.lists).subspan(lists_before[begin]);
    batch.statements.push_back(std::move(entry));
    begin = end;
  }
}

}  // namespace tessarlorn::embedded
