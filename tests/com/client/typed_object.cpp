#include "com/client/typed_object.h"

#include <algorithm>
#include <stdexcept>

namespace tessarlorn::com_test {
namespace {

void Check(HRESULT status, const char* what) {
  if (FAILED(status)) throw std::runtime_error(std::string(what) + " failed: " + std::to_string(status));
}

}  // namespace

std::wstring Taken(BSTR text) {
  const std::wstring copy = text == nullptr ? L"" : std::wstring(text, SysStringLen(text));
  SysFreeString(text);
  return copy;
}

Apartment::Apartment(DWORD kind) { Check(CoInitializeEx(nullptr, kind), "CoInitializeEx"); }
Apartment::~Apartment() { CoUninitialize(); }

Value::Value(int number) {
  variant_.vt = VT_I4;
  variant_.lVal = number;
}
Value::Value(double number) {
  variant_.vt = VT_R8;
  variant_.dblVal = number;
}
Value::Value(bool flag) {
  variant_.vt = VT_BOOL;
  variant_.boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE;
}
Value::Value(const wchar_t* text) {
  variant_.vt = VT_BSTR;
  variant_.bstrVal = SysAllocString(text);
}
Value::Value(IDispatch* object) {
  variant_.vt = VT_DISPATCH;
  variant_.pdispVal = object;
  if (object != nullptr) object->AddRef();
}
Value::Value(const Value& other) {
  VariantInit(&variant_);
  Check(VariantCopy(&variant_, const_cast<VARIANT*>(&other.variant_)), "VariantCopy");
}
Value& Value::operator=(const Value& other) {
  if (this != &other) Check(VariantCopy(&variant_, const_cast<VARIANT*>(&other.variant_)), "VariantCopy");
  return *this;
}

Value Value::LeftOut() {
  Value value;
  value.variant_.vt = VT_ERROR;
  value.variant_.scode = DISP_E_PARAMNOTFOUND;
  return value;
}

std::wstring Value::text() const {
  Value copy(*this);
  if (FAILED(VariantChangeType(&copy.variant_, &copy.variant_, 0, VT_BSTR))) return {};
  return {copy.variant_.bstrVal, SysStringLen(copy.variant_.bstrVal)};
}

double Value::number() const {
  Value copy(*this);
  if (FAILED(VariantChangeType(&copy.variant_, &copy.variant_, 0, VT_R8))) return 0;
  return copy.variant_.dblVal;
}

Answer Invoke(IDispatch* object, DISPID id, WORD flags, std::vector<Value> arguments, std::vector<DISPID> named) {
  std::vector<VARIANT> raw;
  for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument) raw.push_back(argument->get());
  std::reverse(named.begin(), named.end());
  DISPPARAMS parameters = {raw.data(), named.data(), static_cast<UINT>(raw.size()), static_cast<UINT>(named.size())};
  Answer answer;
  EXCEPINFO info{};
  const bool put = (flags & DISPATCH_PROPERTYPUT) != 0;
  answer.status = object->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                 put ? nullptr : &answer.value.get(), &info, nullptr);
  answer.error = info.scode;
  answer.source = Taken(info.bstrSource);
  answer.description = Taken(info.bstrDescription);
  return answer;
}

TypedObject::TypedObject(const wchar_t* prog_id, DWORD context) {
  CLSID class_id{};
  Check(CLSIDFromProgID(prog_id, &class_id), "CLSIDFromProgID");
  void* created = nullptr;
  Check(CoCreateInstance(class_id, nullptr, context, IID_IDispatch, &created), "CoCreateInstance");
  object_ = com::Pointer<IDispatch>::Adopt(static_cast<IDispatch*>(created));
  ReadInfo();
}

TypedObject::TypedObject(IDispatch* object) : object_(object) { ReadInfo(); }

void TypedObject::ReadInfo() { Check(object_->GetTypeInfo(0, LOCALE_USER_DEFAULT, info_.Receive()), "GetTypeInfo"); }

DISPID TypedObject::Number(const wchar_t* member) const {
  std::wstring name(member);
  LPOLESTR text = name.data();
  MEMBERID id = DISPID_UNKNOWN;
  return SUCCEEDED(info_->GetIDsOfNames(&text, 1, &id)) ? id : DISPID_UNKNOWN;
}

Answer TypedObject::Call(const wchar_t* member, std::vector<Value> arguments) const {
  const DISPID id = Number(member);
  TYPEATTR* attributes = nullptr;
  Check(info_->GetTypeAttr(&attributes), "GetTypeAttr");
  const UINT count = attributes->cFuncs;
  info_->ReleaseTypeAttr(attributes);
  for (UINT i = 0; i < count; ++i) {
    FUNCDESC* function = nullptr;
    Check(info_->GetFuncDesc(i, &function), "GetFuncDesc");
    const bool found = function->memid == id && (function->invkind & (INVOKE_FUNC | INVOKE_PROPERTYGET)) != 0;
    const auto flags = static_cast<WORD>(function->invkind);
    for (std::size_t a = 0; found && a < arguments.size() && a < static_cast<std::size_t>(function->cParams); ++a) {
      const VARTYPE type = function->lprgelemdescParam[a].tdesc.vt;
      VARIANT& own = arguments[a].get();
      if (type == VT_BSTR || type == VT_I4 || type == VT_I2 || type == VT_R8 || type == VT_BOOL || type == VT_DATE) {
        Check(VariantChangeType(&own, &own, 0, type), "VariantChangeType");
      }
    }
    info_->ReleaseFuncDesc(function);
    if (found) return Invoke(object_.get(), id, flags, std::move(arguments));
  }
  throw std::runtime_error("The type library has no such member");
}

Answer TypedObject::Put(const wchar_t* member, std::vector<Value> arguments) const {
  // The new value is the argument with automation's own number; it goes first in the list, which is turned round.
  return Invoke(object_.get(), Number(member), DISPATCH_PROPERTYPUT, std::move(arguments), {DISPID_PROPERTYPUT});
}

}  // namespace tessarlorn::com_test
