#include "com/registration.h"

#include <string>

#include "com/base/pointers.h"
#include "com/module.h"
#include "com/type_library.h"
#include "objects/automation_object.h"

namespace tessarlorn::com {
namespace {

constexpr const wchar_t* kClasses = L"Software\\Classes\\";

std::wstring Braced(std::string_view id) { return L"{" + ToWide(id) + L"}"; }

/// The classes of one part of the registry.
class Part {
 public:
  explicit Part(HKEY root) : root_(root) {}

  LSTATUS Write(const std::wstring& key, const wchar_t* name, const std::wstring& value) const {
    HKEY opened = nullptr;
    LSTATUS status =
        RegCreateKeyExW(root_, (kClasses + key).c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &opened, nullptr);
    if (status != ERROR_SUCCESS) return status;
    status = RegSetValueExW(opened, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                            static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(opened);
    return status;
  }

  LSTATUS Write(const ClassDescription& description) const {
    const std::wstring name = ToWide(description.prog_id);
    const std::wstring versioned = name + L".1";
    const std::wstring id = Braced(description.class_id);
    const std::wstring key = L"CLSID\\" + id;
    const std::wstring title = ToWide(description.help);
    const struct {
      std::wstring key;
      const wchar_t* name;
      std::wstring value;
    } entries[] = {
        {name, nullptr, title},
        {name + L"\\CLSID", nullptr, id},
        {name + L"\\CurVer", nullptr, versioned},
        {versioned, nullptr, title},
        {versioned + L"\\CLSID", nullptr, id},
        {key, nullptr, title},
        {key + L"\\InprocServer32", nullptr, ModulePath()},
        {key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {key + L"\\ProgID", nullptr, versioned},
        {key + L"\\VersionIndependentProgID", nullptr, name},
        {key + L"\\Programmable", nullptr, L""},
        {key + L"\\TypeLib", nullptr, Braced(kLibraryId)},
        {key + L"\\Version", nullptr, L"1.0"},
    };
    for (const auto& entry : entries) {
      if (const LSTATUS status = Write(entry.key, entry.name, entry.value); status != ERROR_SUCCESS) return status;
    }
    return ERROR_SUCCESS;
  }

  LSTATUS Write() const {
    for (const ClassDescription* const description : AutomationClasses()) {
      if (description->prog_id.empty()) continue;
      if (const LSTATUS status = Write(*description); status != ERROR_SUCCESS) return status;
    }
    return ERROR_SUCCESS;
  }

  void Remove() const {
    for (const ClassDescription* const description : AutomationClasses()) {
      if (description->prog_id.empty()) continue;
      const std::wstring name = ToWide(description->prog_id);
      for (const std::wstring& key : {name, name + L".1", L"CLSID\\" + Braced(description->class_id)}) {
        RegDeleteTreeW(root_, (kClasses + key).c_str());
      }
    }
  }

 private:
  HKEY root_;
};

/// The functions for one user's part, which old headers do not declare.
template <typename Function>
Function OleAutomation(const char* name) {
  const HMODULE library = GetModuleHandleW(L"oleaut32.dll");
  return library == nullptr ? nullptr
                            : reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

HRESULT RegisterLibrary(bool for_machine) {
  const std::wstring path = ModulePath();
  Pointer<ITypeLib> library;
  const HRESULT status = LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.Receive());
  if (FAILED(status)) return status;
  std::wstring own(path);
  if (for_machine) return RegisterTypeLib(library.get(), own.data(), nullptr);
  using RegisterForUser = HRESULT(WINAPI*)(ITypeLib*, OLECHAR*, OLECHAR*);
  const auto for_user = OleAutomation<RegisterForUser>("RegisterTypeLibForUser");
  return for_user == nullptr ? E_NOTIMPL : for_user(library.get(), own.data(), nullptr);
}

void UnregisterLibrary() {
  const GUID id = ToGuid(kLibraryId);
  constexpr SYSKIND kKind = sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32;
  static_cast<void>(UnRegisterTypeLib(id, 1, 0, LOCALE_NEUTRAL, kKind));
  using UnregisterForUser = HRESULT(WINAPI*)(REFGUID, WORD, WORD, LCID, SYSKIND);
  if (const auto for_user = OleAutomation<UnregisterForUser>("UnRegisterTypeLibForUser")) {
    static_cast<void>(for_user(id, 1, 0, LOCALE_NEUTRAL, kKind));
  }
}

}  // namespace

HRESULT Register() {
  const Part machine(HKEY_LOCAL_MACHINE);
  const Part user(HKEY_CURRENT_USER);
  const auto all_of = [](const Part& part, bool for_machine) {
    const LSTATUS status = part.Write();
    return status == ERROR_SUCCESS ? RegisterLibrary(for_machine) : HRESULT_FROM_WIN32(static_cast<DWORD>(status));
  };
  HRESULT result = all_of(machine, true);
  if (FAILED(result)) {
    Unregister();
    result = all_of(user, false);
  }
  if (FAILED(result)) Unregister();
  return result;
}

HRESULT Unregister() {
  UnregisterLibrary();
  Part(HKEY_LOCAL_MACHINE).Remove();
  Part(HKEY_CURRENT_USER).Remove();
  return S_OK;
}

}  // namespace tessarlorn::com
