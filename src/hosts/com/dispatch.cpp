#include "hosts/com/dispatch.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <span>
#include <utility>

#include "automation/arguments.h"
#include "com_base/errors.h"
#include "com_base/plain_values.h"
#include "hosts/com/collections.h"
#include "hosts/com/enumeration.h"
#include "hosts/com/module.h"
#include "hosts/com/type_library.h"
#include "hosts/com/values.h"
#include "platform/text/text.h"

namespace tessarlorn::com {
namespace {

/// By which the component knows its own objects.
constexpr GUID kOwnObject = {0x6D8270C3, 0x8D09, 0x469E, {0x80, 0x0B, 0x64, 0x85, 0xA2, 0x11, 0xB4, 0xC7}};

/// The arguments of one Invoke in the order of the member's, with the VARIANTs that they came in. Not on the heap, and
/// no more values than there are: a script that reads a recordset calls a million times.
class Arguments {
 public:
  Arguments() = default;
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;
  ~Arguments() { std::destroy_n(space_.values.data(), count_); }

  /// To be called once. The new value of a property goes last; `by_value` tells that it is put without Set.
  void Read(const DISPPARAMS& given, const AutomationObject& object, const Member& member, bool put, bool by_value);
  [[nodiscard]] std::span<Variant> values() noexcept { return {space_.values.data(), count_}; }
  /// nullptr for one that is left out.
  [[nodiscard]] const VARIANT* source(std::size_t argument) const noexcept { return sources_[argument]; }

 private:
  static constexpr std::size_t kMost = ArgumentList::kMost + 1;

  /// Room for values that begin and end when they are told to.
  union Space {
    Space() noexcept {}
    Space(const Space&) = delete;
    Space& operator=(const Space&) = delete;
    ~Space() {}
    std::array<Variant, kMost> values;
  };

  std::array<const VARIANT*, kMost> sources_{};
  Space space_;
  std::size_t count_ = 0;
};

/// Whether an object in its place is read through its default member. What keeps values of any kind keeps the object.
bool TakesPlainValue(const Argument& argument) {
  switch (argument.type) {
    case ValueType::kDictionary:
    case ValueType::kVector:
    case ValueType::kRecordset:
      return false;
    case ValueType::kVariant:
      return argument.in_out;
    default:
      return true;
  }
}

void Arguments::Read(const DISPPARAMS& given, const AutomationObject& object, const Member& member, bool put,
                     bool by_value) {
  const UINT named = given.cNamedArgs;
  const UINT value_count = put ? 1 : 0;
  const std::span<const Argument> declared = member.arguments;
  const bool has_value = named > 0 && given.rgdispidNamedArgs[0] == DISPID_PROPERTYPUT;
  if (named > given.cArgs || put != has_value || given.cArgs > kMost) {
    Raise(error_number::kWrongArgumentCount, "Wrong number of arguments: " + object.description().FullName(member));
  }
  if (given.cArgs == 0) return;
  std::size_t count = given.cArgs - named;
  for (UINT i = named; i < given.cArgs; ++i) sources_[given.cArgs - 1 - i] = &given.rgvarg[i];
  for (UINT i = value_count; i < named; ++i) {
    const DISPID position = given.rgdispidNamedArgs[i];
    const auto index = static_cast<std::size_t>(position);
    if (position < 0 || index >= declared.size()) {
      Raise(error_number::kNoSuchNamedArgument, "Named argument not found: number " + std::to_string(position) +
                                                    " of " + object.description().FullName(member));
    }
    if (sources_[index] != nullptr) {
      Raise(error_number::kWrongArgumentCount, "Argument given twice: " + std::string(declared[index].name) + " of " +
                                                   object.description().FullName(member));
    }
    count = std::max(count, index + 1);
    sources_[index] = &given.rgvarg[i];
  }
  // What is left out at the end counts as not given, so that the object can say which one is missing.
  const auto left_out = [](const VARIANT* source) { return source == nullptr || IsLeftOut(*source); };
  while (count > 0 && left_out(sources_[count - 1])) --count;
  for (std::size_t i = 0; i < count; ++i) {
    if (i >= declared.size()) break;
    if (!declared[i].optional && left_out(sources_[i]))
      RaiseArgumentMissing(declared[i], object.description().FullName(member));
    // Not only when the work is done.
    const VARIANT* const written = declared[i].in_out ? sources_[i] : nullptr;
    if (written != nullptr && (written->vt & VT_BYREF) != 0 && !CanWriteBack(*written)) RaiseTypeMismatch();
  }
  const std::size_t arguments = count;
  if (put) sources_[count++] = &given.rgvarg[0];
  while (count_ < count) {
    const VARIANT* const source = sources_[count_];
    Variant& value = space_.values[count_];
    std::construct_at(&value, source == nullptr ? Variant() : FromVariant(*source));
    const std::size_t place = count_++;
    if (!value.holds<std::shared_ptr<Object>>()) continue;
    const bool plain = place < arguments ? place < declared.size() && TakesPlainValue(declared[place]) : by_value;
    if (plain) value = DefaultValueOf(std::move(value));
  }
}

/// Lives as long as the object, which keeps it; clients that hold references keep the object.
class Dispatch final : public ObjectFace, public IDispatch, public ISupportErrorInfo, public IProvideClassInfo {
 public:
  explicit Dispatch(const AutomationObject& object) : interface_id_(ToGuid(object.description().interface_id)) {}

  [[nodiscard]] const std::shared_ptr<AutomationObject>& object() const noexcept { return object_; }
  /// Counts one more reference. @param object the one that keeps it
  IDispatch* Hold(std::shared_ptr<AutomationObject> object) {
    if (references_.fetch_add(1) == 0) object_ = std::move(object);
    return this;
  }

  // IUnknown
  ULONG STDMETHODCALLTYPE AddRef() override { return references_.fetch_add(1) + 1; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = references_.fetch_sub(1) - 1;
    // The last reference: the object is released, which may destroy this one, too.
    if (left == 0) const std::shared_ptr<AutomationObject> last = std::move(object_);
    return left;
  }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (IsEqualIID(id, kOwnObject)) {
      // Answers itself, whatever the interface: only OwnObject asks.
      *out = this;
    } else if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) || IsEqualIID(id, interface_id_)) {
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
    return index != 0 ? DISP_E_BADINDEX : FindTypeInfo(interface_id_, info);
  }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO* info, UINT* wrong_argument) override;

  // ISupportErrorInfo
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
    return IsEqualIID(id, IID_IDispatch) || IsEqualIID(id, interface_id_) ? S_OK : S_FALSE;
  }

  // IProvideClassInfo
  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return FindTypeInfo(ToGuid(object_->description().class_id), info);
  }

 private:
  void Use(const Member& member, WORD flags, const DISPPARAMS& parameters, VARIANT* result);

  const ModuleLock lock_;
  const GUID interface_id_;
  std::atomic<ULONG> references_{0};
  /// Nothing while there is no reference.
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
  // What is done may end the last reference that its caller holds; reading a value does not.
  const Pointer<IDispatch> alive(use == kGet ? nullptr : this);
  if (use == kGet && parameters.cArgs == 0 && result != nullptr) {
    if (const auto text = object_->FindText(member)) return PutText(*text, result);
  }
  Arguments arguments;
  arguments.Read(parameters, *object_, member, put, (flags & DISPATCH_PROPERTYPUTREF) == 0);
  const std::span<Variant> values = arguments.values();
  // Operations know no collections but the component's own.
  if (member.operation != nullptr) WithCollections(member.arguments, values);
  const Variant answer = object_->Use(member, use, values);
  for (std::size_t i = 0; i < member.arguments.size() && i < values.size(); ++i) {
    if (member.arguments[i].in_out && arguments.source(i) != nullptr) WriteBack(values[i], *arguments.source(i));
  }
  if (result != nullptr && !put && !member.returns_nothing) ToVariant(answer, result);
}

HRESULT Dispatch::Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* info,
                         UINT* /*wrong_argument*/) {
  if (parameters == nullptr) return E_POINTER;
  if (result != nullptr) VariantInit(result);
  // What an earlier call left belongs to nobody now.
  SetErrorInfo(0, nullptr);
  try {
    const Member* const member = object_->description().Find(id);
    if (member == nullptr) return DISP_E_MEMBERNOTFOUND;
    constexpr WORD kPuts = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;
    if (id == kEnumerationMember && (flags & kPuts) == 0) {
      if (result == nullptr) return S_OK;
      result->punkVal = MakeEnumeration(object_->Items()).Release();
      result->vt = VT_UNKNOWN;
      return S_OK;
    }
    Use(*member, flags, *parameters, result);
    return S_OK;
  } catch (...) {
    return ReportCurrent(info);
  }
}

}  // namespace

Pointer<IDispatch> MakeDispatch(std::shared_ptr<AutomationObject> object) {
  if (object->face() == nullptr) object->set_face(std::make_unique<Dispatch>(*object));
  // Objects have no faces but these.
  auto* const face = static_cast<Dispatch*>(object->face());
  return Pointer<IDispatch>::Adopt(face->Hold(std::move(object)));
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
