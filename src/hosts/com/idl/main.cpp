// Writes what the build of the library for Windows needs of the table of operations.
#include <exception>
#include <fstream>
#include <iostream>
#include <string>

#include "hosts/objects/library/faces_text.h"
#include "hosts/objects/library/manifest_text.h"
#include "hosts/objects/library/type_library_text.h"
#include "tessarlorn/version.h"

namespace {

/// "" for a kind that there is not.
std::string TextOf(const std::string& kind) {
  if (kind == "idl") return tessarlorn::TypeLibraryText();
  if (kind == "faces") return tessarlorn::FacesText();
  const std::string version = std::string(tessarlorn::kVersion) + ".0";
  if (kind == "manifest-amd64") return tessarlorn::ManifestText(version, "amd64");
  if (kind == "manifest-x86") return tessarlorn::ManifestText(version, "x86");
  return "";
}

}  // namespace

int main(int count, char** arguments) {
  try {
    const std::string text = count == 3 ? TextOf(arguments[1]) : "";
    if (text.empty()) {
      std::cerr << "usage: tessarlorn_idl idl|faces|manifest-amd64|manifest-x86 FILE\n";
      return 2;
    }
    std::ofstream out(arguments[2], std::ios::binary);
    out << text << std::flush;
    if (out) return 0;
    std::cerr << "cannot write " << arguments[2] << '\n';
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
  }
  return 1;
}
