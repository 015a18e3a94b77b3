#include "hosts/objects/type_library_text.h"

#include <span>
#include <string_view>

#include "hosts/objects/automation_object.h"
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

std::string InterfaceName(const ClassDescription& description) { return "_" + std::string(description.name); }

std::string_view TypeText(ValueType type) {
  switch (type) {
    case ValueType::kString:
      return "BSTR";
    case ValueType::kLong:
      return "long";
    case ValueType::kInteger:
      return "short";
    case ValueType::kDouble:
      return "double";
    case ValueType::kBoolean:
      return "VARIANT_BOOL";
    case ValueType::kDate:
      return "DATE";
    case ValueType::kVariant:
      return "VARIANT";
    default:
      // Any dictionary or collection is taken; recordsets are those of the database's driver.
      return "IDispatch*";
  }
}

std::string ArgumentText(const Argument& argument) {
  const std::string type(argument.optional ? "VARIANT" : TypeText(argument.type));
  return std::string(argument.in_out ? "[in, out" : "[in") + (argument.optional ? ", optional] " : "] ") + type +
         (argument.in_out ? "* " : " ") + std::string(argument.name);
}

std::string ArgumentsText(std::span<const Argument> arguments) {
  std::string text;
  for (const Argument& argument : arguments) text += (text.empty() ? "" : ", ") + ArgumentText(argument);
  return text;
}

/// "sDSN (String): Connection string; nothing is done without it. FID (Long): Order key."
std::string KeysText(std::span<const Key> keys) {
  std::string text;
  for (const Key& key : keys) {
    text += " " + std::string(key.name) + " (" + std::string(TypeName(key.type)) + "): " + key.Explanation() + ".";
    if (!key.item_keys.empty()) text += " (Keys of its Dictionaries:" + KeysText(key.item_keys) + ")";
  }
  return text;
}

/// The same for what is answered.
std::string ColumnsText(std::span<const Column> columns) {
  std::string text;
  for (const Column& column : columns) {
    text.append(" ").append(column.name).append(" (").append(TypeName(column.type)).append("): ");
    text.append(column.help).append(".");
    if (!column.item_columns.empty()) text += " (Keys of its Dictionaries:" + ColumnsText(column.item_columns) + ")";
  }
  return text;
}

/// What a member does, the keys of its Dictionaries, and the columns of its answer. A help string of a type library
/// holds 65,535 characters.
std::string HelpText(const Member& member) {
  std::string text(member.help);
  for (const Argument& argument : member.arguments) {
    const std::string name(argument.name);
    if (argument.any_key) text += " Every key of " + name + " counts.";
    if (argument.keys.empty()) continue;
    const bool many = argument.type == ValueType::kVector;
    text += (many ? " Keys of the Dictionaries in " : " Keys of ") + name + ":" + KeysText(argument.keys);
  }
  if (member.operation != nullptr && !member.operation->contract->columns.empty()) {
    text.append(" ").append(ColumnsTitle(member.result)).append(":");
    text += ColumnsText(member.operation->contract->columns);
  }
  return text;
}

/// A member in each of its uses.
std::string MemberText(const Member& member) {
  const std::string name = member.id == kEnumerationMember ? "_NewEnum" : std::string(member.name);
  const std::string help = Quoted(HelpText(member));
  const auto line = [&](std::string_view use, std::string_view result, const std::string& arguments) {
    return "    [id(" + std::to_string(member.id) + ")" + std::string(use) +
           (member.id == kEnumerationMember ? ", restricted" : "") + ", helpstring(" + help + ")]\n    " +
           std::string(result) + " " + name + "(" + arguments + ");\n";
  };
  const std::string arguments = ArgumentsText(member.arguments);
  const std::string_view result = member.id == kEnumerationMember ? "IUnknown*" : TypeText(member.result);
  std::string text;
  if ((member.uses & kCall) != 0) text += line("", member.returns_nothing ? "void" : result, arguments);
  if ((member.uses & kGet) != 0) text += line(", propget", result, arguments);
  if ((member.uses & kPut) != 0) {
    const std::string with_value =
        arguments + (arguments.empty() ? "" : ", ") + "[in] " + std::string(result) + " Value";
    text += line(", propput", "void", with_value);
    // Compilers allow `Set` for nothing else.
    if (member.result == ValueType::kVariant) text += line(", propputref", "void", with_value);
  }
  return text;
}

std::string InterfaceText(const ClassDescription& description) {
  std::string text = "  [uuid(" + std::string(description.interface_id) + "), helpstring(" + Quoted(description.help) +
                     ")]\n  dispinterface " + InterfaceName(description) + " {\n    properties:\n    methods:\n";
  for (const Member& member : description.members) text += MemberText(member);
  return text + "  };\n\n";
}

std::string ClassText(const ClassDescription& description) {
  return "  [uuid(" + std::string(description.class_id) + "), helpstring(" + Quoted(description.help) + ")" +
         (description.prog_id.empty() ? ", noncreatable" : "") + "]\n  coclass " + std::string(description.name) +
         " {\n    [default] dispinterface " + InterfaceName(description) + ";\n  };\n\n";
}

}  // namespace

std::string TypeLibraryText() {
  std::string text = "// Made from the table of operations; changes here are lost.\nimport \"oaidl.idl\";\n\n[uuid(" +
                     std::string(kLibraryId) + "), version(1.0), helpstring(" +
                     Quoted(std::string(kLibraryName) + " 1.0") + ")]\nlibrary " + std::string(kLibraryName) +
                     "\n{\n  importlib(\"stdole2.tlb\");\n\n";
  for (const ClassDescription* const description : AutomationClasses()) text += InterfaceText(*description);
  for (const ClassDescription* const description : AutomationClasses()) text += ClassText(*description);
  return text + "};\n";
}

}  // namespace tessarlorn
