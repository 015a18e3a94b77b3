// Reads the texts in which clients of a recordset name fields and values: conditions and orders.
#pragma once

#include <cstddef>
#include <string_view>

#include "tessarlorn/recordset.h"

namespace tessarlorn {

/// Walks over a text. Words do not depend on case; blanks between the parts do not count.
class RowText {
 public:
  explicit RowText(std::string_view text) : text_(text) {}

  /// Raises 3001 naming the text and where it cannot be read.
  [[noreturn]] void Fail() const;
  [[nodiscard]] bool AtEnd();
  /// Steps over the sign or the word when it comes next.
  bool Accept(std::string_view sign);
  bool AcceptWord(std::string_view word);
  /// Steps over the character when it comes next, without a blank before it.
  bool AcceptNext(char character);
  /// What stands before `end`, which is stepped over. Fails when there is none.
  std::string_view TakeUntil(char end);
  /// The letters, digits and those of `more` that come next; may be "".
  std::string_view TakeWord(std::string_view more = "");
  /// A field by its name, in brackets or without. Raises 3265 naming one that the rows do not have.
  std::size_t TakeField(const Recordset& rows);

 private:
  void SkipBlanks();

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace tessarlorn
