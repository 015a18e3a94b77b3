// The component's objects as COM sees them.
#pragma once

#include <memory>

#include "com_base/pointers.h"
#include "hosts/objects/automation_object.h"

namespace tessarlorn::com {

/// The COM object of the component's, the same one as long as that lives.
Pointer<IDispatch> MakeDispatch(const std::shared_ptr<AutomationObject>& object);
/// The component's object inside a COM object of its own making, nullptr for any other.
std::shared_ptr<AutomationObject> OwnObject(IUnknown* object);

}  // namespace tessarlorn::com
