// The on/off switches of t_SystemProfile, the table of the ERP's settings.
#pragma once

#include <string_view>

#include "tessarlorn/connection.h"

namespace tessarlorn {

/// Whether the setting `key`, of whatever category, has the value 1.
bool IsSwitchOn(Connection& connection, std::string_view key);

}  // namespace tessarlorn
