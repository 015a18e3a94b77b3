#include "tsql/engine/messages.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <vector>

namespace tessarlorn::tsql {
namespace {

/// printf-like %s, %d, %i, %u, %% of RAISERROR, filled with the texts of its arguments.
std::string FormatMessage(const std::string& format, const std::vector<std::string>& arguments) {
  std::string text;
  std::size_t next = 0;
  for (std::size_t i = 0; i < format.size(); ++i) {
    if (format[i] != '%' || i + 1 == format.size()) {
      text += format[i];
    } else if (format[++i] == '%') {
      text += '%';
    } else {
      while (i + 1 < format.size() && std::string_view("0123456789.-+ #*").find(format[i]) != std::string_view::npos)
        ++i;
      text += next < arguments.size() ? arguments[next++] : "(null)";
    }
  }
  return text;
}

/// Whether RAISERROR's message is a number of the server's own messages.
bool IsMessageNumber(const Expression& message, const Activation& activation) {
  if (const auto* variable = As<VariableReference>(message)) {
    return activation.frame->Get(variable->name).type.is_integer();
  }
  const auto* literal = As<Literal>(message);
  return literal != nullptr && literal->kind == LiteralKind::kInteger;
}

struct ServerMessage {
  std::string_view number;
  const char* format;
};
/// Those of the server's own messages that its procedures give.
constexpr ServerMessage kServerMessages[] = {
    {"15009", "The object '%s' does not exist in database '%s' or is invalid for this operation."},
    {"15197", "There is no text for object '%s'."},
    {"15477", "Caution: Changing any part of an object name could break scripts and stored procedures."},
};

[[noreturn]] void RaiseUnknownMessage(const std::string& number, int severity, int state) {
  throw SqlError(18054,
                 "Error " + number + ", severity " + std::to_string(severity) + ", state " + std::to_string(state) +
                     " was raised, but no message with that error number was found in sys.messages. If error is "
                     "larger than 50000, make sure the user-defined message is added using sp_addmessage.",
                 16, 1);
}

constexpr int kLongestMessage = 2048;

}  // namespace

void Messages::Say(std::uint32_t line, const std::string& text, std::int32_t number, int severity, int state) {
  results_.Say(text,
               {number, "01000", std::max(severity, 0), state, static_cast<int>(line), std::string(errors_.procedure)});
}

void Messages::Print(const PrintStatement& statement, std::uint32_t line, const Activation& activation) {
  const std::string text = evaluator_.Text(*statement.message, NVarCharType(0), activation).value_or("");
  // A message is never empty.
  Say(line, text.empty() ? " " : text, 0);
}

void Messages::Throw(const ThrowStatement& statement, const Activation& activation) {
  if (statement.number == nullptr) {
    if (errors_.caught.empty()) {
      throw SqlError(10704, "To rethrow an error, a THROW statement must be used inside a CATCH block.", 15);
    }
    throw SqlError(errors_.caught.back());
  }
  const std::optional<std::int64_t> number = evaluator_.Integer(*statement.number, activation);
  const std::string text = evaluator_.Text(*statement.message, NVarCharType(kLongestMessage), activation).value_or("");
  if (number.value_or(0) < 50000) {
    throw SqlError(
        35100,
        "Error number in the THROW statement is outside the valid range. Specify an error number in the valid range of 50000 to 2147483647.");
  }
  const std::int64_t state = evaluator_.Integer(*statement.state, activation).value_or(1);
  throw SqlError(static_cast<std::int32_t>(*number), text, 16,
                 static_cast<int>(std::clamp<std::int64_t>(state, 0, 255)))
      .EndingBatch();
}

void Messages::RaiseError(const RaiseErrorStatement& statement, std::uint32_t line, const Activation& activation) {
  std::vector<std::string> arguments;
  for (const ExpressionPtr& argument : statement.arguments) {
    arguments.push_back(evaluator_.Text(*argument, NVarCharType(0), activation).value_or("(null)"));
  }
  const std::optional<std::string> format =
      evaluator_.Text(*statement.message, NVarCharType(kLongestMessage), activation);
  const auto severity = static_cast<int>(evaluator_.Integer(*statement.severity, activation).value_or(0));
  const auto state = static_cast<int>(evaluator_.Integer(*statement.state, activation).value_or(0));
  std::int32_t number = 50000;
  std::string wording = format.value_or("");
  if (format && IsMessageNumber(*statement.message, activation)) {
    const auto* const known = std::find_if(std::begin(kServerMessages), std::end(kServerMessages),
                                           [&](const ServerMessage& entry) { return entry.number == *format; });
    if (known == std::end(kServerMessages)) RaiseUnknownMessage(*format, severity, state);
    number = std::stoi(*format);
    wording = known->format;
  }
  const std::string text = FormatMessage(wording, arguments);
  if (severity > 10) throw SqlError(number, text, severity, state);
  Say(line, text, number, severity, state);
}

}  // namespace tessarlorn::tsql
