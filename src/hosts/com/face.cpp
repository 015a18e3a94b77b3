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
  if (const auto own = ObjectOf(value)) return MakeDispatch(own).Release();
  if (value.type_name() != "Nothing") RaiseTypeMismatch();
  return nullptr;
}

/// The whole number that an argument is, or refers to, in one of the types in which scripts have those.
std::optional<std::int32_t> NumberIn(const VARIANT& given) {
  switch (given.vt) {
    case VT_I2:
      return given.iVal;
    case VT_I4:
      return given.lVal;
    case VT_VARIANT | VT_BYREF:
      return given.pvarVal == nullptr ? std::nullopt : NumberIn(*given.pvarVal);
    default:
      return std::nullopt;
  }
}

/// Whether a container is told how the call ended. To read a property changes nothing.
bool IsOperation(const Member& member) { return member.operation != nullptr && !member.operation->property; }

void Empty(const AnswerPlace& answer) {
  if (answer.type == VT_VARIANT) {
    static_cast<VARIANT*>(answer.place)->vt = VT_EMPTY;
  } else if (answer.type != VT_EMPTY) {
    std::memset(answer.place, 0, WidthOf(answer.type));
  }
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

IDispatch* Face::Hold(const std::shared_ptr<AutomationObject>& object) {
  if (references_.fetch_add(1) == 0) object_ = object;
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
  // What is done may end the last reference that its caller holds; reading a value does not.
  const Pointer<IDispatch> alive(use == kGet ? nullptr : dispatch());
  const std::span<Variant> values = arguments.values();
  // Operations know no collections but the component's own.
  if (member.operation != nullptr) WithCollections(member.arguments, values);
  Variant answer = object_->Use(member, use, values);
  for (std::size_t i = 0; i < member.arguments.size() && i < values.size(); ++i) {
    if (member.arguments[i].in_out && arguments.source(i) != nullptr) WriteBack(values[i], *arguments.source(i));
  }
  return answer;
}

bool Face::ReadShort(const Member& member, const VARIANT* position, const AnswerPlace& answer) const {
  if (position == nullptr) {
    if (answer.type != VT_VARIANT) return false;
    VariantWriter writer(static_cast<VARIANT*>(answer.place));
    return object_->Read(member, writer);
  }
  const auto number = NumberIn(*position);
  const auto* const element = number ? object_->Element(member, *number) : nullptr;
  if (element == nullptr) return false;
  IDispatch* const found = MakeDispatch(*element).Release();
  if (answer.type == VT_DISPATCH) {
    *static_cast<IDispatch**>(answer.place) = found;
  } else {
    auto* const out = static_cast<VARIANT*>(answer.place);
    out->vt = VT_DISPATCH;
    out->pdispVal = found;
  }
  return true;
}

void Face::Use(const Member& member, WORD flags, const DISPPARAMS& parameters, VARIANT* result) {
  const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
  // Scripts ask for a call and a property at once.
  const MemberUse use = put ? kPut : (member.uses & kCall) != 0 && (flags & DISPATCH_METHOD) != 0 ? kCall : kGet;
  if (use == kGet && parameters.cArgs <= 1 && parameters.cNamedArgs == 0 && result != nullptr &&
      ReadShort(member, parameters.cArgs == 0 ? nullptr : parameters.rgvarg, {VT_VARIANT, result})) {
    return;
  }
  ContainerCall vote(IsOperation(member));
  TakenArguments arguments;
  arguments.Read(parameters, *object_, member, put, (flags & DISPATCH_PROPERTYPUTREF) == 0);
  const Variant answer = UseTaken(member, use, arguments);
  if (result != nullptr && !put && !member.returns_nothing) ToVariant(answer, result);
  vote.Complete();
}

HRESULT Face::InvokeNumber(DISPID id, WORD flags, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* info) {
  if (parameters == nullptr) return E_POINTER;
  if (result != nullptr) result->vt = VT_EMPTY;
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

void Face::Use(const Member& member, const VtableCall& call) {
  if (member.id == kEnumerationMember) {
    *static_cast<IUnknown**>(call.answer.place) = MakeEnumeration(object_->Items()).Release();
    return;
  }
  const bool put = call.way == Way::kPut || call.way == Way::kPutReference;
  ContainerCall vote(IsOperation(member));
  TakenArguments arguments;
  arguments.Read(call.given, *object_, member, put, call.way == Way::kPut);
  const Variant value = UseTaken(member, put ? kPut : call.way == Way::kGet ? kGet : kCall, arguments);
  if (call.answer.type != VT_EMPTY) PutAnswer(value, call.answer);
  vote.Complete();
}

HRESULT Face::CallMember(const VtableCall& call) {
  if (call.answer.type != VT_EMPTY && call.answer.place == nullptr) return E_POINTER;
  Empty(call.answer);
  try {
    const Member& member = object_->description().members[call.member];
    const VARIANT* const position = call.given.empty() ? nullptr : call.given.data();
    const bool short_way = call.way == Way::kGet && call.given.size() <= 1 && ReadShort(member, position, call.answer);
    if (!short_way) Use(member, call);
    return S_OK;
  } catch (...) {
    ReportCurrent(nullptr);
    return CurrentStatus();
  }
}

}  // namespace tessarlorn::com
