#include "platform/connection.h"

#include <map>
#include <mutex>
#include <utility>

#include "platform/error.h"
#include "platform/text.h"

namespace tessarlorn {
namespace {

StatementObserver& Observer() {
  static StatementObserver observer;
  return observer;
}

struct DriverRegistry {
  std::mutex mutex;
  std::map<std::string, std::shared_ptr<Driver>> drivers;
};

DriverRegistry& TheDrivers() {
  static DriverRegistry registry;
  return registry;
}

}  // namespace

void SetStatementObserver(StatementObserver observer) { Observer() = std::move(observer); }

RecordsetPtr Connection::Execute(std::string_view text) {
  if (Observer()) Observer()(text);
  std::vector<RecordsetPtr> results = Run(text, true);
  return results.empty() ? nullptr : std::move(results.front());
}

std::vector<RecordsetPtr> Connection::ExecuteAll(std::string_view text) {
  if (Observer()) Observer()(text);
  return Run(text, false);
}

void RegisterDriver(std::shared_ptr<Driver> driver) {
  DriverRegistry& registry = TheDrivers();
  const std::vector<std::string> prefixes = driver->Prefixes();
  const std::scoped_lock lock(registry.mutex);
  for (const std::string& prefix : prefixes) registry.drivers.insert_or_assign(LowerCase(prefix), driver);
}

std::unique_ptr<Connection> OpenConnection(std::string_view database_string) {
  const std::size_t equals = database_string.find('=');
  if (equals == std::string_view::npos) {
    Raise(error_number::kLoginRefused, "The database string does not begin with Key=: no driver can be chosen");
  }
  const std::string_view prefix = Trim(database_string.substr(0, equals));
  std::shared_ptr<Driver> driver;
  {
    DriverRegistry& registry = TheDrivers();
    const std::scoped_lock lock(registry.mutex);
    const auto found = registry.drivers.find(LowerCase(prefix));
    if (found != registry.drivers.end()) driver = found->second;
  }
  if (!driver) {
    Raise(error_number::kLoginRefused, "No driver for database strings that begin with " + std::string(prefix) + "=");
  }
  return driver->Open(database_string);
}

}  // namespace tessarlorn
