#include "tessarlorn/clsSaveData.h"

#include "frame/call_frame.h"

namespace tessarlorn {

clsSaveData::clsSaveData() : session_(SessionFactory::ForThisThread().NewSession()) {
  context_ = SessionFactory::ForThisThread().NewSession()->GetContext();
}

InstanceState clsSaveData::State() noexcept { return {context_, session_}; }

}  // namespace tessarlorn
