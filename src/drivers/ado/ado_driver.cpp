#include "tessarlorn/ado_driver.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "drivers/ado/ado_connection.h"
#include "platform/driver.h"

namespace tessarlorn {
namespace {

class AdoDriver final : public Driver {
 public:
  [[nodiscard]] std::vector<std::string> Keys() const override { return {"Provider"}; }
  [[nodiscard]] std::unique_ptr<Connection> Open(std::string_view database_string) override {
    return std::make_unique<ado::AdoConnection>(ado::ParseConnectionOptions(database_string));
  }
};

}  // namespace

void AddAdoDriver(Host& host) { host.AddDriver(std::make_shared<AdoDriver>()); }

}  // namespace tessarlorn
