#include "frame/identity.h"

#include <algorithm>
#include <array>

#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {

Variant CallSibling(DataSession& session, std::string_view prog_id, std::string_view method,
                    std::span<const Variant> arguments) {
  const CurrentSession current(session);
  return session.host().CreateInstance(prog_id)->Call(method, arguments);
}

std::string LanguageOf(const SessionContext& context) { return UpperCase(Trim(context.GetLanguage())); }

std::string_view NameColumn(const SessionContext& context) {
  return LanguageOf(context) == "CHS" ? "FName" : "FName_CHT";
}

std::int32_t CurrentUserId(DataSession& session) {
  const std::array<Variant, 1> caller = {session.GetContext().GetCallerInfo()};
  return CallSibling(session, "QuorBase.SecurityInfo", "GetCurrentUserID", caller).ToInt32();
}

std::string ClientAddress(DataSession& session) {
  constexpr std::size_t kBufferSize = 64;
  const ReadTcpFunction& read_tcp = session.host().read_tcp();
  if (!read_tcp) return session.GetContext().client().substr(0, kBufferSize - 1);
  const CurrentSession current(session);
  std::array<char, kBufferSize> buffer{};
  if (read_tcp(buffer, {}) != 1) return {};
  const char* const end = std::find(buffer.data(), buffer.data() + buffer.size(), '\0');
  if (end == buffer.data() + buffer.size()) RaiseInvalidArgument("client address");
  return std::string(static_cast<const char*>(buffer.data()), end);
}

}  // namespace tessarlorn
