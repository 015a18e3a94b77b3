// SET: variables and options.
#include <array>
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {
namespace {

// SET <option> ON|OFF.
constexpr std::array kSwitches = std::to_array<std::string_view>({
    "ansi_defaults",
    "ansi_null_dflt_off",
    "ansi_null_dflt_on",
    "ansi_nulls",
    "ansi_padding",
    "ansi_warnings",
    "arithabort",
    "arithignore",
    "concat_null_yields_null",
    "cursor_close_on_commit",
    "fmtonly",
    "forceplan",
    "implicit_transactions",
    "nocount",
    "noexec",
    "numeric_roundabort",
    "parseonly",
    "quoted_identifier",
    "remote_proc_transactions",
    "showplan_all",
    "showplan_text",
    "showplan_xml",
    "xact_abort",
});

// SET <option> <value>.
constexpr std::array kSettings = std::to_array<std::string_view>({
    "context_info",
    "datefirst",
    "dateformat",
    "deadlock_priority",
    "language",
    "lock_timeout",
    "query_governor_cost_limit",
    "rowcount",
    "textsize",
});

}  // namespace

StatementPtr Parser::ParseSet() {
  const std::uint32_t line = Take().line;
  if (Peek().kind != TokenKind::kVariable) return ParseSetOption(line);
  Assignment assignment;
  assignment.variable = ParseVariableName();
  if (!AcceptAssignmentOp(assignment.compound)) Fail();
  if (At("cursor"_kw)) return ParseDeclareCursor(line, std::move(assignment.variable));
  assignment.value = ParseValue();
  return MakeStatement(line, SetStatement{std::move(assignment)});
}

StatementPtr Parser::ParseSetOption(std::uint32_t line) {
  if (Accept("transaction"_kw)) return ParseIsolationLevel(line);
  if (Accept("identity_insert"_kw)) {
    ObjectName table = ParseObjectName();
    return MakeStatement(line, SetIdentityInsertStatement{std::move(table), ParseSwitch()});
  }
  if (Accept("statistics"_kw)) {
    std::string option = "statistics " + LowerCase(ParseName());
    return MakeStatement(line, SetSwitchStatement{std::move(option), ParseSwitch()});
  }
  if (Peek().kind != TokenKind::kWord) Fail();
  return ParseSetWords(line);
}

StatementPtr Parser::ParseIsolationLevel(std::uint32_t line) {
  Expect("isolation"_kw);
  Expect("level"_kw);
  constexpr std::array kSecondWords = {"uncommitted"_kw, "committed"_kw};
  const bool repeatable = At("repeatable"_kw) && At("read"_kw, 1);
  if (!repeatable && !At("read"_kw) && !At("serializable"_kw) && !At("snapshot"_kw)) Fail();
  const bool two_words = repeatable || At("read"_kw);
  SetIsolationStatement set{LowerCase(Take().text)};
  if (two_words) {
    if (!repeatable && !AtAny(kSecondWords)) Fail();
    set.level += " " + LowerCase(Take().text);
  }
  return MakeStatement(line, std::move(set));
}

// One option with a value, or a list of options to switch, which is a block.
StatementPtr Parser::ParseSetWords(std::uint32_t line) {
  std::vector<std::string> options;
  do {
    options.push_back(LowerCase(Peek().text));
    const bool takes_value = IsAmong(kSettings, options.back());
    if (!takes_value && !IsAmong(kSwitches, options.back())) {
      RaiseAt(195, "'" + std::string(Peek().text) + "' is not a recognized SET option.");
    }
    Take();
    if (!takes_value) continue;
    SetValueStatement set{options.back(), {}, nullptr};
    if (AtName()) {
      set.word = LowerCase(ParseName());
    } else {
      set.value = ParseValue();
    }
    return MakeStatement(line, std::move(set));
  } while (Accept(Op::kComma));
  const bool on = ParseSwitch();
  if (options.size() == 1) return MakeStatement(line, SetSwitchStatement{options[0], on});
  const std::uint32_t end = Peek().line;
  BlockStatement all;
  for (std::string& option : options) {
    all.body.push_back(MakeStatement(end, SetSwitchStatement{std::move(option), on}));
  }
  return MakeStatement(end, std::move(all));
}

bool Parser::ParseSwitch() {
  if (Accept("on"_kw)) return true;
  Expect("off"_kw);
  return false;
}

}  // namespace tessarlorn::tsql
