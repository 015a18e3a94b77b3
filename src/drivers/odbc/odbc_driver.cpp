#include "drivers/odbc/odbc_driver.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "drivers/odbc/connection_options.h"
#include "drivers/odbc/odbc_connection.h"

namespace tessarlorn {
namespace {

class OdbcDriver final : public Driver {
 public:
  [[nodiscard]] std::vector<std::string> Prefixes() const override { return {"Driver", "DSN"}; }
  [[nodiscard]] std::unique_ptr<Connection> Open(std::string_view database_string) override {
    return std::make_unique<odbc::OdbcConnection>(odbc::ParseConnectionOptions(database_string));
  }
};

}  // namespace

void RegisterOdbcDriver() { RegisterDriver(std::make_shared<OdbcDriver>()); }

}  // namespace tessarlorn
