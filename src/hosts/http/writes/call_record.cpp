#include "hosts/http/writes/call_record.h"

#include <array>

#include "hosts/http/access/secrets.h"
#include "hosts/http/answers/problem.h"
#include "tessarlorn/sql_command.h"

namespace tessarlorn::http {
namespace {

constexpr std::size_t kMostOrderText = 4000;

/// The orders as the record has them; a list that is too long ends with "…".
std::string OrderText(const std::vector<std::int32_t>& orders) {
  std::string text;
  for (const std::int32_t order : orders) {
    const std::string number = std::to_string(order);
    if (text.size() + number.size() + 2 > kMostOrderText) return text + "…";
    if (!text.empty()) text += ',';
    text += number;
  }
  return text;
}

SqlParameter Typed(std::string name, std::string type, Variant value) {
  return {.name = std::move(name), .type = std::move(type), .value = std::move(value)};
}

}  // namespace

std::optional<std::string> FindRecordedAnswer(Connection& connection, const Caller& caller, const RequestKey& key) {
  std::array parameters = {Typed("@caller", "nvarchar(64)", caller.name),
                           Typed("@key", "binary(32)", Sha256(key.text))};
  const RecordsetPtr found = connection.Query(
      {"SELECT FHash, FAnswer FROM DoorCall WITH (UPDLOCK, HOLDLOCK) WHERE FCaller = @caller AND FKey = @key",
       parameters});
  if (found->eof()) return std::nullopt;
  const Variant hash = found->Get("FHash");
  const auto* const bytes = hash.get_if<Bytes>();
  if (bytes == nullptr || *bytes != key.hash) {
    Refuse(422, "the Idempotency-Key was used for another request", "Idempotency-Key");
  }
  return std::string(found->GetText(1));
}

void RecordCall(Connection& connection, const Caller& caller, const RequestKey& key, const CallRecord& record) {
  std::vector parameters = {Typed("@caller", "nvarchar(64)", caller.name), Typed("@user", "int", caller.user),
                            Typed("@operation", "nvarchar(80)", std::string(record.name)),
                            Typed("@orders", "nvarchar(4000)", OrderText(record.orders))};
  if (key.empty()) {
    connection.Execute(
        {"INSERT INTO DoorCall (FCaller, FUserID, FOperation, FOrders) VALUES (@caller, @user, @operation, @orders)",
         parameters});
    return;
  }
  parameters.push_back(Typed("@key", "binary(32)", Sha256(key.text)));
  parameters.push_back(Typed("@hash", "binary(32)", key.hash));
  parameters.push_back(Typed("@answer", "nvarchar(max)", record.answer));
  connection.Execute(
      {"INSERT INTO DoorCall (FCaller, FUserID, FOperation, FOrders, FKey, FHash, FAnswer) VALUES (@caller, "
       "@user, @operation, @orders, @key, @hash, @answer)",
       parameters});
}

void SweepRecords(Connection& connection) {
  // A few at a time: a write that waits for the sweep does not wait long.
  constexpr std::string_view kSweep =
      "DELETE TOP (1000) FROM DoorCall WHERE FTime < DATEADD(hour, @hours, SYSUTCDATETIME()) SELECT @@ROWCOUNT AS Swept";
  for (std::int32_t swept = 1; swept > 0;) {
    std::array parameters = {Typed("@hours", "int", -kRecordHours)};
    swept = connection.Query({kSweep, parameters})->Get(std::size_t{0}).ToInt32();
  }
}

}  // namespace tessarlorn::http
