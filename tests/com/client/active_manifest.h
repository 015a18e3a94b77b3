// The library as it is used without registration: by its manifest.
#pragma once

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "com_base/windows_headers.h"

namespace tessarlorn::com_test {

/// Where the library and its manifest are: the environment variable TESSARLORN_LIBRARY_FOLDER says it.
inline std::wstring LibraryFolder() {
  const wchar_t* const found = _wgetenv(L"TESSARLORN_LIBRARY_FOLDER");
  return found == nullptr ? L"" : found;
}
inline std::wstring LibraryManifest() { return LibraryFolder() + L"\\TessarLornPickingAndDelivery.Assembly.manifest"; }

/// Makes the classes of a manifest, or of those that it depends on, known to the calling thread while it lives.
class ActiveManifest {
 public:
  explicit ActiveManifest(const std::wstring& manifest = LibraryManifest()) {
    const std::wstring folder = LibraryFolder();
    ACTCTXW description{};
    description.cbSize = sizeof description;
    description.dwFlags = ACTCTX_FLAG_ASSEMBLY_DIRECTORY_VALID;
    description.lpSource = manifest.c_str();
    description.lpAssemblyDirectory = folder.c_str();
    context_ = CreateActCtxW(&description);
    if (context_ == INVALID_HANDLE_VALUE || ActivateActCtx(context_, &cookie_) == FALSE) {
      throw std::runtime_error("The manifest cannot be used: " + std::to_string(GetLastError()));
    }
  }
  ActiveManifest(const ActiveManifest&) = delete;
  ActiveManifest& operator=(const ActiveManifest&) = delete;
  ~ActiveManifest() {
    DeactivateActCtx(0, cookie_);
    ReleaseActCtx(context_);
  }

 private:
  HANDLE context_ = INVALID_HANDLE_VALUE;
  ULONG_PTR cookie_ = 0;
};

}  // namespace tessarlorn::com_test
