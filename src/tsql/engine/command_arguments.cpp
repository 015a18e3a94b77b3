#include "tsql/engine/command_arguments.h"

#include "platform/text/text.h"
#include "tsql/values/variant_datum.h"

namespace tessarlorn::tsql {
namespace {

SqlType TypeOf(const SqlParameter& parameter) { return ParseTypeText(LowerCase(parameter.type)); }

}  // namespace

std::string CommandArguments::name(std::size_t argument) const { return LowerCase(command_.parameters[argument].name); }

Datum CommandArguments::Value(std::size_t argument, const SqlType& type) {
  const SqlParameter& parameter = command_.parameters[argument];
  const SqlType own = TypeOf(parameter);
  Datum value = DatumOf(parameter.value, own, order_);
  return own == type ? value : Convert(value, own, type, StyleFor(type, 0, order_));
}

void CommandArguments::TakeBack(std::size_t argument, const Datum& value, const SqlType& type) {
  SqlParameter& parameter = command_.parameters[argument];
  if (!parameter.is_output) return;
  const SqlType own = TypeOf(parameter);
  parameter.value = VariantOf(Convert(value, type, own, StyleFor(own, 0, order_)), own);
}

void CommandArguments::TakeStatus(const Datum& status, const SqlType& type) {
  const Datum whole = Convert(status, type, IntType());
  if (const auto* number = std::get_if<std::int64_t>(&whole)) command_.status = static_cast<std::int32_t>(*number);
}

void CommandArguments::DeclareIn(Frame& frame) {
  for (std::size_t i = 0; i < size(); ++i) {
    const SqlType type = TypeOf(command_.parameters[i]);
    const std::string variable = name(i);
    frame.Declare(variable, type);
    frame.Get(variable).value = Value(i, type);
  }
}

void CommandArguments::TakeBackFrom(Frame& frame) {
  for (std::size_t i = 0; i < size(); ++i) {
    const Variable& left = frame.Get(name(i));
    TakeBack(i, left.value, left.type);
  }
}

std::size_t SizeOf(const SqlCommand& command) {
  std::size_t size = command.text.size();
  for (const SqlParameter& parameter : command.parameters) {
    if (const auto* text = parameter.value.get_if<std::string>()) size += text->size();
    if (const auto* bytes = parameter.value.get_if<Bytes>()) size += bytes->size();
  }
  return size;
}

}  // namespace tessarlorn::tsql
