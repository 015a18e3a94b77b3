#include "drivers/ado/ado_command.h"

#include <algorithm>

#include "com_base/plain_values.h"
#include "drivers/ado/ado_class.h"

namespace tessarlorn::ado {
namespace {

/// Decimals go as texts, as ADO has 28 of their 38 digits. A sign, a zero and a point may stand before these.
constexpr LONG_PTR kDecimalText = 41;
/// What types with a limit can have, in characters or bytes.
constexpr LONG_PTR kMostCharacters = 4000;
constexpr LONG_PTR kMostBytes = 8000;
/// An output without a declared limit may be so long.
constexpr LONG_PTR kLongestOutput = LONG_PTR{1} << 20;

struct WireType {
  DataType type;
  /// In characters or bytes; 0 for types that all have one size.
  LONG_PTR size = 0;
};

/// @param length of the value, in characters or bytes
WireType Sized(const SqlArgument& argument, LONG_PTR declared, LONG_PTR length) {
  const bool binary = argument.field.type == FieldType::kBinary || argument.field.type == FieldType::kVarBinary;
  const LONG_PTR size = std::max({declared, length, LONG_PTR{1}});
  if (declared > 0 && size <= (binary ? kMostBytes : kMostCharacters)) {
    return {binary ? DataType::kVarBinary : DataType::kVarWChar, size};
  }
  return {binary ? DataType::kLongVarBinary : DataType::kLongVarWChar,
          argument.is_output ? std::max(size, kLongestOutput) : size};
}

WireType WireTypeOf(const SqlArgument& argument, LONG_PTR length) {
  switch (argument.field.type) {
    case FieldType::kBit:
      return {DataType::kBoolean};
    case FieldType::kTinyInt:
      return {DataType::kUnsignedTinyInt};
    case FieldType::kSmallInt:
      return {DataType::kSmallInt};
    case FieldType::kInt:
      return {DataType::kInteger};
    case FieldType::kBigInt:
      return {DataType::kBigInt};
    case FieldType::kReal:
      return {DataType::kSingle};
    case FieldType::kFloat:
      return {DataType::kDouble};
    case FieldType::kMoney:
      return {DataType::kCurrency};
    case FieldType::kDateTime:
      return {DataType::kDBTimeStamp};
    case FieldType::kDecimal:
      return Sized(argument, kDecimalText, length);
    default:
      return Sized(argument, argument.field.size, length);
  }
}

LONG_PTR LengthOf(const VARIANT& value) {
  if (value.vt == VT_BSTR) return static_cast<LONG_PTR>(SysStringLen(value.bstrVal));
  return com::IsBytes(value) ? static_cast<LONG_PTR>(com::ArrayAccess(value.parray).size(1)) : 0;
}

}  // namespace

AdoCommand::AdoCommand(IAdoConnection* connection, SqlCommand& command, int timeout)
    : connection_(connection),
      command_(Create<IAdoCommand>("ADODB.Command", kCommandClass, kCommandInterface, kCommandInterfaceBefore)),
      call_(command) {
  const com::OwnedBstr procedure("sp_executesql");
  com::Pointer<IAdoParameters> parameters;
  SetErrorInfo(0, nullptr);
  CheckCall(command_->putref_ActiveConnection(connection), "Command.ActiveConnection");
  CheckCall(command_->put_CommandType(kStoredProcedure), "Command.CommandType");
  CheckCall(command_->put_CommandText(procedure.get()), "Command.CommandText");
  CheckCall(command_->put_CommandTimeout(timeout), "Command.CommandTimeout");
  CheckCall(command_->get_Parameters(parameters.Receive()), "Command.Parameters");
  for (const SqlArgument& argument : call_.arguments()) Add(argument, *parameters.get());
}

void AdoCommand::Add(const SqlArgument& argument, IAdoParameters& parameters) {
  com::OwnedVariant value;
  const bool as_text = argument.value.holds<Decimal>() && argument.field.type == FieldType::kDecimal;
  com::ToPlainVariant(as_text ? argument.value.ToText() : argument.value, &value.get());
  const WireType wire = WireTypeOf(argument, LengthOf(value.get()));
  const com::OwnedBstr name(argument.field.name);
  com::Pointer<IAdoParameter>& parameter = parameters_.emplace_back();
  CheckCall(
      command_->CreateParameter(name.get(), static_cast<LONG>(wire.type), argument.is_output ? kInputAndOutput : kInput,
                                wire.size, value.get(), parameter.Receive()),
      "Command.CreateParameter");
  CheckCall(parameters.Append(parameter.get()), "Parameters.Append");
}

void AdoCommand::TakeOutputs() {
  std::vector<SqlArgument>& arguments = call_.arguments();
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (!arguments[i].is_output) continue;
    com::OwnedVariant value;
    CheckCall(parameters_[i]->get_Value(&value.get()), "Parameter.Value");
    arguments[i].value = com::FromPlainVariant(value.get());
  }
  call_.GiveBack();
}

}  // namespace tessarlorn::ado
