// Schemas: CREATE, ALTER and DROP.
#include <array>
#include <utility>

#include "platform/text/text.h"
#include "tsql/syntax/parser_core.h"

namespace tessarlorn::tsql {

StatementPtr Parser::ParseCreateSchema(std::size_t begin) {
  BeginsWithAlter(begin, "SCHEMA");
  if (begin != begin_) Fail();
  const std::uint32_t line = Take().line;
  if (At("authorization"_kw)) Refuse("CREATE SCHEMA with its owner's name");
  CreateSchemaStatement create{ParseName()};
  if (Accept("authorization"_kw) && !EqualsIgnoreCase(ParseName(), "dbo")) {
    Refuse("A schema whose owner is not dbo");
  }
  constexpr std::array kElements = {"create"_kw, "grant"_kw, "revoke"_kw, "deny"_kw};
  if (AtAny(kElements)) Refuse("CREATE SCHEMA with elements");
  return MakeStatement(line, std::move(create));
}

// ALTER SCHEMA schema TRANSFER [OBJECT::]object
StatementPtr Parser::ParseAlterSchema() {
  const std::uint32_t line = Take().line;
  TransferStatement transfer{ParseName(), {}};
  Expect("transfer"_kw);
  if (At(Op::kColon, 1) && At(Op::kColon, 2)) {
    if (!At("object"_kw)) Refuse("ALTER SCHEMA … TRANSFER " + UpperCase(Peek().text));
    for (int i = 0; i < 3; ++i) Take();
  }
  transfer.object = ParseObjectName();
  return MakeStatement(line, std::move(transfer));
}

StatementPtr Parser::ParseDropSchema(std::uint32_t line) {
  DropSchemaStatement drop;
  drop.if_exists = AcceptBoth("if"_kw, "exists"_kw);
  drop.name = ParseName();
  return MakeStatement(line, std::move(drop));
}

}  // namespace tessarlorn::tsql
