#include "hosts/com/foreign_object.h"

#include <dispex.h>
#include <string>

#include "com_base/errors.h"
#include "hosts/com/values.h"

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

void InvokeMember(IDispatch& object, DISPID id, WORD flags, DISPPARAMS& parameters, VARIANT& result,
                  const std::string& what) {
  EXCEPINFO info{};
  const HRESULT status = object.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, &result, &info, nullptr);
  if (FAILED(status)) RaiseFailure(status, info, what);
}

/// Reads a member without arguments; false when the object has none of that number, or one that needs arguments.
bool Read(IDispatch& object, DISPID id, WORD flags, VARIANT& result, const std::string& what) {
  DISPPARAMS none{};
  try {
    InvokeMember(object, id, flags, none, result, what);
    return true;
  } catch (const Error& error) {
    if (error.number() != error_number::kNoSuchMember && error.number() != error_number::kWrongArgumentCount &&
        error.number() != error_number::kArgumentNotOptional) {
      throw;
    }
    return false;
  }
}

IUnknown* ObjectIn(const VARIANT& value) {
  return value.vt == VT_UNKNOWN || value.vt == VT_DISPATCH ? value.punkVal : nullptr;
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

Variant ForeignObject::Use(std::string_view member, WORD flags, std::span<const Variant> arguments) {
  DISPID id = 0;
  if (const HRESULT status = Find(member, id); FAILED(status)) {
    Raise(ToNumber(status), "Object doesn't support this property or method: " + std::string(member));
  }
  Arguments own(arguments);
  DISPPARAMS parameters = own.parameters();
  OwnedVariant result;
  InvokeMember(*object_.get(), id, flags, parameters, result.get(), std::string(member));
  return FromVariant(result.get());
}

std::optional<Variant> ForeignObject::DefaultValue() {
  // Whose default member is an object has that one's default value; one that answers itself has none.
  constexpr int kFarthest = 8;
  Pointer<IDispatch> object = object_;
  for (int i = 0; i < kFarthest && object; ++i) {
    OwnedVariant result;
    if (!Read(*object.get(), DISPID_VALUE, DISPATCH_PROPERTYGET, result.get(), "default member")) return std::nullopt;
    const VARTYPE type = result.get().vt;
    if (type != VT_DISPATCH && type != VT_UNKNOWN) return FromVariant(result.get());
    object = Query<IDispatch>(ObjectIn(result.get()));
  }
  return std::nullopt;
}

std::optional<std::vector<Variant>> ForeignObject::Items() {
  constexpr const char* kWhat = "For Each";
  OwnedVariant result;
  if (!Read(*object_.get(), DISPID_NEWENUM, DISPATCH_METHOD | DISPATCH_PROPERTYGET, result.get(), kWhat)) {
    return std::nullopt;
  }
  const auto enumeration = Query<IEnumVARIANT>(ObjectIn(result.get()));
  if (!enumeration) return std::nullopt;
  std::vector<Variant> items;
  for (;;) {
    OwnedVariant item;
    ULONG fetched = 0;
    const HRESULT status = enumeration->Next(1, &item.get(), &fetched);
    if (FAILED(status)) {
      EXCEPINFO none{};
      RaiseFailure(status, none, kWhat);
    }
    if (status != S_OK || fetched == 0) return items;
    items.push_back(FromVariant(item.get()));
  }
}

std::optional<std::vector<std::string>> ForeignObject::MemberNames() const {
  const auto object = Query<IDispatchEx>(object_.get());
  if (!object) return std::nullopt;
  std::vector<std::string> names;
  DISPID id = DISPID_STARTENUM;
  while (object->GetNextDispID(fdexEnumDefault, id, &id) == S_OK) {
    OwnedBstr name;
    if (FAILED(object->GetMemberName(id, name.Receive()))) break;
    names.push_back(ToText(name.get()));
  }
  return names;
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
