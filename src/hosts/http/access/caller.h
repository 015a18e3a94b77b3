// Who is calling, as an operation is told.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "hosts/http/access/roles.h"

namespace tessarlorn::http {

struct Caller {
  /// The user's, as it was added.
  std::string name;
  /// Id in the ERP.
  std::int32_t user = 0;
  /// "CHS", "CHT", …, as session strings have it.
  std::string language;
  /// Never nullptr. A role that is gone allows nothing.
  std::shared_ptr<const Role> role;
  /// May pass SQL. Then the role is administrator.
  bool sql = false;
  /// Sees the orders of every web shop.
  bool every_shop = false;
  /// The token's name, "" for a session of the page.
  std::string token;
};

}  // namespace tessarlorn::http
