#include "com/type_library.h"

#include "com/base/pointers.h"
#include "com/module.h"

namespace tessarlorn::com {

GUID ToGuid(std::string_view text) {
  GUID id{};
  static_cast<void>(CLSIDFromString(ToWide("{" + std::string(text) + "}").c_str(), &id));
  return id;
}

HRESULT FindTypeInfo(const GUID& id, ITypeInfo** info) {
  Pointer<ITypeLib> library;
  const HRESULT status = LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, library.Receive());
  return FAILED(status) ? status : library->GetTypeInfoOfGuid(id, info);
}

}  // namespace tessarlorn::com
