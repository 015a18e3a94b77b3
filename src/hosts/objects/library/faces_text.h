// The vtables of the classes' interfaces as text, in C++.
#pragma once

#include <string>

namespace tessarlorn {

/// For each class of AutomationClasses() its interface, and a Dispatch of it whose functions call the members.
std::string FacesText();

}  // namespace tessarlorn
