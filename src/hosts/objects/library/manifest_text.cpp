#include "hosts/objects/library/manifest_text.h"

#include "hosts/objects/automation_object.h"

namespace tessarlorn {
namespace {

/// An attribute; no text that stands in one has a character that XML needs escaped.
std::string Attribute(std::string_view name, std::string_view value) {
  std::string text = " ";
  return text.append(name).append("=\"").append(value).append("\"");
}

/// The proxy that Windows brings for interfaces that a type library describes.
constexpr std::string_view kProxyOfLibraries = "{00020424-0000-0000-C000-000000000046}";

std::string Braced(std::string_view id) { return "{" + std::string(id) + "}"; }

}  // namespace

std::string ManifestText(std::string_view version, std::string_view architecture) {
  const std::string library(kLibraryName);
  const std::string library_id = Attribute("tlbid", Braced(kLibraryId));
  std::string classes;
  std::string interfaces;
  for (const ClassDescription* const description : AutomationClasses()) {
    interfaces += "  <comInterfaceExternalProxyStub" + Attribute("name", "_" + std::string(description->name)) +
                  Attribute("iid", Braced(description->interface_id)) +
                  Attribute("proxyStubClsid32", kProxyOfLibraries) + library_id + "/>\n";
    if (description->prog_id.empty()) continue;
    classes += "    <comClass" + Attribute("description", description->title) +
               Attribute("clsid", Braced(description->class_id)) + Attribute("threadingModel", "Apartment") +
               library_id + Attribute("progid", description->prog_id) + ">\n      <progid>" +
               std::string(description->prog_id) + ".1</progid>\n    </comClass>\n";
  }
  return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
         "<assembly xmlns=\"urn:schemas-microsoft-com:asm.v1\" manifestVersion=\"1.0\">\n  <assemblyIdentity" +
         Attribute("type", "win32") + Attribute("name", library + ".Assembly") + Attribute("version", version) +
         Attribute("processorArchitecture", architecture) + "/>\n  <file" + Attribute("name", library + ".dll") +
         ">\n" + classes + "    <typelib" + library_id + Attribute("version", "1.0") + Attribute("helpdir", "") +
         "/>\n  </file>\n" + interfaces + "</assembly>\n";
}

}  // namespace tessarlorn
