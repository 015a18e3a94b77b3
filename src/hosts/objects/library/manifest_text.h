// The side-by-side manifest: the library for clients that use it without registration.
#pragma once

#include <string>
#include <string_view>

namespace tessarlorn {

/// An assembly manifest with every class that can be created, the type library, and the proxy of each interface. The
/// assembly has a name of its own: for one with the library's name Windows would look inside the library.
/// @param version of four parts, as "0.1.0.0"; @param architecture "amd64" or "x86"
std::string ManifestText(std::string_view version, std::string_view architecture);

}  // namespace tessarlorn
