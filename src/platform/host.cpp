#include "tessarlorn/host.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/host_parts.h"
#include "platform/text/sql_text.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn {
namespace {

/// Where the value ends that begins at `start`: behind its closing quote or brace, both of which are doubled within;
/// `start` itself for one without, or that is not closed.
std::size_t EndOfQuoted(std::string_view text, std::size_t start) {
  if (start >= text.size() || std::string_view("{\"'").find(text[start]) == std::string_view::npos) return start;
  const std::size_t end = FindClosing(text, start + 1, text[start] == '{' ? '}' : text[start]).position;
  return end == std::string_view::npos ? start : end + 1;
}

/// The keys of a database string of any kind, in their order.
std::vector<std::string_view> KeysOf(std::string_view text) {
  std::vector<std::string_view> keys;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = text.find_first_of("=;", start);
    if (end == std::string_view::npos) break;
    if (text[end] == '=') {
      const std::string_view key = Trim(text.substr(start, end - start));
      if (!key.empty()) keys.push_back(key);
      start = EndOfQuoted(text, std::min(text.find_first_not_of(" \t", end + 1), text.size()));
    } else {
      start = end;
    }
    const std::size_t next = text.find(';', start);
    if (next == std::string_view::npos) break;
    start = next + 1;
  }
  return keys;
}

/// What stands under a key, in any case; nothing of its type where nothing does.
template <typename T>
T Lookup(const std::map<std::string, T>& map, std::string_view key) {
  const auto found = map.find(LowerCase(key));
  return found == map.end() ? T() : found->second;
}

}  // namespace

Host::Host() : parts_(std::make_shared<Parts>()) {}

Host::~Host() = default;

void Host::AddDriver(std::shared_ptr<Driver> driver) {
  const std::vector<std::string> keys = driver->Keys();
  const std::scoped_lock lock(parts_->mutex);
  for (const std::string& key : keys) parts_->drivers.insert_or_assign(LowerCase(key), driver);
}

void Host::AddObject(std::string_view prog_id, ObjectCreator creator) {
  const std::scoped_lock lock(parts_->mutex);
  if (creator) {
    parts_->creators.insert_or_assign(LowerCase(prog_id), std::move(creator));
  } else {
    parts_->creators.erase(LowerCase(prog_id));
  }
}

void Host::SetClock(std::function<DateTime()> clock) { parts_->clock = std::move(clock); }

void Host::SetTransaction(std::function<std::shared_ptr<void>()> transaction) {
  parts_->transaction = std::move(transaction);
}

void Host::SetReadTcp(ReadTcpFunction read_tcp) { parts_->read_tcp = std::move(read_tcp); }

void Host::ObserveStatements(TextObserver observer) { parts_->observers.statements = std::move(observer); }

void Host::ObserveMessages(TextObserver observer) { parts_->observers.messages = std::move(observer); }

std::string Host::DecidingKey(std::string_view database_string) const {
  const std::scoped_lock lock(parts_->mutex);
  std::string decides;
  for (const std::string_view key : KeysOf(database_string)) {
    if (EqualsIgnoreCase(key, "Provider")) return std::string(key);
    if (decides.empty() && parts_->drivers.contains(LowerCase(key))) decides = key;
  }
  return decides;
}

std::unique_ptr<Connection> Host::OpenConnection(std::string_view database_string) {
  const std::vector<std::string_view> keys = KeysOf(database_string);
  if (keys.empty()) Raise(error_number::kLoginRefused, "The database string has no Key=: no driver can be chosen");
  const std::string key = DecidingKey(database_string);
  std::shared_ptr<Driver> driver;
  {
    const std::scoped_lock lock(parts_->mutex);
    driver = Lookup(parts_->drivers, key);
  }
  if (!driver) {
    Raise(error_number::kLoginRefused,
          "No driver for database strings with " +
              (key.empty() ? std::string(keys.front()) + "= and no key of a driver" : key + "="));
  }
  std::unique_ptr<Connection> connection = driver->Open(database_string);
  connection->observers_ = &parts_->observers;
  return connection;
}

std::shared_ptr<Object> Host::CreateInstance(std::string_view prog_id) const {
  ObjectCreator creator;
  {
    const std::scoped_lock lock(parts_->mutex);
    creator = Lookup(parts_->creators, prog_id);
  }
  if (!creator) {
    Raise(error_number::kCannotCreateObject, "ActiveX component can't create object: " + std::string(prog_id));
  }
  return creator();
}

DateTime Host::LocalNow() const { return parts_->clock ? parts_->clock() : DateTime::Now(); }

const ReadTcpFunction& Host::read_tcp() const noexcept { return parts_->read_tcp; }

void Host::CloseIdle() noexcept { parts_->idle.Close(); }

}  // namespace tessarlorn
