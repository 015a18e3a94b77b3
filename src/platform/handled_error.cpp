#include "platform/handled_error.h"

#include <new>

namespace tessarlorn {

Error HandledError() {
  constexpr const char* kSource = "TessarLornPickingAndDelivery";
  try {
    throw;
  } catch (const Error& error) {
    return error;
  } catch (const std::bad_alloc&) {
    return {error_number::kOutOfMemory, kSource, "Out of memory"};
  } catch (const std::exception& error) {
    return {error_number::kInternalError, kSource, error.what()};
  } catch (...) {
    return {error_number::kInternalError, kSource, "Internal error"};
  }
}

}  // namespace tessarlorn
