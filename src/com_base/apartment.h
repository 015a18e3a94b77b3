// The apartment of COM in which objects live that this process makes for itself.
#pragma once

#include "com_base/windows_headers.h"

namespace tessarlorn::com {

/// Sees to it that the thread is in an apartment while this lives: in the one that it has joined, else in one of its
/// own. Made and destroyed on that thread.
class Apartment {
 public:
  Apartment() noexcept : joined_(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) {}
  Apartment(const Apartment&) = delete;
  Apartment& operator=(const Apartment&) = delete;
  ~Apartment() {
    if (joined_) CoUninitialize();
  }

 private:
  bool joined_;
};

}  // namespace tessarlorn::com
