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
  const auto literals =
      std::count_if(tokens.begin(), tokens.end(), [](const Token& token) { return IsLiteral(token.kind); });
  result.segments.reserve(static_cast<std::size_t>(literals) + 1);
  result.literals.reserve(static_cast<std::size_t>(literals));
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

/// Whether the catalog keeps a part of the statement's text, or of one within it: it is another one with every text.
bool KeepsText(const Statement& statement) {
  bool within = false;
  ForEachChild(statement, [&](const Statement& child) { within = within || KeepsText(child); });
  return within || As<CreateViewStatement>(statement) != nullptr ||
         As<CreateProcedureStatement>(statement) != nullptr || As<CreateTriggerStatement>(statement) != nullptr ||
         As<CreateFunctionStatement>(statement) != nullptr || As<CreateTableStatement>(statement) != nullptr ||
         As<CreateIndexStatement>(statement) != nullptr || As<AlterTableStatement>(statement) != nullptr ||
         As<DeclareCursorStatement>(statement) != nullptr ||
         (As<DeclareStatement>(statement) != nullptr && !As<DeclareStatement>(statement)->tables.empty());
}

}  // namespace

std::uint64_t PlanCache::Key(std::span<const std::uint64_t> shape) {
  std::uint64_t key = 0x9e3779b97f4a7c15ULL;
  for (const std::uint64_t token : shape) {
    key = (key ^ token) * 0xff51afd7ed558ccdULL;
    key ^= key >> 32;
  }
  return key;
}

std::uint64_t PlanCache::BeginningKey(std::span<const std::uint64_t> shape) {
  return Key(shape.first(std::min(kKeyTokens, shape.size())));
}

void PlanCache::Clear() {
  for (const auto& [key, entries] : plans_) {
    for (const Entry& entry : entries) entry.plan->keeping = Keeping::kNot;
  }
  plans_.clear();
  beginnings_.clear();
  new_.clear();
  former_.clear();
  new_load_ = established_load_ = {};
}

PlanCache::PlanPtr PlanCache::Find(const Batch& batch, std::span<const std::uint64_t> shape, std::size_t begin,
                                   std::size_t first_literal) {
  const std::span<const std::uint64_t> rest = shape.subspan(begin);
  const auto found = plans_.find(BeginningKey(rest));
  if (found == plans_.end()) return nullptr;
  std::size_t size = 0;
  std::uint64_t key = 0;
  bool ends = false;
  for (const Entry& entry : found->second) {
    if (entry.size > rest.size()) continue;
    if (entry.size != size) {
      size = entry.size;
      ends = EndsStatement(batch.tokens.tokens[begin + size]);
      key = ends ? Key(rest.first(size)) : 0;
    }
    if (!ends || entry.key != key || !std::equal(entry.plan->shape.begin(), entry.plan->shape.end(), rest.begin()))
      continue;
    if (!Serves(*entry.plan, std::span<const Token>(batch.literals).subspan(first_literal))) continue;
    Use(entry.plan);
    return entry.plan;
  }
  return nullptr;
}

void PlanCache::Use(const PlanPtr& plan) {
  plan->last_used = ++clock_;
  if (plan->keeping != Keeping::kNew) return;
  plan->keeping = Keeping::kEstablished;
  std::erase(new_, plan);
  new_load_.Remove(*plan);
  established_load_.Add(*plan);
}

void PlanCache::Keep(const PlanPtr& plan) {
  // A very large one is hardly met again.
  if (plan->shape.size() > kMostTokens / 20) return;
  const std::uint64_t key = Key(plan->shape);
  plan->last_used = ++clock_;
  plan->keeping = former_.erase(key) > 0 ? Keeping::kEstablished : Keeping::kNew;
  plans_[BeginningKey(plan->shape)].push_back({plan->shape.size(), key, plan});
  if (plan->keeping == Keeping::kNew) {
    new_.push_back(plan);
    new_load_.Add(*plan);
  } else {
    established_load_.Add(*plan);
  }
  TrimNew();
  TrimEstablished();
}

void PlanCache::Forget(Plan& plan) {
  plan.keeping = Keeping::kNot;
  const auto found = plans_.find(BeginningKey(plan.shape));
  std::erase_if(found->second, [&](const Entry& entry) { return entry.plan.get() == &plan; });
  if (found->second.empty()) plans_.erase(found);
}

void PlanCache::TrimNew() {
  while (new_load_.plans > kMostNewPlans || new_load_.tokens > kMostNewTokens) {
    const PlanPtr oldest = std::move(new_.front());
    new_.pop_front();
    new_load_.Remove(*oldest);
    if (former_.size() == kMostFormer) former_.clear();
    former_.insert(Key(oldest->shape));
    Forget(*oldest);
  }
  if (beginnings_.size() <= 2 * (kMostPlans + kMostNewPlans)) return;
  std::erase_if(beginnings_, [](const auto& entry) {
    return std::all_of(entry.second.begin(), entry.second.end(),
                       [](const std::weak_ptr<Plan>& plan) { return plan.expired(); });
  });
}

void PlanCache::TrimEstablished() {
  while (established_load_.plans > kMostPlans || established_load_.tokens > kMostTokens) {
    std::vector<PlanPtr> plans;
    for (const auto& [key, entries] : plans_) {
      for (const Entry& entry : entries) {
        if (entry.plan->keeping == Keeping::kEstablished) plans.push_back(entry.plan);
      }
    }
    const auto half = plans.begin() + static_cast<std::ptrdiff_t>((plans.size() + 1) / 2);
    std::nth_element(plans.begin(), half, plans.end(),
                     [](const PlanPtr& a, const PlanPtr& b) { return a->last_used < b->last_used; });
    for (auto plan = plans.begin(); plan != half; ++plan) {
      established_load_.Remove(**plan);
      Forget(**plan);
    }
  }
}

void PlanCache::NoteBeginning(std::string_view text, const PlanPtr& plan) {
  // Such as differ in the types of their literals.
  constexpr std::size_t kMostAlike = 8;
  std::vector<std::weak_ptr<Plan>>& alike = beginnings_[BeginningOf(text)];
  std::erase_if(alike, [&](const std::weak_ptr<Plan>& other) { return other.expired() || other.lock() == plan; });
  if (alike.size() == kMostAlike) alike.erase(alike.begin());
  alike.push_back(plan);
}

PlanCache::PlanPtr PlanCache::FindKnown(std::string_view text, std::size_t& position, const PlanPtr& expected,
                                        Batch& batch) {
  const std::size_t first_literal = batch.literals.size();
  const auto is_known_by = [&](const PlanPtr& plan) {
    if (plan == nullptr || plan->text.segments.empty()) return false;
    const std::size_t end = MatchText(plan->text, text, position, batch.literals);
    if (end != std::string_view::npos && Serves(*plan, std::span<const Token>(batch.literals).subspan(first_literal))) {
      position = end;
      return true;
    }
    batch.literals.resize(first_literal);
    return false;
  };
  if (is_known_by(expected)) return expected;
  const auto found = beginnings_.find(BeginningOf(text.substr(position)));
  if (found == beginnings_.end()) return nullptr;
  for (const std::weak_ptr<Plan>& alike : found->second) {
    PlanPtr plan = alike.lock();
    if (plan != expected && is_known_by(plan)) return plan;
  }
  return nullptr;
}

std::size_t PlanCache::ParseKnown(std::string_view text, Batch& batch) {
  std::size_t position = SkipBlanks(text, 0);
  PlanPtr expected;
  while (position < text.size()) {
    const std::size_t first_literal = batch.literals.size();
    PlanPtr plan = FindKnown(text, position, expected, batch);
    if (plan == nullptr) break;
    Use(plan);
    batch.starts.emplace_back(first_literal, batch.lists.size());
    if (batch.tokens.memory != nullptr) {
      batch.tokens.memory->Charge(2 * sizeof(Token) * (batch.literals.size() - first_literal) +
                                  2 * sizeof(BatchStatement));
    }
    expected = plan->next.lock();
    if (expected == nullptr) expected = plan;
    batch.statements.push_back({std::move(plan), {}, {}});
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
    PlanPtr plan = Find(batch, shape, begin, first_literal);
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
    if (!batch.statements.empty()) batch.statements.back().plan->next = plan;
    const bool first = whole && batch.statements.empty();
    if (first || (!plan->text.segments.empty() && plan->text.segments[0].size() >= kBeginning)) {
      NoteBeginning(text.substr(static_cast<std::size_t>(tokens[begin].text.data() - text.data())), plan);
    }
    batch.starts.emplace_back(first_literal, lists_before_[begin]);
    batch.statements.push_back({std::move(plan), {}, {}});
    begin = end;
  }
}

}  // namespace tessarlorn::tsql
