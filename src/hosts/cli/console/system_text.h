// The texts that the system hands the command: in UTF-8, whatever the system keeps them in.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace tessarlorn::cli {

/// The words of the command line, the program's own name first. @param given those of the main function
std::vector<std::string> CommandWords(std::span<const char* const> given);

/// A variable of the environment, "" when it is not there.
std::string EnvironmentVariable(const char* name);

}  // namespace tessarlorn::cli
