#include "siblings/security_info.h"

#include "platform/session_string.h"
#include "platform/text/text.h"
#include "siblings/arguments.h"
#include "tessarlorn/error.h"

namespace tessarlorn {

Variant SecurityInfo::Call(std::string_view method, std::span<const Variant> arguments) {
  if (!EqualsIgnoreCase(method, "GetCurrentUserID")) RaiseNoSuchMethod("QuorBase.SecurityInfo", method);
  ExpectArguments(method, arguments, 1);
  for (const auto& [key, value] : ParsePairs(arguments[0].ToText())) {
    if (EqualsIgnoreCase(key, "User")) return Variant(value).ToInt32();
  }
  return std::int32_t{0};
}

}  // namespace tessarlorn
