#include "com/client/vtable.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <stdexcept>

namespace tessarlorn::com_test {
namespace {

VARTYPE TypeOf(const TYPEDESC& type) {
  // A pointer is one to an interface, and what the library defines otherwise is an enumeration.
  if (type.vt == VT_PTR) return VT_DISPATCH;
  return type.vt == VT_USERDEFINED ? static_cast<VARTYPE>(VT_I4) : type.vt;
}

Vtable::Function Describe(ITypeInfo& info, const FUNCDESC& described) {
  Vtable::Function function;
  function.kind = described.invkind;
  function.id = described.memid;
  function.offset = static_cast<std::size_t>(described.oVft);
  BSTR names[16] = {};
  UINT count = 0;
  EXPECT_EQ(info.GetNames(described.memid, names, 16, &count), S_OK);
  function.name = Taken(names[0]);
  for (int i = 0; i < described.cParams; ++i) {
    const ELEMDESC& element = described.lprgelemdescParam[i];
    const std::wstring name = static_cast<UINT>(i) + 1 < count ? Taken(names[i + 1]) : L"";
    if ((element.paramdesc.wParamFlags & PARAMFLAG_FRETVAL) != 0) {
      function.answer = TypeOf(*element.tdesc.lptdesc);
    } else if ((element.paramdesc.wParamFlags & PARAMFLAG_FOUT) != 0) {
      function.parameters.push_back({name, TypeOf(*element.tdesc.lptdesc), true});
    } else {
      function.parameters.push_back({name, TypeOf(element.tdesc), false});
    }
  }
  return function;
}

}  // namespace

Vtable::Vtable(const TypedObject& object) {
  HREFTYPE partner = 0;
  com::Pointer<ITypeInfo> info;
  if (FAILED(object.info()->GetRefTypeOfImplType(static_cast<UINT>(-1), &partner)) ||
      FAILED(object.info()->GetRefTypeInfo(partner, info.Receive()))) {
    throw std::runtime_error("The interface is not dual");
  }
  TYPEATTR* attributes = nullptr;
  EXPECT_EQ(info->GetTypeAttr(&attributes), S_OK);
  const UINT count = attributes->cFuncs;
  // That of another apartment's object is another one than its IDispatch.
  void* found = nullptr;
  const HRESULT status = object.get()->QueryInterface(attributes->guid, &found);
  info->ReleaseTypeAttr(attributes);
  if (FAILED(status)) throw std::runtime_error("The interface is not to be had: " + std::to_string(status));
  object_ = com::Pointer<IDispatch>::Adopt(static_cast<IDispatch*>(found));
  for (UINT i = 0; i < count; ++i) {
    FUNCDESC* function = nullptr;
    EXPECT_EQ(info->GetFuncDesc(i, &function), S_OK);
    functions_.push_back(Describe(*info.get(), *function));
    info->ReleaseFuncDesc(function);
  }
}

const Vtable::Function& Vtable::Find(const wchar_t* name, INVOKEKIND kind) const {
  const auto found = std::find_if(functions_.begin(), functions_.end(), [&](const Function& function) {
    return function.name == name && function.kind == kind;
  });
  if (found == functions_.end()) throw std::runtime_error("The interface has no such function");
  return *found;
}

Answer Vtable::Call(const Function& function, std::vector<Value> arguments) const {
  Answer answer;
  VARIANT place{};
  std::vector<VARIANT> given(function.parameters.size());
  std::vector<VARTYPE> types;
  for (std::size_t i = 0; i < given.size(); ++i) {
    const Parameter& parameter = function.parameters[i];
    VARIANT& own = arguments[i].get();
    if (parameter.reference) {
      given[i].vt = static_cast<VARTYPE>(VT_BYREF | parameter.type);
      given[i].byref = parameter.type == VT_VARIANT ? static_cast<void*>(&own) : &own.llVal;
    } else if (parameter.type == VT_VARIANT) {
      given[i] = own;
    } else {
      EXPECT_EQ(own.vt, parameter.type) << i;
      given[i] = own;
    }
    types.push_back(parameter.reference            ? given[i].vt
                    : parameter.type == VT_VARIANT ? static_cast<VARTYPE>(VT_VARIANT)
                                                   : parameter.type);
  }
  const bool any = function.answer == VT_VARIANT;
  if (function.answer != VT_EMPTY) {
    VARIANT result{};
    result.vt = static_cast<VARTYPE>(VT_BYREF | function.answer);
    result.byref = any ? static_cast<void*>(&place) : &place.llVal;
    given.push_back(result);
    types.push_back(result.vt);
  }
  std::vector<VARIANT*> pointers;
  for (VARIANT& value : given) pointers.push_back(&value);
  VARIANT status{};
  EXPECT_EQ(DispCallFunc(object_.get(), function.offset, CC_STDCALL, VT_ERROR, static_cast<UINT>(given.size()),
                         types.data(), pointers.data(), &status),
            S_OK);
  answer.status = status.scode;
  if (!any) place.vt = function.answer;
  answer.value.get() = place;
  if (SUCCEEDED(answer.status)) return answer;
  answer.error = answer.status;
  com::Pointer<IErrorInfo> error;
  if (GetErrorInfo(0, error.Receive()) != S_OK) return answer;
  BSTR text = nullptr;
  error->GetSource(&text);
  answer.source = Taken(text);
  error->GetDescription(&text);
  answer.description = Taken(text);
  return answer;
}

}  // namespace tessarlorn::com_test
