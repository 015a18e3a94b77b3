#include "tessarlorn/clsSaveData.h"

#include "frame/call_frame.h"

namespace tessarlorn {

clsSaveData::clsSaveData(Host& host) : host_(host), session_(SessionFactory::ForThisThread(host).NewSession()) {
  context_ = SessionFactory::ForThisThread(host).NewSession()->GetContext();
}

InstanceState clsSaveData::State() noexcept { return {host_, context_, session_}; }

}  // namespace tessarlorn
