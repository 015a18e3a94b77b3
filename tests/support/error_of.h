// The error that an action raises, for a test that looks at more of it than its type.
#pragma once

#include "tessarlorn/error.h"

namespace tessarlorn {

/// Number 0 and "none" when it raises none.
template <typename Action>
Error ErrorOf(const Action& action) {
  try {
    action();
  } catch (const Error& error) {
    return error;
  }
  return {0, "", "none"};
}

}  // namespace tessarlorn
