#include <algorithm>
#include <string_view>

#include "hosts/cli/shell_pages.h"
#include "platform/text/text.h"
#include "tessarlorn/operations.h"

namespace tessarlorn::cli {
namespace {

/// What bash and zsh both read. The words before the one at the cursor tell what may stand there.
constexpr std::string_view kCommon = R"(
_tessarlorn_options() {
  case $1 in
{options}  esac
}

_tessarlorn_arguments() {
  case $1 in
{arguments}  esac
}

_tessarlorn_columns() {
  case $1 in
{columns}  esac
}

# Prints what may begin as $1 does behind the other words; FILES where a file is wanted.
_tessarlorn_words() {
  local begun=$1 command= operation= previous= word=
  shift
  for word in "$@"; do
    case $previous in
      {file_options} | {value_options})
        previous=
        continue
        ;;
    esac
    previous=$word
    case $command in
      '') case ' {commands} ' in *" $word "*) command=$word ;; esac ;;
      call | ops) case ' {operations} ' in *" ${word##*.} "*) operation=${word##*.} ;; esac ;;
{parts}    esac
  done
  case $previous in
    {file_options}) echo FILES ;;
    --columns) _tessarlorn_columns "$operation" ;;
    {value_options}) ;;
    *)
      case $begun:$command:$operation in
        -*) _tessarlorn_options "$command" ;;
        *::) echo '{commands}' ;;
        *:call: | *:ops:) echo '{operations}' ;;
        *:call:*) _tessarlorn_arguments "$operation" ;;
        *:completion:) echo bash zsh ;;
        *:backup: | *:restore:) echo FILES ;;
{part_words}      esac
      ;;
  esac
}
)";

constexpr std::string_view kBash = R"(
_tessarlorn() {
  local -
  set -f
  local line=${COMP_LINE:0:COMP_POINT}
  local begun=${line##*[[:blank:]]}
  local found=$(_tessarlorn_words "$begun" ${line%"$begun"})
  if [ "$found" = FILES ]; then
    compopt -o default
    COMPREPLY=()
    return
  fi
  COMPREPLY=($(compgen -W "$found" -- "$begun"))
  case ${COMPREPLY[0]} in *=) compopt -o nospace ;; esac
} 2>/dev/null

complete -F _tessarlorn tessarlorn
)";

constexpr std::string_view kZsh = R"(
local found=$(_tessarlorn_words "$words[CURRENT]" "${(@)words[2,CURRENT-1]}")
if [[ $found == FILES ]]; then
  _files
else
  local -a all=(${=found})
  compadd -S '' -- ${(M)all:#*=}
  compadd -- ${all:#*=}
fi
)";

std::string Join(const std::vector<std::string>& words, std::string_view separator) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : std::string(separator)) + word;
  return text;
}

/// A case of a shell's `case` that prints words; nothing when there are none.
std::string Case(std::string_view pattern, const std::vector<std::string>& words) {
  if (words.empty()) return "";
  return "    " + std::string(pattern) + ") echo '" + Join(words, " ") + "' ;;\n";
}

std::vector<std::string> OptionNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* const option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  }
  return names;
}

std::vector<const CLI::App*> WithParts(const CLI::App& command) {
  std::vector<const CLI::App*> all = {&command};
  for (const CLI::App* const part : command.get_subcommands({})) {
    const std::vector<const CLI::App*> parts = WithParts(*part);
    all.insert(all.end(), parts.begin(), parts.end());
  }
  return all;
}

/// "--file | --key": the options of all commands whose value is a file, or any other.
std::string OptionsWithValue(const CLI::App& app, bool files) {
  std::vector<std::string> names;
  for (const CLI::App* const command : WithParts(app)) {
    for (const CLI::Option* const option : command->get_options()) {
      const bool takes_value = !option->get_positional() && option->get_items_expected_max() > 0;
      const std::string name = option->get_name();
      const bool known = std::find(names.begin(), names.end(), name) != names.end();
      if (takes_value && !known && (option->get_type_name() == "FILE") == files) names.push_back(name);
    }
  }
  return Join(names, " | ");
}

std::string Script(const CLI::App& app, std::string_view head, std::string_view tail) {
  std::vector<std::string> commands;
  // Commands of commands.
  std::string parts;
  std::string part_words;
  std::string options = Case("''", OptionNames(app));
  for (const CLI::App* const command : app.get_subcommands({})) {
    commands.push_back(command->get_name());
    options += Case(command->get_name(), OptionNames(*command));
    const std::string& name = commands.back();
    std::vector<std::string> names;
    for (const CLI::App* const part : command->get_subcommands({})) {
      names.push_back(part->get_name());
      options += Case("'" + name + " " + part->get_name() + "'", OptionNames(*part));
    }
    if (names.empty()) continue;
    const std::string list = Join(names, " ");
    parts.append("      ").append(name).append(") case ' ").append(list).append(" ' in *\" $word \"*) command=\"");
    parts.append(name).append(" $word\" ;; esac ;;\n");
    part_words.append("        *:").append(name).append(":) echo '").append(list).append("' ;;\n");
  }
  std::vector<std::string> operations;
  std::string arguments;
  std::string columns;
  for (const Operation* const operation : Operations()) {
    operations.emplace_back(operation->name);
    std::vector<std::string> words;
    for (const Argument& argument : operation->arguments()) {
      words.push_back(std::string(argument.name) + "=");
      if (argument.type != ValueType::kDictionary) continue;
      for (const Key& key : argument.keys) {
        words.push_back(std::string(argument.name).append(".").append(key.name).append("="));
      }
    }
    arguments += Case(operation->name, words);
    std::vector<std::string> names;
    for (const Column& column : operation->contract->columns) names.emplace_back(column.name);
    columns += Case(operation->name, names);
  }
  std::string text = ReplaceAll(kCommon, "{options}", options);
  text = ReplaceAll(text, "{arguments}", arguments);
  text = ReplaceAll(text, "{columns}", columns);
  text = ReplaceAll(text, "{parts}", parts);
  text = ReplaceAll(text, "{part_words}", part_words);
  text = ReplaceAll(text, "{commands}", Join(commands, " "));
  text = ReplaceAll(text, "{operations}", Join(operations, " "));
  text = ReplaceAll(text, "{file_options}", OptionsWithValue(app, true));
  text = ReplaceAll(text, "{value_options}", OptionsWithValue(app, false));
  return std::string(head) + text + std::string(tail);
}

}  // namespace

std::string BashCompletion(const CLI::App& app) {
  return Script(app, "# Completion of tessarlorn for bash, made by `tessarlorn completion bash`.\n", kBash);
}

std::string ZshCompletion(const CLI::App& app) {
  return Script(app, "#compdef tessarlorn\n# Made by `tessarlorn completion zsh`.\n", kZsh);
}

}  // namespace tessarlorn::cli
