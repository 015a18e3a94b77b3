#include <iostream>

#include "hosts/cli/commands.h"
#include "hosts/cli/door_command.h"
#include "hosts/http/access/tokens.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kTokenFooter =
    R"(Programs call over HTTP with a token of a user: they act as that user and may call what its role allows. A token is
shown once, when it is made.

Examples:
  tessarlorn token add scanner-3 --user ann --days 365
  tessarlorn token list --user ann
  tessarlorn token revoke scanner-3 --user ann)";

constexpr const char* kAddTokenFooter =
    R"(The token stands alone on standard output, for scripts. It cannot be shown again.

Examples:
  tessarlorn token add scanner-3 --user ann --days 365
  TOKEN=$(tessarlorn token add upload --user shop) && curl -H "Authorization: Bearer $TOKEN" ...)";

constexpr const char* kListTokensFooter = R"(Times are UTC. Used is the last use, to the minute.

Examples:
  tessarlorn token list
  tessarlorn token list --user ann --csv)";

constexpr const char* kRevokeFooter = R"(The program that has it is let in no more, at once.

Example:
  tessarlorn token revoke scanner-3 --user ann)";

struct TokenOptions {
  std::string name;
  std::string user;
  std::optional<int> days;
};

CLI::App& AddNamedToken(CLI::App& tokens, const char* name, const char* help, const char* footer,
                        TokenOptions& options) {
  CLI::App* const command = tokens.add_subcommand(name, help);
  command->add_option("NAME", options.name, "What the token is for; a user's tokens differ in it")
      ->required()
      ->type_name("");
  command->add_option("--user", options.user, "Whose token it is")->required()->type_name("USER");
  command->footer(footer);
  return *command;
}

}  // namespace

void AddTokenCommands(CLI::App& app, CommandContext& context) {
  CLI::App* const tokens = app.add_subcommand("token", "Make, list and revoke tokens of programs that call over HTTP");
  tokens->require_subcommand(0, 1);
  tokens->footer(kTokenFooter);

  const auto added = std::make_shared<TokenOptions>();
  CLI::App& add = AddNamedToken(*tokens, "add", "Make a token, which is printed once", kAddTokenFooter, *added);
  add.add_option("--days", added->days, "Days until it expires; else it does not")
      ->check(CLI::Range(1, 36'500))
      ->type_name("N");
  SetDoorAction(add, context, [added](Connection& connection) {
    std::cout << http::AddToken(connection, added->name, added->user, added->days) << '\n' << std::flush;
    std::cerr << "token " << added->name << " of " << added->user << " made; it is not shown again\n";
  });

  CLI::App* const list = tokens->add_subcommand("list", "List the tokens, without their secrets");
  const auto user = std::make_shared<std::string>();
  const auto output = std::make_shared<OutputOptions>();
  list->add_option("--user", *user, "Those of a user only")->type_name("USER");
  AddOutputOptions(*list, *output);
  list->footer(kListTokensFooter);
  SetDoorAction(*list, context, [user, output](Connection& connection) {
    MakeResultWriter(output->Layout(), std::cout)->Write(http::ListTokens(connection, *user));
  });

  const auto revoked = std::make_shared<TokenOptions>();
  CLI::App& revoke = AddNamedToken(*tokens, "revoke", "Revoke a token", kRevokeFooter, *revoked);
  SetDoorAction(revoke, context, [revoked](Connection& connection) {
    http::RevokeToken(connection, revoked->name, revoked->user);
    std::cout << "token " << revoked->name << " of " << revoked->user << " revoked\n";
  });
}

}  // namespace tessarlorn::cli
