#include "hosts/com/type_library.h"

#include <algorithm>
#include <array>
#include <mutex>

#include "com_base/pointers.h"
#include "hosts/com/module.h"

namespace tessarlorn::com {
GUID ToGuid(std::string_view text) noexcept {
  std::array<wchar_t, 39> braced{L'{'};
  wchar_t* const end = std::copy_n(text.begin(), std::min(text.size(), braced.size() - 3), braced.data() + 1);
  *end = L'}';
  GUID id{};
  static_cast<void>(IIDFromString(braced.data(), &id));
  return id;
}

HRESULT FindTypeInfo(const GUID& id, ITypeInfo** info) noexcept {
  // Reading it takes half a millisecond, and clients ask with each object.
  static std::mutex mutex;
  static Pointer<ITypeLib> library;
  try {
    const std::scoped_lock lock(mutex);
    if (!library) {
      const HRESULT status = LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, library.Receive());
      if (FAILED(status)) return status;
    }
    return library->GetTypeInfoOfGuid(id, info);
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

}  // namespace tessarlorn::com
