// One call as a client asks for it: read from the request, checked, and made.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/http/access/caller.h"
#include "hosts/http/answers/answer.h"
#include "hosts/http/safety/order_access.h"
#include "hosts/http/transport/message.h"
#include "tessarlorn/operations.h"

namespace tessarlorn::http {

/// What makes a repeated request the same request.
struct RequestKey {
  /// Idempotency-Key, "" for none.
  std::string text;
  /// SHA-256 of what was asked for, where there is a key.
  Bytes hash;

  [[nodiscard]] bool empty() const noexcept { return text.empty(); }
};

/// Raises Refusal 400 for a key that is none.
RequestKey KeyOf(const Request& request);

struct Call {
  const Operation* operation = nullptr;
  Caller caller;
  /// The session string that the operation gets.
  std::string session;
  std::vector<Variant> arguments;
  AnswerFormat format = AnswerFormat::kJson;
  std::vector<std::string> columns;
  bool dry_run = false;
  bool order_by_order = false;
  /// SQL of the caller's own goes into a statement.
  bool passes_sql = false;
  RequestKey key;
  OrderAccess access;

  /// Whether it is made where writes are made.
  [[nodiscard]] bool writes() const {
    return operation->service == ServiceClass::kSaveData || !key.empty() || dry_run || order_by_order;
  }
};

/// `Connect={…};User=…;Language=…;Client=…;Escape=Yes`.
std::string SessionStringFor(std::string_view database, const Caller& caller, std::string_view client);

/// The body as JSON, Empty when there is none. Raises Refusal 415, and WrongCall for what is no JSON.
Variant ReadBody(const Request& request);

/// The operation that a path names behind "/api/v1/", as "clsGetData/GetListData". Raises Refusal 404 with the nearest
/// one.
const Operation& OperationOfPath(std::string_view path);

/// A call without its arguments. Raises Refusal 403 when the caller's role may not make it.
/// @param client address of the client
Call CallTo(const Operation& operation, const Caller& caller, std::string_view database, std::string_view client);

/// Reads and checks a call, before anything of it reaches a database. Raises Refusal: 400, 403, 405, 406, 415, 422.
/// @param client address of the client
Call ReadCall(const Request& request, const Target& target, const Operation& operation, const Caller& caller,
              std::string_view database, std::string_view client);

/// Takes out the orders that the caller may not see. Raises Refusal 403 and 404, and what the database raises.
/// @param connect answers a connection outside of transactions, where one is needed
void CutOrders(Call& call, const std::function<Connection&()>& connect);

/// The header X-Not-Found with the orders that were taken out, for formats that have no place for them.
void AddNotFound(Headers& headers, const Call& call);

/// The session string of another database for the same call.
void ReplaceConnection(Call& call, const std::string& session);

/// Makes the call in the thread's container transaction, dry and order by order as it says; a dry run leaves nothing
/// behind. What it answers stands in `result` and `beside`.
/// @param connection of that transaction; nullptr for a call that does not write
void MakeCall(Host& host, const Call& call, Connection* connection, Variant& result, Beside& beside);

}  // namespace tessarlorn::http
