// An object of another component: what it answers is told when it is made.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "com/client/typed_object.h"
#include "com_base/counted.h"
#include "com_base/pointers.h"

namespace tessarlorn::com_test {

/// Knows only the members that it is given: Count and _NewEnum with items, Keys and Item with keys, a default value.
class FakeObject final : public com::Counted<IDispatch, IEnumVARIANT> {
 public:
  static com::Pointer<FakeObject> Make() { return com::Pointer<FakeObject>::Adopt(new FakeObject); }

  /// Its items can be enumerated; behind them stands the end, or an error.
  void set_items(std::vector<Value> items, HRESULT end = S_FALSE) {
    members_ = {L"Count"};
    enumerable_ = true;
    items_ = std::move(items);
    end_ = end;
  }
  void set_keys(IDispatch* keys) {
    members_ = {L"Item", L"Keys"};
    keys_ = keys;
  }
  void set_default(Value value) { default_ = std::move(value); }
  void add_member(const wchar_t* name) { members_.emplace_back(name); }
  IDispatch* dispatch() { return this; }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    *out = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) ? static_cast<IDispatch*>(this) : nullptr;
    if (IsEqualIID(id, IID_IEnumVARIANT)) *out = static_cast<IEnumVARIANT*>(this);
    if (*out == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT, LCID, DISPID* ids) override {
    for (std::size_t i = 0; i < members_.size(); ++i) {
      *ids = static_cast<DISPID>(i + 1);
      if (members_[i] == names[0]) return S_OK;
    }
    return DISP_E_UNKNOWNNAME;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* given, VARIANT* result, EXCEPINFO*,
                                   UINT*) override {
    if (id == DISPID_NEWENUM && enumerable_) {
      place_ = 0;
      return Answer(Value(dispatch()), result);
    }
    if (id == DISPID_VALUE && default_.type() != VT_EMPTY) return Answer(default_, result);
    if (id == 1 && keys_ != nullptr && given->cArgs == 1) return Answer(Value(L"of a key"), result);
    if (id == 2 && keys_ != nullptr) return Answer(Value(keys_), result);
    return DISP_E_MEMBERNOTFOUND;
  }
  HRESULT STDMETHODCALLTYPE Next(ULONG, VARIANT* out, ULONG* fetched) override {
    *fetched = place_ < items_.size() ? 1 : 0;
    return *fetched == 0 ? end_ : Answer(items_[place_++], out);
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG) override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Reset() override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT**) override { return E_NOTIMPL; }

 private:
  static HRESULT Answer(Value value, VARIANT* out) { return out == nullptr ? S_OK : VariantCopy(out, &value.get()); }

  std::vector<std::wstring> members_;
  bool enumerable_ = false;
  std::vector<Value> items_;
  HRESULT end_ = S_FALSE;
  std::size_t place_ = 0;
  IDispatch* keys_ = nullptr;
  Value default_;
};

}  // namespace tessarlorn::com_test
