// The host of a test program.
#pragma once

#include <memory>
#include <string_view>

#include "tessarlorn/embedded_driver.h"
#include "tessarlorn/host.h"
#include "tessarlorn/siblings.h"
#ifdef TESSARLORN_HAS_ODBC
#include "tessarlorn/odbc_driver.h"
#endif
#ifdef TESSARLORN_HAS_ADO
#include "tessarlorn/ado_driver.h"
#endif

namespace tessarlorn {

/// With every driver that there is, and the default neighbours.
inline Host& TestHost() {
  static Host host;
  static const bool filled = [] {
    AddEmbeddedDriver(host);
#ifdef TESSARLORN_HAS_ODBC
    AddOdbcDriver(host);
#endif
#ifdef TESSARLORN_HAS_ADO
    AddAdoDriver(host);
#endif
    AddDefaultSiblings(host);
    return true;
  }();
  static_cast<void>(filled);
  return host;
}

inline std::unique_ptr<Connection> OpenConnection(std::string_view database) {
  return TestHost().OpenConnection(database);
}

}  // namespace tessarlorn
