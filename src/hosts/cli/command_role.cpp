#include <iostream>

#include "hosts/calls/json_text.h"
#include "hosts/calls/result_rows.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/door_command.h"
#include "hosts/http/access/roles.h"
#include "tessarlorn/collections.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kRoleFooter =
    R"(A role is the operations that a user may call over HTTP. Built in are:
  reader         all that reads, but SQL and names of tables
  picker         reads; picking, its check, batch numbers, print runs
  packer         reads; weights, waybills, parcels
  dispatcher     reads; delivery, costs, carriers, uploads, outside warehouses
  supervisor     all of these; remarks, addresses, cost invoices
  integrator     reads; what programs of shops and outside warehouses report
  administrator  everything

Examples:
  tessarlorn role list
  tessarlorn role add checker --operations GetListData,GetEntryData,MarkPickingGoodsStatus
  tessarlorn role remove checker)";

constexpr const char* kListRolesFooter =
    R"(The table has a line for each operation and a column for each role. --json has an object for each role.

Examples:
  tessarlorn role list
  tessarlorn role list --columns Operation,picker,packer
  tessarlorn role list --json)";

constexpr const char* kAddRoleFooter =
    R"(A role of your own allows the operations that you name, and no others. ExecuteSQL and GetUploadDataByTab are the
administrator's alone.

Example:
  tessarlorn role add checker --operations GetListData,GetEntryData,MarkPickingGoodsStatus)";

constexpr const char* kRemoveRoleFooter = R"(A role that users have is not removed; give them another one first.

Example:
  tessarlorn role remove checker)";

struct RoleOptions {
  std::string name;
  std::vector<std::string> operations;
};

/// Both classes have TransMode, which stands once.
std::vector<const Operation*> OperationsByName() {
  std::vector<const Operation*> operations;
  for (const Operation* const operation : Operations()) {
    if (FindOperation(operation->name) == operation) operations.push_back(operation);
  }
  return operations;
}

/// A line for each operation, "yes" where the role allows it.
Vector TableOf(const std::vector<http::RolePtr>& roles) {
  Vector lines;
  for (const Operation* const operation : OperationsByName()) {
    Dictionary line{{"Operation", operation->name}};
    for (const http::RolePtr& role : roles) line.SetValue(role->name(), role->Allows(*operation) ? "yes" : "");
    lines.Add(std::move(line));
  }
  return lines;
}

Vector ListOf(const std::vector<http::RolePtr>& roles) {
  Vector list;
  for (std::size_t i = 0; i < roles.size(); ++i) {
    Vector names;
    for (const Operation* const operation : OperationsByName()) {
      if (roles[i]->Allows(*operation)) names.Add(operation->name);
    }
    list.Add(Dictionary{
        {"Role", roles[i]->name()}, {"BuiltIn", i < http::BuiltInRoles().size()}, {"Operations", std::move(names)}});
  }
  return list;
}

void List(Connection& connection, const OutputOptions& output) {
  const std::vector<http::RolePtr> roles = http::AllRoles(connection);
  if (output.json) {
    std::cout << JsonText(ListOf(roles)) << '\n';
  } else {
    MakeResultWriter(output.Layout(), std::cout)->Write(RowsOf(TableOf(roles)));
  }
}

}  // namespace

void AddRoleCommands(CLI::App& app, CommandContext& context) {
  CLI::App* const roles = app.add_subcommand("role", "List, add and remove roles, which say what users may call");
  roles->require_subcommand(0, 1);
  roles->footer(kRoleFooter);

  CLI::App* const list = roles->add_subcommand("list", "List the roles with their operations");
  const auto output = std::make_shared<OutputOptions>();
  AddOutputOptions(*list, *output);
  list->footer(kListRolesFooter);
  SetDoorAction(*list, context, [output](Connection& connection) { List(connection, *output); });

  const auto added = std::make_shared<RoleOptions>();
  CLI::App* const add = roles->add_subcommand("add", "Add a role of your own");
  add->add_option("NAME", added->name, "Its name")->required()->type_name("");
  add->add_option("--operations", added->operations, "What it allows, as GetListData,GetEntryData")
      ->required()
      ->delimiter(',')
      ->allow_extra_args(false)
      ->type_name("NAMES");
  add->footer(kAddRoleFooter);
  SetDoorAction(*add, context, [added](Connection& connection) {
    http::AddRole(connection, added->name, added->operations);
    std::cout << "role " << added->name << " added\n";
  });

  const auto removed = std::make_shared<RoleOptions>();
  CLI::App* const remove = roles->add_subcommand("remove", "Remove a role of your own");
  remove->add_option("NAME", removed->name, "The role, in any case")->required()->type_name("");
  remove->footer(kRemoveRoleFooter);
  SetDoorAction(*remove, context, [removed](Connection& connection) {
    http::RemoveRole(connection, removed->name);
    std::cout << "role " << removed->name << " removed\n";
  });
}

}  // namespace tessarlorn::cli
