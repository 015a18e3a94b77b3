// The library as Windows sees it: its handle, and what keeps it loaded.
#pragma once

#include <string>

#include "com_base/windows_headers.h"

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
/// Keeps the library in the process for good. What threads have of it is destroyed when they end, where Windows cannot
/// unload it: a thread that was its last user would never end.
void KeepModule();
/// Path of the library's file, wherever it was loaded from.
std::wstring ModulePath();

}  // namespace tessarlorn::com
