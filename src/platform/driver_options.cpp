#include "platform/driver_options.h"

#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {

void RaiseLogin(std::string_view driver, const std::string& description, std::int32_t native) {
  throw Error(error_number::kLoginRefused, std::string(driver), description, {native, "08001"});
}

int NumberOption::Read(std::string_view value, std::string_view driver, std::int32_t native) const {
  const std::optional<int> number = WholeNumber<int>(value, least, most);
  if (!number) {
    RaiseLogin(driver,
               std::string(key) + " in the connection string is no number of " + std::string(unit) + " from " +
                   std::to_string(least) + " to " + std::to_string(most) + ".",
               native);
  }
  return *number;
}

}  // namespace tessarlorn
