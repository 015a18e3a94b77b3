// The library as Windows sees it: its handle, and what keeps it loaded.
#pragma once

#include <string>

#include "com/base/windows_headers.h"

namespace tessarlorn::com {

/// One for each object and lock while it lives; the library can go when there is none.
class ModuleLock {
 public:
  ModuleLock();
  ModuleLock(const ModuleLock&) = delete;
  ModuleLock& operator=(const ModuleLock&) = delete;
  ~ModuleLock();

  static void Add();
  static void Remove();
  [[nodiscard]] static bool any();
};

void SetModule(HINSTANCE module);
/// Path of the library's file, wherever it was loaded from.
std::wstring ModulePath();

}  // namespace tessarlorn::com
