#include "hosts/objects/recordset/row_text.h"

#include <string>

#include "hosts/objects/recordset/recordset_errors.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {

void RowText::Fail() const {
  RaiseWrongArguments("'" + std::string(text_) + "' cannot be read at '" + std::string(text_.substr(at_)) + "'");
}

void RowText::SkipBlanks() {
  constexpr std::string_view kBlanks = " \t\r\n";
  while (at_ < text_.size() && kBlanks.find(text_[at_]) != std::string_view::npos) ++at_;
}

bool RowText::AtEnd() {
  SkipBlanks();
  return at_ == text_.size();
}

bool RowText::Accept(std::string_view sign) {
  SkipBlanks();
  if (!text_.substr(at_).starts_with(sign)) return false;
  at_ += sign.size();
  return true;
}

bool RowText::AcceptWord(std::string_view word) {
  SkipBlanks();
  const std::string_view rest = text_.substr(at_);
  if (!StartsWithIgnoreCase(rest, word)) return false;
  if (rest.size() > word.size() && IsNameCharacter(rest[word.size()])) return false;
  at_ += word.size();
  return true;
}

bool RowText::AcceptNext(char character) {
  if (at_ == text_.size() || text_[at_] != character) return false;
  ++at_;
  return true;
}

std::string_view RowText::TakeUntil(char end) {
  const std::size_t found = text_.find(end, at_);
  if (found == std::string_view::npos) Fail();
  const std::string_view taken = text_.substr(at_, found - at_);
  at_ = found + 1;
  return taken;
}

std::string_view RowText::TakeWord(std::string_view more) {
  SkipBlanks();
  const std::size_t begin = at_;
  while (at_ < text_.size() && (IsNameCharacter(text_[at_]) || more.find(text_[at_]) != std::string_view::npos)) ++at_;
  return text_.substr(begin, at_ - begin);
}

std::size_t RowText::TakeField(const Recordset& rows) {
  const std::string_view name = Accept("[") ? TakeUntil(']') : TakeWord();
  if (name.empty()) Fail();
  const auto field = rows.FindField(name);
  if (!field) RaiseNoSuchField(name);
  return *field;
}

}  // namespace tessarlorn
