// The default security component: who is acting.
#pragma once

#include "tessarlorn/object.h"

namespace tessarlorn {

/// GetCurrentUserID(caller string) answers the number behind `User=` of a text of `Key=value;` pairs, 0 when it has
/// none. Raises 13 when what stands there is no number.
class SecurityInfo : public Object {
 public:
  Variant Call(std::string_view method, std::span<const Variant> arguments) override;
};

}  // namespace tessarlorn
