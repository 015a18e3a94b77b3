// What comes to the door over a socket, from the wrong to the hostile, and what each caller may have.
#include <gmock/gmock.h>

#include "http/door_support.h"
#include "support/served_database.h"

namespace tessarlorn::http {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kRemark = "POST /api/v1/clsSaveData/OrderRemark";

std::string RemarkOf(const std::string& orders, const std::string& text = "x") {
  return R"({"dctPara":{"FID":")" + orders + R"(","FSellerMessage":")" + text + "\"}}";
}

/// What every answer has, and every problem.
void ExpectSafe(const HttpAnswer& answer, const std::string& what) {
  EXPECT_EQ(answer.Header("X-Content-Type-Options") + answer.Header("X-Frame-Options"), "nosniffDENY") << what;
  EXPECT_THAT(answer.Header("Content-Security-Policy"), HasSubstr("default-src 'none'")) << what;
  if (answer.status < 400) return;
  EXPECT_EQ(answer.Header("Content-Type"), "application/problem+json") << what;
  EXPECT_THAT(answer.body, HasSubstr("\"status\":" + std::to_string(answer.status))) << what;
}

/// The statuses of all answers to the bytes, up to the end of the connection.
std::string StatusesOf(int port, std::string bytes, bool hangs_up = true) {
  HttpClient client(port);
  client.Send(bytes);
  if (hangs_up) client.HangUp();
  std::string statuses;
  for (HttpAnswer answer; (answer = client.Read(bytes.starts_with("HEAD"))).status != 0;) {
    if (answer.status >= 200) ExpectSafe(answer, bytes.substr(0, 100));
    statuses += (statuses.empty() ? "" : " ") + std::to_string(answer.status);
  }
  return statuses;
}

TEST_F(DoorTest, BytesThatAreNoRequestsEndTheConnection) {
  const std::string big(1 << 20, 'x');
  const RunningDoor door(database_.database(), {}, {.body = 65536});
  // \n stands for the end of a line, $ for Host and token; "me" is a request behind the first one.
  const std::string me = "GET /api/v1/me HTTP/1.1\n$\n";
  const std::string chunks = "POST /api/v1/login HTTP/1.1\n$Transfer-Encoding: chunked\n\n";
  const std::pair<std::string, const char*> cases[] = {
      {"HEAD /api/v1/me HTTP/1.1\n$\nHEAD /healthz HTTP/1.1\n$Connection: close\n\n" + me, "200 200"},
      {me + "GET /nothing HTTP/1.1\n$\n" + me, "200 404 200"},
      {"GET /api/v1/me HTTP/1.1\n$X: " + big + "\n\n" + me, "431"},
      {"GET /" + big + " HTTP/1.1\n$\n", "431"},
      {"POST /api/v1/login HTTP/1.1\n$Content-Length: 65537\n\n" + me, "413"},
      {"POST /api/v1/login HTTP/1.1\n$Content-Length: 99999999999999999999\n\n" + me, "400"},
      {chunks + "100000\n" + big + "\n", "413"},
      {chunks + "1;" + big, "431"},
      {chunks + "0\nX: " + big, "431"},
      {chunks + "2\n{}\n0\nAuthorization: Bearer none\n\n" + me, "400 200"},
      {chunks + "fffffffffffffffff\n{}\n0\n\n" + me, "400"},
      {chunks + "3\n{}\n0\n\n" + me, "400"},
      {"POST /api/v1/login HTTP/1.1\n$Content-Length: 2\nTransfer-Encoding: chunked\n\n0\n\n" + me, "400"},
      {"POST /api/v1/login HTTP/1.1\n$Transfer-Encoding: chunked\nContent-Length: 2\n\n0\n\n" + me, "400"},
      {"POST /api/v1/login HTTP/1.1\n$Transfer-Encoding: xchunked\nContent-Length: 2\n\n{}" + me, "400"},
      {"POST /api/v1/login HTTP/1.1\n$Transfer-Encoding: chunked, chunked\n\n0\n\n" + me, "400"},
      {"POST /api/v1/login HTTP/1.0\n$Transfer-Encoding: chunked\n\n0\n\n" + me, "400"},
      {"POST /api/v1/login HTTP/1.1\n$Content-Length: 2\nContent-Length: 2\n\n{}" + me, "400"},
      {"POST /api/v1/login HTTP/1.1\n$Content-Length: +2\n\n{}" + me, "400"},
      {"POST /api/v1/login HTTP/1.1\n$Content-Length : 2\n\n{}" + me, "400"},
      {"GET /api/v1/me HTTP/1.1\n\n" + me, "400"},
      {"GET /api/v1/me HTTP/1.0\n\n" + me, "401"},
      {"GET /api/v1/me HTTP/2.0\n$\n" + me, "400"},
      {"G\x01T /api/v1/me HTTP/1.1\n$\n" + me, "400"},
      {"\x16\x03\x01\x02" + big, "400"},
      {"GET /api/v1/me HTT", ""},
      {"POST /api/v1/login HTTP/1.1\n$Expect: 100-continue\nContent-Length: 2\n\n{}" + me, "100 400 200"},
  };
  for (const auto& [bytes, expected] : cases) {
    const std::string sent = ReplaceAll(ReplaceAll(bytes, "$", "Host: h\n" + ReplaceAll(ann_, "\r", "")), "\n", "\r\n");
    EXPECT_EQ(StatusesOf(door.port(), sent), expected) << bytes.substr(0, 150);
  }
}

TEST_F(DoorTest, WhoeverIsSilentOrWantsTooMuchDoesNotHoldOthers) {
  using std::chrono::milliseconds;
  const TransportLimits limits = {
      .header_time = milliseconds(500), .body_time = milliseconds(500), .idle = milliseconds(500)};
  const RunningDoor door(database_.database(), {.readers = 1, .rows = 50, .time = milliseconds(1500)}, limits);
  EXPECT_EQ(StatusesOf(door.port(), "", false), "");
  EXPECT_EQ(StatusesOf(door.port(), "GET / HT", false), "408");
  EXPECT_EQ(StatusesOf(door.port(), "POST / HTTP/1.1\r\nHost: h\r\nContent-Length: 9\r\n\r\n{", false), "408");
  const auto sql = [this](const std::string& text) {
    return HttpClient::Request("POST /api/v1/clsGetData/ExecuteSQL", ann_, "{\"StrSql\":\"" + text + "\"}");
  };
  EXPECT_EQ(StatusesOf(door.port(), sql("SELECT FID FROM IC_Web2ERPOrders")), "422") << "these are 60 rows";

  const RunningDoor wide(database_.database(), {.readers = 1, .time = milliseconds(4000)}, limits);
  database_.connection().Execute(
      "WITH N AS (SELECT 1 AS n UNION ALL SELECT n + 1 FROM N WHERE n < 9000) INSERT DoorCall (FCaller, FUserID, "
      "FOperation, FOrders) SELECT 'x', 1, 'x', REPLICATE('x', 3500) FROM N OPTION (MAXRECURSION 0)");
  HttpClient slow(wide.port());
  slow.Send(sql("SELECT FOrders FROM DoorCall"));
  EXPECT_EQ(slow.ReadUntil("200 OK"), "HTTP/1.1 200 OK");
  // On a busy machine the one that waits may give up as the time is over.
  if (wide.Ask("GET /api/v1/me", ann_).status == 200) return;
  EXPECT_EQ(wide.Ask("GET /api/v1/me", ann_).status, 200) << "the only reader is free when the time is over";
}

TEST_F(DoorTest, WrongCallsAreToldWhatIsWrong) {
  const RunningDoor door(database_.database());
  const std::string list = "POST /api/v1/clsGetData/GetListData";
  const std::string deep = "{\"Filter\":" + std::string(100'000, '[') + std::string(100'000, ']') + "}";
  const std::string digits = "{\"Filter\":{\"FOrderStatus\":" + std::string(1000, '7') + "}}";
  const std::tuple<std::string, std::string, std::string, int, const char*> cases[] = {
      {"GET /api/v1/../../etc/passwd", ann_, "", 404, "no operation"},
      {"GET /%ff", ann_, "", 400, "UTF-8"},
      {"GET /api/v1/me?x=%c0%af", ann_, "", 400, "UTF-8"},
      {"GET /api/v1/me?x=%zz", ann_, "", 400, "escape"},
      {"GET /api/v1/me%00", ann_, "", 400, "escape"},
      {"GET /api/v1/clsGetData/GetListDta", ann_, "", 404, "did you mean clsGetData/GetListData?"},
      {"GET /api/v1/clsGetData/GetListData?Filtr.FID=1", ann_, "", 400, "did you mean Filter"},
      {"GET /api/v1/clsGetData/GetListData?sDsn=Embedded%3dx", ann_, "", 400, "the connection comes from the login"},
      {R"(GET /api/v1/clsGetData/GetWebShopData?dctPara={"sDSN":"Embedded%3dx"})", pia_, "", 400, "from the login"},
      {"POST /api/v1/clsGetData/GetWebShopData", pia_, R"({"dctPara":{"sDSN":"Embedded=x"}})", 400, "from the login"},
      {"POST /api/v1/clsGetData/ExecuteSQL?dry-run=true", ann_, R"({"StrSql":"COMMIT"})", 400, "end its transaction"},
      {list, ann_, R"({"Filter":{"FOrderStatu":2}})", 400, "FOrderStatus"},
      {list, ann_, deep, 400, "levels"},
      {list, ann_, R"({"Filter":{"FOrderStatus":1,"FOrderStatus":2}})", 400, "twice"},
      {list, ann_, digits, 400, "body:1:"},
      {list, ann_, "{\"Filter\":\"\xff\"}", 400, "body"},
      {list, ann_, R"({"Filter":{"FOrderStatus":"1 OR 1=1"}})", 422, "Filter.FOrderStatus"},
      {list, ann_ + "Accept: text/html\r\n", "{}", 406, "text/csv"},
      {list + "?each=order", ann_, "{}", 400, "no list of orders"},
      {"GET /api/v1/clsSaveData/Delivery", ann_, "", 405, "takes POST"},
      {"DELETE /api/v1/me", ann_, "", 405, "takes GET"},
      {"GET /api/v1/me", "", "", 401, "log in"},
      {"GET /api/v1/me", Bearer("tl_none"), "", 401, "not known"},
      {"GET /metrics", pia_, "", 403, "administrators"},
      {"POST /api/v1/clsGetData/ExecuteSQL", pia_, R"({"StrSql":"SELECT 1"})", 403, "may not call"},
      {list, pia_, R"({"Filter":{"icboTpl":"1=1"}})", 403, "is SQL"},
      {"POST /api/v1/clsGetData/GetEntryData", pia_, R"({"dctParameters":{"FID":1}})", 404, "not found: 1"},
      {kRemark, pia_, RemarkOf("1,99999"), 404, "not found: 1, 99999"},
      {kRemark, pia_, RemarkOf("2,1,23"), 200, R"("notFound":["1"])"},
  };
  for (const auto& [line, headers, body, status, text] : cases) {
    const HttpAnswer answer = door.Ask(line, headers, body);
    const std::string what = line + " " + body.substr(0, 100);
    EXPECT_EQ(answer.status, status) << what;
    EXPECT_THAT(answer.body, HasSubstr(text)) << what;
    EXPECT_EQ(answer.status == 405, !answer.Header("Allow").empty()) << what;
    ExpectSafe(answer, what);
  }
  EXPECT_EQ(Read("SELECT FOrderFID FROM IC_TradeFieldLog ORDER BY FOrderFID"), "2|23|");
  const std::string text_body = "Content-Type: text/plain\r\nContent-Length: 2\r\n\r\n{}";
  EXPECT_EQ(door.Ask(list, ann_ + text_body).status, 415);
}

TEST_F(DoorTest, SessionsAreForPagesOfThisServer) {
  const RunningDoor door(database_.database());
  const auto log_in = [&](const std::string& password, const std::string& more = "") {
    return door.Ask("POST /api/v1/login", more, R"({"user":"pia","password":")" + password + "\"}");
  };
  std::string cookies[2];
  for (std::string& cookie : cookies) {
    const std::string set = log_in(kDoorPassword).Header("Set-Cookie");
    EXPECT_THAT(set, AllOf(HasSubstr("; HttpOnly"), HasSubstr("; SameSite=Strict"), HasSubstr("; Path=/")));
    cookie = "Cookie: a=b; " + set.substr(0, set.find(';')) + "\r\n";
  }
  EXPECT_EQ(log_in(kDoorPassword, "Origin: http://evil\r\n").status, 403);
  const std::pair<const char*, int> origins[] = {
      {"", 403},
      {"Sec-Fetch-Site: cross-site\r\n", 403},
      {"Origin: http://evil\r\n", 403},
      {"Origin: null\r\n", 403},
      {"Origin: http://h\r\n", 200},
      {"Sec-Fetch-Site: same-origin\r\n", 200},
  };
  for (const auto& [headers, status] : origins) {
    EXPECT_EQ(door.Ask(kRemark, cookies[0] + headers, RemarkOf("2")).status, status) << headers;
  }
  EXPECT_EQ(door.Ask("GET /api/v1/me", cookies[1]).status, 200);
  EXPECT_EQ(door.Ask("POST /api/v1/logout?everywhere", cookies[0]).status, 403);
  const HttpAnswer out = door.Ask("POST /api/v1/logout?everywhere", cookies[0] + "Sec-Fetch-Site: same-origin\r\n");
  EXPECT_EQ(out.status, 204);
  EXPECT_THAT(out.Header("Set-Cookie"), HasSubstr("Max-Age=0"));
  for (const std::string& cookie : cookies) EXPECT_EQ(door.Ask("GET /api/v1/me", cookie).status, 401);

  EXPECT_EQ(door.Ask("GET /api/v1/me", pia_).status, 200);
  RevokeToken(database_.connection(), "token", "pia");
  EXPECT_TRUE(WaitUntil([&] { return door.Ask("GET /api/v1/me", pia_).status == 401; }));
  for (int i = 0; i < 5; ++i) EXPECT_EQ(log_in("wrong").status, 401);
  log_in("wrong");
  const HttpAnswer throttled = log_in(kDoorPassword);
  EXPECT_EQ(throttled.status, 429) << "though it is right";
  EXPECT_NE(throttled.Header("Retry-After"), "");
}

TEST_F(DoorTest, AWriteIsMadeOnceUnderItsKeyAndNotAtAllWhenItIsDry) {
  const RunningDoor door(database_.database());
  const std::string key = pia_ + "Idempotency-Key: k1\r\n";
  const auto tables = [this] {
    return Read("SELECT * FROM IC_TradeFieldLog") + Read("SELECT * FROM IC_Web2ERPOrders") +
           Read("SELECT * FROM IC_TradeLog") + Read("SELECT FID, FOrders, FAnswer FROM DoorCall");
  };
  const HttpAnswer first = door.Ask(kRemark, key, RemarkOf("2,1"));
  database_.connection().Execute("UPDATE IC_Web2ERPOrders SET FWebShopID = 103 WHERE FID = 2");
  const std::string before = tables();
  const HttpAnswer second = door.Ask(kRemark, key, RemarkOf("2,1"));
  EXPECT_EQ(first.body, R"({"result":true,"notFound":["1"]})");
  EXPECT_EQ(first.Header("Idempotency-Replayed") + second.Header("Idempotency-Replayed"), "true");
  EXPECT_EQ(second.body, first.body) << "though the order has gone from sight";
  EXPECT_EQ(door.Ask(kRemark, key, RemarkOf("23")).status, 422);
  EXPECT_EQ(door.Ask(kRemark, pia_, RemarkOf("2")).status, 404);
  const HttpAnswer dry = door.Ask(std::string(kRemark) + "?dry-run=true", ann_, RemarkOf("2"));
  EXPECT_THAT(dry.body, AllOf(HasSubstr(R"("result":true)"), HasSubstr("IC_TradeFieldLog")));
  EXPECT_EQ(tables(), before);

  database_.connection().Execute("CREATE UNIQUE INDEX OneRow ON IC_TradeFieldLog (FOrderFID) WHERE FOrderFID = 2");
  const HttpAnswer each = door.Ask(std::string(kRemark) + "?each=order", ann_, RemarkOf("23,2,24"));
  EXPECT_THAT(each.body, AllOf(HasSubstr(R"({"order":"23","result":true},{"order":"2","problem":{)"),
                               HasSubstr(R"({"order":"24","result":true})")));
  EXPECT_EQ(Read("SELECT FOrderFID FROM IC_TradeFieldLog ORDER BY FID"), "2|23|24|");

  database_.connection().Execute("BEGIN TRANSACTION UPDATE IC_Web2ERPOrders SET FWeight = 1 WHERE FID = 30");
  HttpClient waiting(door.port());
  const std::string body = RemarkOf("25");
  waiting.Send(HttpClient::Request(kRemark, ann_ + "Idempotency-Key: k2\r\n", body));
  EXPECT_TRUE(WaitUntil([&] {
    return door.Ask("GET /metrics", ann_).body.find("calls_running 1") != std::string::npos;
  })) << "others go on meanwhile";
  const auto repeated = [&] { return door.Ask(kRemark, ann_ + "Idempotency-Key: k2\r\n", body).status; };
  EXPECT_EQ(repeated(), 409);
  database_.connection().Execute("COMMIT TRANSACTION");
  EXPECT_EQ(waiting.Read().status, 200);
  EXPECT_EQ(repeated(), 200);
  EXPECT_EQ(Read("SELECT COUNT(*) FROM IC_TradeFieldLog WHERE FOrderFID = 25"), "1|");
}

TEST_F(DoorTest, EventsComeOnceEachInTheOrderOfTheirKeys) {
  const RunningDoor one(database_.database());
  const RunningDoor other(database_.database());
  const auto listen = [&](const std::string& last) {
    auto client = std::make_unique<HttpClient>(one.port());
    client->Send(HttpClient::Request("GET /api/v1/events", pia_ + last));
    return client;
  };
  /// The orders of the events up to the one of the order, which is none of the others'.
  std::string last;
  const auto orders_up_to = [&last](HttpClient& client, const std::string& order) {
    std::string orders;
    while (!orders.ends_with(" " + order)) {
      const std::string event = client.ReadUntil("\n\n");
      if (event.empty()) return orders + " ended";
      if (event.find("\"orders\":[") == std::string::npos) continue;
      last = event.substr(event.find("id: ") + 4, event.find("\nevent") - event.find("id: ") - 4);
      const std::size_t at = event.find("\"orders\":[") + 10;
      orders += " " + event.substr(at, event.find(']', at) - at);
    }
    return orders;
  };
  const auto client = listen("");
  EXPECT_NE(client->ReadUntil("retry: "), "");
  for (const char* order : {"23", "1", "2"}) EXPECT_EQ(other.Ask(kRemark, ann_, RemarkOf(order)).status, 200);
  EXPECT_EQ(orders_up_to(*client, "2"), " 23 2") << "order 1 is hidden";
  const std::string seen = last;
  for (const char* order : {"23", "2"}) other.Ask(kRemark, ann_, RemarkOf(order));
  EXPECT_EQ(orders_up_to(*client, "2"), " 23 2");
  const auto again = listen("Last-Event-ID: " + seen + "\r\n");
  EXPECT_EQ(orders_up_to(*again, "2"), " 23 2");
  other.Ask(kRemark, ann_, RemarkOf("23"));
  EXPECT_EQ(orders_up_to(*again, "23"), " 23");

  // More than one look takes, with gaps of calls that came to nothing, for a client that reads slowly.
  database_.connection().Execute(
      "WITH N AS (SELECT 1 AS n UNION ALL SELECT n + 1 FROM N WHERE n < 9000) INSERT DoorCall "
      "(FCaller, FUserID, FOperation, FOrders) SELECT 'x', 1, REPLICATE('x', 80), '2' FROM N OPTION (MAXRECURSION 0) "
      "DELETE DoorCall WHERE FID % 7 = 0");
  other.Ask(kRemark, ann_, RemarkOf("23,2"));
  const std::string expected = Read("SELECT COUNT(*) FROM DoorCall WHERE FID > 6 AND FOrders = '2'");
  const std::string orders = orders_up_to(*listen("Last-Event-ID: 0-6\r\n"), "23,2");
  EXPECT_EQ(std::to_string(std::count(orders.begin(), orders.end(), ' ') - 1) + "|", expected);
}

TEST_F(DoorTest, ADoorEndsWhenItHasAnswered) {
  auto door = std::make_unique<RunningDoor>(database_.database());
  HttpClient idle(door->port());
  HttpClient events(door->port());
  events.Send(HttpClient::Request("GET /api/v1/events", ann_));
  EXPECT_NE(events.ReadUntil("retry: "), "");
  database_.connection().Execute("BEGIN TRANSACTION UPDATE IC_Web2ERPOrders SET FWeight = 1 WHERE FID = 30");
  HttpClient waiting(door->port());
  waiting.Send(HttpClient::Request(kRemark, ann_, RemarkOf("25")));
  EXPECT_TRUE(WaitUntil([&] { return door->server().connections() == 3; }));
  door->server().Stop();
  EXPECT_EQ(idle.Read().status, 0);
  database_.connection().Execute("COMMIT TRANSACTION");
  EXPECT_EQ(waiting.Read().status, 200);
  door.reset();
  EXPECT_EQ(Read("SELECT COUNT(*) FROM IC_TradeFieldLog"), "1|");
}

TEST(DoorOverOdbcTest, ServesAgainWhenTheDatabaseIsBack) {
  ServedDatabase server({}, 8);
  std::string ann;
  ann = AddCaller(*OpenConnection(server.odbc()), "ann", 16394, "administrator");
  const RunningDoor door(server.odbc(), {.writers = 2});
  const auto statuses = [&] {
    return std::to_string(door.Ask("GET /readyz", "").status) + " " +
           std::to_string(door.Ask("GET /api/v1/clsGetData/GetListData", ann).status) + " " +
           std::to_string(door.Ask(kRemark, ann, RemarkOf("2")).status);
  };
  EXPECT_EQ(statuses(), "200 200 200");
  server.Stop();
  EXPECT_EQ(statuses(), "503 503 503");
  server.Start();
  EXPECT_EQ(statuses(), "200 200 200");
}

}  // namespace
}  // namespace tessarlorn::http
