#include "hosts/tds/messages/rpc.h"

#include <array>
#include <optional>
#include <utility>

#include "hosts/tds/messages/object_name.h"
#include "hosts/tds/messages/refusal.h"
#include "platform/text/text.h"
#include "tessarlorn/error.h"

namespace tessarlorn::tds {
namespace {

constexpr std::uint16_t kByNumber = 0xFFFF;
constexpr std::uint8_t kNextCall = 0xFF;
constexpr std::uint8_t kNextCallBefore72 = 0x80;
constexpr std::uint8_t kNextCallUnwanted = 0xFE;
constexpr std::size_t kMostParameters = 2100;
constexpr std::size_t kMostCalls = 65'536;
constexpr std::size_t kMostPrepared = 10'000;
/// Of the texts of all statements that a client has prepared.
constexpr std::size_t kMostPreparedBytes = std::size_t{32} << 20;

[[noreturn]] void RaiseCall(std::int32_t number, const std::string& text) {
  throw Error(error_number::kStatementError, kServerName, text, {number, "42000"});
}

struct KnownName {
  std::string_view name;
  KnownProcedure procedure;
};

constexpr std::array kKnownNames = {
    KnownName{"sp_executesql", KnownProcedure::kExecuteSql},
    KnownName{"sp_prepare", KnownProcedure::kPrepare},
    KnownName{"sp_execute", KnownProcedure::kExecute},
    KnownName{"sp_prepexec", KnownProcedure::kPrepareAndExecute},
    KnownName{"sp_unprepare", KnownProcedure::kUnprepare},
};

KnownProcedure Find(std::string_view name) {
  for (const KnownName& known : kKnownNames) {
    if (EqualsIgnoreCase(known.name, name)) return known.procedure;
  }
  return KnownProcedure::kNone;
}

bool AtNextCall(const TdsReader& reader, TdsVersion version) {
  if (!version.is_72()) return reader.Peek() == kNextCallBefore72;
  return reader.Peek() == kNextCall || reader.Peek() == kNextCallUnwanted;
}

/// Raises when a parameter's name is anything but a name.
void CheckNames(const Call& call) {
  for (const SqlParameter& parameter : call.parameters) {
    const std::string& name = parameter.name;
    bool good = name.empty() || (name.size() > 1 && name.front() == '@');
    for (const char c : name) good = good && IsNameCharacter(c);
    if (!good) RaiseCall(8145, "'" + name + "' is no name of a parameter.");
  }
}

Call ReadCall(TdsReader& reader, TdsVersion version) {
  Call call;
  const std::uint16_t size = reader.U16();
  if (size == kByNumber) {
    const std::uint16_t number = reader.U16();
    call.procedure = static_cast<KnownProcedure>(number);
    bool known = false;
    for (const KnownName& name : kKnownNames) known = known || name.procedure == call.procedure;
    if (!known) RaiseCall(2812, "Could not find stored procedure number " + std::to_string(number) + ".");
  } else {
    call.name = reader.Text(size);
    call.procedure = Find(call.name);
  }
  reader.U16();  // options: nothing here depends on them
  while (!reader.at_end() && !AtNextCall(reader, version)) {
    if (call.parameters.size() == kMostParameters) {
      RaiseCall(8003, "The incoming request has too many parameters. The server supports a maximum of 2100.");
    }
    call.parameters.push_back(ReadParameter(reader));
  }
  return call;
}

/// A procedure's name, each part in brackets.
std::string QuotedName(std::string_view name) {
  std::size_t end = 0;
  const std::optional<std::string> quoted = TakeName(name, end);
  if (!quoted || end != name.size()) RaiseCall(2812, "Could not find stored procedure '" + std::string(name) + "'.");
  return *quoted;
}

const std::string& TextParameter(const Call& call, std::size_t position, std::string_view what) {
  const std::string* text =
      position < call.parameters.size() ? call.parameters[position].value.get_if<std::string>() : nullptr;
  if (text == nullptr) {
    RaiseCall(214, "Procedure expects parameter '" + std::string(what) + "' of type 'ntext/nchar/nvarchar'.");
  }
  return *text;
}

/// As TextParameter, and "" for a null or when it is not there.
std::string OptionalText(const Call& call, std::size_t position) {
  if (position >= call.parameters.size()) return "";
  const std::string* text = call.parameters[position].value.get_if<std::string>();
  return text == nullptr ? "" : *text;
}

/// The first parameter when it is a whole number.
std::optional<std::int64_t> FindHandle(const Call& call) {
  if (call.parameters.empty()) return std::nullopt;
  const Variant& value = call.parameters[0].value;
  if (!value.holds<std::int32_t>() && !value.holds<std::int16_t>()) return std::nullopt;
  return value.ToInt32();
}

std::int64_t HandleParameter(const Call& call) {
  const std::optional<std::int64_t> handle = FindHandle(call);
  if (!handle) RaiseCall(214, "Procedure expects parameter '@handle' of type 'int'.");
  return *handle;
}

std::size_t BytesOf(const Prepared& prepared) { return prepared.statement.size() + prepared.declarations.size(); }

/// Runs a statement with the parameters from `first` on.
DatabaseCall ExecutionOf(Call& call, const Prepared& prepared, std::size_t first) {
  DatabaseCall execution;
  execution.procedure = "sp_executesql";
  execution.parameters.push_back({"", "nvarchar(max)", prepared.statement});
  if (!prepared.declarations.empty() || first < call.parameters.size()) {
    execution.parameters.push_back({"", "nvarchar(max)", prepared.declarations});
  }
  execution.first_here = execution.parameters.size();
  execution.first_of_call = first;
  for (std::size_t i = first; i < call.parameters.size(); ++i) {
    execution.parameters.push_back(std::move(call.parameters[i]));
  }
  return execution;
}

}  // namespace

Call CallReader::Next() {
  if (++read_ > kMostCalls) RaiseNotSupported("A request has more than " + std::to_string(kMostCalls) + " calls.");
  Call call = ReadCall(reader_, version_);
  call.is_unwanted = next_is_unwanted_;
  if (!reader_.at_end()) next_is_unwanted_ = reader_.U8() == kNextCallUnwanted;
  at_end_ = reader_.at_end();
  return call;
}

std::int32_t PreparedStatements::Add(Prepared prepared) {
  const std::size_t bytes = BytesOf(prepared);
  if (prepared_.size() >= kMostPrepared || bytes > kMostPreparedBytes - bytes_) {
    RaiseCall(8180, "Statement(s) could not be prepared: the session has prepared too many, or too long ones.");
  }
  prepared_.emplace(++last_, std::move(prepared));
  bytes_ += bytes;
  return last_;
}

const Prepared& PreparedStatements::Get(std::int64_t handle) const {
  const auto found = prepared_.find(handle);
  if (found == prepared_.end()) {
    RaiseCall(8179, "Could not find prepared statement with handle " + std::to_string(handle) + ".");
  }
  return found->second;
}

void PreparedStatements::Remove(std::int64_t handle) {
  bytes_ -= BytesOf(Get(handle));
  prepared_.erase(handle);
}

void PreparedStatements::Clear() noexcept {
  prepared_.clear();
  bytes_ = 0;
}

DatabaseCall TakeCall(Call& call, PreparedStatements& prepared) {
  CheckNames(call);
  switch (call.procedure) {
    case KnownProcedure::kExecuteSql:
      return ExecutionOf(call, {TextParameter(call, 0, "@statement"), OptionalText(call, 1)}, 2);
    case KnownProcedure::kPrepare: {
      DatabaseCall nothing;
      nothing.handle = prepared.Add({TextParameter(call, 2, "@stmt"), OptionalText(call, 1)});
      return nothing;
    }
    case KnownProcedure::kExecute:
      return ExecutionOf(call, prepared.Get(HandleParameter(call)), 1);
    case KnownProcedure::kPrepareAndExecute: {
      const Prepared fresh{TextParameter(call, 2, "@stmt"), OptionalText(call, 1)};
      // A handle that is given is that of a statement which the new one replaces.
      if (const auto replaced = FindHandle(call); replaced && *replaced != 0) prepared.Remove(*replaced);
      DatabaseCall execution = ExecutionOf(call, fresh, 3);
      execution.handle = prepared.Add(fresh);
      return execution;
    }
    case KnownProcedure::kUnprepare:
      prepared.Remove(HandleParameter(call));
      return {};
    case KnownProcedure::kNone:
      break;
  }
  DatabaseCall execution;
  execution.procedure = QuotedName(call.name);
  execution.parameters = std::move(call.parameters);
  return execution;
}

}  // namespace tessarlorn::tds
