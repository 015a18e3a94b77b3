// The library's entry points, and the factory of its classes.
#include <map>
#include <string_view>

#include "com_base/errors.h"
#include "hosts/com/dispatch.h"
#include "hosts/com/hosting.h"
#include "hosts/com/module.h"
#include "hosts/com/registration.h"
#include "hosts/com/type_library.h"
#include "hosts/objects/automation_object.h"

namespace tessarlorn::com {
namespace {

/// Lives as long as the library, so that a host that forgets one loses no memory with each object.
class ClassFactory final : public IClassFactory {
 public:
  explicit ClassFactory(const ClassDescription& description) : description_(description) {}
  ClassFactory(const ClassFactory&) = delete;
  ClassFactory& operator=(const ClassFactory&) = delete;
  virtual ~ClassFactory() = default;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IClassFactory) ? this : nullptr;
    if (*out == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override {
    ModuleLock::Add();
    return 2;
  }
  ULONG STDMETHODCALLTYPE Release() override {
    ModuleLock::Remove();
    return 1;
  }
  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (outer != nullptr) return CLASS_E_NOAGGREGATION;
    try {
      return MakeDispatch(description_.create(TheHost()))->QueryInterface(id, out);
    } catch (...) {
      return CurrentStatus();
    }
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
    lock != FALSE ? ModuleLock::Add() : ModuleLock::Remove();
    return S_OK;
  }

 private:
  const ClassDescription& description_;
};

std::map<std::string_view, ClassFactory> MakeFactories() {
  std::map<std::string_view, ClassFactory> factories;
  for (const ClassDescription* const description : AutomationClasses()) {
    if (description->create != nullptr) factories.try_emplace(description->class_id, *description);
  }
  return factories;
}

HRESULT FindClass(const CLSID& class_id, const IID& id, void** out) {
  static std::map<std::string_view, ClassFactory> factories = MakeFactories();
  for (auto& [own_id, factory] : factories) {
    if (IsEqualCLSID(ToGuid(own_id), class_id)) return factory.QueryInterface(id, out);
  }
  return CLASS_E_CLASSNOTAVAILABLE;
}

template <typename Action>
HRESULT Guarded(const Action& action) {
  try {
    return action();
  } catch (...) {
    return CurrentStatus();
  }
}

}  // namespace
}  // namespace tessarlorn::com

// Their names are exported by the module definition file.
STDAPI DllGetClassObject(REFCLSID class_id, REFIID id, LPVOID* out) {
  if (out == nullptr) return E_POINTER;
  *out = nullptr;
  return tessarlorn::com::Guarded([&] { return tessarlorn::com::FindClass(class_id, id, out); });
}

STDAPI DllCanUnloadNow() {
  if (tessarlorn::com::ModuleLock::any()) return S_FALSE;
  tessarlorn::com::CloseIdleConnections();
  return S_OK;
}

STDAPI DllRegisterServer() { return tessarlorn::com::Guarded(tessarlorn::com::Register); }

STDAPI DllUnregisterServer() { return tessarlorn::com::Guarded(tessarlorn::com::Unregister); }

// regsvr32 /n /i:user
STDAPI DllInstall(BOOL install, LPCWSTR part) {
  if (part == nullptr || _wcsicmp(part, L"user") != 0) return E_INVALIDARG;
  return tessarlorn::com::Guarded(install != FALSE ? tessarlorn::com::RegisterForUser
                                                   : tessarlorn::com::UnregisterForUser);
}

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID /*process_ends*/) {
  if (reason == DLL_PROCESS_ATTACH) tessarlorn::com::SetModule(module);
  return TRUE;
}

// What Windows calls, in front of the runtime's own entry. When the process ends, its other threads have been stopped
// wherever they were; the runtime would wait for a lock that one of them holds, so it is not asked to clean up.
extern "C" BOOL WINAPI LibraryEntry(HINSTANCE module, DWORD reason, LPVOID process_ends) {
  if (reason == DLL_PROCESS_DETACH && process_ends != nullptr) {
    tessarlorn::com::EndWithProcess();
    return TRUE;
  }
  return TESSARLORN_RUNTIME_ENTRY(module, reason, process_ends);
}
