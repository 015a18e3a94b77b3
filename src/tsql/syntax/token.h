// Tokens of Transact-SQL, and the lexer that cuts a batch into them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessarlorn::tsql {

enum class TokenKind : std::uint8_t {
  kEnd,
  kWord,      // unquoted identifier or keyword: letters, digits, _ @ # $; begins with a letter, _ or #
  kQuoted,    // [name] or "name"; Token::text is what stands between the delimiters, undoubled by Unquote
  kVariable,  // @name
  kGlobal,    // @@name
  kInteger,   // digits only
  kDecimal,   // digits with a point
  kFloat,     // digits with an exponent
  kMoney,     // $ and digits
  kBinary,    // 0x…
  kString,    // '…'
  kNString,   // N'…'
  kList,      // ( literal , literal , … ) behind IN: one token for the whole list, see TokenizeBatch
  kOperator,  // punctuation; Token::op tells which
};

/// Punctuation. Two-character operators are one token, without blanks between.
enum class Op : std::uint8_t {
  kNone,
  kLeftParen,
  kRightParen,
  kComma,
  kDot,
  kSemicolon,
  kPlus,
  kMinus,
  kStar,
  kSlash,
  kPercent,
  kEqual,
  kLess,
  kGreater,
  kLessEqual,
  kGreaterEqual,
  kNotEqual,
  kAmpersand,
  kPipe,
  kCaret,
  kTilde,
  kPlusEqual,
  kMinusEqual,
  kStarEqual,
  kSlashEqual,
  kPercentEqual,
  kColon,
};

struct Token {
  TokenKind kind = TokenKind::kEnd;
  Op op = Op::kNone;
  /// Of a string: it holds a doubled quote, or a line that goes on in the next. Of a quoted name: it holds a doubled
  /// delimiter.
  bool doubled = false;
  std::uint32_t line = 1;
  /// For kWord, kQuoted, kVariable, kGlobal: the id of the name without regard to case (NameTable). Same id, same name;
  /// a quoted name and the same word have the same id. For kList: the index of the first item in `Tokens::list_items`.
  std::uint32_t id = 0;
  /// For kList: the number of items.
  std::uint32_t count = 0;
  /// The text in the batch: of a string what stands between its quotes, of a quoted name between its delimiters, of a
  /// variable with its @.
  std::string_view text;
};

/// Gives every name one number for as long as the table lives. Names are compared without regard to case (ASCII, and
/// simple case beyond it).
class NameTable {
 public:
  NameTable();
  /// The number of a name, new or known. Numbers below `kKeywordCount` (keywords.h) are the keywords'.
  std::uint32_t Intern(std::string_view name);
  [[nodiscard]] std::size_t size() const noexcept { return names_.size(); }

 private:
  struct Slot {
    std::uint64_t hash = 0;
    std::uint32_t id = 0;
    bool used = false;
  };
  void Rehash(std::size_t capacity);
  std::vector<Slot> slots_;
  std::vector<std::string> names_;  // lower case
};

class MemoryBudget;

struct Tokens {
  /// What is charged for each of them, or null.
  MemoryBudget* memory = nullptr;
  /// Ends with a kEnd token.
  std::vector<Token> tokens;
  /// The items of all kList tokens, each a literal, a negative number's sign being part of its text.
  std::vector<Token> list_items;
};

/// Cuts a batch into tokens; comments (`--` to the line's end, nested `/* */`) and blanks are dropped. The views point
/// into `batch`. `IN ( literal , … )` with two or more whole numbers, or five or more strings, and nothing else
/// becomes one kList token, so that batches that differ in the length of a key list have the same shape.
/// Raises 105 for an unclosed quote ("Unclosed quotation mark after the character string '…'."), 113 for an unclosed
/// comment ("Missing end comment mark '*/'."), 102 for a character that no token begins with.
void TokenizeBatch(std::string_view batch, NameTable& names, Tokens& out);
/// The same for the text of a view, a procedure or a default, whose literals are no batch's: no kList tokens.
void TokenizeDefinition(std::string_view definition, NameTable& names, Tokens& out);

/// Whether a text between quotes has a line that goes on in the next: a backslash right before the line's end.
bool HoldsContinuation(std::string_view text);
/// The value of a string or quoted name: doubled delimiters undone, lines that go on joined.
std::string Unquote(const Token& token);

}  // namespace tessarlorn::tsql
