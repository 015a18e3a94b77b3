#include "hosts/tds/messages/bulk_load.h"

#include "hosts/tds/messages/object_name.h"
#include "hosts/tds/messages/tds_writer.h"
#include "platform/error.h"
#include "platform/text.h"

namespace tessarlorn::tds {
namespace {

/// So many rows stand in one statement at most, and no further row when it has so many bytes.
constexpr std::size_t kMostRows = 500;
constexpr std::size_t kEnoughBytes = 262'144;

/// Walks over the text of an INSERT BULK.
class BulkText {
 public:
  explicit BulkText(std::string_view text) : text_(text) {}

  /// Takes the word, in any case, when it stands here.
  bool Accept(std::string_view word) {
    SkipBlanks();
    const std::size_t end = position_ + word.size();
    if (!EqualsIgnoreCase(text_.substr(position_, word.size()), word)) return false;
    if (IsNameCharacter(word.back()) && end < text_.size() && IsNameCharacter(text_[end])) return false;
    position_ = end;
    return true;
  }
  void Expect(std::string_view word) {
    if (!Accept(word)) Fail();
  }
  std::string Name() {
    SkipBlanks();
    const std::optional<std::string> name = TakeName(text_, position_);
    if (!name) Fail();
    return *name;
  }
  /// A column's type: all up to the comma or parenthesis behind it.
  void SkipType() {
    for (int depth = 0; position_ < text_.size(); ++position_) {
      const char c = text_[position_];
      if (depth == 0 && (c == ',' || c == ')')) return;
      if (c == '(') ++depth;
      if (c == ')') --depth;
    }
  }
  [[nodiscard]] std::string_view rest() const { return text_.substr(position_); }

 private:
  void SkipBlanks() {
    while (position_ < text_.size() && static_cast<unsigned char>(text_[position_]) <= ' ') ++position_;
  }
  [[noreturn]] void Fail() const {
    const std::string_view near = Trim(rest().substr(0, 40));
    throw Error(error_number::kStatementError, kServerName, "Incorrect syntax near '" + std::string(near) + "'.",
                {102, "42000", 15});
  }

  std::string_view text_;
  std::size_t position_ = 0;
};

}  // namespace

std::optional<BulkTarget> ReadBulkInsert(std::string_view batch) {
  BulkText text(batch);
  if (!text.Accept("insert") || !text.Accept("bulk")) return std::nullopt;
  BulkTarget target;
  target.table = text.Name();
  text.Expect("(");
  do {
    target.columns.push_back(text.Name());
    text.SkipType();
  } while (text.Accept(","));
  text.Expect(")");
  target.keep_nulls = UpperCase(text.rest()).find("KEEP_NULLS") != std::string::npos;
  return target;
}

BulkRows::BulkRows(TdsReader& reader, TdsVersion version, const BulkTarget& target) : reader_(reader), target_(target) {
  if (reader_.U8() != static_cast<std::uint8_t>(Token::kColumnMetadata)) {
    throw ProtocolError("a bulk load does not begin with its columns");
  }
  const std::size_t count = reader_.U16();
  if (count != target_.columns.size()) {
    throw Error(error_number::kStatementError, kServerName,
                "Insert bulk is not supported over this access: " + std::to_string(count) + " columns were sent for " +
                    std::to_string(target_.columns.size()) + ".",
                {4801, "42000"});
  }
  for (std::size_t i = 0; i < count; ++i) {
    reader_.Skip(version.is_72() ? 4 : 2);  // the user's type
    reader_.Skip(2);                        // flags
    types_.push_back(ReadWireType(reader_));
    if (types_.back().is_old_long()) {
      for (int parts = version.is_72() ? reader_.U8() : 1; parts > 0; --parts) reader_.Text(reader_.U16());
    }
    reader_.ShortText();
  }
}

bool BulkRows::AddRow(std::string& text) {
  if (reader_.at_end() || reader_.Peek() == static_cast<std::uint8_t>(Token::kDone)) return false;
  if (reader_.U8() != static_cast<std::uint8_t>(Token::kRow)) {
    throw ProtocolError("what follows in a bulk load is no row");
  }
  text += '(';
  for (std::size_t i = 0; i < types_.size(); ++i) {
    std::string literal = "NULL";
    bool null = false;
    if (types_[i].is_old_long()) {
      const std::size_t pointer = reader_.U8();
      null = pointer == 0;
      if (!null) reader_.Skip(pointer + 8);
    }
    if (!null) literal = ReadLiteral(reader_, types_[i], target_.columns[i]);
    if (literal == "NULL" && !target_.keep_nulls && target_.defaults[i]) literal = "DEFAULT";
    if (i > 0) text += ',';
    text += literal;
  }
  text += ')';
  return true;
}

std::string BulkRows::Next() {
  std::string text;
  std::size_t rows = 0;
  std::string row;
  while (rows < kMostRows && text.size() < kEnoughBytes && AddRow(row)) {
    if (rows++ == 0) {
      text = "INSERT INTO " + target_.table + " (";
      for (std::size_t i = 0; i < target_.columns.size(); ++i) text += (i == 0 ? "" : ", ") + target_.columns[i];
      text += ") VALUES ";
    } else {
      text += ',';
    }
    text += row;
    row.clear();
  }
  return text;
}

}  // namespace tessarlorn::tds
