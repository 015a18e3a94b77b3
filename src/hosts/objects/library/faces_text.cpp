#include "hosts/objects/library/faces_text.h"

#include <string_view>
#include <vector>

#include "hosts/objects/automation_object.h"
#include "hosts/objects/library/interface_functions.h"

namespace tessarlorn {
namespace {

/// A function of the vtable: what it is called in C++, its parameters and what it does.
struct FaceFunction {
  std::string name;
  std::string parameters;
  std::string body;
};

/// What a function's name begins with, and its way in the words of face.h.
struct UseWords {
  std::string_view prefix;
  std::string_view way;
};

UseWords WordsOf(const InterfaceFunction& function) {
  if (function.by_reference) return {"putref_", "kPutReference"};
  if (function.use == kPut) return {"put_", "kPut"};
  return function.use == kGet ? UseWords{"get_", "kGet"} : UseWords{"call_", "kCall"};
}

FaceFunction MakeFunction(const InterfaceFunction& function) {
  const Member& member = *function.member;
  FaceFunction made;
  const UseWords words = WordsOf(function);
  made.name = std::string(words.prefix) + std::string(member.id == kEnumerationMember ? "NewEnum" : member.name);
  std::string given;
  const auto add = [&](const InterfaceType& type, std::string_view name, bool in_out) {
    made.parameters.append(made.parameters.empty() ? "" : ", ").append(type.compiled);
    made.parameters.append(in_out ? "* " : " ").append(name);
    given.append(", Given<").append(in_out ? "VT_BYREF | " : "").append(type.variant);
    given.append(">(").append(name).append(")");
  };
  for (const Argument& argument : function.arguments) add(TypeOf(argument), argument.name, argument.in_out);
  const InterfaceType type = ResultType(member);
  std::string answer = "{}";
  if (function.use == kPut) {
    add(type, "value", false);
  } else if (!member.returns_nothing) {
    made.parameters.append(made.parameters.empty() ? "" : ", ").append(type.compiled).append("* result");
    answer = "{" + std::string(type.variant) + ", result}";
  }
  made.body = "return Call(" + std::to_string(function.position) + ", Way::" + std::string(words.way) + ", " + answer +
              given + ");";
  return made;
}

std::string FaceText(const ClassDescription& description) {
  const std::string name(description.name);
  std::string interface_text;
  std::string face_text;
  for (const InterfaceFunction& function : InterfaceFunctions(description)) {
    const FaceFunction made = MakeFunction(function);
    const std::string declaration = "HRESULT STDMETHODCALLTYPE " + made.name + "(" + made.parameters + ")";
    interface_text += "  virtual " + declaration + " = 0;\n";
    face_text += "  " + declaration + " override { " + made.body + " }\n";
  }
  return "class " + name + "Interface : public IDispatch {\n public:\n" + interface_text + "};\n\nclass " + name +
         "Face final : public Dispatch<" + name + "Interface> {\n public:\n  using Dispatch::Dispatch;\n" + face_text +
         "};\n\n";
}

}  // namespace

std::string FacesText() {
  std::string text =
      "// Made from the table of operations; changes here are lost.\n#pragma once\n\n#include \"hosts/com/face.h\"\n\n"
      "namespace tessarlorn::com {\n\n";
  std::string makers;
  for (const ClassDescription* const description : AutomationClasses()) {
    text += FaceText(*description);
    makers += "    Make<" + std::string(description->name) + "Face>,\n";
  }
  return text + "/// In the order of AutomationClasses().\nconstexpr std::unique_ptr<Face> (*kMakers[])(" +
         "const AutomationObject&) = {\n" + makers + "};\n\n}  // namespace tessarlorn::com\n";
}

}  // namespace tessarlorn
