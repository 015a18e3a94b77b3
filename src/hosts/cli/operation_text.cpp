#include "hosts/cli/operation_text.h"

#include <algorithm>
#include <cctype>

#include "hosts/cli/operation_examples.h"

namespace tessarlorn::cli {
namespace {

constexpr const char* kHead = R"(# The operations

This page is made by `tessarlorn ops --markdown`. `tessarlorn ops NAME` prints types, keys, defaults and
columns of one operation.

An operation belongs to `clsSaveData`, which changes orders, or to `clsGetData`, which reads. A key of a `Dictionary` is
written `Argument.Key` here. `Argument[].Key` is a key of each Dictionary in a `Vector`.

| the column "in the statement" says | which means |
|---|---|
| between quotes | The value is a text of SQL. With `Escape=Yes` in the connection string its quotes are doubled. |
| between quotes, its own quotes removed | The same. Without `Escape=Yes` its quotes are taken out. |
| bare, as … | The value is a piece of the SQL. Never pass on what a stranger wrote. |
| as a converted number | The value is a number, or the call fails. |
| not in the statement | The value decides what is done, or is looked up. |

The examples work on this database:

```sh
export TESSARLORN_DSN='Connect={Embedded=orders.db};User=16394;Language=CHS'
tessarlorn init
tessarlorn seed --orders 50 --random-seed 5
```

They build on each other, from the top of the page to its end. An answer that is empty, 0 or False ends with exit
status 1.

)";

constexpr const char* kTableHead = "| name | type | needed | in the statement | meaning |\n|---|---|---|---|---|\n";

std::string Text(std::string_view text) { return std::string(text); }

std::string Cell(std::string text) {
  for (std::size_t at = 0; (at = text.find('|', at)) != std::string::npos; at += 2) text.insert(at, 1, '\\');
  return text;
}

bool IsCollection(ValueType type) { return type == ValueType::kDictionary || type == ValueType::kVector; }

std::string Row(const std::string& name, ValueType type, const std::string& needed, Standing stands,
                const std::string& meaning) {
  return "| `" + name + "` | " + Text(TypeName(type)) + " | " + needed + " | " +
         (IsCollection(type) ? "" : Text(StandingText(stands))) + " | " + Cell(meaning) + " |\n";
}

std::string NeededText(Need need) {
  switch (need) {
    case Need::kMandatory:
      return "yes";
    case Need::kGiven:
      return "yes, may be empty";
    case Need::kUnchecked:
      return "yes, else an error";
    case Need::kOptional:
      break;
  }
  return "no";
}

std::string KeyRows(const std::string& owner, std::span<const Key> keys) {
  std::string rows;
  for (const Key& key : keys) {
    const std::string name = owner + "." + Text(key.name);
    std::string needed = NeededText(key.need);
    if (!key.fallback.empty()) needed += ", default `" + Text(key.fallback) + "`";
    const char* const filled_in = key.is_connection() ? "; the command fills it in" : "";
    rows += Row(name, key.type, needed, key.stands, Text(key.help) + filled_in);
    rows += KeyRows(name + "[]", key.item_keys);
  }
  return rows;
}

std::string ArgumentRows(const Argument& argument) {
  std::string meaning;
  if (argument.is_connection) meaning = "Connection string; the command fills it in";
  if (argument.any_key) meaning = "Every key counts, and stands bare, as a number";
  if (argument.in_out) meaning = "Written back after the call";
  const bool may_be_absent = argument.optional || argument.in_out || IsCollection(argument.type);
  const Need need = argument.need == Need::kOptional && !may_be_absent ? Need::kGiven : argument.need;
  const char* const item = argument.type == ValueType::kVector ? "[]" : "";
  return Row(Text(argument.name), argument.type, NeededText(need), argument.stands, meaning) +
         KeyRows(Text(argument.name) + item, argument.keys);
}

std::string ColumnRows(const std::string& owner, std::span<const Column> columns) {
  std::string rows;
  for (const Column& column : columns) {
    const std::string name = owner + Text(column.name);
    rows += "| `" + name + "` | " + Text(TypeName(column.type)) + " | " + Cell(Text(column.help)) + " |\n";
    rows += ColumnRows(name + "[].", column.item_columns);
  }
  return rows;
}

std::string OperationPart(const OperationExample& example) {
  const Operation& operation = *FindOperation(example.operation);
  std::string text = "### " + Text(example.operation) + "\n\n`" + Text(ClassName(operation.service)) + "." +
                     SignatureText(operation) + "`\n\n" + operation.help() + "\n\n";
  if (operation.argument_count > 0) {
    text += kTableHead;
    for (const Argument& argument : operation.arguments()) text += ArgumentRows(argument);
    text += "\n";
  }
  if (const auto columns = operation.contract->columns; !columns.empty()) {
    text += Text(ColumnsTitle(operation.result)) + ":\n\n| name | type | meaning |\n|---|---|---|\n";
    text += ColumnRows("", columns) + "\n";
  }
  if (!example.by_command) return text;
  text += "```sh\n";
  if (!example.before.empty()) text += Text(example.before) + "\n";
  text += "tessarlorn call " + Text(example.operation);
  if (!example.words.empty()) text += " " + Text(example.words);
  return text + "\n```\n\n";
}

/// The anchor of a heading on the page.
std::string Anchor(std::string_view heading) {
  std::string anchor;
  for (const char letter : heading) {
    if (letter == '.') continue;
    anchor += letter == ' ' ? '-' : static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
  }
  return anchor;
}

std::string Link(std::string_view heading) { return "[" + Text(heading) + "](#" + Anchor(heading) + ")"; }

}  // namespace

std::string SignatureText(const Operation& operation) {
  std::string text = Text(operation.name);
  if (!operation.property) {
    std::string list;
    for (const Argument& argument : operation.arguments()) {
      if (!list.empty()) list += ", ";
      if (argument.optional) list += "Optional ";
      if (argument.in_out) list += "ByRef ";
      list += Text(argument.name) + " As " + Text(TypeName(argument.type));
    }
    text += "(" + list + ")";
  }
  return text + " As " + Text(TypeName(operation.result));
}

std::string OperationsPage() {
  std::string contents = "| task | operations |\n|---|---|\n";
  std::string parts;
  for (const OperationTask& task : OperationTasks()) {
    std::string links;
    parts += "## " + Text(task.heading) + "\n\n" + Text(task.text) + "\n\n";
    for (const OperationExample& example : task.examples) {
      links += (links.empty() ? "" : ", ") + Link(example.operation);
      parts += OperationPart(example);
    }
    contents += "| " + Link(task.heading) + " | " + links + " |\n";
  }
  parts.pop_back();
  return kHead + contents + "\n" + parts;
}

}  // namespace tessarlorn::cli
