// What users keep of the page, as their columns and views: JSON under a name of the page's.
#include <algorithm>
#include <array>
#include <string>

#include "hosts/http/access/names.h"
#include "hosts/http/access/statements.h"
#include "hosts/http/answers/answer.h"
#include "hosts/http/answers/problem.h"
#include "hosts/http/call.h"
#include "hosts/http/house/resource.h"

namespace tessarlorn::http {
namespace {

constexpr std::size_t kLongestName = 40;
constexpr std::size_t kLongestValue = 65'536;
constexpr std::int32_t kMostValues = 20;

bool IsKeptName(std::string_view name) {
  return !name.empty() && name.size() <= kLongestName &&
         std::all_of(name.begin(), name.end(), [](char c) { return (c >= 'a' && c <= 'z') || c == '-'; });
}

const std::string& NameOf(const Wish& wish) {
  const std::string& name = wish.names.front();
  if (!IsKeptName(name)) Refuse(404, "what is kept has a name of 1 to 40 letters from a to z and dashes", "name");
  return name;
}

Response GetKept(Connection& connection, const Wish& wish) {
  SqlParameter parameters[] = {NameParameter("@user", wish.caller.name)};
  const RecordsetPtr rows = RunStatement(
      connection,
      {"SELECT k.FName, k.FValue FROM DoorKept k INNER JOIN DoorUser u ON u.FID = k.FUserID WHERE u.FName = "
       "@user ORDER BY k.FName",
       parameters});
  std::string body = "{";
  for (; !rows->eof(); rows->MoveNext()) {
    body.append(body.size() > 1 ? ",\"" : "\"").append(rows->GetText(0)).append("\":").append(rows->GetText(1));
  }
  return JsonResponse(body + "}");
}

Response PutKept(Connection& connection, const Wish& wish) {
  const std::string& name = NameOf(wish);
  const std::string& value = wish.request.body;
  if (value.size() > kLongestValue) Refuse(413, "what is kept has at most 64 kB");
  if (ReadBody(wish.request).is_empty()) Refuse(400, "the body is the value to be kept");
  SqlParameter parameters[] = {NameParameter("@user", wish.caller.name),
                               {"@name", "nvarchar(40)", name},
                               {"@value", "nvarchar(max)", value},
                               {"@most", "int", kMostValues}};
  const RecordsetPtr kept = RunStatement(connection, {R"(SET XACT_ABORT ON
DECLARE @id int
BEGIN TRANSACTION
SELECT @id=FID FROM DoorUser WITH (UPDLOCK,HOLDLOCK) WHERE FName=@user
UPDATE DoorKept SET FValue=@value WHERE FUserID=@id AND FName=@name
IF @@ROWCOUNT=0
  INSERT INTO DoorKept (FUserID,FName,FValue) SELECT @id,@name,@value
  WHERE @id IS NOT NULL AND (SELECT COUNT(*) FROM DoorKept WHERE FUserID=@id)<@most
SELECT COUNT(*) AS FKept FROM DoorKept WHERE FUserID=@id AND FName=@name
COMMIT TRANSACTION)",
                                                      parameters});
  if (kept->Get("FKept").ToInt32() == 0) Refuse(422, "a user keeps at most 20 values", "name");
  return {.status = 204};
}

Response DeleteKept(Connection& connection, const Wish& wish) {
  SqlParameter parameters[] = {NameParameter("@user", wish.caller.name), {"@name", "nvarchar(40)", NameOf(wish)}};
  RunStatement(connection, {"DELETE FROM DoorKept WHERE FName = @name AND FUserID IN (SELECT FID FROM DoorUser WHERE "
                            "FName = @user)",
                            parameters});
  return {.status = 204};
}

constexpr std::array kKept = {
    Resource{.name = "kept", .method = "GET", .for_administrators = false, .answer = GetKept},
    Resource{.name = "kept", .method = "PUT", .names = 1, .for_administrators = false, .answer = PutKept},
    Resource{.name = "kept", .method = "DELETE", .names = 1, .for_administrators = false, .answer = DeleteKept},
};

}  // namespace

std::span<const Resource> KeptResources() { return kKept; }

}  // namespace tessarlorn::http
