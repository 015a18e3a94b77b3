#include "frame/call_frame.h"

#include <string>

#include "platform/handled_error.h"

namespace tessarlorn {

void OpenSession(InstanceState instance, std::string_view dsn) {
  // Kept alive until the new session is open: `dsn` may be the old session's own text.
  const std::shared_ptr<DataSession> old =
      std::exchange(instance.session, SessionFactory::ForThisThread(instance.host).NewSession());
  instance.session->OpenSession(dsn);
  instance.context = instance.session->GetContext();
}

void RaiseFromHandler(std::string_view source) { throw HandledError().WithSource(std::string(source)); }

}  // namespace tessarlorn
