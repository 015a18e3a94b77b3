#include "tsql/functions/json/json.h"

#include <algorithm>
#include <optional>

#include "platform/text/text.h"
#include "platform/unicode/utf16.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

/// Where a text goes wrong; at its end the server speaks of a point.
[[noreturn]] void RaiseUnexpected(int number, const char* what, std::string_view text, std::size_t position) {
  std::string found = ".";
  if (position < text.size()) {
    std::size_t end = position;
    NextCharacter(text, end);
    found = text.substr(position, end - position);
  }
  throw SqlError(number, std::string(what) + " is not properly formatted. Unexpected character '" + found +
                             "' is found at position " +
                             std::to_string(Utf16Length(text.substr(0, std::min(position, text.size())))) + ".");
}

std::optional<char16_t> HexUnit(std::string_view digits) {
  constexpr std::size_t kDigits = 4;
  if (digits.size() < kDigits) return std::nullopt;
  const std::optional<std::string> bytes = BytesOfHex(digits.substr(0, kDigits));
  if (!bytes) return std::nullopt;
  return static_cast<char16_t>(static_cast<unsigned char>((*bytes)[0]) << 8 | static_cast<unsigned char>((*bytes)[1]));
}

/// What stands between the quotes of a string that was read.
std::string Unescaped(std::string_view text) {
  constexpr std::string_view kLetters = "\"\\/bfnrt";
  constexpr std::string_view kSigns = "\"\\/\b\f\n\r\t";
  std::string plain;
  for (std::size_t i = 0; i < text.size();) {
    if (text[i] != '\\') {
      plain += text[i++];
      continue;
    }
    std::u16string units;
    while (i + 1 < text.size() && text[i] == '\\' && text[i + 1] == 'u') {
      units += HexUnit(text.substr(i + 2)).value_or(u'\xfffd');
      i += 6;
    }
    if (units.empty()) {
      plain += kSigns[kLetters.find(text[i + 1])];
      i += 2;
    } else {
      AppendUtf16(plain, units);
    }
  }
  return plain;
}

class JsonReader {
 public:
  explicit JsonReader(std::string_view text) : text_(text) {}

  JsonNode Document() {
    SkipBlanks();
    if (Peek() != '{' && Peek() != '[') Fail();
    JsonNode root = Value(0);
    SkipBlanks();
    if (at_ < text_.size()) Fail();
    return root;
  }

 private:
  [[noreturn]] void Fail() const { RaiseUnexpected(13609, "JSON text", text_, at_); }
  [[nodiscard]] char Peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  void SkipBlanks() {
    while (at_ < text_.size() && std::string_view(" \t\r\n").find(text_[at_]) != std::string_view::npos) ++at_;
  }
  void Expect(char c) {
    SkipBlanks();
    if (Peek() != c) Fail();
    ++at_;
  }

  JsonNode Value(int level) {
    SkipBlanks();
    const std::size_t begin = at_;
    JsonNode node;
    const char c = Peek();
    if (c == '{' || c == '[') {
      constexpr int kMostLevels = 128;
      if (level >= kMostLevels) Fail();
      node.kind = c == '{' ? JsonKind::kObject : JsonKind::kArray;
      node.members = Members(node.kind == JsonKind::kObject, level);
    } else if (c == '"') {
      node.kind = JsonKind::kString;
      String();
    } else if (c == '-' || IsDigit(c)) {
      node.kind = JsonKind::kNumber;
      Number();
    } else {
      node.kind = c == 'n' ? JsonKind::kNull : JsonKind::kBool;
      Word(c == 'n' ? "null" : c == 't' ? "true" : "false");
    }
    node.text = text_.substr(begin, at_ - begin);
    return node;
  }

  std::vector<JsonMember> Members(bool object, int level) {
    std::vector<JsonMember> members;
    const char end = object ? '}' : ']';
    ++at_;
    SkipBlanks();
    if (Peek() == end) {
      ++at_;
      return members;
    }
    for (;;) {
      SkipBlanks();
      const std::size_t begin = at_;
      JsonMember& member = members.emplace_back();
      if (object) {
        member.key = Unescaped(String());
        Expect(':');
      }
      member.value = Value(level + 1);
      member.text = text_.substr(begin, at_ - begin);
      SkipBlanks();
      if (Peek() == ',') {
        ++at_;
      } else {
        Expect(end);
        return members;
      }
    }
  }

  /// What stands between the quotes.
  std::string_view String() {
    if (Peek() != '"') Fail();
    const std::size_t begin = ++at_;
    while (Peek() != '"' || at_ >= text_.size()) {
      if (static_cast<unsigned char>(Peek()) < ' ') Fail();
      if (text_[at_++] != '\\') continue;
      if (Peek() == 'u') {
        if (!HexUnit(text_.substr(at_ + 1))) Fail();
      } else if (Peek() == '\0' || std::string_view("\"\\/bfnrt").find(Peek()) == std::string_view::npos) {
        Fail();
      }
      ++at_;
    }
    return text_.substr(begin, at_++ - begin);
  }

  void Digits() {
    if (!IsDigit(Peek())) Fail();
    while (IsDigit(Peek())) ++at_;
  }
  void Number() {
    if (Peek() == '-') ++at_;
    if (Peek() == '0') {
      ++at_;
    } else {
      Digits();
    }
    if (Peek() == '.') {
      ++at_;
      Digits();
    }
    if ((Peek() | 0x20) != 'e') return;
    ++at_;
    if (Peek() == '+' || Peek() == '-') ++at_;
    Digits();
  }
  void Word(std::string_view word) {
    for (const char c : word) {
      if (Peek() != c) Fail();
      ++at_;
    }
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

class PathReader {
 public:
  explicit PathReader(std::string_view text) : text_(text) {}

  JsonPath Read() {
    JsonPath path;
    path.append = AcceptWord("append");
    path.strict = AcceptWord("strict");
    if (!path.strict) AcceptWord("lax");
    if (Peek() != '$') Fail();
    ++at_;
    while (at_ < text_.size()) {
      if (Peek() == '.') {
        ++at_;
        path.steps.push_back({Key(), 0, false});
      } else if (Peek() == '[') {
        ++at_;
        path.steps.push_back({{}, Index(), true});
      } else {
        Fail();
      }
    }
    return path;
  }

 private:
  [[noreturn]] void Fail() const { RaiseUnexpected(13607, "JSON path", text_, at_); }
  [[nodiscard]] char Peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  void SkipBlanks() {
    while (Peek() == ' ') ++at_;
  }
  bool AcceptWord(std::string_view word) {
    SkipBlanks();
    if (!text_.substr(at_).starts_with(word)) return false;
    at_ += word.size();
    SkipBlanks();
    return true;
  }
  std::string Key() {
    const std::size_t begin = at_;
    if (Peek() == '"') {
      for (++at_; Peek() != '"'; ++at_) {
        if (Peek() == '\\') ++at_;
        if (at_ >= text_.size()) Fail();
      }
      return Unescaped(text_.substr(begin + 1, at_++ - begin - 1));
    }
    while (IsNameCharacter(Peek())) ++at_;
    if (at_ == begin) Fail();
    return std::string(text_.substr(begin, at_ - begin));
  }
  std::size_t Index() {
    const std::size_t begin = at_;
    while (IsDigit(Peek())) ++at_;
    const std::optional<std::size_t> index = WholeNumber<std::size_t>(text_.substr(begin, at_ - begin));
    if (!index || Peek() != ']') Fail();
    ++at_;
    return *index;
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

std::string JsonNode::Scalar() const {
  return kind == JsonKind::kString ? Unescaped(text.substr(1, text.size() - 2)) : std::string(text);
}

JsonNode ParseJson(std::string_view text) { return JsonReader(text).Document(); }

JsonPath ParseJsonPath(std::string_view text) { return PathReader(text).Read(); }

const JsonNode* FindNode(const JsonNode& root, const JsonPath& path, std::size_t steps) {
  const JsonNode* node = &root;
  for (std::size_t i = 0; i < steps && node != nullptr; ++i) {
    const JsonStep& step = path.steps[i];
    const JsonNode& parent = *node;
    node = nullptr;
    if (parent.kind != (step.by_index ? JsonKind::kArray : JsonKind::kObject)) continue;
    if (step.by_index) {
      if (step.index < parent.members.size()) node = &parent.members[step.index].value;
      continue;
    }
    const auto found = std::find_if(parent.members.begin(), parent.members.end(),
                                    [&](const JsonMember& member) { return member.key == step.key; });
    if (found != parent.members.end()) node = &found->value;
  }
  return node;
}

const JsonNode* FindNode(const JsonNode& root, const JsonPath& path) {
  const JsonNode* node = FindNode(root, path, path.steps.size());
  if (node == nullptr && path.strict) RaiseNoProperty();
  return node;
}

void RaiseNoProperty() { throw SqlError(13608, "Property cannot be found on the specified JSON path."); }

}  // namespace tessarlorn::tsql
