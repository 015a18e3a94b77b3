#include "hosts/com/container.h"

#include "com_base/errors.h"
#include "com_base/pointers.h"

// Behind the other headers of Windows.
#include <comsvcs.h>

namespace tessarlorn::com {
namespace {

// Interfaces which not every compiler knows by their names.
constexpr IID kObjectContext = {0x51372AE0, 0xCAE7, 0x11CF, {0xBE, 0x81, 0x00, 0xAA, 0x00, 0xA2, 0xFA, 0x25}};
constexpr IID kObjectContextInfo = {0x75B52DDB, 0xE8ED, 0x11D1, {0x93, 0xAD, 0x00, 0xAA, 0x00, 0xBA, 0x32, 0x58}};
constexpr IID kTransaction = {0x0FB15084, 0xAF41, 0x11CE, {0xBD, 0x2B, 0x20, 0x4C, 0x4F, 0x4F, 0x50, 0x20}};

template <typename Interface>
Pointer<Interface> CurrentContext(const IID& id) noexcept {
  void* found = nullptr;
  if (FAILED(CoGetObjectContext(id, &found))) return {};
  return Pointer<Interface>::Adopt(static_cast<Interface*>(found));
}

}  // namespace

std::shared_ptr<void> TransactionOfContainer() {
  const auto context = CurrentContext<IObjectContextInfo>(kObjectContextInfo);
  if (!context || context->IsInTransaction() == FALSE) return nullptr;
  Pointer<IUnknown> held;
  HRESULT status = context->GetTransaction(held.Receive());
  void* transaction = nullptr;
  if (SUCCEEDED(status)) status = held ? held->QueryInterface(kTransaction, &transaction) : E_NOINTERFACE;
  if (FAILED(status)) Raise(ToNumber(status), "The container does not hand out its transaction: " + SystemText(status));
  return {transaction, [](void* taken) { static_cast<IUnknown*>(taken)->Release(); }};
}

ContainerCall::~ContainerCall() {
  if (!is_operation_) return;
  if (const auto context = CurrentContext<IObjectContext>(kObjectContext)) {
    completed_ ? context->SetComplete() : context->SetAbort();
  }
}

}  // namespace tessarlorn::com
