#include "tessarlorn/object.h"

#include <utility>

namespace tessarlorn {

Variant DefaultValueOf(Variant value) {
  const auto* const object = value.get_if<std::shared_ptr<Object>>();
  if (object == nullptr || *object == nullptr) return value;
  std::optional<Variant> own = (*object)->DefaultValue();
  return own ? *std::move(own) : value;
}

}  // namespace tessarlorn
