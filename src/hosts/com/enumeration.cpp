#include "hosts/com/enumeration.h"

#include <algorithm>
#include <memory>
#include <new>
#include <utility>

#include "com_base/counted.h"
#include "com_base/errors.h"
#include "hosts/com/module.h"
#include "hosts/com/values.h"

namespace tessarlorn::com {
namespace {

using Items = std::shared_ptr<const std::vector<Variant>>;

class Enumeration final : public Counted<IEnumVARIANT> {
 public:
  Enumeration(Items items, std::size_t position) : items_(std::move(items)), position_(position) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IEnumVARIANT) ? this : nullptr;
    if (*out == nullptr) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Next(ULONG wanted, VARIANT* out, ULONG* fetched) override {
    if (fetched != nullptr) *fetched = 0;
    if (out == nullptr) return E_POINTER;
    ULONG count = 0;
    try {
      for (; count < wanted && position_ < items_->size(); ++count) ToVariant((*items_)[position_++], &out[count]);
    } catch (...) {
      for (ULONG i = 0; i < count; ++i) VariantClear(&out[i]);
      return CurrentStatus();
    }
    if (fetched != nullptr) *fetched = count;
    return count == wanted ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Skip(ULONG wanted) override {
    const std::size_t left = items_->size() - position_;
    position_ += std::min<std::size_t>(wanted, left);
    return wanted <= left ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE Reset() override {
    position_ = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** out) override {
    if (out == nullptr) return E_POINTER;
    *out = new (std::nothrow) Enumeration(items_, position_);
    return *out == nullptr ? E_OUTOFMEMORY : S_OK;
  }

 private:
  const ModuleLock lock_;
  Items items_;
  std::size_t position_;
};

}  // namespace

Pointer<IUnknown> MakeEnumeration(std::vector<Variant> items) {
  return Pointer<IUnknown>::Adopt(new Enumeration(std::make_shared<const std::vector<Variant>>(std::move(items)), 0));
}

}  // namespace tessarlorn::com
