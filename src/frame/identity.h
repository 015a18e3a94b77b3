// Who is calling and from where, and calls of the sibling components that know.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "tessarlorn/session.h"
#include "tessarlorn/variant.h"

namespace tessarlorn {

/// Creates the component and calls its method, with `session` as the thread's current one. Raises 429 when there is no
/// such component, and what the method raises, unchanged.
Variant CallSibling(DataSession& session, std::string_view prog_id, std::string_view method,
                    std::span<const Variant> arguments);

/// The session's language in capitals: "CHS", "CHT", …
std::string LanguageOf(const SessionContext& context);

/// The column with a name of a carrier or a place in the caller's language.
std::string_view NameColumn(const SessionContext& context);

/// Id of the acting user, from the security component.
std::int32_t CurrentUserId(DataSession& session);

/// Address of the client machine, at most 63 characters, "" when not known. Raises 5 when the platform hands back an
/// address without an end.
std::string ClientAddress(DataSession& session);

}  // namespace tessarlorn
