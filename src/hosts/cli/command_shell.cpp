#include <iostream>

#include "hosts/cli/commands.h"
#include "hosts/cli/shell_pages.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kManFooter = R"(Example:
  tessarlorn man > tessarlorn.1 && man -l tessarlorn.1)";

constexpr const char* kCompletionFooter =
    R"(The script completes commands, options, operations, arguments, keys and columns.

Examples:
  source <(tessarlorn completion bash)
  tessarlorn completion zsh > ~/.zfunc/_tessarlorn)";

}  // namespace

void AddShellCommands(CLI::App& app, CommandContext& context) {
  CLI::App* const man = app.add_subcommand("man", "Print the manual page");
  man->footer(kManFooter);
  man->callback([&app, &context] {
    context.action = [&app] {
      std::cout << ManualPage(app);
      return ExitStatus::kDone;
    };
  });
  CLI::App* const completion = app.add_subcommand("completion", "Print the script by which a shell completes words");
  const auto shell = std::make_shared<std::string>();
  completion->add_option("SHELL", *shell, "bash or zsh")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh"}))
      ->type_name("");
  completion->footer(kCompletionFooter);
  completion->callback([&app, &context, shell] {
    context.action = [&app, shell] {
      std::cout << (*shell == "bash" ? BashCompletion(app) : ZshCompletion(app));
      return ExitStatus::kDone;
    };
  });
}

}  // namespace tessarlorn::cli
