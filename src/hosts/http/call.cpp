#include "hosts/http/call.h"

#include <algorithm>
#include <utility>

#include "automation/order_list.h"
#include "hosts/calls/call_arguments.h"
#include "hosts/calls/json_arguments.h"
#include "hosts/calls/wrong_call.h"
#include "hosts/http/access/secrets.h"
#include "hosts/http/answers/problem.h"
#include "hosts/http/safety/safe_values.h"
#include "platform/text/text.h"
#include "tessarlorn/collections.h"

namespace tessarlorn::http {
namespace {

constexpr std::size_t kLongestKey = 255;
constexpr std::size_t kLongestHeader = 2000;
/// Names of a query that say how to call; all others of a GET are arguments.
constexpr std::array<std::string_view, 3> kOptions = {"columns", "dry-run", "each"};

bool IsOption(std::string_view name) { return std::find(kOptions.begin(), kOptions.end(), name) != kOptions.end(); }

std::string Braced(std::string_view text) { return Quoted(text, '{', '}'); }

/// Refuses a connection string that is not the login's own, however it was given.
void RequireOwnConnection(const Operation& operation, std::span<const Variant> arguments, const std::string& session) {
  const auto require = [&session](const Variant& value, const std::string& path) {
    if (const auto* const text = value.get_if<std::string>(); text != nullptr && *text == session) return;
    Refuse(400, path + ": the connection comes from the login; leave it out", path);
  };
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Argument& argument = operation.arguments()[i];
    const std::string name(argument.name);
    if (argument.is_connection) require(arguments[i], name);
    const std::shared_ptr<Dictionary> values = arguments[i].ToDictionary();
    for (const Key& key : argument.keys) {
      if (key.is_connection() && values) require(values->GetValue(key.name), name + "." + std::string(key.name));
    }
  }
}

/// The pairs of a query as the words of a call: "Filter.FOrderStatus=2".
std::vector<std::string> WordsOf(const Target& target) {
  std::vector<std::string> words;
  for (const auto& pair : target.query) {
    const std::string& name = pair.first;
    if (IsOption(name)) continue;
    words.push_back(name + "=" + pair.second);
  }
  return words;
}

std::vector<Variant> ReadArguments(const Request& request, const Target& target, const Operation& operation,
                                   const std::string& session) {
  try {
    if (request.method != "POST") return ReadCallArguments(operation, {}, WordsOf(target), session);
    for (const auto& [name, value] : target.query) {
      if (!IsOption(name))
        Refuse(400, "there is no option " + name + DidYouMean(name, {kOptions.begin(), kOptions.end()}), name);
    }
    const Variant json = ReadBody(request);
    return ReadCallArguments(operation, json, {}, session);
  } catch (const WrongCall& wrong) {
    Refuse(400, wrong.what(), wrong.name());
  }
}

bool Flag(const Target& target, std::string_view name) {
  const std::string* const value = target.Find(name);
  if (value == nullptr || *value == "false") return false;
  if (*value == "true") return true;
  Refuse(400, std::string(name) + " is true or false, not " + *value, std::string(name));
}

void RequireMethod(const Request& request, const Operation& operation) {
  const bool reads =
      operation.service == ServiceClass::kGetData && (request.method == "GET" || request.method == "HEAD");
  if (request.method == "POST" || reads) return;
  RefuseMethod(std::string(operation.name), operation.service == ServiceClass::kGetData ? "GET, HEAD, POST" : "POST");
}

Dictionary WrittenBack(const Operation& operation, std::span<const Variant> arguments) {
  Dictionary values;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const Argument& argument = operation.arguments()[i];
    if (argument.in_out) values.SetValue(argument.name, arguments[i]);
  }
  return values;
}

void MakeOnce(Host& host, const Call& call, Variant& result, Beside& beside) {
  std::vector<Variant> arguments = call.arguments;
  result = ServiceObject(host, call.operation->service).Invoke(*call.operation, arguments);
  beside.arguments = WrittenBack(*call.operation, arguments);
}

void MakeWrite(Host& host, const Call& call, Connection& connection, Variant& result, Beside& beside) {
  if (!call.order_by_order) {
    MakeOnce(host, call, result, beside);
    return;
  }
  std::vector<std::string> orders;
  std::vector<std::vector<Variant>> calls = SplitByOrder(*FindOrderList(*call.operation), call.arguments, orders);
  beside.orders = CallOrderByOrder(host, connection, *call.operation, orders, std::move(calls));
}

/// Takes back what a dry run did.
struct DryRunEnds : std::exception {};

}  // namespace

std::string SessionStringFor(std::string_view database, const Caller& caller, std::string_view client) {
  return "Connect=" + Braced(database) + ";User=" + std::to_string(caller.user) +
         ";Language=" + Braced(caller.language) + ";Client=" + Braced(client) + ";Escape=Yes";
}

Variant ReadBody(const Request& request) {
  if (request.body.empty()) return {};
  const std::string_view type = request.Header("Content-Type");
  if (!EqualsIgnoreCase(Trim(type.substr(0, type.find(';'))), "application/json")) {
    Refuse(415, "the body is JSON: send it with Content-Type: application/json");
  }
  return ReadJson(request.body, "body");
}

const Operation& OperationOfPath(std::string_view path) {
  const std::size_t slash = path.find('/');
  const std::string_view class_name = path.substr(0, slash);
  const std::string_view name = slash == std::string_view::npos ? "" : path.substr(slash + 1);
  for (const Operation* const operation : Operations()) {
    if (operation->name == name && ClassName(operation->service) == class_name) return *operation;
  }
  std::vector<std::string> names;
  for (const Operation* const operation : Operations()) {
    names.push_back(std::string(ClassName(operation->service)) + "/" + std::string(operation->name));
  }
  Refuse(404, "there is no operation " + std::string(path) + DidYouMean(path, {names.begin(), names.end()}));
}

Call CallTo(const Operation& operation, const Caller& caller, std::string_view database, std::string_view client) {
  if (!caller.role->Allows(operation)) {
    Refuse(403, "the role " + caller.role->name() + " may not call " + std::string(operation.name));
  }
  Call call;
  call.operation = &operation;
  call.caller = caller;
  call.session = SessionStringFor(database, caller, client);
  return call;
}

Call ReadCall(const Request& request, const Target& target, const Operation& operation, const Caller& caller,
              std::string_view database, std::string_view client) {
  RequireMethod(request, operation);
  Call call = CallTo(operation, caller, database, client);
  const std::optional<AnswerFormat> format = FormatFor(request.Header("Accept"));
  if (!format) Refuse(406, "answers are application/json, application/x-ndjson or text/csv");
  call.format = *format;
  if (const std::string* const columns = target.Find("columns")) {
    if (operation.result != ValueType::kRecordset) {
      Refuse(400,
             "columns chooses columns of recordsets; " + std::string(operation.name) + " answers a " +
                 std::string(TypeName(operation.result)),
             "columns");
    }
    for (const std::string_view column : Split(*columns, ',')) call.columns.emplace_back(Trim(column));
  }
  call.dry_run = Flag(target, "dry-run");
  if (call.dry_run && call.format != AnswerFormat::kJson) Refuse(406, "a dry run is answered as application/json");
  if (const std::string* const each = target.Find("each")) {
    if (*each != "order") Refuse(400, "each is order, not " + *each, "each");
    if (!FindOrderList(operation)) Refuse(400, std::string(operation.name) + " takes no list of orders", "each");
    call.order_by_order = true;
  }
  call.key = KeyOf(request);
  call.arguments = ReadArguments(request, target, operation, call.session);
  RequireOwnConnection(operation, call.arguments, call.session);
  if (const auto refused = FindRefusedValue(operation, call.arguments, caller.sql)) {
    Refuse(refused->wants_sql ? 403 : 422, refused->path + " " + refused->why, refused->path);
  }
  call.passes_sql = caller.sql && FindRefusedValue(operation, call.arguments, false).has_value();
  if (call.passes_sql && (call.dry_run || call.order_by_order || !call.key.empty())) {
    Refuse(400, "SQL of the caller's own may end its transaction: it goes without dry-run, each and Idempotency-Key");
  }
  return call;
}

RequestKey KeyOf(const Request& request) {
  RequestKey key{.text = std::string(request.Header("Idempotency-Key")), .hash = {}};
  if (key.text.size() > kLongestKey || !IsValidUtf8(key.text)) {
    Refuse(400, "Idempotency-Key has more than 255 bytes, or is no text", "Idempotency-Key");
  }
  if (!key.empty()) {
    key.hash = Sha256(request.method + "\n" + request.target + "\n" + std::string(request.Header("Accept")) + "\n" +
                      request.body);
  }
  return key;
}

void CutOrders(Call& call, const std::function<Connection&()>& connect) {
  if (call.caller.every_shop) {
    call.access = NamedOrders(*call.operation, call.arguments);
    return;
  }
  call.access = CutHiddenOrders(*call.operation, call.arguments, call.caller.user, connect());
  if (call.access.unbounded) {
    Refuse(403, std::string(call.operation->name) + " works on orders of every web shop, and not all are yours");
  }
  if (!call.access.single) return;
  if (call.access.hidden == std::vector<std::string>{""}) Refuse(404, "not found: the call names no order");
  std::string list;
  for (const std::string& hidden : call.access.hidden) list += (list.empty() ? "" : ", ") + hidden;
  Refuse(404, "not found: " + list);
}

void AddNotFound(Headers& headers, const Call& call) {
  if (call.format == AnswerFormat::kJson || call.access.hidden.empty()) return;
  std::string list;
  for (const std::string& hidden : call.access.hidden) {
    if (list.size() + hidden.size() > kLongestHeader) {
      list += ",...";
      break;
    }
    list.append(list.empty() ? "" : ",").append(hidden);
  }
  // What callers send may not end a header.
  std::replace_if(
      list.begin(), list.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  headers.emplace_back("X-Not-Found", list);
}

void ReplaceConnection(Call& call, const std::string& session) {
  for (std::size_t i = 0; i < call.arguments.size(); ++i) {
    const Argument& argument = call.operation->arguments()[i];
    if (argument.is_connection) call.arguments[i] = session;
    const std::shared_ptr<Dictionary> values = call.arguments[i].ToDictionary();
    for (const Key& key : argument.keys) {
      if (!key.is_connection() || !values) continue;
      auto copy = std::make_shared<Dictionary>(*values);
      copy->SetValue(key.name, session);
      call.arguments[i] = copy;
    }
  }
  call.session = session;
}

void MakeCall(Host& host, const Call& call, Connection* connection, Variant& result, Beside& beside) {
  beside = {};
  beside.not_found = call.access.hidden;
  if (connection == nullptr) {
    MakeOnce(host, call, result, beside);
    return;
  }
  if (!call.dry_run) {
    MakeWrite(host, call, *connection, result, beside);
    return;
  }
  try {
    BehindSavePoint(*connection, "dry_run", [&] {
      DryRun run;
      {
        const WatchedBatches watched(&run);
        MakeWrite(host, call, *connection, result, beside);
      }
      beside.dry_run = run.Report();
      throw DryRunEnds();
    });
  } catch (const DryRunEnds&) {
    // As planned.
  }
}

}  // namespace tessarlorn::http
