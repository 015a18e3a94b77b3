// A COM object of the component's: what those of all classes share, and the vtable of each.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>

#include "com_base/pointers.h"
#include "hosts/com/module.h"
#include "hosts/com/type_library.h"
#include "hosts/objects/automation_object.h"

namespace tessarlorn::com {

/// By which the component knows its own objects.
inline constexpr GUID kOwnObject = {0x6D8270C3, 0x8D09, 0x469E, {0x80, 0x0B, 0x64, 0x85, 0xA2, 0x11, 0xB4, 0xC7}};

/// How a function of the vtable uses its member; kPutReference is a put by Set.
enum class Way : std::uint8_t { kCall, kGet, kPut, kPutReference };

/// Where the answer of a function of the vtable goes, and as what; VT_EMPTY for none.
struct AnswerPlace {
  VARTYPE type = VT_EMPTY;
  void* place = nullptr;
};

/// A call of a function of the vtable.
struct VtableCall {
  /// The member's position in the class.
  std::size_t member = 0;
  Way way = Way::kCall;
  AnswerPlace answer;
  std::span<const VARIANT> given;
};

/// An argument as a VARIANT that shares it and is not to be cleared.
template <int kType, typename Value>
VARIANT Given(const Value& value) {
  if constexpr (kType == VT_VARIANT) {
    return value;
  } else {
    VARIANT given{};
    given.vt = static_cast<VARTYPE>(kType);
    static_assert(sizeof value <= sizeof given.llVal);
    std::memcpy(&given.llVal, &value, sizeof value);
    return given;
  }
}

class TakenArguments;

/// Lives as long as the object, which keeps it; clients that hold references keep the object.
class Face : public ObjectFace {
 public:
  [[nodiscard]] const std::shared_ptr<AutomationObject>& object() const noexcept { return object_; }
  /// Counts one more reference. @param object the one that keeps it
  IDispatch* Hold(const std::shared_ptr<AutomationObject>& object);
  ULONG Uncount();

 protected:
  explicit Face(const AutomationObject& object) : interface_id_(ToGuid(object.description().interface_id)) {}

  ULONG Count() noexcept { return references_.fetch_add(1) + 1; }
  [[nodiscard]] const GUID& interface_id() const noexcept { return interface_id_; }
  HRESULT FindNumbers(LPOLESTR* names, UINT count, DISPID* ids) const;
  HRESULT InvokeNumber(DISPID id, WORD flags, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* info);
  HRESULT FindClassInfo(ITypeInfo** info) const;
  /// A function of the vtable.
  template <typename... Values>
  HRESULT Call(std::size_t member, Way way, AnswerPlace answer, const Values&... given) {
    const VARIANT values[sizeof...(given) + 1] = {given...};
    return CallMember({member, way, answer, {values, sizeof...(given)}});
  }
  [[nodiscard]] virtual IDispatch* dispatch() noexcept = 0;

 private:
  HRESULT CallMember(const VtableCall& call);
  /// Reads by one of the object's short ways; false when it has none for that.
  /// @param position the only argument; nullptr for none
  bool ReadShort(const Member& member, const VARIANT* position, const AnswerPlace& answer) const;
  void Use(const Member& member, WORD flags, const DISPPARAMS& parameters, VARIANT* result);
  void Use(const Member& member, const VtableCall& call);
  Variant UseTaken(const Member& member, MemberUse use, TakenArguments& arguments);

  const ModuleLock lock_;
  const GUID interface_id_;
  std::atomic<ULONG> references_{0};
  /// Nothing while there is no reference.
  std::shared_ptr<AutomationObject> object_;
};

/// With the functions of IDispatch. @tparam Interface whose other functions a derived class has
template <typename Interface>
class Dispatch : public Face, public Interface, public ISupportErrorInfo, public IProvideClassInfo {
 public:
  explicit Dispatch(const AutomationObject& object) : Face(object) {}

  // IUnknown
  ULONG STDMETHODCALLTYPE AddRef() override { return Count(); }
  ULONG STDMETHODCALLTYPE Release() override { return Uncount(); }
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** out) override {
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    if (IsEqualIID(id, kOwnObject)) {
      // Answers itself, whatever the interface: only OwnObject asks.
      *out = static_cast<Face*>(this);
    } else if (IsEqualIID(id, IID_IUnknown) || IsEqualIID(id, IID_IDispatch) || IsEqualIID(id, interface_id())) {
      *out = static_cast<Interface*>(this);
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
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
    return FindNumbers(names, count, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* parameters, VARIANT* result,
                                   EXCEPINFO* info, UINT* /*wrong_argument*/) override {
    return InvokeNumber(id, flags, parameters, result, info);
  }

  // ISupportErrorInfo
  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
    return IsEqualIID(id, IID_IDispatch) || IsEqualIID(id, interface_id()) ? S_OK : S_FALSE;
  }

  // IProvideClassInfo
  HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override {
    if (info == nullptr) return E_POINTER;
    *info = nullptr;
    return FindClassInfo(info);
  }

 protected:
  [[nodiscard]] IDispatch* dispatch() noexcept override { return this; }
};

template <typename Made>
std::unique_ptr<Face> Make(const AutomationObject& object) {
  return std::make_unique<Made>(object);
}

}  // namespace tessarlorn::com
