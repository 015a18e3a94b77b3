#include "tessarlorn/siblings.h"

#include "siblings/security_info.h"
#include "siblings/web_order_log.h"

namespace tessarlorn {

void AddDefaultSiblings(Host& host) {
  host.AddObject("TessarMWebOrder.TessarMWebOrderUpdate", [] { return std::make_shared<WebOrderLog>(); });
  host.AddObject("QuorBase.SecurityInfo", [] { return std::make_shared<SecurityInfo>(); });
}

}  // namespace tessarlorn
