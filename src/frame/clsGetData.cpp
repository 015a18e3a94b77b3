#include "frame/clsGetData.h"

#include "frame/switches.h"

namespace tessarlorn {

clsGetData::clsGetData() : session_(SessionFactory::ForThisThread().NewSession()) {
  context_ = SessionFactory::ForThisThread().NewSession()->GetContext();
}

bool clsGetData::ReadSwitch(std::string_view source, std::string_view dsn, std::string_view key) {
  if (dsn.empty()) return false;
  return CallOperation(State(), source, dsn, [&](Connection& connection) { return IsSwitchOn(connection, key); });
}

}  // namespace tessarlorn
