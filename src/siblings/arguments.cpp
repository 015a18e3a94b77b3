#include "siblings/arguments.h"

#include "tessarlorn/error.h"

namespace tessarlorn {

void RaiseNoSuchMethod(std::string_view component, std::string_view method) {
  Raise(error_number::kNoSuchMember,
        "Object doesn't support this property or method: " + std::string(component) + "." + std::string(method));
}

void ExpectArguments(std::string_view method, std::span<const Variant> arguments, std::size_t count) {
  if (arguments.size() == count) return;
  Raise(error_number::kWrongArgumentCount, "Wrong number of arguments: " + std::string(method) + " takes " +
                                               std::to_string(count) + ", not " + std::to_string(arguments.size()));
}

}  // namespace tessarlorn
