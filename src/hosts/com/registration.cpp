#include "hosts/com/registration.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "com_base/pointers.h"
#include "hosts/com/module.h"
#include "hosts/com/type_library.h"
#include "hosts/objects/automation_object.h"

namespace tessarlorn::com {
namespace {

constexpr const wchar_t* kClasses = L"Software\\Classes\\";
/// The application as which the system's surrogate process serves the classes to clients that cannot load the library.
constexpr std::string_view kApplicationId = "21C628D3-6B94-48BF-9FF6-AF5EF1EF7A5E";

std::wstring Braced(std::string_view id) { return L"{" + ToWide(id) + L"}"; }
std::wstring ApplicationKey() { return L"AppID\\" + Braced(kApplicationId); }

/// What is not there is removed already.
LSTATUS Removed(LSTATUS status) { return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : status; }

/// What the registry calls a class.
struct ClassKeys {
  explicit ClassKeys(const ClassDescription& description)
      : id(Braced(description.class_id)),
        key(L"CLSID\\" + id),
        names{ToWide(description.prog_id), ToWide(description.prog_id) + L".1"} {}

  std::wstring id;
  std::wstring key;
  /// The ProgID and the one with a version.
  std::array<std::wstring, 2> names;
};

/// The classes that clients create.
std::vector<const ClassDescription*> Creatable() {
  std::vector<const ClassDescription*> classes;
  std::ranges::copy_if(AutomationClasses(), std::back_inserter(classes),
                       [](const ClassDescription* description) { return !description->prog_id.empty(); });
  return classes;
}

/// The classes of one part of the registry.
class Part {
 public:
  explicit Part(HKEY root) : root_(root) {}

  /// Whether one of the names leads to a class that is not this library's.
  [[nodiscard]] bool IsAnothers(const ClassKeys& keys) const {
    return std::ranges::any_of(keys.names, [&](const std::wstring& name) {
      const std::wstring id = ClassOf(name);
      return !id.empty() && _wcsicmp(id.c_str(), keys.id.c_str()) != 0;
    });
  }

  /// @param named whether the class gets its names as well
  LSTATUS Write(const ClassDescription& description, bool named) const {
    const ClassKeys keys(description);
    const auto& [name, versioned] = keys.names;
    const std::wstring title = ToWide(description.title);
    struct Entry {
      std::wstring key;
      const wchar_t* name;
      std::wstring value;
    };
    std::vector<Entry> entries = {
        {keys.key, nullptr, title},
        {keys.key + L"\\InprocServer32", nullptr, ModulePath()},
        {keys.key + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {keys.key + L"\\Programmable", nullptr, L""},
        {keys.key + L"\\TypeLib", nullptr, Braced(kLibraryId)},
        {keys.key + L"\\Version", nullptr, L"1.0"},
        {ApplicationKey(), nullptr, ToWide(kLibraryName)},
        {ApplicationKey(), L"DllSurrogate", L""},
    };
    // A container that has the class runs it as an application of its own.
    if (Read(keys.key, L"AppID").empty()) entries.push_back({keys.key, L"AppID", Braced(kApplicationId)});
    if (named) {
      const Entry names[] = {
          {name, nullptr, title},
          {name + L"\\CLSID", nullptr, keys.id},
          {name + L"\\CurVer", nullptr, versioned},
          {versioned, nullptr, title},
          {versioned + L"\\CLSID", nullptr, keys.id},
          {keys.key + L"\\ProgID", nullptr, versioned},
          {keys.key + L"\\VersionIndependentProgID", nullptr, name},
      };
      entries.insert(entries.end(), std::begin(names), std::end(names));
    }
    for (const Entry& entry : entries) {
      if (const LSTATUS status = Write(entry.key, entry.name, entry.value); status != ERROR_SUCCESS) return status;
    }
    return ERROR_SUCCESS;
  }

  /// Removes the class, and its names unless the library of the other bitness needs them still: classes are apart for
  /// 32 and 64 bits, names are not.
  LSTATUS Remove(const ClassDescription& description) const {
    const ClassKeys keys(description);
    LSTATUS result = Removed(RegDeleteTreeW(root_, (kClasses + keys.key).c_str()));
    if (Exists(keys.key, kOtherBitness)) return result;
    for (const std::wstring& name : keys.names) {
      if (_wcsicmp(ClassOf(name).c_str(), keys.id.c_str()) != 0) continue;
      const LSTATUS status = Removed(RegDeleteTreeW(root_, (kClasses + name).c_str()));
      if (result == ERROR_SUCCESS) result = status;
    }
    return result;
  }

  /// Removes the application unless a class of the other bitness needs it still.
  [[nodiscard]] LSTATUS RemoveApplication() const {
    const auto needs = [this](const ClassDescription* description) {
      return Exists(ClassKeys(*description).key, kOtherBitness);
    };
    if (std::ranges::any_of(Creatable(), needs)) return ERROR_SUCCESS;
    return Removed(RegDeleteTreeW(root_, (kClasses + ApplicationKey()).c_str()));
  }

  /// @param view of the registry, when it is not that of this library's bitness
  [[nodiscard]] bool Exists(const std::wstring& key, REGSAM view = 0) const {
    HKEY opened = nullptr;
    const LSTATUS status = RegOpenKeyExW(root_, (kClasses + key).c_str(), 0, KEY_READ | view, &opened);
    if (status == ERROR_SUCCESS) RegCloseKey(opened);
    return status != ERROR_FILE_NOT_FOUND;
  }

 private:
  static constexpr REGSAM kOtherBitness = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;

  /// The class that a name leads to, "" for none.
  [[nodiscard]] std::wstring ClassOf(const std::wstring& name) const { return Read(name + L"\\CLSID", nullptr); }

  /// The identity that a value holds, "" for none.
  [[nodiscard]] std::wstring Read(const std::wstring& key, const wchar_t* name) const {
    std::array<wchar_t, 64> id{};
    DWORD size = sizeof(id);
    const LSTATUS status =
        RegGetValueW(root_, (kClasses + key).c_str(), name, RRF_RT_REG_SZ, nullptr, id.data(), &size);
    return status == ERROR_SUCCESS ? id.data() : L"";
  }

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

HRESULT UnregisterLibrary(const Part& part, bool for_machine) {
  constexpr bool kWide = sizeof(void*) == 8;
  constexpr SYSKIND kKind = kWide ? SYS_WIN64 : SYS_WIN32;
  using Unregister = HRESULT(WINAPI*)(REFGUID, WORD, WORD, LCID, SYSKIND);
  const Unregister unregister = for_machine ? UnRegisterTypeLib : OleAutomation<Unregister>("UnRegisterTypeLibForUser");
  if (unregister != nullptr) static_cast<void>(unregister(ToGuid(kLibraryId), 1, 0, LOCALE_NEUTRAL, kKind));
  // Its status tells what was not there and what may not be removed by the same number.
  const std::wstring key = L"TypeLib\\" + Braced(kLibraryId) + L"\\1.0\\0\\" + (kWide ? L"win64" : L"win32");
  return part.Exists(key) ? TYPE_E_REGISTRYACCESS : S_OK;
}

HRESULT RegisterIn(const Part& part, bool for_machine) {
  const Part machine(HKEY_LOCAL_MACHINE);
  for (const ClassDescription* const description : Creatable()) {
    // What the user has goes before what the machine has.
    const ClassKeys keys(*description);
    const bool named = !part.IsAnothers(keys) && !machine.IsAnothers(keys);
    if (const LSTATUS status = part.Write(*description, named); status != ERROR_SUCCESS) {
      return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
    }
  }
  return RegisterLibrary(for_machine);
}

/// Removes what can be removed; answers the first failure.
HRESULT UnregisterIn(const Part& part, bool for_machine) {
  HRESULT result = UnregisterLibrary(part, for_machine);
  const auto keep_first = [&result](LSTATUS status) {
    if (SUCCEEDED(result) && status != ERROR_SUCCESS) result = HRESULT_FROM_WIN32(static_cast<DWORD>(status));
  };
  for (const ClassDescription* const description : Creatable()) keep_first(part.Remove(*description));
  keep_first(part.RemoveApplication());
  return result;
}

/// Registers all or nothing.
HRESULT RegisterWholly(bool for_machine) {
  const Part part(for_machine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER);
  const HRESULT result = RegisterIn(part, for_machine);
  if (FAILED(result)) static_cast<void>(UnregisterIn(part, for_machine));
  return result;
}

}  // namespace

HRESULT Register() { return SUCCEEDED(RegisterWholly(true)) ? S_OK : RegisterForUser(); }

HRESULT RegisterForUser() { return RegisterWholly(false); }

HRESULT UnregisterForUser() { return UnregisterIn(Part(HKEY_CURRENT_USER), false); }

HRESULT Unregister() {
  // The user's first: where both are, it is the user's type library that the machine's function would find.
  const HRESULT of_user = UnregisterForUser();
  const HRESULT of_machine = UnregisterIn(Part(HKEY_LOCAL_MACHINE), true);
  return FAILED(of_machine) ? of_machine : of_user;
}

}  // namespace tessarlorn::com
