#include <iostream>

#include "hosts/cli/commands.h"
#include "hosts/cli/console/password.h"
#include "hosts/cli/console/usage_error.h"
#include "hosts/cli/door_command.h"
#include "hosts/http/access/users.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kUserFooter =
    R"(Users call operations over HTTP ('tessarlorn serve --http'). Each acts as a user of the ERP, and its role says what it
may call ('tessarlorn role list'). The tables are made by 'tessarlorn init'.

Examples:
  tessarlorn user add ann --erp-user 16394 --role picker
  tessarlorn user list
  tessarlorn user set ann --role supervisor
  tessarlorn user remove ann)";

constexpr const char* kAddFooter =
    R"(The password has eight characters at least. It is asked for on a terminal, else it is the first line of standard input.
--sql lets the user pass SQL, which only administrators may.

Examples:
  tessarlorn user add ann --erp-user 16394 --role picker
  tessarlorn user add shop --erp-user 16395 --role integrator --language CHT < password.txt
  tessarlorn user add root --erp-user 16394 --role administrator --sql)";

constexpr const char* kListFooter = R"(Times are UTC.

Examples:
  tessarlorn user list
  tessarlorn user list --json --columns Name,Role)";

constexpr const char* kSetFooter =
    R"(What is not given stays as it is. A new password and --disable end the user's sessions; tokens of a disabled user do
nothing until it is enabled. Another role than administrator takes --sql away.

Examples:
  tessarlorn user set ann --role supervisor --language CHT
  tessarlorn user set ann --password
  tessarlorn user set ann --disable)";

constexpr const char* kRemoveFooter = R"(The user's tokens and sessions go, too.

Example:
  tessarlorn user remove ann)";

struct UserOptions {
  std::string name;
  http::UserSettings settings;
  bool password = false;
  bool disable = false;
  bool enable = false;
  bool sql = false;
  bool no_sql = false;
};

CLI::App& AddNamed(CLI::App& users, const char* name, const char* help, const char* footer, UserOptions& options) {
  CLI::App* const command = users.add_subcommand(name, help);
  command->add_option("NAME", options.name, "The user, in any case")->required()->type_name("");
  command->footer(footer);
  return *command;
}

/// Those of add and set; answers those that add requires.
std::vector<CLI::Option*> AddSettings(CLI::App& command, UserOptions& options) {
  CLI::Option* const erp_user =
      command.add_option("--erp-user", options.settings.erp_user, "Id of the user in the ERP")->type_name("ID");
  CLI::Option* const role = command.add_option("--role", options.settings.role, "What it may call")->type_name("ROLE");
  command.add_option("--language", options.settings.language, "Language code, as CHS or CHT")->type_name("CODE");
  return {erp_user, role};
}

void Add(Connection& connection, const UserOptions& options) {
  http::UserSettings settings = options.settings;
  settings.sql = options.sql;
  http::CheckNewUser(connection, options.name, settings);
  settings.password = ReadNewPassword(options.name);
  http::AddUser(connection, options.name, settings);
  std::cout << "user " << options.name << " added\n";
}

void Set(Connection& connection, const UserOptions& options) {
  http::UserSettings settings = options.settings;
  if (options.disable || options.enable) settings.disabled = options.disable;
  if (options.sql || options.no_sql) settings.sql = options.sql;
  const bool changes = settings.role || settings.language || settings.erp_user || settings.disabled || settings.sql;
  if (!changes && !options.password) {
    throw UsageError(
        "nothing to change: give --role, --language, --erp-user, --password, --disable, --sql or the like");
  }
  const std::string name = http::RequireUser(connection, options.name);
  if (options.password) settings.password = ReadNewPassword(name);
  http::ChangeUser(connection, name, settings);
  std::cout << "user " << name << " changed"
            << (options.password || options.disable ? "; its sessions have ended\n" : "\n");
}

}  // namespace

void AddUserCommands(CLI::App& app, CommandContext& context) {
  CLI::App* const users = app.add_subcommand("user", "Add, list, change and remove users who may call over HTTP");
  users->require_subcommand(0, 1);
  users->footer(kUserFooter);

  const auto added = std::make_shared<UserOptions>();
  CLI::App& add = AddNamed(*users, "add", "Add a user", kAddFooter, *added);
  for (CLI::Option* const option : AddSettings(add, *added)) option->required();
  add.add_flag("--sql", added->sql, "May pass SQL; administrators only");
  SetDoorAction(add, context, [added](Connection& connection) { Add(connection, *added); });

  CLI::App* const list = users->add_subcommand("list", "List the users");
  const auto output = std::make_shared<OutputOptions>();
  AddOutputOptions(*list, *output);
  list->footer(kListFooter);
  SetDoorAction(*list, context, [output](Connection& connection) {
    MakeResultWriter(output->Layout(), std::cout)->Write(http::ListUsers(connection));
  });

  const auto changed = std::make_shared<UserOptions>();
  CLI::App& set = AddNamed(*users, "set", "Change a user", kSetFooter, *changed);
  AddSettings(set, *changed);
  set.add_flag("--password", changed->password, "Ask for a new password");
  CLI::Option* const disable = set.add_flag("--disable", changed->disable, "Let the user in no more");
  set.add_flag("--enable", changed->enable, "Let the user in again")->excludes(disable);
  CLI::Option* const sql = set.add_flag("--sql", changed->sql, "May pass SQL");
  set.add_flag("--no-sql", changed->no_sql, "May pass none")->excludes(sql);
  SetDoorAction(set, context, [changed](Connection& connection) { Set(connection, *changed); });

  const auto removed = std::make_shared<UserOptions>();
  CLI::App& remove = AddNamed(*users, "remove", "Remove a user", kRemoveFooter, *removed);
  SetDoorAction(remove, context, [removed](Connection& connection) {
    http::RemoveUser(connection, removed->name);
    std::cout << "user " << removed->name << " removed\n";
  });
}

}  // namespace tessarlorn::cli
