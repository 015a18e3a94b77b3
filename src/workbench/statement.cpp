#include "workbench/statement.h"

namespace tessarlorn::workbench {

std::string_view OfShops(const Asker& asker) {
  if (asker.every_shop) return "";
  return " AND EXISTS (SELECT 1 FROM IC_WebShopAccessData a with(nolock) WHERE a.FIsAccess = 1 AND a.FUserID = @user AND "
         "a.FWebShopID = t1.FWebshopID)";
}

Statement& Statement::SetShops(const Asker& asker) { return Set("@user", "int", asker.user); }

}  // namespace tessarlorn::workbench
