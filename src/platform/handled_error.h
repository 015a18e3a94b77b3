// What is being caught, as an Error.
#pragma once

#include "tessarlorn/error.h"

namespace tessarlorn {

/// The exception that is being handled: an Error as it is; out of memory is 7, anything else 51. Only to be called
/// inside a catch block.
Error HandledError();

}  // namespace tessarlorn
