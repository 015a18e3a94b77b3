#include "tsql/engine/plans/plan.h"

#include <algorithm>

#include "platform/text/sql_text.h"
#include "tsql/engine/state/effect.h"
#include "tsql/syntax/ast_walk.h"
#include "tsql/syntax/keywords.h"
#include "tsql/translate/common/literals.h"
#include "tsql/values/memory_budget.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::size_t kKeyTokens = 4;
constexpr std::size_t kBeginning = 24;

bool IsLiteral(TokenKind kind) {
  return kind == TokenKind::kInteger || kind == TokenKind::kDecimal || kind == TokenKind::kFloat ||
         kind == TokenKind::kMoney || kind == TokenKind::kBinary || kind == TokenKind::kString ||
         kind == TokenKind::kNString;
}

/// What of a literal is part of the shape: whole numbers beyond an int, decimals, and long texts and binaries have
/// types of their own.
std::uint64_t LiteralClass(const Token& token) {
  std::string_view digits = token.text;
  if (token.kind == TokenKind::kBinary) return IsLongLiteral(LiteralKind::kBinary, digits) ? 1 : 0;
  if (token.kind == TokenKind::kString || token.kind == TokenKind::kNString) {
    const LiteralKind kind = token.kind == TokenKind::kString ? LiteralKind::kString : LiteralKind::kNString;
    // Undoubling only makes it shorter.
    return IsLongLiteral(kind, digits) && (!token.doubled || IsLongLiteral(kind, Unquote(token))) ? 1 : 0;
  }
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

bool IsBlank(char c) { return c == ' ' || c == '\r' || c == '\n' || c == '\t' || c == ';'; }

std::size_t SkipBlanks(std::string_view text, std::size_t position) {
  while (position < text.size() && IsBlank(text[position])) ++position;
  return position;
}

/// EndsStatement for a text that is not cut into tokens.
bool EndsStatementAt(std::string_view text, std::size_t position) {
  if (position == text.size()) return true;
  const std::string_view word = text.substr(position, SkipWord(text, position) - position);
  constexpr std::string_view kStarters[] = {"if",   "select", "update", "insert", "delete", "declare",
                                            "exec", "while",  "begin",  "drop",   "print"};
  return std::any_of(std::begin(kStarters), std::end(kStarters),
                     [&](std::string_view starter) { return EqualsIgnoreCase(word, starter); });
}

/// Cuts the statement's text at its literals.
TextTemplate MakeTemplate(std::span<const Token> tokens) {
  TextTemplate result;
  const char* begin = tokens.front().text.data();
  if (tokens.front().kind != TokenKind::kWord) return {};
  for (const Token& token : tokens) {
    if (token.kind == TokenKind::kList || token.kind == TokenKind::kBinary) return {};
    if (!IsLiteral(token.kind)) continue;
    const char* end = token.text.data() + token.text.size();
    const bool quoted = token.kind == TokenKind::kString || token.kind == TokenKind::kNString;
    // Digits that run into a letter are left to the lexer.
    if (!quoted && &token != &tokens.back() && (IsNameCharacter(*end) || *end == '.')) return {};
    result.segments.emplace_back(begin, token.text.data());
    result.literals.push_back({token.kind, LiteralClass(token)});
    begin = end;
  }
  const Token& last = tokens.back();
  const bool delimited =
      last.kind == TokenKind::kQuoted || last.kind == TokenKind::kString || last.kind == TokenKind::kNString;
  result.segments.emplace_back(begin, last.text.data() + last.text.size() + (delimited ? 1 : 0));
  return result;
}

/// The literal of that kind at `position`, which moves behind its text; false when another kind stands there.
bool TakeLiteral(std::string_view text, std::size_t& position, const TextTemplate::Literal& wanted, Token& token) {
  const std::size_t begin = position;
  token.kind = wanted.kind;
  token.doubled = false;
  if (wanted.kind == TokenKind::kString || wanted.kind == TokenKind::kNString) {
    const Closing closing = FindClosing(text, begin, '\'');
    if (closing.position == std::string_view::npos) return false;
    position = closing.position;
    token.text = text.substr(begin, position - begin);
    token.doubled = closing.doubled || HoldsContinuation(token.text);
    return LiteralClass(token) == wanted.literal_class;
  }
  if (wanted.kind == TokenKind::kFloat || wanted.kind == TokenKind::kMoney) return false;
  bool point = false;
  while (position < text.size() &&
         ((text[position] >= '0' && text[position] <= '9') || (text[position] == '.' && !point))) {
    point = point || text[position] == '.';
    ++position;
  }
  if (position == begin || point != (wanted.kind == TokenKind::kDecimal)) return false;
  if (position < text.size() && IsNameCharacter(text[position])) return false;
  token.text = text.substr(begin, position - begin);
  return LiteralClass(token) == wanted.literal_class;
}

/// Where the statement ends that begins at `position` and is the template's but for its literals, or npos.
std::size_t MatchText(const TextTemplate& wanted, std::string_view text, std::size_t position,
                      std::vector<Token>& literals) {
  for (std::size_t i = 0; i < wanted.segments.size(); ++i) {
    const std::string& segment = wanted.segments[i];
    if (text.compare(position, segment.size(), segment) != 0) return std::string_view::npos;
    position += segment.size();
    if (i == wanted.literals.size()) break;
    Token token;
    if (!TakeLiteral(text, position, wanted.literals[i], token)) return std::string_view::npos;
    literals.push_back(token);
  }
  if (position < text.size() && IsNameCharacter(text[position])) return std::string_view::npos;
  position = SkipBlanks(text, position);
  return EndsStatementAt(text, position) ? position : std::string_view::npos;
}

std::uint64_t BeginningOf(std::string_view text) { return std::hash<std::string_view>{}(text.substr(0, kBeginning)); }

/// Whether the plan serves a text with these literals.
bool Serves(const Plan& plan, std::span<const Token> literals) {
  if (plan.may_pin && !plan.complete) return false;
  const auto same = [&](const Dependencies::Pinned& pin) {
    return Unquote(literals[static_cast<std::size_t>(pin.literal)]) == pin.text;
  };
  return std::all_of(plan.fixed.begin(), plan.fixed.end(), same) &&
         std::all_of(plan.dependencies.pinned.begin(), plan.dependencies.pinned.end(), same);
}

/// Notes what the statement's literals mean.
void ClassifyLiterals(Plan& plan, std::span<const Token> literals) {
  const LiteralUse use = FindLiterals(*plan.statement);
  plan.may_pin = use.may_shape;
  for (std::size_t i = 0; i < literals.size(); ++i) {
    const int number = static_cast<int>(i);
    if (!use.values.contains(number)) plan.fixed.push_back({number, Unquote(literals[i])});
  }
}

void Classify(const Statement& statement, Plan& plan) {
  const Effect effect = EffectOf(statement);
  const bool calls = As<CallStatement>(statement) != nullptr || As<ExecuteTextStatement>(statement) != nullptr;
  // What INSERT may name depends on SET IDENTITY_INSERT.
  const bool allows = As<SetIdentityInsertStatement>(statement) != nullptr;
  plan.defines = plan.defines || effect == Effect::kDefines || calls || allows;
  // An alias may hide a temporary table; taking the lock for it does no harm.
  plan.writes = plan.writes || statement.takes_numbers || (effect != Effect::kNone && !IsOnTemporaryTables(statement));
  const auto* declare = As<DeclareStatement>(statement);
  plan.declares = plan.declares || declare != nullptr;
  plan.defines = plan.defines || (declare != nullptr && !declare->tables.empty());
  ForEachChild(statement, [&](const Statement& child) { Classify(child, plan); });
}

/// Whether the catalog keeps a part of the statement's own text: it is another one with every text.
bool KeepsText(const Statement& statement) {
  return As<CreateViewStatement>(statement) != nullptr || As<CreateProcedureStatement>(statement) != nullptr ||
         As<CreateTriggerStatement>(statement) != nullptr || As<CreateFunctionStatement>(statement) != nullptr ||
         As<CreateTableStatement>(statement) != nullptr || As<CreateIndexStatement>(statement) != nullptr ||
         As<AlterTableStatement>(statement) != nullptr || As<DeclareCursorStatement>(statement) != nullptr ||
         (As<DeclareStatement>(statement) != nullptr && !As<DeclareStatement>(statement)->tables.empty());
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
    if (!std::equal(plan->shape.begin(), plan->shape.end(), shape.begin() + static_cast<std::ptrdiff_t>(begin)))
      continue;
    if (!Serves(*plan, std::span<const Token>(batch.literals).subspan(first_literal))) continue;
    plan->last_used = ++clock_;
    if (i > 0) std::swap(found->second[i], found->second[i - 1]);
    return found->second[i > 0 ? i - 1 : 0];
  }
  return nullptr;
}

void PlanCache::Keep(const std::shared_ptr<Plan>& plan) {
  // A very large one is hardly met again.
  if (plan->shape.size() > kMostTokens / 20) return;
  ++count_;
  tokens_ += plan->shape.size();
  while (count_ > kMostPlans || tokens_ > kMostTokens) {
    // Let those go that were not used for longest: half of what `kMostPlans` last uses can be, and half again.
    const std::uint64_t limit = clock_ - std::min<std::uint64_t>(clock_, count_ / 2);
    count_ = 1;
    tokens_ = plan->shape.size();
    for (auto& [key, plans] : plans_) {
      std::erase_if(plans, [&](const std::shared_ptr<Plan>& old) { return old->last_used < limit; });
      count_ += plans.size();
      for (const std::shared_ptr<Plan>& kept : plans) tokens_ += kept->shape.size();
    }
    std::erase_if(plans_, [](const auto& entry) { return entry.second.empty(); });
    std::erase_if(beginnings_, [](const auto& entry) { return entry.second.expired(); });
  }
  plan->last_used = ++clock_;
  plans_[Key(plan->shape)].push_back(plan);
}

std::size_t PlanCache::ParseKnown(std::string_view text, Batch& batch) {
  std::size_t position = SkipBlanks(text, 0);
  const auto found = beginnings_.find(BeginningOf(text.substr(position)));
  std::shared_ptr<Plan> plan = found == beginnings_.end() ? nullptr : found->second.lock();
  while (plan != nullptr && position < text.size()) {
    const std::size_t first_literal = batch.literals.size();
    const std::size_t end =
        plan->text.segments.empty() ? std::string_view::npos : MatchText(plan->text, text, position, batch.literals);
    if (end == std::string_view::npos ||
        !Serves(*plan, std::span<const Token>(batch.literals).subspan(first_literal))) {
      batch.literals.resize(first_literal);
      break;
    }
    plan->last_used = ++clock_;
    batch.starts.emplace_back(first_literal, batch.lists.size());
    batch.statements.push_back({plan, {}, {}});
    if (batch.tokens.memory != nullptr) {
      batch.tokens.memory->Charge(2 * sizeof(Token) * (batch.literals.size() - first_literal) +
                                  2 * sizeof(BatchStatement));
    }
    position = end;
    std::shared_ptr<Plan> next = plan->next.lock();
    if (next != nullptr) plan = std::move(next);
  }
  return position;
}

void PlanCache::Parse(std::string_view text, Batch& batch) {
  batch.statements.clear();
  batch.literals.clear();
  batch.lists.clear();
  batch.starts.clear();
  batch.tokens.tokens.clear();
  batch.tokens.list_items.clear();
  const std::size_t known = ParseKnown(text, batch);
  if (known < text.size()) ParseTokens(text.substr(known), batch);
  for (std::size_t i = 0; i < batch.statements.size(); ++i) {
    batch.statements[i].literals = std::span<const Token>(batch.literals).subspan(batch.starts[i].first);
    batch.statements[i].lists = std::span<const Token>(batch.lists).subspan(batch.starts[i].second);
  }
}

void PlanCache::ParseTokens(std::string_view text, Batch& batch) {
  TokenizeBatch(text, names_, batch.tokens);
  const std::vector<Token>& tokens = batch.tokens.tokens;
  shape_.clear();
  shape_.reserve(tokens.size());
  // How many literals and lists stand before each statement is told by their running numbers.
  literals_before_.clear();
  lists_before_.clear();
  for (const Token& token : tokens) {
    shape_.push_back(ShapeOf(token, batch.tokens));
    literals_before_.push_back(static_cast<std::uint32_t>(batch.literals.size()));
    lists_before_.push_back(static_cast<std::uint32_t>(batch.lists.size()));
    if (IsLiteral(token.kind)) batch.literals.push_back(token);
    if (token.kind == TokenKind::kList) batch.lists.push_back(token);
  }
  const std::span<const std::uint64_t> shape(shape_);
  const bool whole = batch.statements.empty();
  std::size_t begin = 0;
  while (tokens[begin].kind != TokenKind::kEnd) {
    if (tokens[begin].op == Op::kSemicolon) {
      ++begin;
      continue;
    }
    const std::size_t first_literal = literals_before_[begin];
    std::shared_ptr<Plan> plan = Find(batch, shape, begin, first_literal);
    std::size_t end = begin;
    if (plan != nullptr) {
      end = begin + plan->shape.size();
    } else {
      ParsedStatement parsed = ParseStatement(text, batch.tokens, begin);
      end = parsed.end;
      std::size_t last = end;
      while (last > begin && tokens[last - 1].op == Op::kSemicolon) --last;
      plan = std::make_shared<Plan>();
      plan->statement = std::move(parsed.statement);
      plan->shape.assign(shape_.begin() + static_cast<std::ptrdiff_t>(begin),
                         shape_.begin() + static_cast<std::ptrdiff_t>(last));
      Classify(*plan->statement, *plan);
      plan->lifted = !KeepsText(*plan->statement) && plan->shape.size() >= kKeyTokens;
      if (plan->lifted && EndsStatement(tokens[last])) {
        ClassifyLiterals(
            *plan,
            std::span<const Token>(batch.literals).subspan(first_literal, literals_before_[last] - first_literal));
        plan->text = MakeTemplate(std::span<const Token>(tokens).subspan(begin, last - begin));
        Keep(plan);
      }
    }
    if (!batch.statements.empty()) {
      batch.statements.back().plan->next = plan;
    } else if (whole) {
      beginnings_[BeginningOf(text.substr(SkipBlanks(text, 0)))] = plan;
    }
    batch.starts.emplace_back(first_literal, lists_before_[begin]);
    batch.statements.push_back({std::move(plan), {}, {}});
    begin = end;
  }
}

}  // namespace tessarlorn::tsql
