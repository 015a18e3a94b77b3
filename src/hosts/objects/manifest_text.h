// The side-by-side manifest: the library for clients that use it without registration.
#pragma once

#include <string>
#include <string_view>

namespace tessarlorn {

/// An assembly manifest with every class that can be created, and the type library.
/// @param version of four parts, as "0.1.0.0"; @param architecture "amd64" or "x86"
std::string ManifestText(std::string_view version, std::string_view architecture);

}  // namespace tessarlorn
