#include "frame/call_frame.h"

#include <new>
#include <string>

#include "tessarlorn/error.h"

namespace tessarlorn {

void OpenSession(InstanceState instance, std::string_view dsn) {
  // Kept alive until the new session is open: `dsn` may be the old session's own text.
  const std::shared_ptr<DataSession> old =
      std::exchange(instance.session, SessionFactory::ForThisThread(instance.host).NewSession());
  instance.session->OpenSession(dsn);
  instance.context = instance.session->GetContext();
}

void RaiseFromHandler(std::string_view source) {
  try {
    throw;
  } catch (const Error& error) {
    throw error.WithSource(std::string(source));
  } catch (const std::bad_alloc&) {
    throw Error(error_number::kOutOfMemory, std::string(source), "Out of memory");
  } catch (const std::exception& exception) {
    throw Error(error_number::kInternalError, std::string(source), exception.what());
  } catch (...) {
    throw Error(error_number::kInternalError, std::string(source), "Internal error");
  }
}

}  // namespace tessarlorn
