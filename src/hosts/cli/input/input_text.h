// The text of files and of standard input, in whichever encoding editors write it.
#pragma once

#include <optional>
#include <string>

namespace tessarlorn::cli {

/// `bytes` as UTF-8 without a byte order mark: they are UTF-8, or UTF-16 of either order that begins with its mark.
/// Nothing when they are neither, or malformed.
std::optional<std::string> DecodeText(std::string bytes);

}  // namespace tessarlorn::cli
