// What objects of COM have in common: the count of their references.
#pragma once

#include <atomic>

#include "com_base/windows_headers.h"

namespace tessarlorn::com {

/// Begins with one reference, which its maker holds, and deletes itself with the last.
template <typename... Interfaces>
class Counted : public Interfaces... {
 public:
  Counted() = default;
  Counted(const Counted&) = delete;
  Counted& operator=(const Counted&) = delete;

  ULONG STDMETHODCALLTYPE AddRef() final { return references_.fetch_add(1) + 1; }
  ULONG STDMETHODCALLTYPE Release() final {
    const ULONG left = references_.fetch_sub(1) - 1;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~Counted() = default;

 private:
  std::atomic<ULONG> references_{1};
};

}  // namespace tessarlorn::com
