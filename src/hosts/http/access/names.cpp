#include "hosts/http/access/names.h"

#include <algorithm>

#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn::http {
namespace {

constexpr std::size_t kNameWidth = 64;

}  // namespace

bool IsName(std::string_view text) {
  const auto refused = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7F' || c == ','; };
  return !text.empty() && IsValidUtf8(text) && Utf16Length(text) <= kNameWidth && Trim(text) == text &&
         std::none_of(text.begin(), text.end(), refused);
}

void RequireName(std::string_view what, std::string_view text) {
  if (IsName(text)) return;
  RaiseInvalid("'" + OnOneLine(text) + "' is no name of a " + std::string(what) +
               ": it has 1 to 64 characters, no comma, and no blank at its ends");
}

SqlParameter NameParameter(const char* parameter, std::string_view text) { return {parameter, "nvarchar(64)", text}; }

void RaiseInvalid(const std::string& why) { Raise(error_number::kInvalidArgument, why); }

}  // namespace tessarlorn::http
