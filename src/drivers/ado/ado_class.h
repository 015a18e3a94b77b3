// The objects of ADO that the driver makes.
#pragma once

#include <string>

#include "com_base/errors.h"
#include "com_base/pointers.h"
#include "drivers/ado/ado_error.h"
#include "drivers/ado/ado_interfaces.h"

namespace tessarlorn::ado {

/// A new object of the class `prog_id`, with the interface by its current number, or by the one before. Raises 429
/// where ADO is missing.
template <typename Interface>
com::Pointer<Interface> Create(const char* prog_id, const GUID& class_id, const GUID& current, const GUID& before) {
  void* created = nullptr;
  HRESULT status = CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, current, &created);
  if (status == E_NOINTERFACE) status = CoCreateInstance(class_id, nullptr, CLSCTX_INPROC_SERVER, before, &created);
  if (FAILED(status)) {
    throw Error(error_number::kCannotCreateObject, kSource,
                "ActiveX component can't create object: " + std::string(prog_id) + ": " + com::SystemText(status));
  }
  return com::Pointer<Interface>::Adopt(static_cast<Interface*>(created));
}

}  // namespace tessarlorn::ado
