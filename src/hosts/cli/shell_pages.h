// What a shell is told of the command, made from the description of its words: the manual page and the completions.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace tessarlorn::cli {

/// In the language of man(7). @param app the whole command
std::string ManualPage(const CLI::App& app);

/// A script that bash reads: it completes commands, options, operations, their arguments and keys, and columns.
std::string BashCompletion(const CLI::App& app);
/// The same for a folder of zsh's `fpath`, as the file _tessarlorn.
std::string ZshCompletion(const CLI::App& app);

}  // namespace tessarlorn::cli
