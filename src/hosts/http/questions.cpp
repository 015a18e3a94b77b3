#include "hosts/http/questions.h"

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/calls/call_arguments.h"
#include "hosts/calls/json_arguments.h"
#include "hosts/http/answers/problem.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn::http {
namespace {

[[noreturn]] void RefuseValue(const Key& key, const std::string& wanted) {
  Refuse(422, std::string(key.name) + " " + wanted, std::string(key.name));
}

std::int32_t WholeNumberOf(const Key& key, const Variant& value) {
  const auto* const number = value.get_if<std::int32_t>();
  if (number == nullptr) RefuseValue(key, "is a whole number of 32 bits");
  return *number;
}

Variant TextOf(const Key& key, const Variant& value) {
  const auto* const text = value.get_if<std::string>();
  if (text == nullptr) RefuseValue(key, "is a text");
  if (key.need == Need::kMandatory && Trim(*text).empty()) RefuseValue(key, "is empty");
  if (Utf16Length(*text) > workbench::kLongestText) {
    RefuseValue(key, "has more than " + std::to_string(workbench::kLongestText) + " characters");
  }
  return *text;
}

/// Whether the text is a date of the form that all read alike, in the years that the database's dates have.
bool IsDateText(std::string_view text) {
  constexpr std::string_view kLongest = "0000-00-00T00:00:00.0000000";
  const std::size_t size = text.size();
  const bool whole = size == 10 || size == 16 || size == 19 || (size > 20 && size <= kLongest.size());
  const auto fits = [](char c, char form) {
    return form == '0' ? c >= '0' && c <= '9' : c == form || (form == 'T' && c == ' ');
  };
  return whole && std::equal(text.begin(), text.end(), kLongest.begin(), fits) && text >= "1760";
}

Variant DateOf(const Key& key, const Variant& value) {
  const auto* const text = value.get_if<std::string>();
  try {
    if (text != nullptr && IsDateText(*text)) return value.ToDateTime();
  } catch (const Error&) {
    // Said below.
  }
  RefuseValue(key, "is a date from 1760 on, as 2026-11-22 or 2026-11-22T13:45:00");
}

Variant ListOf(const Key& key, const Variant& value) {
  const bool keys = key.stands == Standing::kKeyList;
  const std::shared_ptr<Vector> given = value.ToVector();
  if (!given || given->size() == 0 || given->size() > workbench::kMostKeys) {
    RefuseValue(key, "is a list of 1 to " + std::to_string(workbench::kMostKeys) + (keys ? " keys" : " texts"));
  }
  Vector list;
  for (const Variant& item : *given) list.Add(keys ? Variant(WholeNumberOf(key, item)) : TextOf(key, item));
  return std::make_shared<Vector>(std::move(list));
}

Variant ValueOf(const Key& key, const Variant& value) {
  switch (key.type) {
    case ValueType::kLong:
      return WholeNumberOf(key, value);
    case ValueType::kBoolean:
      if (value.get_if<bool>() == nullptr) RefuseValue(key, "is true or false");
      return value;
    case ValueType::kDate:
      return DateOf(key, value);
    case ValueType::kVector:
      return ListOf(key, value);
    default:
      return TextOf(key, value);
  }
}

const Key& RequireKey(const workbench::Question& question, const std::string& name) {
  std::vector<std::string_view> names;
  for (const Key& key : question.keys) {
    if (key.name == name) return key;
    names.push_back(key.name);
  }
  Refuse(400, std::string(question.name) + " has no key " + name + DidYouMean(name, names), name);
}

}  // namespace

const workbench::Question& QuestionOfPath(std::string_view name) {
  if (const workbench::Question* const question = workbench::FindQuestion(name)) return *question;
  std::vector<std::string_view> names;
  for (const workbench::Question& question : workbench::Questions()) names.push_back(question.name);
  Refuse(404, "there is no question " + std::string(name) + DidYouMean(name, names));
}

Dictionary ReadQuestion(const workbench::Question& question, const Request& request, const Target& target,
                        const Caller& caller) {
  if (request.method != "POST") RefuseMethod(std::string(question.name), "POST");
  const auto allowed = [&](std::string_view right) { return caller.role->Allows(RequireOperation(right)); };
  if (std::none_of(question.rights.begin(), question.rights.end(), allowed)) {
    std::string rights;
    for (const std::string_view right : question.rights) rights.append(rights.empty() ? "" : " or ").append(right);
    Refuse(403, "the role " + caller.role->name() + " may not call " + rights + ", and so not ask for " +
                    std::string(question.name));
  }
  if (!target.query.empty()) {
    Refuse(400, "questions take no options, not " + target.query.front().first, target.query.front().first);
  }
  if (FormatFor(request.Header("Accept")) != AnswerFormat::kJson) {
    Refuse(406, "questions are answered as application/json");
  }
  const Variant json = ReadBody(request);
  if (json.is_empty()) return {};
  const std::shared_ptr<Dictionary> given = json.ToDictionary();
  if (!given) Refuse(400, "the body is an object");
  Dictionary values;
  for (const auto& [name, value] : *given) values.SetValue(name, ValueOf(RequireKey(question, name), value));
  for (const Key& key : question.keys) {
    if (key.need != Need::kMandatory || values.Exists(key.name)) continue;
    Refuse(400, std::string(question.name) + " wants the key " + std::string(key.name), std::string(key.name));
  }
  return values;
}

workbench::Asker AskerOf(const Caller& caller) {
  return {.user = caller.user, .language = caller.language, .every_shop = caller.every_shop};
}

Call CallOf(const workbench::OperationCall& asked, const Caller& caller, std::string_view database,
            std::string_view client) {
  const Operation& operation = RequireOperation(asked.operation);
  Call call = CallTo(operation, caller, database, client);
  for (const Argument& argument : operation.arguments()) {
    Variant value;
    if (argument.is_connection) value = call.session;
    if (argument.name == asked.argument) value = std::make_shared<Dictionary>(asked.values);
    call.arguments.push_back(std::move(value));
  }
  return call;
}

}  // namespace tessarlorn::http
