#include "hosts/com/face.h"

#include <optional>
#include <string>
#include <utility>

#include "com_base/errors.h"
#include "com_base/plain_values.h"
#include "hosts/com/collections.h"
#include "hosts/com/container.h"
#include "hosts/com/dispatch.h"
#include "hosts/com/enumeration.h"
#include "hosts/com/taken_arguments.h"
#include "hosts/com/values.h"
#include "platform/text/text.h"

namespace tessarlorn::com {
namespace {

/// The component's own object, also where the value comes from ADO: compilers know no other one.
IDispatch* OwnDispatch(const Variant& value) {
  if (auto own = ObjectOf(value)) return MakeDispatch(std::move(own)).Release();
  if (value.type_name() != "Nothing") RaiseTypeMismatch();
  return nullptr;
}

void PutAnswer(const Variant& value, const AnswerPlace& answer) {
  if (answer.type == VT_VARIANT) return ToVariant(value, static_cast<VARIANT*>(answer.place));
  if (answer.type == VT_DISPATCH) {
    *static_cast<IDispatch**>(answer.place) = OwnDispatch(value);
    return;
  }
  OwnedVariant own;
  ToVariant(value, &own.get());
  if (own.get().vt != answer.type && FAILED(VariantChangeType(&own.get(), &own.get(), 0, answer.type)))
    RaiseTypeMismatch();
  std::memcpy(answer.place, &own.get().llVal, WidthOf(answer.type));
  own.get().vt = VT_EMPTY;
}

}  // namespace

IDispatch* Face::Hold(std::shared_ptr<AutomationObject> object) {
  if (references_.fetch_add(1) == 0) object_ = std::move(object);
  return dispatch();
}

ULONG Face::Uncount() {
  const ULONG left = references_.fetch_sub(1) - 1;
  // The last reference: the object is released, which may destroy this one, too.
  if (left == 0) const std::shared_ptr<AutomationObject> last = std::move(object_);
  return left;
}

HRESULT Face::FindClassInfo(ITypeInfo** info) const {
  return FindTypeInfo(ToGuid(object_->description().class_id), info);
}

HRESULT Face::FindNumbers(LPOLESTR* names, UINT count, DISPID* ids) const {
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

Variant Face::UseTaken(const Member& member, MemberUse use, TakenArguments& arguments) {
  const std::span<Variant> values = arguments.values();
  std::optional<ContainerCall> call;
  if (member.operation != nullptr) {
    call.emplace();
    // Operations know no collections but the component's own.
    WithCollections(member.arguments, values);
  }
  Variant answer = object_->Use(member, use, values);
  if (call) call->Complete();
  for (std::size_t i = 0; i < member.arguments.size() && i < values.size(); ++i) {
    if (member.arguments[i].in_out && arguments.source(i) != nullptr) WriteBack(values[i], *arguments.source(i));
  }
  return answer;
}

void Face::Use(const Member& member, WORD flags, const DISPPARAMS& parameters, VARIANT* result) {
  const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  // Scripts ask for a call and a property at once.
  const MemberUse use = put ? kPut : (member.uses & kCall) != 0 && (flags & DISPATCH_METHOD) != 0 ? kCall : kGet;
  // What is done may end the last reference that its caller holds; reading a value does not.
  const Pointer<IDispatch> alive(use == kGet ? nullptr : dispatch());
  if (use == kGet && parameters.cArgs == 0 && result != nullptr) {
    if (const auto text = object_->FindText(member)) return PutText(*text, result);
  }
  TakenArguments arguments;
  arguments.Read(parameters, *object_, member, put, (flags & DISPATCH_PROPERTYPUTREF) == 0);
  const Variant answer = UseTaken(member, use, arguments);
  if (result != nullptr && !put && !member.returns_nothing) ToVariant(answer, result);
}

HRESULT Face::InvokeNumber(DISPID id, WORD flags, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* info) {
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

HRESULT Face::CallMember(std::size_t position, Way way, AnswerPlace answer, std::span<const VARIANT> given) {
  if (answer.type != VT_EMPTY) {
    if (answer.place == nullptr) return E_POINTER;
    std::memset(answer.place, 0, WidthOf(answer.type));
  }
  try {
    const Member& member = object_->description().members[position];
    const bool put = way == Way::kPut || way == Way::kPutReference;
    const MemberUse use = put ? kPut : way == Way::kGet ? kGet : kCall;
    if (member.id == kEnumerationMember) {
      *static_cast<IUnknown**>(answer.place) = MakeEnumeration(object_->Items()).Release();
      return S_OK;
    }
    const Pointer<IDispatch> alive(use == kGet ? nullptr : dispatch());
    if (use == kGet && given.empty() && answer.type == VT_VARIANT) {
      if (const auto text = object_->FindText(member)) {
        PutText(*text, static_cast<VARIANT*>(answer.place));
        return S_OK;
      }
    }
    TakenArguments arguments;
    arguments.Read(given, *object_, member, put, way == Way::kPut);
    const Variant value = UseTaken(member, use, arguments);
    if (answer.type != VT_EMPTY) PutAnswer(value, answer);
    return S_OK;
  } catch (...) {
    ReportCurrent(nullptr);
    return CurrentStatus();
  }
}

}  // namespace tessarlorn::com
