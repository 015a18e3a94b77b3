#include <iostream>

#include "hosts/calls/call_arguments.h"
#include "hosts/calls/json_text.h"
#include "hosts/cli/commands.h"
#include "hosts/cli/console/display_width.h"
#include "hosts/cli/console/terminal.h"
#include "hosts/cli/operation_text.h"
#include "tessarlorn/collections.h"
#include "tessarlorn/operations.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kOpsFooter = R"(Examples:
  tessarlorn ops
  tessarlorn ops GetListData
  tessarlorn ops clsGetData.TransMode --json
  tessarlorn ops --markdown > operations.md)";

constexpr std::size_t kTextWidth = 100;

std::string Text(std::string_view text) { return std::string(text); }

Vector DescribeKeys(std::span<const Key> keys) {
  Vector list;
  for (const Key& key : keys) {
    Dictionary entry{{"name", key.name},
                     {"type", TypeName(key.type)},
                     {"mandatory", key.need != Need::kOptional},
                     {"default", key.fallback},
                     {"stands", StandingText(key.stands)},
                     {"help", key.help},
                     {"connection", key.is_connection()}};
    if (key.names != Names::kNothing) entry.SetValue("names", NamesText(key.names));
    if (!key.item_keys.empty()) entry.SetValue("keys", DescribeKeys(key.item_keys));
    list.Add(std::move(entry));
  }
  return list;
}

Vector DescribeColumns(std::span<const Column> columns) {
  Vector list;
  for (const Column& column : columns) {
    Dictionary entry{{"name", column.name}, {"type", TypeName(column.type)}, {"help", column.help}};
    if (!column.item_columns.empty()) entry.SetValue("columns", DescribeColumns(column.item_columns));
    list.Add(std::move(entry));
  }
  return list;
}

Dictionary Describe(const Operation& operation) {
  Vector arguments;
  for (const Argument& argument : operation.arguments()) {
    Dictionary entry{{"name", argument.name},
                     {"type", TypeName(argument.type)},
                     {"optional", argument.optional},
                     {"written_back", argument.in_out},
                     {"any_key", argument.any_key},
                     {"stands", StandingText(argument.stands)},
                     {"mandatory", argument.need != Need::kOptional},
                     {"connection", argument.is_connection}};
    if (argument.names != Names::kNothing) entry.SetValue("names", NamesText(argument.names));
    if (!argument.keys.empty()) entry.SetValue("keys", DescribeKeys(argument.keys));
    arguments.Add(std::move(entry));
  }
  Dictionary entry{{"class", ClassName(operation.service)},
                   {"name", operation.name},
                   {"property", operation.property},
                   {"arguments", std::move(arguments)},
                   {"result", TypeName(operation.result)},
                   {"source", operation.contract->source},
                   {"help", operation.help()}};
  const std::span<const Column> columns = operation.contract->columns;
  if (!columns.empty()) entry.SetValue("columns", DescribeColumns(columns));
  return entry;
}

/// Widest name of keys or columns.
template <typename Named>
std::size_t NameWidth(std::span<const Named> list) {
  std::size_t width = 0;
  for (const Named& one : list) width = std::max(width, one.name.size());
  return width;
}

/// A line: name, type, what it is.
void PrintNamed(std::size_t indent, std::size_t name_width, std::string_view name, ValueType type,
                const std::string& explanation) {
  constexpr std::size_t kTypeWidth = 8;
  std::string line = Text(name);
  line.append(name_width + 2 - line.size(), ' ');
  line += Text(TypeName(type));
  line.append(kTypeWidth + name_width + 4 - std::min(line.size(), kTypeWidth + name_width + 3), ' ');
  std::cout << std::string(indent, ' ') << line << explanation << '\n';
}

/// A line for each key; the keys of a Vector's Dictionaries below it.
void PrintKeys(std::span<const Key> keys, std::size_t indent) {
  const std::size_t width = NameWidth(keys);
  for (const Key& key : keys) {
    const std::string explanation =
        key.is_connection() ? Text(key.help) + "; the command's own when not given" : key.Explanation();
    PrintNamed(indent, width, key.name, key.type, explanation);
    PrintKeys(key.item_keys, indent + 4);
  }
}

void PrintColumns(std::span<const Column> columns, std::size_t indent) {
  const std::size_t width = NameWidth(columns);
  for (const Column& column : columns) {
    PrintNamed(indent, width, column.name, column.type, Text(column.help));
    PrintColumns(column.item_columns, indent + 4);
  }
}

void Explain(const Operation& operation) {
  std::cout << ClassName(operation.service) << '.' << SignatureText(operation) << "\n\n"
            << Wrapped(operation.help(), 2, kTextWidth);
  for (const Argument& argument : operation.arguments()) {
    std::cout << "\n  " << argument.name << " As " << TypeName(argument.type);
    if (argument.is_connection) std::cout << ": connection string; the command's own when not given";
    if (argument.any_key) std::cout << ": every key counts";
    if (!argument.keys.empty()) {
      std::cout << (argument.type == ValueType::kVector ? ": Dictionaries with the keys" : ", with the keys");
    }
    std::cout << '\n';
    PrintKeys(argument.keys, 4);
  }
  const std::span<const Column> columns = operation.contract->columns;
  if (columns.empty()) return;
  std::cout << "\n  " << ColumnsTitle(operation.result) << '\n';
  PrintColumns(columns, 4);
}

void List() {
  std::string_view service;
  for (const Operation* operation : Operations()) {
    if (ClassName(operation->service) != service) {
      std::cout << (service.empty() ? "" : "\n") << ClassName(operation->service) << '\n';
      service = ClassName(operation->service);
    }
    const std::string_view help = operation->contract->help;
    std::cout << "  " << SignatureText(*operation) << '\n'
              << Wrapped(std::string(help.substr(0, help.find(". "))), 6, kTextWidth);
  }
  std::cout << "\n" << Operations().size() << " operations; 'tessarlorn ops NAME' explains one with its keys.\n";
}

ExitStatus Ops(const std::string& name, bool json, bool markdown) {
  if (markdown) {
    std::cout << OperationsPage();
  } else if (!name.empty()) {
    const Operation& operation = RequireOperation(name);
    if (json) {
      std::cout << JsonText(Describe(operation)) << '\n';
    } else {
      Explain(operation);
    }
  } else if (json) {
    Vector all;
    for (const Operation* operation : Operations()) all.Add(Describe(*operation));
    std::cout << JsonText(all) << '\n';
  } else {
    List();
  }
  return ExitStatus::kDone;
}

}  // namespace

void AddOpsCommand(CLI::App& app, CommandContext& context) {
  CLI::App* const command = app.add_subcommand("ops", "List the operations, or explain one");
  const auto name = std::make_shared<std::string>();
  const auto json = std::make_shared<bool>(false);
  const auto markdown = std::make_shared<bool>(false);
  CLI::Option* const one =
      command->add_option("OPERATION", *name, "Name, as GetListData or clsGetData.GetListData")->type_name("");
  CLI::Option* const as_json = command->add_flag("--json", *json, "Print as JSON");
  command->add_flag("--markdown", *markdown, "Print the page of all operations, with an example of each")
      ->excludes(one)
      ->excludes(as_json);
  command->footer(kOpsFooter);
  command->callback([&context, name, json, markdown] {
    context.action = [name, json, markdown] { return Ops(*name, *json, *markdown); };
  });
}

}  // namespace tessarlorn::cli
