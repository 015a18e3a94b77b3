#include "tsql/syntax/token.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/text/sql_text.h"
#include "tsql/syntax/keywords.h"
#include "tsql/values/memory_budget.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

constexpr std::string_view kContinuation = "\\\n";
constexpr std::string_view kWindowsContinuation = "\\\r\n";

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool BeginsWord(char c) { return IsNameCharacter(c) && !IsDigit(c) && c != '@' && c != '$'; }

constexpr std::uint64_t Repeat(std::uint8_t byte) { return 0x0101010101010101U * byte; }

// The eight bytes with ASCII capitals made small.
std::uint64_t Fold(std::uint64_t bytes) {
  const std::uint64_t low = bytes & Repeat(0x7F);
  const std::uint64_t above_z = low + Repeat(0x7F - 'Z');
  const std::uint64_t from_a = low + Repeat(0x80 - 'A');
  const std::uint64_t capital = ~bytes & Repeat(0x80) & (from_a ^ above_z);
  return bytes | (capital >> 2);
}

// Up to eight bytes at `position`, zeros behind the text's end.
std::uint64_t Load(std::string_view text, std::size_t position) {
  std::uint64_t bytes = 0;
  const std::size_t left = text.size() - position;
  if (left >= 8) {
    std::memcpy(&bytes, text.data() + position, 8);
  } else {
    for (std::size_t i = 0; i < left; ++i) {
      bytes |= std::uint64_t{static_cast<unsigned char>(text[position + i])} << (8 * i);
    }
  }
  return bytes;
}

struct FoldedHash {
  std::uint64_t hash;
  bool wide;
};

FoldedHash HashFolded(std::string_view name) {
  std::uint64_t hash = name.size();
  std::uint64_t all = 0;
  for (std::size_t i = 0; i < name.size(); i += 8) {
    const std::uint64_t bytes = Load(name, i);
    all |= bytes;
    hash = (hash ^ Fold(bytes)) * 0x9E3779B97F4A7C15U;
    hash ^= hash >> 32;
  }
  return {hash, (all & Repeat(0x80)) != 0};
}

bool EqualsFolded(std::string_view name, std::string_view folded) {
  if (name.size() != folded.size()) return false;
  for (std::size_t i = 0; i < name.size(); i += 8) {
    if (Fold(Load(name, i)) != Load(folded, i)) return false;
  }
  return true;
}

class Lexer {
 public:
  Lexer(std::string_view batch, NameTable& names, Tokens& out, bool lists)
      : batch_(batch), names_(names), out_(out), lists_(lists) {}

  void Run() {
    for (;;) {
      SkipBlanks();
      if (position_ == batch_.size()) break;
      const std::size_t names = names_.size();
      Next();
      // Its literal or shape stands beside a token, and vectors grow by doubling.
      constexpr std::size_t kName = 150;
      Charge(4 * sizeof(Token) + (names_.size() - names) * kName);
    }
    Token end;
    end.line = line_;
    end.text = batch_.substr(batch_.size());
    out_.tokens.push_back(end);
  }

 private:
  [[nodiscard]] char At(std::size_t offset = 0) const {
    return position_ + offset < batch_.size() ? batch_[position_ + offset] : '\0';
  }
  [[nodiscard]] std::string_view From(std::size_t begin) const { return batch_.substr(begin, position_ - begin); }

  static std::uint32_t LinesIn(std::string_view text) {
    return static_cast<std::uint32_t>(std::count(text.begin(), text.end(), '\n'));
  }

  [[noreturn]] void Raise(std::int32_t number, const std::string& message, std::uint32_t line) const {
    SqlError error(number, message, 15);
    error.set_line(line);
    throw error;
  }

  void SkipBlanks() {
    const std::size_t begin = position_;
    position_ = SkipBlanksAndComments(batch_, begin);
    if (position_ == begin) return;
    line_ += LinesIn(From(begin));
  }

  void SkipWord() { position_ = tessarlorn::SkipWord(batch_, position_); }

  void SkipDigits() {
    while (IsDigit(At())) ++position_;
  }

  Token& Push(TokenKind kind, std::size_t begin) {
    Token& token = out_.tokens.emplace_back();
    token.kind = kind;
    token.line = line_;
    token.text = From(begin);
    return token;
  }

  void Next() {
    const char c = At();
    const std::size_t begin = position_;
    if ((c == 'N' || c == 'n') && At(1) == '\'') {
      ++position_;
      out_.tokens.push_back(Delimited(TokenKind::kNString, '\''));
    } else if (BeginsWord(c) || (c == '$' && BeginsWord(At(1)))) {
      SkipWord();
      Token& token = Push(TokenKind::kWord, begin);
      token.id = names_.Intern(token.text);
      if (lists_ && token.id == static_cast<std::uint32_t>("in"_kw)) TakeList();
    } else if (c == '$' && (IsDigit(At(1)) || (At(1) == '.' && IsDigit(At(2))))) {
      ++position_;
      SkipNumber();
      Push(TokenKind::kMoney, begin);
    } else if (IsDigit(c) || (c == '.' && IsDigit(At(1)))) {
      Push(SkipNumber(), begin);
      out_.tokens.back().text = From(begin);
    } else if (c == '\'') {
      out_.tokens.push_back(Delimited(TokenKind::kString, '\''));
    } else if (c == '[' || c == '"') {
      Token token = Delimited(TokenKind::kQuoted, c == '[' ? ']' : '"');
      token.id = names_.Intern(token.doubled ? Unquote(token) : token.text);
      out_.tokens.push_back(token);
    } else if (c == '@') {
      SkipWord();
      const bool global = batch_.substr(begin).starts_with("@@");
      if (From(begin).size() == 1) RaiseSyntax("@", false, line_);
      Token& token = Push(global ? TokenKind::kGlobal : TokenKind::kVariable, begin);
      token.id = names_.Intern(token.text);
    } else {
      const auto [op, size] = Punctuation();
      if (op == Op::kSlash && At(1) == '*') Raise(113, "Missing end comment mark '*/'.", line_);
      if (op == Op::kNone) RaiseSyntax(batch_.substr(position_, 1), false, line_);
      position_ += size;
      Push(TokenKind::kOperator, begin).op = op;
    }
  }

  // Reads a delimited text whose opening delimiter stands at the position.
  Token Delimited(TokenKind kind, char close) {
    Token token;
    token.kind = kind;
    token.line = line_;
    const std::size_t begin = position_ + 1;
    const Closing closing = FindClosing(batch_, begin, close);
    if (closing.position == std::string_view::npos) {
      std::size_t shown = std::min<std::size_t>(batch_.size() - begin, 128);
      while (begin + shown < batch_.size() && (batch_[begin + shown] & 0xC0) == 0x80) --shown;
      Raise(105,
            "Unclosed quotation mark after the character string '" + std::string(batch_.substr(begin, shown)) + "'.",
            token.line);
    }
    position_ = closing.position + 1;
    token.text = batch_.substr(begin, closing.position - begin);
    token.doubled = closing.doubled || (close == '\'' && HoldsContinuation(token.text));
    line_ += LinesIn(token.text);
    return token;
  }

  TokenKind SkipNumber() {
    if (At() == '0' && (At(1) == 'x' || At(1) == 'X')) {
      position_ = std::min(batch_.find_first_not_of("0123456789abcdefABCDEF", position_ + 2), batch_.size());
      return TokenKind::kBinary;
    }
    TokenKind kind = TokenKind::kInteger;
    SkipDigits();
    if (At() == '.') {
      kind = TokenKind::kDecimal;
      ++position_;
      SkipDigits();
    }
    if (At() == 'e' || At() == 'E') {
      const std::size_t sign = At(1) == '+' || At(1) == '-' ? 1 : 0;
      if (IsDigit(At(1 + sign))) {
        kind = TokenKind::kFloat;
        position_ += 1 + sign;
        SkipDigits();
      }
    }
    return kind;
  }

  [[nodiscard]] std::pair<Op, std::size_t> Punctuation() const {
    const char next = At(1);
    const auto or_equal = [next](Op single, Op with_equal) {
      return next == '=' ? std::pair(with_equal, std::size_t{2}) : std::pair(single, std::size_t{1});
    };
    switch (At()) {
      case '(':
        return {Op::kLeftParen, 1};
      case ')':
        return {Op::kRightParen, 1};
      case ',':
        return {Op::kComma, 1};
      case '.':
        return {Op::kDot, 1};
      case ';':
        return {Op::kSemicolon, 1};
      case ':':
        return {Op::kColon, 1};
      case '=':
        return {Op::kEqual, 1};
      case '&':
        return {Op::kAmpersand, 1};
      case '|':
        return {Op::kPipe, 1};
      case '^':
        return {Op::kCaret, 1};
      case '~':
        return {Op::kTilde, 1};
      case '+':
        return or_equal(Op::kPlus, Op::kPlusEqual);
      case '-':
        return or_equal(Op::kMinus, Op::kMinusEqual);
      case '*':
        return or_equal(Op::kStar, Op::kStarEqual);
      case '/':
        return or_equal(Op::kSlash, Op::kSlashEqual);
      case '%':
        return or_equal(Op::kPercent, Op::kPercentEqual);
      case '<':
        return next == '>' ? std::pair(Op::kNotEqual, std::size_t{2}) : or_equal(Op::kLess, Op::kLessEqual);
      case '>':
        return or_equal(Op::kGreater, Op::kGreaterEqual);
      case '!':
        if (next == '=') return {Op::kNotEqual, 2};
        if (next == '<') return {Op::kGreaterEqual, 2};
        if (next == '>') return {Op::kLessEqual, 2};
        return {Op::kNone, 1};
      default:
        return {Op::kNone, 1};
    }
  }

  // Behind IN: makes one token of a list of literals of one kind, or leaves the position where it is.
  void TakeList() {
    const std::size_t position = position_;
    const std::uint32_t line = line_;
    const std::size_t first = out_.list_items.size();
    SkipBlanks();
    const std::size_t open = position_;
    const std::uint32_t open_line = line_;
    if (At() == '(' && TakeListItems(first)) {
      Token& token = Push(TokenKind::kList, open);
      token.line = open_line;
      token.id = static_cast<std::uint32_t>(first);
      token.count = static_cast<std::uint32_t>(out_.list_items.size() - first);
      return;
    }
    position_ = position;
    line_ = line;
    out_.list_items.resize(first);
  }

  bool TakeListItems(std::size_t first) {
    do {
      ++position_;
      SkipBlanks();
      if (!TakeListItem()) return false;
      const bool whole = out_.list_items.back().kind == TokenKind::kInteger;
      if (whole != (out_.list_items[first].kind == TokenKind::kInteger)) return false;
      SkipBlanks();
    } while (At() == ',');
    // A few strings are a list of states, which is the same in every text; lists of keys differ in length.
    constexpr std::size_t kFewestNumbers = 2;
    constexpr std::size_t kFewestStrings = 5;
    const bool numbers = out_.list_items[first].kind == TokenKind::kInteger;
    if (At() != ')' || out_.list_items.size() - first < (numbers ? kFewestNumbers : kFewestStrings)) return false;
    ++position_;
    return true;
  }

  void Charge(std::size_t bytes) const {
    if (out_.memory != nullptr) out_.memory->Charge(bytes);
  }

  bool TakeListItem() {
    Charge(2 * sizeof(Token));
    const std::size_t begin = position_;
    const char c = At();
    if (c == '\'' || ((c == 'N' || c == 'n') && At(1) == '\'')) {
      position_ += c == '\'' ? 0 : 1;
      out_.list_items.push_back(Delimited(c == '\'' ? TokenKind::kString : TokenKind::kNString, '\''));
      return true;
    }
    if (c == '-') ++position_;
    if (!IsDigit(At()) || SkipNumber() != TokenKind::kInteger) return false;
    Token& item = out_.list_items.emplace_back();
    item.kind = TokenKind::kInteger;
    item.line = line_;
    item.text = From(begin);
    return true;
  }

  std::string_view batch_;
  NameTable& names_;
  Tokens& out_;
  bool lists_;  // lists of literals become one token
  std::size_t position_ = 0;
  std::uint32_t line_ = 1;
};

}  // namespace

NameTable::NameTable() {
  Rehash(1024);
  for (const std::string_view word : kReservedWords) Intern(word);
  for (const std::string_view word : kContextualWords) Intern(word);
}

std::uint32_t NameTable::Intern(std::string_view name) {
  auto [hash, wide] = HashFolded(name);
  std::string lower;
  if (wide) {
    lower = LowerCase(name);
    name = lower;
    hash = HashFolded(name).hash;
  }
  const std::size_t mask = slots_.size() - 1;
  std::size_t place = hash & mask;
  for (; slots_[place].used; place = (place + 1) & mask) {
    if (slots_[place].hash == hash && EqualsFolded(name, names_[slots_[place].id])) return slots_[place].id;
  }
  const auto id = static_cast<std::uint32_t>(names_.size());
  slots_[place] = {hash, id, true};
  names_.push_back(LowerCase(name));
  if (names_.size() * 2 > slots_.size()) Rehash(slots_.size() * 2);
  return id;
}

void NameTable::Rehash(std::size_t capacity) {
  const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(capacity));
  for (const Slot& slot : old) {
    if (!slot.used) continue;
    std::size_t place = slot.hash & (capacity - 1);
    while (slots_[place].used) place = (place + 1) & (capacity - 1);
    slots_[place] = slot;
  }
}

void TokenizeBatch(std::string_view batch, NameTable& names, Tokens& out) {
  out.tokens.clear();
  out.list_items.clear();
  Lexer(batch, names, out, true).Run();
}

void TokenizeDefinition(std::string_view definition, NameTable& names, Tokens& out) {
  out.tokens.clear();
  out.list_items.clear();
  Lexer(definition, names, out, false).Run();
}

bool HoldsContinuation(std::string_view text) {
  for (std::size_t i = text.find('\\'); i != std::string_view::npos; i = text.find('\\', i + 1)) {
    const std::string_view rest = text.substr(i);
    if (rest.starts_with(kContinuation) || rest.starts_with(kWindowsContinuation)) return true;
  }
  return false;
}

std::string Unquote(const Token& token) {
  if (!token.doubled) return std::string(token.text);
  // The opening delimiter stands right before the text.
  const bool text = token.kind == TokenKind::kString || token.kind == TokenKind::kNString;
  if (!text) return Undoubled(token.text, ClosingSign(token.text.data()[-1]));
  return Undoubled(ReplaceAll(ReplaceAll(token.text, kWindowsContinuation, ""), kContinuation, ""), '\'');
}

}  // namespace tessarlorn::tsql
