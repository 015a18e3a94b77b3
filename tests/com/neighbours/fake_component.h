// A component of the ERP as the library meets it: made by its name, and called by names alone.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "com_base/counted.h"
#include "com_base/pointers.h"

namespace tessarlorn::com_test {

/// What a method does: answers, or fills what it raises and answers DISP_E_EXCEPTION.
using Method = std::function<HRESULT(VARIANT& result, EXCEPINFO& error)>;

/// How components were called, as "Method(argument, argument)" in the order of the calls.
std::vector<std::wstring>& Calls();

/// Under its name in the registry and at COM while it lives, for the calling apartment.
class FakeComponent {
 public:
  /// @param class_id any one of its own
  FakeComponent(std::wstring prog_id, const CLSID& class_id, std::map<std::wstring, Method> methods);
  FakeComponent(const FakeComponent&) = delete;
  FakeComponent& operator=(const FakeComponent&) = delete;
  ~FakeComponent();

 private:
  std::wstring key_;
  DWORD cookie_ = 0;
};

}  // namespace tessarlorn::com_test
