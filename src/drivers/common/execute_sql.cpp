#include "drivers/common/execute_sql.h"

#include <optional>
#include <string>
#include <utility>

#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

constexpr const char* kStatus = "@status";
/// The batch and the declarations.
constexpr std::size_t kBefore = 2;

std::string VariableOf(std::size_t argument) { return "@argument" + std::to_string(argument); }

std::string CallOf(const SqlCommand& command) {
  std::string text = std::string("EXEC ") + kStatus + " = " + std::string(command.text);
  for (std::size_t i = 0; i < command.parameters.size(); ++i) {
    const SqlParameter& parameter = command.parameters[i];
    text += i == 0 ? " " : ", ";
    if (!parameter.name.empty()) text += parameter.name + "=";
    text += parameter.is_default ? "DEFAULT" : VariableOf(i);
    if (parameter.is_output && !parameter.is_default) text += " OUTPUT";
  }
  return text;
}

std::string DeclarationsOf(const std::vector<SqlParameter>& parameters) {
  std::string text;
  for (const SqlParameter& parameter : parameters) {
    if (!text.empty()) text += ", ";
    text += parameter.name + " " + parameter.type;
    if (parameter.is_output) text += " OUTPUT";
  }
  return text;
}

/// Dates and times alone go as texts that mean the same in every language.
std::string TextOf(const Variant& value, FieldType type) {
  if (!value.holds<DateTime>()) return value.ToText();
  constexpr std::size_t kDate = 10;
  const std::string text = value.ToDateTime().ToString(true);
  return type == FieldType::kDate ? text.substr(0, kDate) : type == FieldType::kTime ? text.substr(kDate + 1) : text;
}

Variant Sent(const Variant& value, FieldType type) {
  if (value.is_empty() || value.is_null()) return Null{};
  switch (type) {
    case FieldType::kBit:
      return value.ToBool();
    case FieldType::kTinyInt:
    case FieldType::kSmallInt:
    case FieldType::kInt:
    case FieldType::kBigInt: {
      if (value.holds<bool>()) return std::int32_t{value.ToBool()};
      const std::optional<std::int64_t> whole = value.ToDecimal().ToScaled(0);
      if (!whole) RaiseOverflow();
      return *whole;
    }
    case FieldType::kReal:
    case FieldType::kFloat:
      return value.ToDouble();
    case FieldType::kDecimal:
    case FieldType::kMoney:
      return value.ToDecimal();
    case FieldType::kDateTime:
      return value.ToDateTime();
    case FieldType::kBinary:
    case FieldType::kVarBinary:
      if (!value.holds<Bytes>()) RaiseTypeMismatch();
      return value;
    default:
      return TextOf(value, type);
  }
}

Variant Received(Variant value, FieldType type) {
  if (value.is_null()) return value;
  switch (type) {
    case FieldType::kBit:
      return value.ToBool();
    case FieldType::kTinyInt:
    case FieldType::kSmallInt:
      return value.ToInt16();
    case FieldType::kDecimal:
    case FieldType::kMoney:
      return value.ToDecimal();
    case FieldType::kDate:
    case FieldType::kTime:
      return DateTime::Parse(value.ToText()).value_or(DateTime());
    default:
      return value;
  }
}

SqlArgument ArgumentOf(const SqlParameter& parameter) {
  Field field = FieldOfDeclaration(parameter.type);
  field.name = parameter.name;
  switch (field.type) {
    case FieldType::kDate:
    case FieldType::kTime:
    case FieldType::kGuid:
    case FieldType::kDateTimeOffset:
      field.size = 40;
      break;
    default:
      break;
  }
  Variant value = Sent(parameter.value, field.type);
  return {std::move(field), std::move(value), parameter.is_output};
}

}  // namespace

ExecuteSql::ExecuteSql(SqlCommand& command) : command_(command) {
  std::vector<SqlParameter> values(command.parameters.begin(), command.parameters.end());
  if (command.is_procedure) {
    for (std::size_t i = 0; i < values.size(); ++i) values[i].name = VariableOf(i);
    values.push_back({kStatus, "int", Null{}, true});
  }
  for (const std::string& text :
       {command.is_procedure ? CallOf(command) : std::string(command.text), DeclarationsOf(values)}) {
    arguments_.push_back(ArgumentOf({"", "nvarchar(max)", text}));
  }
  for (const SqlParameter& value : values) arguments_.push_back(ArgumentOf(value));
}

void ExecuteSql::GiveBack() {
  for (std::size_t i = 0; i < command_.parameters.size(); ++i) {
    SqlParameter& parameter = command_.parameters[i];
    if (!parameter.is_output || parameter.is_default) continue;
    SqlArgument& argument = arguments_[kBefore + i];
    parameter.value = Received(std::move(argument.value), argument.field.type);
  }
  if (command_.is_procedure && !arguments_.back().value.is_null()) command_.status = arguments_.back().value.ToInt32();
}

}  // namespace tessarlorn
