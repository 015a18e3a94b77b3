#include "tessarlorn/object_service.h"

#include <map>
#include <mutex>
#include <utility>

#include "platform/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

struct Registry {
  std::mutex mutex;
  std::map<std::string, ObjectCreator> creators;
};

Registry& TheRegistry() {
  static Registry registry;
  return registry;
}

}  // namespace

void RegisterObject(std::string_view prog_id, ObjectCreator creator) {
  Registry& registry = TheRegistry();
  const std::scoped_lock lock(registry.mutex);
  if (creator) {
    registry.creators.insert_or_assign(LowerCase(prog_id), std::move(creator));
  } else {
    registry.creators.erase(LowerCase(prog_id));
  }
}

ObjectService& ObjectService::ForThisThread() {
  thread_local ObjectService service;
  return service;
}

std::shared_ptr<Object> ObjectService::CreateInstance(std::string_view prog_id) {
  ObjectCreator creator;
  {
    Registry& registry = TheRegistry();
    const std::scoped_lock lock(registry.mutex);
    const auto found = registry.creators.find(LowerCase(prog_id));
    if (found != registry.creators.end()) creator = found->second;
  }
  if (!creator) {
    Raise(error_number::kCannotCreateObject, "ActiveX component can't create object: " + std::string(prog_id));
  }
  return creator();
}

Variant DefaultValueOf(Variant value) {
  const auto* const object = value.get_if<std::shared_ptr<Object>>();
  if (object == nullptr || *object == nullptr) return value;
  std::optional<Variant> own = (*object)->DefaultValue();
  return own ? *std::move(own) : value;
}

}  // namespace tessarlorn
