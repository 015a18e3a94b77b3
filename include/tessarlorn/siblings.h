// The neighbouring components of the ERP in a default form, for where the ERP does not bring its own.
#pragma once

namespace tessarlorn {

/// Registers "TessarMWebOrder.TessarMWebOrderUpdate" (operation log, field log, log switch) and "QuorBase.SecurityInfo"
/// (acting user) with the object-creation service. A component registered later under the same name takes their place.
void RegisterDefaultSiblings();

}  // namespace tessarlorn
