// Triggers of tables: CREATE, ALTER, ENABLE and DISABLE.
#include <algorithm>
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/parser_core.h"
#include "tsql/values/sql_error.h"

namespace tessarlorn::tsql {

RowEvent Parser::ParseRowEvent() {
  if (Accept("insert"_kw)) return RowEvent::kInsert;
  if (Accept("update"_kw)) return RowEvent::kUpdate;
  Expect("delete"_kw);
  return RowEvent::kDelete;
}

StatementPtr Parser::ParseTrigger(std::size_t begin, bool replace) {
  const bool alter = BeginsWithAlter(begin, "TRIGGER");
  const std::uint32_t line = Take().line;
  CreateTriggerStatement create;
  create.replace = replace;
  create.must_exist = alter;
  create.trigger = ParseObjectName();
  Expect("on"_kw);
  if (At("database"_kw) || (At("all"_kw) && At("server"_kw, 1))) Refuse("A trigger ON " + UpperCase(Peek().text));
  create.table = ParseObjectName();
  if (Accept("with"_kw)) {
    if (!At("encryption"_kw)) Refuse("CREATE TRIGGER … WITH " + UpperCase(Peek().text));
    Take();
  }
  if (At("instead"_kw)) Refuse("INSTEAD OF");
  if (!Accept("for"_kw)) Expect("after"_kw);
  do {
    const RowEvent event = ParseRowEvent();
    if (std::find(create.events.begin(), create.events.end(), event) != create.events.end()) {
      RaiseAt(1034, "Syntax error: Duplicate specification of the action \"" + UpperCase(tokens_[position_ - 1].text) +
                        "\" in the trigger declaration.");
    }
    create.events.push_back(event);
  } while (Accept(Op::kComma));
  if (Accept("not"_kw)) {
    Expect("for"_kw);
    Expect("replication"_kw);
  }
  Expect("as"_kw);
  create.body = ParseBody();
  create.source_text = TextBetween(begin, position_);
  return MakeStatement(line, std::move(create));
}

// ENABLE TRIGGER name, … ON table
StatementPtr Parser::ParseSwitchTriggers() {
  SwitchTriggersStatement change;
  const std::uint32_t line = Peek().line;
  change.on = Take().id == static_cast<std::uint32_t>("enable"_kw);
  Expect("trigger"_kw);
  if (!Accept("all"_kw)) {
    do {
      change.triggers.push_back(ParseObjectName());
    } while (Accept(Op::kComma));
  }
  Expect("on"_kw);
  if (At("database"_kw) || (At("all"_kw) && At("server"_kw, 1))) Refuse("A trigger ON " + UpperCase(Peek().text));
  change.table = ParseObjectName();
  return MakeStatement(line, std::move(change));
}

// The same as a part of ALTER TABLE
StatementPtr Parser::ParseSwitchTriggersOf(ObjectName table, std::uint32_t line) {
  SwitchTriggersStatement change;
  change.table = std::move(table);
  change.on = Take().id == static_cast<std::uint32_t>("enable"_kw);
  Expect("trigger"_kw);
  if (Accept("all"_kw)) return MakeStatement(line, std::move(change));
  do {
    change.triggers.push_back(MakeObjectName(change.table.schema, ParseName()));
  } while (Accept(Op::kComma));
  return MakeStatement(line, std::move(change));
}

}  // namespace tessarlorn::tsql
