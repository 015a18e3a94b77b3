#include "com/dispatch.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>

#include "com/base/counted.h"
#include "com/base/errors.h"
#include "com/base/plain_values.h"
#include "com/collections.h"
#include "com/enumeration.h"
#include "com/module.h"
#include "com/type_library.h"
#include "com/values.h"
#include "objects/service_class.h"
#include "platform/text.h"

namespace tessarlorn::com {
namespace {

/// By which the component knows its own objects.
constexpr GUID kOwnObject = {0x6D8270C3, 0x8D09, 0x469E, {0x80, 0x0B, 0x64, 0x85, 0xA2, 0x11, 0xB4, 0xC7}};

/// The arguments of one Invoke in the order of the member's, with the VARIANTs that they came in. Not on the heap: a
/// script that reads a recordset calls a million times.
struct Arguments {
  static constexpr std::size_t kMost = Operation::kMostArguments + 1;

  std::array<Variant, kMost> values;
  std::array<const VARIANT*, kMost> sources{};
  std::size_t count = 0;
};

/// @param named_value whether the first one is the new value of a property, which goes last
Arguments Order(const DISPPARAMS& given, const Member& member, bool named_value) {
  Arguments arguments;
  const UINT named = given.cNamedArgs;
  const UINT value_count = named_value ? 1 : 0;
  if (named > given.cArgs || (named_value && named == 0) || given.cArgs > Arguments::kMost) {
    Raise(error_number::kWrongArgumentCount, "Wrong number of arguments: " + std::string(member.name));
  }
  auto& sources = arguments.sources;
  std::size_t& count = arguments.count;
  count = given.cArgs - named;
  for (UINT i = named; i < given.cArgs; ++i) sources[given.cArgs - 1 - i] = &given.rgvarg[i];
  for (UINT i = value_count; i < named; ++i) {
    const DISPID position = given.rgdispidNamedArgs[i];
    const auto index = static_cast<std::size_t>(position);
    if (position < 0 || index >= member.arguments.size()) {
      Raise(error_number::kWrongArgumentCount,
            "No argument number " + std::to_string(position) + ": " + std::string(member.name));
    }
    count = std::max(count, index + 1);
    sources[index] = &given.rgvarg[i];
  }
  // What is left out at the end counts as not given, so that the object can say which one is missing.
  const auto left_out = [](const VARIANT* source) { return source == nullptr || IsLeftOut(*source); };
  while (count > 0 && left_out(sources[count - 1])) --count;
  for (std::size_t i = 0; i < count; ++i) {
    if (i < member.arguments.size() && !member.arguments[i].optional && left_out(sources[i])) {
      Raise(error_number::kArgumentNotOptional,
            "Argument not optional: " + std::string(member.arguments[i].name) + " of " + std::string(member.name));
    }
  }
  if (named_value) sources[count++] = &given.rgvarg[0];
  for (std::size_t i = 0; i < count; ++i) {
    if (sources[i] != nullptr) arguments.values[i] = FromVariant(*sources[i]);
  }
  return arguments;
}

/// Whether the members are operations, which know no collections but the component's own.
bool IsService(const ClassDescription& description) {
  return &description == &ServiceClassObject::Description(ServiceClass::kSaveData) ||
         &description == &ServiceClassObject::Description(ServiceClass::kGetData);
}

class Dispatch final : public Counted<IDispatch, ISupportErrorInfo, IProvideClassInfo> {
 public:
  explicit Dispatch(std::shared_ptr<AutomationObject> object) : object_(std::move(object)) {}

  [[nodiscard]] const std::shared_ptr<AutomationObject>& object() const noexcept { return object_; }

  // IUnknown
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (IsEqualIID(id, kOwnObject)) {
      // Answers itself, whatever the interface: only OwnObject asks.
      *out = this;
    } else if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) || IsEqualIID(id, interface_id())) {
      *out = static_cast<IDispatch*>(this);
    } else if (IsEqualIID(id, IID_ISupportErrorInfo)) {
      *out = static_cast<ISupportErrorInfo*>(this);
    } else if (IsEqualIID(id, IID_IProvideClassInfo)) {
      *out = static_cast<IProvideClassInfo*>(this);
    } else {
      return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
  }

  // IDispatch
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
    if (count == nullptr) return E_POINTER;
    *count = 1;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return index != 0 ? DISP_E_BADINDEX : FindTypeInfo(interface_id(), info);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO* info, UINT* wrong_argument) override;

  // ISupportErrorInfo
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
    return IsEqualIID(id, IID_IDispatch) || IsEqualIID(id, interface_id()) ? S_OK : S_FALSE;
  }

  // IProvideClassInfo
  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return FindTypeInfo(ToGuid(object_->description().class_id), info);
  }

 private:
  [[nodiscard]] GUID interface_id() const { return ToGuid(object_->description().interface_id); }
  void Use(const Member& member, WORD flags, const DISPPARAMS& parameters, VARIANT* result);

  const ModuleLock lock_;
  std::shared_ptr<AutomationObject> object_;
};

HRESULT Dispatch::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  if (names == nullptr || ids == nullptr || count == 0) return E_INVALIDARG;
  try {
    const auto text = [](LPOLESTR name) {
      return name == nullptr ? std::string() : FromUtf16(reinterpret_cast<const char16_t*>(name));
    };
    const Member* const member = object_->description().Find(text(names[0]));
    HRESULT status = member == nullptr ? DISP_E_UNKNOWNNAME : S_OK;
    ids[0] = member == nullptr ? DISPID_UNKNOWN : member->id;
    for (UINT i = 1; i < count; ++i) {
      ids[i] = DISPID_UNKNOWN;
      const std::string name = text(names[i]);
      for (std::size_t a = 0; member != nullptr && a < member->arguments.size(); ++a) {
        if (EqualsIgnoreCase(member->arguments[a].name, name)) ids[i] = static_cast<DISPID>(a);
      }
      if (ids[i] == DISPID_UNKNOWN) status = DISP_E_UNKNOWNNAME;
    }
    return status;
  } catch (...) {
    return E_OUTOFMEMORY;
  }
}

void Dispatch::Use(const Member& member, WORD flags, const DISPPARAMS& parameters, VARIANT* result) {
  const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  // Scripts ask for a call and a property at once.
  const MemberUse use = put ? kPut : (member.uses & kCall) != 0 && (flags & DISPATCH_METHOD) != 0 ? kCall : kGet;
  Arguments arguments = Order(parameters, member, put);
  const std::span<Variant> values = std::span(arguments.values).first(arguments.count);
  if (IsService(object_->description())) WithCollections(values);
  const Variant answer = object_->Use(member, use, values);
  for (std::size_t i = 0; i < member.arguments.size() && i < values.size(); ++i) {
    if (member.arguments[i].in_out && arguments.sources[i] != nullptr) WriteBack(values[i], *arguments.sources[i]);
  }
  if (result != nullptr && !put && !member.returns_nothing) ToVariant(answer, result);
}

HRESULT Dispatch::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* info,
                         UINT* /*wrong_argument*/) {
  if (parameters == nullptr) return E_POINTER;
  // An operation may end the last reference that its caller holds.
  const Pointer<IDispatch> alive(this);
  if (result != nullptr) VariantInit(result);
  try {
    const Member* const member = object_->description().Find(id);
    if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
    if (id == kEnumerationMember) {
      if (result == nullptr) return S_OK;
      result->punkVal = MakeEnumeration(object_->Items()).Release();
      result->vt = VT_UNKNOWN;
      return S_OK;
    }
    Use(*member, flags, *parameters, result);
    return S_OK;
  } catch (...) {
    return Report(CurrentError(), info);
  }
}

}  // namespace

Pointer<IDispatch> MakeDispatch(std::shared_ptr<AutomationObject> object) {
  return Pointer<IDispatch>::Adopt(new Dispatch(std::move(object)));
}

std::shared_ptr<AutomationObject> OwnObject(IUnknown* object) {
  void* found = nullptr;
  if (object == nullptr || FAILED(object->QueryInterface(kOwnObject, &found))) return nullptr;
  auto* const own = static_cast<Dispatch*>(found);
  std::shared_ptr<AutomationObject> inside = own->object();
  own->Release();
  return inside;
}

}  // namespace tessarlorn::com
