// The type library that the library's file carries.
#pragma once

#include <string_view>

#include "com_base/windows_headers.h"

namespace tessarlorn::com {

/// "0FCEDCEA-3E55-4379-AD0E-E995153A457A" as a GUID. @pre it is one
GUID ToGuid(std::string_view text) noexcept;
/// A description of an interface or class. The answer of LoadTypeLib or of the type library when there is none. The
/// type library stays in memory for the next call. Any thread.
HRESULT FindTypeInfo(const GUID& id, ITypeInfo** info) noexcept;

}  // namespace tessarlorn::com
