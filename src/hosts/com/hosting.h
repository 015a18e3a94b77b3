// What the component finds around it on Windows: drivers, neighbouring components, the client's address.
#pragma once

#include "tessarlorn/host.h"

namespace tessarlorn::com {

/// The host of this process, made at the first call: with the drivers, the neighbours that the ERP brings, default ones
/// where it brings none, and the function that tells the client's address. From then on the library stays in the
/// process.
Host& TheHost();
/// Lets go what is kept between calls.
void CloseIdleConnections() noexcept;
/// For the end of the process: closes files of databases, and leaves alone what other libraries have of connections to
/// servers, as those libraries may be gone already.
void EndWithProcess() noexcept;

}  // namespace tessarlorn::com
