#include "workbench/statement.h"

namespace tessarlorn::workbench {

std::string_view OfShops(const Asker& asker) {
  if (asker.every_shop) return "";
  return " AND EXISTS (SELECT 1 FROM IC_WebShopAccessData a with(nolock) WHERE a.FIsAccess = 1 AND a.FUserID = @user AND "
         "a.FWebShopID = t1.FWebshopID)";
}

std::string KeyList(const Dictionary& values) {
  std::string list;
  for (const Variant& key : *values.GetValue("keys").ToVector()) {
    list.append(list.empty() ? "" : ",").append(std::to_string(key.ToInt32()));
  }
  return list;
}

std::string EscapedForLike(const std::string& text) {
  std::string escaped;
  for (const char letter : text) {
    if (letter == '%' || letter == '_' || letter == '[' || letter == '\\') escaped += '\\';
    escaped += letter;
  }
  return escaped;
}

Variant UniqueCodeOf(const std::string& text) {
  constexpr std::size_t kMostDigits = 23;
  const bool digits =
      !text.empty() && text.size() <= kMostDigits && text.find_first_not_of("0123456789") == std::string::npos;
  return digits ? Variant(text) : Variant();
}

Statement& Statement::SetShops(const Asker& asker) { return Set("@user", "int", asker.user); }

}  // namespace tessarlorn::workbench
