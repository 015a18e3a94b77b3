#include "hosts/objects/library/type_library_text.h"

#include <span>
#include <string_view>

#include "hosts/objects/automation_object.h"
#include "hosts/objects/library/enumerations.h"
#include "hosts/objects/library/interface_functions.h"
#include "platform/text/text.h"

namespace tessarlorn {
namespace {

std::string Quoted(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : OnOneLine(text)) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + "\"";
}

std::string ArgumentText(const Argument& argument) {
  std::string text = argument.in_out ? "[in, out" : "[in";
  if (!argument.fallback.empty()) {
    text += ", defaultvalue(" + std::string(argument.fallback) + ")";
  } else if (argument.optional) {
    text += ", optional";
  }
  return text + "] " + TypeOf(argument).library + (argument.in_out ? "* " : " ") + std::string(argument.name);
}

/// What clients of old compilers take: whole sentences of it, as many as there is room for. All of it stands on the
/// page of the operations.
std::string Shortened(std::string_view help) {
  constexpr std::size_t kMost = 255;
  if (Utf16Length(help) <= kMost) return std::string(help);
  help = help.substr(0, kMost);
  const std::size_t sentence = help.rfind(". ");
  if (sentence != std::string_view::npos) return std::string(help.substr(0, sentence + 1));
  constexpr std::string_view kMore = " ...";
  return std::string(help.substr(0, help.rfind(' ', kMost - kMore.size()))).append(kMore);
}

std::string EnumerationText(const Enumeration& enumeration) {
  std::string text = "  typedef [helpstring(" + Quoted(enumeration.help) + ")] enum {\n";
  for (const Constant& constant : enumeration.constants) {
    text += "    " + std::string(constant.name) + " = " + std::to_string(constant.value) + ",\n";
  }
  return text + "  } " + std::string(enumeration.name) + ";\n\n";
}

/// "[id(1), propget, helpstring("…")] HRESULT Count([out, retval] long* Result);"
std::string FunctionText(const InterfaceFunction& function) {
  const Member& member = *function.member;
  const bool enumeration = member.id == kEnumerationMember;
  const std::string type = ResultType(member).library;
  std::string text = "    [id(" + std::to_string(member.id) + ")";
  if (function.use == kGet) text += ", propget";
  if (function.use == kPut) text += function.by_reference ? ", propputref" : ", propput";
  text += enumeration ? ", restricted" : "";
  text += ", helpstring(" + Quoted(Shortened(member.help)) + ")]\n    HRESULT " +
          (enumeration ? "_NewEnum" : std::string(member.name)) + "(";
  std::string separator;
  for (const Argument& argument : function.arguments) {
    text += separator + ArgumentText(argument);
    separator = ", ";
  }
  if (function.use == kPut) {
    text += separator + "[in] " + type + " Value";
  } else if (!member.returns_nothing) {
    text += separator + "[out, retval] " + type + "* Result";
  }
  return text + ");\n";
}

std::string InterfaceText(const ClassDescription& description) {
  std::string text = "  [object, uuid(" + std::string(description.interface_id) +
                     "), dual, oleautomation, helpstring(" + Quoted(Shortened(description.help)) + ")]\n  interface " +
                     InterfaceName(description.name) + " : IDispatch {\n";
  for (const InterfaceFunction& function : InterfaceFunctions(description)) text += FunctionText(function);
  return text + "  };\n\n";
}

std::string ClassText(const ClassDescription& description) {
  // Containers read of it that the class requires a transaction, as it says by itself. Not every compiler of the
  // language takes it here.
  constexpr std::string_view kTransaction =
      "\n#ifndef __WIDL__\n    , custom(17093CC5-9BD2-11CF-AA4F-304BF89C0001, 0)\n#endif\n  ";
  return "  [uuid(" + std::string(description.class_id) + "), helpstring(" + Quoted(Shortened(description.help)) + ")" +
         std::string(description.Find("TransMode") == nullptr ? "" : kTransaction) +
         (description.prog_id.empty() ? ", noncreatable" : "") + "]\n  coclass " + std::string(description.name) +
         " {\n    [default] interface " + InterfaceName(description.name) + ";\n  };\n\n";
}

}  // namespace

std::string TypeLibraryText() {
  std::string text = "// Made from the table of operations; changes here are lost.\nimport \"oaidl.idl\";\n\n[uuid(" +
                     std::string(kLibraryId) + "), version(1.0), helpstring(" +
                     Quoted(std::string(kLibraryName) + " 1.0") + ")]\nlibrary " + std::string(kLibraryName) +
                     "\n{\n  importlib(\"stdole2.tlb\");\n\n";
  for (const Enumeration& enumeration : Enumerations()) text += EnumerationText(enumeration);
  for (const ClassDescription* const description : AutomationClasses()) {
    text += "  interface " + InterfaceName(description->name) + ";\n";
  }
  text += "\n";
  for (const ClassDescription* const description : AutomationClasses()) text += InterfaceText(*description);
  for (const ClassDescription* const description : AutomationClasses()) text += ClassText(*description);
  return text + "};\n";
}

}  // namespace tessarlorn
