// GUIDs as texts, both ways.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tessarlorn {

/// "6F9619FF-8B86-D011-B42D-00C04FC964FF" of the 16 bytes in the order of these digits.
std::string GuidText(std::string_view bytes);
/// The bytes of such a text, in capitals or not, in braces or not. Nothing for any other text.
std::optional<std::string> BytesOfGuid(std::string_view text);

/// The text without the braces that clients put around it.
std::string_view WithoutBraces(std::string_view text);

}  // namespace tessarlorn
