#include "drivers/common/execute_sql.h"

#include <utility>

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

}  // namespace

ExecuteSql::ExecuteSql(SqlCommand& command) : command_(command) {
  std::vector<SqlParameter> values(command.parameters.begin(), command.parameters.end());
  if (command.is_procedure) {
    for (std::size_t i = 0; i < values.size(); ++i) values[i].name = VariableOf(i);
    values.push_back({kStatus, "int", Null{}, true});
  }
  arguments_.push_back({"", "nvarchar(max)", command.is_procedure ? CallOf(command) : std::string(command.text)});
  arguments_.push_back({"", "nvarchar(max)", DeclarationsOf(values)});
  for (SqlParameter& value : values) arguments_.push_back(std::move(value));
}

void ExecuteSql::GiveBack() {
  for (std::size_t i = 0; i < command_.parameters.size(); ++i) {
    SqlParameter& parameter = command_.parameters[i];
    if (parameter.is_output && !parameter.is_default) parameter.value = std::move(arguments_[kBefore + i].value);
  }
  if (command_.is_procedure && !arguments_.back().value.is_null()) command_.status = arguments_.back().value.ToInt32();
}

}  // namespace tessarlorn
