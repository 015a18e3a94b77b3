#include "hosts/http/house/members.h"

#include <algorithm>
#include <memory>

#include "hosts/http/answers/problem.h"
#include "platform/text/text.h"

namespace tessarlorn::http {
namespace {

[[noreturn]] void RefuseMember(std::string_view name, const std::string& wanted) {
  Refuse(400, std::string(name) + " is " + wanted, std::string(name));
}

[[noreturn]] void RefuseMissing(std::string_view name) {
  Refuse(400, "the body wants " + std::string(name), std::string(name));
}

}  // namespace

Members::Members(const Variant& json, std::initializer_list<std::string_view> known) {
  const std::shared_ptr<Dictionary> body = json.is_empty() ? nullptr : json.ToDictionary();
  if (!body) Refuse(400, "the body is an object");
  for (const auto& [name, value] : *body) {
    if (std::find(known.begin(), known.end(), name) != known.end()) continue;
    Refuse(400, "there is no " + name + " here" + DidYouMean(name, {known.begin(), known.end()}), name);
  }
  values_ = *body;
}

std::optional<std::string> Members::FindText(std::string_view name) const {
  const Variant* const value = values_.Find(name);
  if (value == nullptr || value->is_null()) return std::nullopt;
  const auto* const text = value->get_if<std::string>();
  if (text == nullptr) RefuseMember(name, "a text");
  return *text;
}

std::string Members::RequireText(std::string_view name) const {
  if (std::optional<std::string> text = FindText(name)) return *std::move(text);
  RefuseMissing(name);
}

std::optional<std::int32_t> Members::FindNumber(std::string_view name) const {
  const Variant* const value = values_.Find(name);
  if (value == nullptr || value->is_null()) return std::nullopt;
  const auto* const number = value->get_if<std::int32_t>();
  if (number == nullptr) RefuseMember(name, "a whole number of 32 bits");
  return *number;
}

std::int32_t Members::RequireNumber(std::string_view name) const {
  if (const std::optional<std::int32_t> number = FindNumber(name)) return *number;
  RefuseMissing(name);
}

std::optional<bool> Members::FindFlag(std::string_view name) const {
  const Variant* const value = values_.Find(name);
  if (value == nullptr || value->is_null()) return std::nullopt;
  const auto* const flag = value->get_if<bool>();
  if (flag == nullptr) RefuseMember(name, "true or false");
  return *flag;
}

std::vector<std::string> Members::RequireTexts(std::string_view name) const {
  const Variant* const value = values_.Find(name);
  const std::shared_ptr<Vector> list = value == nullptr ? nullptr : value->ToVector();
  if (!list) RefuseMember(name, "a list of texts");
  std::vector<std::string> texts;
  for (const Variant& item : *list) {
    const auto* const text = item.get_if<std::string>();
    if (text == nullptr) RefuseMember(name, "a list of texts");
    texts.push_back(*text);
  }
  return texts;
}

}  // namespace tessarlorn::http
