#include "hosts/tds/messages/bulk_load.h"

#include "hosts/tds/messages/object_name.h"
#include "hosts/tds/messages/tds_writer.h"
#include "platform/text/sql_text.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn::tds {
namespace {

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
  void SkipBlanks() { position_ = SkipBlanksAndComments(text_, position_); }
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
    parameters_.push_back({"@" + std::to_string(i), DeclarationOf(types_.back()), Null{}});
    if (types_.back().is_old_long()) {
      for (int parts = version.is_72() ? reader_.U8() : 1; parts > 0; --parts) reader_.Text(reader_.U16());
    }
    reader_.ShortText();
  }
}

Variant BulkRows::ReadColumn(std::size_t column) {
  constexpr std::size_t kTimestamp = 8;
  if (types_[column].is_old_long()) {
    const std::size_t pointer = reader_.U8();
    if (pointer == 0) return Null{};
    reader_.Skip(pointer + kTimestamp);
  }
  return ReadVariant(reader_, types_[column], target_.columns[column]);
}

bool BulkRows::Next() {
  if (reader_.at_end() || reader_.Peek() == static_cast<std::uint8_t>(Token::kDone)) return false;
  if (reader_.U8() != static_cast<std::uint8_t>(Token::kRow)) {
    throw ProtocolError("what follows in a bulk load is no row");
  }
  std::vector<bool> defaulted(types_.size());
  for (std::size_t i = 0; i < types_.size(); ++i) {
    parameters_[i].value = ReadColumn(i);
    defaulted[i] = parameters_[i].value.is_null() && !target_.keep_nulls && target_.defaults[i];
  }
  if (text_.empty() || defaulted != defaulted_) {
    defaulted_ = std::move(defaulted);
    WriteText();
  }
  return true;
}

void BulkRows::WriteText() {
  std::string columns;
  std::string values;
  for (std::size_t i = 0; i < types_.size(); ++i) {
    columns.append(i == 0 ? "" : ", ").append(target_.columns[i]);
    values.append(i == 0 ? "" : ", ").append(defaulted_[i] ? "DEFAULT" : parameters_[i].name);
  }
  text_ = "INSERT INTO " + target_.table + " (" + columns + ") VALUES (" + values + ")";
}

}  // namespace tessarlorn::tds
