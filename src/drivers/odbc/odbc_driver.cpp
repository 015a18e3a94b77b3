#include "tessarlorn/odbc_driver.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "drivers/odbc/connection_options.h"
#include "drivers/odbc/odbc_connection.h"
#include "drivers/odbc/odbc_handle.h"
#include "platform/driver.h"

namespace tessarlorn {
namespace {

class OdbcDriver final : public Driver {
 public:
  explicit OdbcDriver(OdbcCancelling cancelling) : cancelling_(cancelling) {}
  [[nodiscard]] std::vector<std::string> Keys() const override { return {"Driver", "DSN"}; }
  [[nodiscard]] std::unique_ptr<Connection> Open(std::string_view database_string) override {
    return std::make_unique<odbc::OdbcConnection>(odbc::ParseConnectionOptions(database_string), cancelling_);
  }

 private:
  OdbcCancelling cancelling_;
};

}  // namespace

void AddOdbcDriver(Host& host, OdbcCancelling cancelling) { host.AddDriver(std::make_shared<OdbcDriver>(cancelling)); }

void AbandonOdbc() noexcept { odbc::AbandonHandles(); }

}  // namespace tessarlorn
