#include "tessarlorn/siblings.h"

#include "siblings/security_info.h"
#include "siblings/web_order_log.h"
#include "tessarlorn/object_service.h"

namespace tessarlorn {

void RegisterDefaultSiblings() {
  RegisterObject("TessarMWebOrder.TessarMWebOrderUpdate", [] { return std::make_shared<WebOrderLog>(); });
  RegisterObject("QuorBase.SecurityInfo", [] { return std::make_shared<SecurityInfo>(); });
}

}  // namespace tessarlorn
