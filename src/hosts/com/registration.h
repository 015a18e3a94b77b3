// What the registry says of the library.
#pragma once

#include "com_base/windows_headers.h"

namespace tessarlorn::com {

/// Writes classes, ProgIDs, their application and the type library: for the machine, or for the user where the
/// machine's part may not be written. A ProgID that leads to another class stays with that class. What was written
/// before a failure is taken back.
HRESULT Register();
/// The same for the user alone.
HRESULT RegisterForUser();
HRESULT UnregisterForUser();
/// Takes away what Register() writes, in both places, but not the ProgIDs that the library of the other bitness needs;
/// what is not there is no failure. Answers the first failure, after it has removed what it can.
HRESULT Unregister();

}  // namespace tessarlorn::com
