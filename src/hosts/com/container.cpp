#include "hosts/com/container.h"

#include "com_base/pointers.h"

// Behind the other headers of Windows.
#include <comsvcs.h>

namespace tessarlorn::com {
namespace {

/// IObjectContext, which not every compiler knows by its name.
constexpr IID kObjectContext = {0x51372AE0, 0xCAE7, 0x11CF, {0xBE, 0x81, 0x00, 0xAA, 0x00, 0xA2, 0xFA, 0x25}};

Pointer<IObjectContext> CurrentContext() noexcept {
  void* found = nullptr;
  if (FAILED(CoGetObjectContext(kObjectContext, &found))) return {};
  return Pointer<IObjectContext>::Adopt(static_cast<IObjectContext*>(found));
}

}  // namespace

bool InContainerTransaction() noexcept {
  const auto context = CurrentContext();
  return context && context->IsInTransaction() != FALSE;
}

ContainerCall::~ContainerCall() {
  if (const auto context = CurrentContext()) completed_ ? context->SetComplete() : context->SetAbort();
}

}  // namespace tessarlorn::com
