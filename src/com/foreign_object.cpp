#include "com/foreign_object.h"

#include <string>

#include "com/base/errors.h"
#include "com/values.h"

namespace tessarlorn::com {
namespace {

/// VARIANTs of arguments in the order of DISPPARAMS, which is the reverse one.
class Arguments {
 public:
  explicit Arguments(std::span<const Variant> values) : variants_(values.size()) {
    for (VARIANT& variant : variants_) VariantInit(&variant);
    for (std::size_t i = 0; i < values.size(); ++i) ToVariant(values[i], &variants_[values.size() - 1 - i]);
  }
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;
  ~Arguments() {
    for (VARIANT& variant : variants_) VariantClear(&variant);
  }
  [[nodiscard]] DISPPARAMS parameters() { return {variants_.data(), nullptr, static_cast<UINT>(variants_.size()), 0}; }

 private:
  std::vector<VARIANT> variants_;
};

void InvokeMember(IDispatch& object, DISPID id, DISPPARAMS& parameters, VARIANT& result, const std::string& what) {
  EXCEPINFO info{};
  const HRESULT status = object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                                       &parameters, &result, &info, nullptr);
  if (FAILED(status)) RaiseFailure(status, info, what);
}

}  // namespace

HRESULT ForeignObject::Find(std::string_view member, DISPID& id) const {
  if (const auto known = numbers_.find(member); known != numbers_.end()) {
    id = known->second;
    return S_OK;
  }
  std::wstring wide = ToWide(member);
  LPOLESTR text = wide.data();
  const HRESULT status = object_->GetIDsOfNames(IID_NULL, &text, 1, LOCALE_USER_DEFAULT, &id);
  if (SUCCEEDED(status)) numbers_.emplace(member, id);
  return status;
}

bool ForeignObject::Has(std::string_view member) const {
  DISPID id = 0;
  return SUCCEEDED(Find(member, id));
}

Variant ForeignObject::Call(std::string_view method, std::span<const Variant> arguments) {
  DISPID id = 0;
  if (const HRESULT status = Find(method, id); FAILED(status)) {
    Raise(ToNumber(status), "Object doesn't support this property or method: " + std::string(method));
  }
  Arguments own(arguments);
  DISPPARAMS parameters = own.parameters();
  OwnedVariant result;
  InvokeMember(*object_.get(), id, parameters, result.get(), std::string(method));
  return FromVariant(result.get());
}

std::vector<Variant> ForeignObject::Items() {
  DISPPARAMS none{};
  OwnedVariant result;
  InvokeMember(*object_.get(), DISPID_NEWENUM, none, result.get(), "For Each");
  VARIANT& value = result.get();
  const auto enumeration =
      Query<IEnumVARIANT>(value.vt == VT_UNKNOWN || value.vt == VT_DISPATCH ? value.punkVal : nullptr);
  if (!enumeration) Raise(error_number::kNoSuchMember, "Object not a collection");
  std::vector<Variant> items;
  for (;;) {
    OwnedVariant item;
    ULONG fetched = 0;
    if (enumeration->Next(1, &item.get(), &fetched) != S_OK || fetched == 0) return items;
    items.push_back(FromVariant(item.get()));
  }
}

bool IsRegistered(std::string_view prog_id) {
  CLSID class_id{};
  return SUCCEEDED(CLSIDFromProgID(ToWide(prog_id).c_str(), &class_id));
}

std::shared_ptr<Object> CreateForeignObject(std::string_view prog_id) {
  CLSID class_id{};
  void* created = nullptr;
  HRESULT status = CLSIDFromProgID(ToWide(prog_id).c_str(), &class_id);
  if (SUCCEEDED(status)) {
    status = CoCreateInstance(class_id, nullptr, CLSCTX_ALL, __uuidof(IDispatch), &created);
  }
  if (FAILED(status)) {
    Raise(error_number::kCannotCreateObject, "ActiveX component can't create object: " + std::string(prog_id));
  }
  return std::make_shared<ForeignObject>(Pointer<IDispatch>::Adopt(static_cast<IDispatch*>(created)));
}

}  // namespace tessarlorn::com
