#include "hosts/objects/manifest_text.h"

#include "hosts/objects/automation_object.h"

namespace tessarlorn {
namespace {

/// An attribute; no text that stands in one has a character that XML needs escaped.
std::string Attribute(std::string_view name, std::string_view value) {
  std::string text = " ";
  return text.append(name).append("=\"").append(value).append("\"");
}

std::string Braced(std::string_view id) { return "{" + std::string(id) + "}"; }

}  // namespace

std::string ManifestText(std::string_view version, std::string_view architecture) {
  const std::string library(kLibraryName);
  std::string text =
      "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
      "<assembly xmlns=\"urn:schemas-microsoft-com:asm.v1\" manifestVersion=\"1.0\">\n  <assemblyIdentity" +
      Attribute("type", "win32") + Attribute("name", library) + Attribute("version", version) +
      Attribute("processorArchitecture", architecture) + "/>\n  <file" + Attribute("name", library + ".dll") + ">\n";
  for (const ClassDescription* const description : AutomationClasses()) {
    if (description->prog_id.empty()) continue;
    text += "    <comClass" + Attribute("clsid", Braced(description->class_id)) +
            Attribute("threadingModel", "Apartment") + Attribute("tlbid", Braced(kLibraryId)) +
            Attribute("progid", description->prog_id) + ">\n      <progid>" + std::string(description->prog_id) +
            ".1</progid>\n    </comClass>\n";
  }
  return text + "    <typelib" + Attribute("tlbid", Braced(kLibraryId)) + Attribute("version", "1.0") +
         Attribute("helpdir", "") + "/>\n  </file>\n</assembly>\n";
}

}  // namespace tessarlorn
