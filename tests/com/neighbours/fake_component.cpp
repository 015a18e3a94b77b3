#include "com/neighbours/fake_component.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace tessarlorn::com_test {
namespace {

using Methods = std::map<std::wstring, Method>;

std::wstring Text(const VARIANT& value);

/// The value that a member of an object without arguments, or with one, answers.
std::wstring Ask(IDispatch* object, const wchar_t* member, VARIANT* argument) {
  std::wstring name(member);
  LPOLESTR text = name.data();
  DISPID id = DISPID_UNKNOWN;
  if (FAILED(object->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id))) return L"no " + name;
  DISPPARAMS parameters = {argument, nullptr, argument == nullptr ? 0U : 1U, 0};
  com::OwnedVariant result;
  const HRESULT status = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                                        &parameters, &result.get(), nullptr, nullptr);
  return FAILED(status) ? L"no answer from " + name : Text(result.get());
}

/// A dictionary as {key=value,key=value}, as one reads it who knows nothing but names.
std::wstring DictionaryText(IDispatch* dictionary) {
  std::wstring text;
  const std::wstring keys = Ask(dictionary, L"Keys", nullptr);
  for (std::size_t start = 0; start < keys.size();) {
    const std::size_t end = std::min(keys.find(L';', start), keys.size());
    com::OwnedVariant key;
    key.get().vt = VT_BSTR;
    key.get().bstrVal = SysAllocStringLen(keys.data() + start, static_cast<UINT>(end - start));
    text += (text.empty() ? L"" : L",") + keys.substr(start, end - start) + L"=" + Ask(dictionary, L"Item", &key.get());
    start = end + 1;
  }
  return L"{" + text + L"}";
}

std::wstring Text(const VARIANT& value) {
  if (value.vt == VT_DISPATCH) return DictionaryText(value.pdispVal);
  if (value.vt == VT_DATE) return L"a date";
  if (value.vt == (VT_ARRAY | VT_VARIANT)) {
    std::wstring text;
    for (ULONG i = 0; i < value.parray->rgsabound[0].cElements; ++i) {
      text += Text(static_cast<const VARIANT*>(value.parray->pvData)[i]) + L";";
    }
    return text;
  }
  com::OwnedVariant text;
  if (FAILED(VariantChangeType(&text.get(), const_cast<VARIANT*>(&value), 0, VT_BSTR))) return L"?";
  return {text.get().bstrVal, SysStringLen(text.get().bstrVal)};
}

/// A template for what has no other interface than one.
template <typename Interface>
class Plain : public com::Counted<Interface> {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    *out = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, __uuidof(Interface)) ? this : nullptr;
    if (*out == nullptr) return E_NOINTERFACE;
    this->AddRef();
    return S_OK;
  }
};

class Instance final : public Plain<IDispatch> {
 public:
  explicit Instance(const Methods& methods) : methods_(methods) {}

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    ids[0] = 1;
    for (const auto& [name, method] : methods_) {
      if (_wcsicmp(name.c_str(), names[0]) == 0) return S_OK;
      ++ids[0];
    }
    ids[0] = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO* error, UINT*) override {
    const auto& [name, method] = *std::next(methods_.begin(), id - 1);
    std::wstring arguments;
    for (UINT i = parameters->cArgs; i > 0; --i) {
      arguments += (arguments.empty() ? L"" : L", ") + Text(parameters->rgvarg[i - 1]);
    }
    Calls().push_back(name + L"(" + arguments + L")");
    return method(*result, *error);
  }

 private:
  Methods methods_;
};

class Factory final : public Plain<IClassFactory> {
 public:
  explicit Factory(Methods methods) : methods_(std::move(methods)) {}

  HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** out) override {
    return com::Pointer<IDispatch>::Adopt(new Instance(methods_))->QueryInterface(id, out);
  }
  HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

 private:
  Methods methods_;
};

void Check(bool done, const wchar_t* what) {
  if (!done) throw std::runtime_error(std::string(what, what + wcslen(what)));
}

}  // namespace

std::vector<std::wstring>& Calls() {
  static std::vector<std::wstring> calls;
  return calls;
}

FakeComponent::FakeComponent(std::wstring prog_id, const CLSID& class_id, std::map<std::wstring, Method> methods)
    // Wine looks for names in the machine's part alone.
    : key_(L"Software\\Classes\\" + std::move(prog_id)) {
  wchar_t id[64] = {};
  Check(StringFromGUID2(class_id, id, 64) > 0, L"StringFromGUID2");
  HKEY opened = nullptr;
  Check(RegCreateKeyExW(HKEY_LOCAL_MACHINE, (key_ + L"\\CLSID").c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &opened,
                        nullptr) == ERROR_SUCCESS,
        L"RegCreateKeyEx");
  const LSTATUS written = RegSetValueExW(opened, nullptr, 0, REG_SZ, reinterpret_cast<const BYTE*>(id),
                                         static_cast<DWORD>((wcslen(id) + 1) * sizeof(wchar_t)));
  RegCloseKey(opened);
  Check(written == ERROR_SUCCESS, L"RegSetValueEx");
  const auto factory = com::Pointer<IClassFactory>::Adopt(new Factory(std::move(methods)));
  Check(SUCCEEDED(CoRegisterClassObject(class_id, factory.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie_)),
        L"CoRegisterClassObject");
}

FakeComponent::~FakeComponent() {
  CoRevokeClassObject(cookie_);
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, key_.c_str());
}

}  // namespace tessarlorn::com_test
