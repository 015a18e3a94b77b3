#include "tessarlorn/clsGetData.h"

#include "frame/call_frame.h"
#include "frame/switches.h"

namespace tessarlorn {

clsGetData::clsGetData(Host& host) : host_(host), session_(SessionFactory::ForThisThread(host).NewSession()) {
  context_ = SessionFactory::ForThisThread(host).NewSession()->GetContext();
}

bool clsGetData::ReadSwitch(const Contract& contract, std::string_view dsn, std::string_view key) {
  return CallForTexts(State(), contract, {dsn}, [&](Connection& connection) { return IsSwitchOn(connection, key); });
}

InstanceState clsGetData::State() noexcept { return {host_, context_, session_}; }

}  // namespace tessarlorn
