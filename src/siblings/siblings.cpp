#include "siblings/siblings.h"

#include "platform/object_service.h"
#include "siblings/security_info.h"
#include "siblings/web_order_log.h"

namespace tessarlorn {

void RegisterDefaultSiblings() {
  RegisterObject("TessarMWebOrder.TessarMWebOrderUpdate", [] { return std::make_shared<WebOrderLog>(); });
  RegisterObject("QuorBase.SecurityInfo", [] { return std::make_shared<SecurityInfo>(); });
}

}  // namespace tessarlorn
