#include "hosts/tds/messages/call_reply.h"

#include "hosts/tds/messages/values.h"
#include "platform/recordset_builder.h"

namespace tessarlorn::tds {
namespace {

/// @param ordinal the parameter's place in the client's call
void WriteOutputHead(TdsWriter& tokens, const std::string& name, std::size_t ordinal) {
  constexpr std::uint8_t kOutput = 0x01;
  constexpr std::uint16_t kNullable = 0x01;
  tokens.Put(Token::kReturnValue);
  tokens.U16(static_cast<std::uint16_t>(ordinal));
  tokens.ShortText(name);
  tokens.U8(kOutput);
  tokens.Number(0, tokens.version().is_72() ? 4 : 2);
  tokens.U16(kNullable);
}

}  // namespace

void WriteCallEnd(Reply& reply, const DatabaseCall& call, std::int32_t status, const std::string& handle_name) {
  TdsWriter& tokens = reply.Tokens();
  tokens.Put(Token::kReturnStatus);
  tokens.U32(static_cast<std::uint32_t>(status));
  if (call.handle) {
    WriteOutputHead(tokens, handle_name, 0);
    WriteTypeAndInteger(tokens, *call.handle);
  }
  for (std::size_t i = call.first_here; i < call.parameters.size(); ++i) {
    const SqlParameter& parameter = call.parameters[i];
    if (!parameter.is_output || parameter.is_default) continue;
    RecordsetBuilder builder({FieldOfDeclaration(parameter.type)});
    builder.BeginRow();
    builder.Append(parameter.value, 0);
    const RecordsetPtr value = builder.Finish();
    WriteOutputHead(tokens, parameter.name, i - call.first_here + call.first_of_call);
    RowWriter(*value, false, tokens.version()).WriteTypeAndValue(tokens, *value, 0);
  }
}

}  // namespace tessarlorn::tds
