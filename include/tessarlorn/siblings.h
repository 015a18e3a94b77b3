// The neighbouring components of the ERP in a default form, for where the ERP does not bring its own.
#pragma once

#include "tessarlorn/host.h"

namespace tessarlorn {

/// Adds "TessarMWebOrder.TessarMWebOrderUpdate" (operation log, field log, log switch) and "QuorBase.SecurityInfo"
/// (acting user). A component that is added later under the same name takes their place.
void AddDefaultSiblings(Host& host);

}  // namespace tessarlorn
