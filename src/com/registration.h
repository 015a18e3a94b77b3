// What the registry says of the library.
#pragma once

#include "com/base/windows_headers.h"

namespace tessarlorn::com {

/// Writes classes, ProgIDs and the type library: for the machine, or for the user where the machine's part may not be
/// written. What was written before a failure is taken back.
HRESULT Register();
/// Takes away what Register() writes, in both places; what is not there is no failure.
HRESULT Unregister();

}  // namespace tessarlorn::com
