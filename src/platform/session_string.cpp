#include "platform/session_string.h"

#include <algorithm>
#include <set>

#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

/// Reads the braced value that begins at `position`, which moves behind its closing brace.
std::variant<std::string, PairsFault> ReadBraced(std::string_view text, std::size_t& position, std::string_view key) {
  std::string value;
  for (std::size_t i = position + 1; i < text.size(); ++i) {
    if (text[i] != '}') {
      value += text[i];
    } else if (i + 1 < text.size() && text[i + 1] == '}') {
      value += text[i++];
    } else {
      position = i + 1;
      return value;
    }
  }
  return PairsFault{"The brace behind " + std::string(key) + "= is not closed", std::string(key)};
}

/// Whether the text means to name its database with Connect=, so that its faults are faults of a session string.
bool NamesConnect(std::string_view text) {
  for (std::size_t found = 0; (found = FindIgnoreCase(text, "connect")) != std::string_view::npos;
       text.remove_prefix(found + 1)) {
    const std::string_view before = Trim(text.substr(0, found));
    const std::string_view behind = Trim(text.substr(found + std::string_view("connect").size()));
    if ((before.empty() || before.back() == ';') && behind.starts_with('=')) return true;
  }
  return false;
}

[[noreturn]] void RaiseFault(const std::string& description) {
  Raise(error_number::kLoginRefused, "Session string: " + description);
}

std::int32_t ReadUser(const std::string& text) {
  const auto user = WholeNumber<std::int32_t>(text);
  if (!user) RaiseFault("User=" + text + " is no 32-bit number");
  return *user;
}

bool ReadYesOrNo(std::string_view key, const std::string& text) {
  const bool yes = EqualsIgnoreCase(text, "Yes");
  if (!yes && !EqualsIgnoreCase(text, "No")) RaiseFault(std::string(key) + "=" + text + " is neither Yes nor No");
  return yes;
}

}  // namespace

std::variant<Pairs, PairsFault> ReadPairs(std::string_view text) {
  Pairs pairs;
  std::set<std::string> seen;
  std::size_t position = 0;
  while (position < text.size()) {
    const std::size_t next = text.find_first_not_of(" ;", position);
    if (next == std::string_view::npos) break;
    const std::size_t end_of_key = text.find_first_of("=;", next);
    if (end_of_key == std::string_view::npos || text[end_of_key] == ';') {
      return PairsFault{"No \"=\" behind the key " + std::string(Trim(text.substr(next, end_of_key - next)))};
    }
    const std::string_view key = Trim(text.substr(next, end_of_key - next));
    if (key.empty()) return PairsFault{"No key before \"=\""};
    if (!seen.insert(LowerCase(key)).second)
      return PairsFault{"The key " + std::string(key) + " is doubled", std::string(key)};
    position = text.find_first_not_of(' ', end_of_key + 1);
    if (position == std::string_view::npos) position = text.size();
    if (position < text.size() && text[position] == '{') {
      auto braced = ReadBraced(text, position, key);
      if (auto* fault = std::get_if<PairsFault>(&braced)) return std::move(*fault);
      position = text.find_first_not_of(' ', position);
      if (position == std::string_view::npos) position = text.size();
      if (position < text.size() && text[position] != ';') {
        return PairsFault{"Text behind the closing brace of " + std::string(key), std::string(key)};
      }
      pairs.emplace_back(key, std::get<std::string>(std::move(braced)));
    } else {
      const std::size_t end = std::min(text.find(';', position), text.size());
      pairs.emplace_back(key, Trim(text.substr(position, end - position)));
      position = end;
    }
  }
  return pairs;
}

Pairs ParsePairs(std::string_view text) {
  auto pairs = ReadPairs(text);
  if (const auto* fault = std::get_if<PairsFault>(&pairs)) RaiseFault(fault->description);
  return std::get<Pairs>(std::move(pairs));
}

SessionString ParseSessionString(std::string_view text) {
  SessionString session;
  if (!NamesConnect(text)) {
    session.database = Trim(text);
    if (session.database.empty()) RaiseFault("it is empty");
    return session;
  }
  for (auto& [key, value] : ParsePairs(text)) {
    const std::string name = LowerCase(key);
    if (name == "connect") {
      session.database = Trim(value);
    } else if (name == "user") {
      session.user = ReadUser(value);
    } else if (name == "language") {
      if (!value.empty()) session.language = value;
    } else if (name == "client") {
      session.client = value;
    } else if (name == "replica") {
      session.replica = Trim(value);
    } else if (name == "escape") {
      session.escape = ReadYesOrNo(key, value);
    } else {
      RaiseFault("unknown key " + key);
    }
  }
  if (session.database.empty()) RaiseFault("Connect= names no database");
  return session;
}

}  // namespace tessarlorn
