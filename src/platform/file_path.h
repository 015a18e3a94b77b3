// Names of files: UTF-8 inside the component, whatever the system takes.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace tessarlorn {

/// A path of UTF-8. Without this, narrow text is taken in the system's code page by some compilers' libraries.
inline std::filesystem::path ToPath(std::string_view name) { return {std::u8string(name.begin(), name.end())}; }
inline std::string PathText(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

}  // namespace tessarlorn
