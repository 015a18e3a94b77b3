// The type library as text, in the interface definition language of COM.
#pragma once

#include <string>

namespace tessarlorn {

/// Every class of AutomationClasses() with its members, arguments and help texts.
std::string TypeLibraryText();

}  // namespace tessarlorn
