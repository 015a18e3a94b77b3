// An object used as a compiled client uses it: through the vtable of its interface, as the type library tells it.
#pragma once

#include <string>
#include <vector>

#include "com/client/typed_object.h"

namespace tessarlorn::com_test {

class Vtable {
 public:
  struct Parameter {
    std::wstring name;
    /// VT_DISPATCH for an object of any interface, VT_I4 for a constant.
    VARTYPE type = VT_EMPTY;
    bool reference = false;
  };
  struct Function {
    std::wstring name;
    INVOKEKIND kind = INVOKE_FUNC;
    DISPID id = 0;
    std::size_t offset = 0;
    /// Without the answer's.
    std::vector<Parameter> parameters;
    /// VT_EMPTY for none.
    VARTYPE answer = VT_EMPTY;
  };

  explicit Vtable(const TypedObject& object);

  [[nodiscard]] const std::vector<Function>& functions() const noexcept { return functions_; }
  [[nodiscard]] const Function& Find(const wchar_t* name, INVOKEKIND kind) const;
  /// The error is that of the thread. @param arguments as many as there are parameters, of their types
  Answer Call(const Function& function, std::vector<Value> arguments) const;
  Answer Call(const wchar_t* name, std::vector<Value> arguments = {}) const {
    return Call(Find(name, INVOKE_FUNC), std::move(arguments));
  }
  Answer Get(const wchar_t* name, std::vector<Value> arguments = {}) const {
    return Call(Find(name, INVOKE_PROPERTYGET), std::move(arguments));
  }

 private:
  com::Pointer<IDispatch> object_;
  std::vector<Function> functions_;
};

}  // namespace tessarlorn::com_test
