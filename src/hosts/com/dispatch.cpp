#include "hosts/com/dispatch.h"

#include <algorithm>
#include <utility>

#include "hosts/com/face.h"
#include "hosts/com/faces.h"

namespace tessarlorn::com {
namespace {

std::unique_ptr<Face> MakeFace(const AutomationObject& object) {
  const auto classes = AutomationClasses();
  const auto found = std::find(classes.begin(), classes.end(), &object.description());
  return kMakers[found - classes.begin()](object);
}

}  // namespace

Pointer<IDispatch> MakeDispatch(const std::shared_ptr<AutomationObject>& object) {
  if (object->face() == nullptr) object->set_face(MakeFace(*object));
  // Objects have no faces but these.
  auto* const face = static_cast<Face*>(object->face());
  return Pointer<IDispatch>::Adopt(face->Hold(object));
}

std::shared_ptr<AutomationObject> OwnObject(IUnknown* object) {
  void* found = nullptr;
  if (object == nullptr || FAILED(object->QueryInterface(kOwnObject, &found))) return nullptr;
  auto* const own = static_cast<Face*>(found);
  std::shared_ptr<AutomationObject> inside = own->object();
  own->Uncount();
  return inside;
}

}  // namespace tessarlorn::com
