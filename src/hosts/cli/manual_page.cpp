#include <sstream>

#include "hosts/cli/shell_pages.h"
#include "platform/text/text.h"
#include "tessarlorn/version.h"

namespace tessarlorn::cli {
namespace {

/// The text as it reads, whatever its letters mean to man(7).
std::string Plain(std::string_view text) {
  std::string plain = text.starts_with('.') || text.starts_with('\'') ? "\\&" : "";
  for (const char letter : text) {
    if (letter == '\\') {
      plain += "\\(rs";
    } else {
      if (letter == '-') plain += '\\';
      plain += letter;
    }
  }
  return plain;
}

/// "FILE", or "N (1 to 9)" of "N:INT in [1 - 9]"; "" for a flag.
std::string ValueName(const CLI::Option& option) {
  if (option.get_items_expected_max() == 0) return "";
  std::string name = option.get_type_name();
  for (const auto& [from, to] : {std::pair{":INT in [", " ("}, {" - ", " to "}, {"]", ")"}}) {
    name = ReplaceAll(name, from, to);
  }
  return name;
}

void WriteOption(std::ostream& page, const CLI::Option& option) {
  const bool positional = option.get_positional();
  page << ".TP\n\\fB" << Plain(positional ? option.get_name(true) : ReplaceAll(option.get_name(false, true), ",", ", "))
       << "\\fR";
  if (const std::string value = ValueName(option); !positional && !value.empty()) {
    page << " \\fI" << Plain(value) << "\\fR";
  }
  page << '\n' << Plain(option.get_description());
  if (!positional && option.get_required()) page << "; required";
  if (!option.get_default_str().empty()) page << ", default " << Plain(option.get_default_str());
  page << '\n';
}

/// Lines that begin with blanks stay as they are; the others fill paragraphs. One that ends with a colon is a heading.
void WriteFooter(std::ostream& page, const std::string& footer, std::string_view heading) {
  bool kept = false;
  page << ".PP\n";
  for (const std::string_view line : Split(footer, '\n')) {
    const bool indented = line.starts_with(' ');
    if (indented != kept && !line.empty()) {
      page << (indented ? ".nf\n" : ".fi\n");
      kept = indented;
    }
    if (line.empty()) {
      page << ".PP\n";
    } else if (!indented && line.ends_with(':')) {
      const std::string title(line.substr(0, line.size() - 1));
      page << heading << Plain(heading == ".SH " ? UpperCase(title) : title) << '\n';
    } else {
      page << Plain(line) << '\n';
    }
  }
  if (kept) page << ".fi\n";
}

/// @param words "tessarlorn" and the commands that it is a command of
void WriteCommand(std::ostream& page, const CLI::App& app, const CLI::App& command, const std::string& words) {
  const std::string own = words + " " + command.get_name();
  page << ".SS " << own;
  for (const CLI::Option* const option : command.get_options()) {
    if (!option->get_positional()) continue;
    const std::string name = option->get_name(true);
    page << ' ' << (option->get_required() ? name : "[" + name + "]");
  }
  page << '\n' << Plain(command.get_description()) << ".\n";
  for (const CLI::Option* const option : command.get_options()) {
    // Those of the whole command stand once.
    const bool shared = !option->get_positional() && app.get_option_no_throw(option->get_name()) != nullptr;
    if (!shared) WriteOption(page, *option);
  }
  // A command without one has that of what it is a command of.
  if (command.get_footer() != command.get_parent()->get_footer()) {
    WriteFooter(page, command.get_footer(), ".PP\n.B ");
  }
  for (const CLI::App* const part : command.get_subcommands({})) WriteCommand(page, app, *part, own);
}

}  // namespace

std::string ManualPage(const CLI::App& app) {
  std::ostringstream page;
  page << ".TH TESSARLORN 1 \"\" \"tessarlorn " << kVersion << "\"\n.SH NAME\ntessarlorn \\- "
       << Plain(app.get_description()) << "\n.SH SYNOPSIS\n.B tessarlorn\n[\\fIoptions\\fR] \\fIcommand\\fR "
       << "[\\fIwords\\fR]\n.SH COMMANDS\n";
  for (const CLI::App* const command : app.get_subcommands({})) WriteCommand(page, app, *command, app.get_name());
  page << ".SH OPTIONS\nThey may stand behind a command that uses a database, too.\n";
  for (const CLI::Option* const option : app.get_options()) WriteOption(page, *option);
  WriteFooter(page, app.get_footer(), ".SH ");
  return page.str();
}

}  // namespace tessarlorn::cli
