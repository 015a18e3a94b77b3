// Rows that came from elsewhere as a recordset of ADO's.
#pragma once

#include <string_view>

#include "com_base/pointers.h"
#include "drivers/ado/ado_interfaces.h"

namespace tessarlorn::ado {

/// A recordset without a connection, with the rows of a text in ADO's XML. Raises 429 where ADO is missing, and what
/// ADO raises.
com::Pointer<IAdoRecordset> OpenPersisted(std::string_view xml);

}  // namespace tessarlorn::ado
