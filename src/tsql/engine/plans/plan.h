// Compiled statements by the shape of their text: a statement that differs from an earlier one in nothing but its
// literals is neither parsed nor translated nor prepared again.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "tsql/syntax/parser.h"
#include "tsql/syntax/token.h"
#include "tsql/translate/common/compiled.h"

namespace tessarlorn::tsql {

/// A statement's own text, cut at its literals: a text that is the same but for the literals needs no lexer.
struct TextTemplate {
  struct Literal {
    TokenKind kind = TokenKind::kInteger;
    std::uint64_t literal_class = 0;
  };
  /// What stands before, between and behind the literals, quotes included; one more than there are literals.
  std::vector<std::string> segments;
  std::vector<Literal> literals;
};

/// How the cache holds a plan. New: its statement came once.
enum class Keeping : std::uint8_t { kNot, kNew, kEstablished };

/// A top-level statement, parsed, with what was compiled of it so far.
struct Plan {
  StatementPtr statement;
  /// That of the object whose text it is, "" for dbo and for a batch.
  std::string schema;
  /// No segments when the text cannot be told by its beginning (lists, binary literals).
  TextTemplate text;
  /// The statement that followed the last time.
  std::weak_ptr<Plan> next;
  /// One number a token: what the token is, but not which value a literal has.
  std::vector<std::uint64_t> shape;
  bool lifted = false;
  /// Holds a change of data or definitions outside temporary tables.
  bool writes = false;
  /// Creates, alters or drops something, or makes a table by SELECT … INTO.
  bool defines = false;
  bool declares = false;
  /// Every data statement in it is compiled.
  bool complete = false;
  Dependencies dependencies;
  /// Literals that are no values but part of the grammar.
  std::vector<Dependencies::Pinned> fixed;
  /// The translation may pin further ones: until it has been made the plan serves one text only.
  bool may_pin = false;
  std::uint64_t checked_generation = 0;
  /// The table whose identity column could be given when it was compiled.
  std::string identity_insert;
  std::uint64_t last_used = 0;
  Keeping keeping = Keeping::kNot;
  /// By the node of the tree that it was made from.
  std::unordered_map<const void*, std::unique_ptr<Compiled>> compiled;
};

/// A statement of the batch that is running: its plan, and its own literals and lists.
struct BatchStatement {
  std::shared_ptr<Plan> plan;
  std::span<const Token> literals;
  std::span<const Token> lists;
};

/// Cuts batches into statements, remembering the plans of those seen before. Most statements that come once never come
/// again: their plans are let go soon, and do not push out those in use. One that comes again stays.
class PlanCache {
 public:
  explicit PlanCache(NameTable& names) : names_(names) {}

  /// The batch as statements. The tokens and the batch's text have to outlive them. Raises what the lexer and the
  /// parser raise; nothing has run then.
  struct Batch {
    Tokens tokens;
    std::vector<Token> literals;
    std::vector<Token> lists;
    std::vector<BatchStatement> statements;
    /// Where the literals and lists of each statement begin.
    std::vector<std::pair<std::size_t, std::size_t>> starts;
  };
  void Parse(std::string_view text, Batch& batch);
  void Clear();

  /// Of those that came again.
  static constexpr std::size_t kMostPlans = 1000;
  static constexpr std::size_t kMostTokens = 200'000;
  /// Of those that came once.
  static constexpr std::size_t kMostNewPlans = 64;
  static constexpr std::size_t kMostNewTokens = 50'000;
  /// Of those let go, which are known when they come again.
  static constexpr std::size_t kMostFormer = 20'000;

 private:
  using PlanPtr = std::shared_ptr<Plan>;
  struct Entry {
    std::size_t size = 0;   // of the shape
    std::uint64_t key = 0;  // of the shape
    PlanPtr plan;
  };
  struct Load {
    std::size_t plans = 0;
    std::size_t tokens = 0;
    void Add(const Plan& plan) { ++plans, tokens += plan.shape.size(); }
    void Remove(const Plan& plan) { --plans, tokens -= plan.shape.size(); }
  };

  PlanPtr Find(const Batch& batch, std::span<const std::uint64_t> shape, std::size_t begin, std::size_t first_literal);
  void Keep(const PlanPtr& plan);
  /// Notes that the plan was asked for again.
  void Use(const PlanPtr& plan);
  /// Lets the oldest of the new ones go while they are too many.
  void TrimNew();
  /// Lets those go that were not used for longest while the established ones are too many.
  void TrimEstablished();
  void Forget(Plan& plan);
  /// Takes the statements at the text's beginning that are known by their text; answers where the others begin.
  std::size_t ParseKnown(std::string_view text, Batch& batch);
  /// The plan that the statement at `position` is known by, nullptr for none. @param expected tried first, or nullptr
  PlanPtr FindKnown(std::string_view text, std::size_t& position, const PlanPtr& expected, Batch& batch);
  void NoteBeginning(std::string_view text, const PlanPtr& plan);
  void ParseTokens(std::string_view text, Batch& batch);
  static std::uint64_t Key(std::span<const std::uint64_t> shape);
  static std::uint64_t BeginningKey(std::span<const std::uint64_t> shape);

  NameTable& names_;
  std::unordered_map<std::uint64_t, std::vector<Entry>> plans_;                     // by the key of their first tokens
  std::unordered_map<std::uint64_t, std::vector<std::weak_ptr<Plan>>> beginnings_;  // by how their text begins
  std::deque<PlanPtr> new_;
  std::unordered_set<std::uint64_t> former_;  // keys of shapes
  Load new_load_;
  Load established_load_;
  std::uint64_t clock_ = 0;
  std::vector<std::uint64_t> shape_;
  std::vector<std::uint32_t> literals_before_;
  std::vector<std::uint32_t> lists_before_;
};

}  // namespace tessarlorn::tsql
