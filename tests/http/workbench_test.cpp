// The questions of the workbench: they agree with the list of orders, and show nobody more than it does.
#include <functional>
#include <nlohmann/json.hpp>
#include <set>

#include "hosts/http/access/roles.h"
#include "http/door_support.h"

namespace tessarlorn::http {
namespace {

using Json = nlohmann::json;

class WorkbenchTest : public DoorTest {
 protected:
  HttpAnswer Answer(const std::string& question, const std::string& caller, const Json& values) const {
    return door_.Ask("POST /api/v1/workbench/" + question, caller, values.dump());
  }
  Json Rows(const std::string& question, const std::string& caller, const Json& values) const {
    const HttpAnswer answer = Answer(question, caller, values);
    EXPECT_EQ(answer.status, 200) << answer.body;
    return Json::parse(answer.body)["result"]["rows"];
  }
  /// Keys of the list itself, which the page's filter is to show, too.
  Json Listed(const std::string& caller, const Json& filter) const {
    const HttpAnswer answer =
        door_.Ask("POST /api/v1/clsGetData/GetListData?columns=FID", caller, Json{{"Filter", filter}}.dump());
    EXPECT_EQ(answer.status, 200) << answer.body;
    return Json::parse(answer.body)["result"]["rows"];
  }

  const RunningDoor door_{database_.database()};
};

TEST_F(WorkbenchTest, TabsAndKeysAgreeWithTheList) {
  const std::map<std::string, Json> filters = {
      {"toBePicked", {{"FOrderStatus", 2}}},
      {"toBeDelivered", {{"FOrderStatus", 6}}},
      {"delivered", {{"FOrderStatus", 14}, {"WaitingForDelivery", 6}}},
      {"failedUploads", {{"FUpLoadStatus", 2}}},
      {"refunds", {{"FCloseOrRefundStatus", 2}}},
      {"locked", {{"IsLock", 1}}},
  };
  for (const std::string& caller : {ann_, pia_}) {
    std::size_t any = 0;
    for (const Json& row : Rows("tabs", caller, Json::object())) {
      const std::string tab = row["FTab"];
      const Json listed = Listed(caller, filters.at(tab));
      EXPECT_EQ(row["FOrders"], listed.size()) << tab;
      EXPECT_EQ(Rows("orders", caller, {{"tab", tab}}), listed) << tab;
      any += listed.size();
    }
    EXPECT_GT(any, 20U);
  }
  EXPECT_EQ(Rows("orders", ann_, {{"tab", "delivered"}, {"shop", 101}, {"orderedFrom", "2026-01-01"}}),
            Listed(ann_, {{"FOrderStatus", 14}, {"FSiteID", "101"}, {"FOrderDateFrom", "2026-01-01"}}));
}

TEST_F(WorkbenchTest, ShowsNoOrdersOfHiddenShops) {
  const std::string number =
      database_.connection().Query("SELECT FOrderID FROM IC_Web2ERPOrders WHERE FID = 1")->Get("FOrderID").ToText();
  EXPECT_EQ(Rows("find", ann_, {{"text", number}}).size(), 1U);
  EXPECT_EQ(Rows("rows", ann_, {{"keys", {1}}}).size() + Rows("rows", ann_, {{"keys", {1}}, {"locked", true}}).size(),
            1U);
  for (const auto& [question, values] :
       std::map<std::string, Json>{{"find", {{"text", number}}},
                                   {"rows", {{"keys", {1}}}},
                                   {"orders", {{"shop", 103}}},
                                   {"parcels", {{"numbers", {number, "1"}}}},
                                   {"log", {{"number", "1"}}},
                                   {"countPrints", {{"document", 10143011}, {"keys", {1}}}},
                                   {"retryUploads", {{"keys", {1}}}},
                                   {"history", {{"order", 1}}}}) {
    EXPECT_EQ(Rows(question, pia_, values), Json::array()) << question;
  }
  for (const Json& choice : Rows("choices", pia_, Json::object())) {
    EXPECT_FALSE(choice["FKind"] == "shop" && choice["FID"] == 103);
  }
}

/// What stands in each row of an answer, added up.
std::int64_t Sum(const Json& rows, const char* column, const std::function<bool(const Json&)>& counts) {
  std::int64_t sum = 0;
  for (const Json& row : rows) sum += counts(row) ? row[column].get<std::int64_t>() : 0;
  return sum;
}

TEST_F(WorkbenchTest, FiguresAgreeWithTheirLists) {
  database_.connection().Execute(
      "UPDATE IC_Web2ERPOrders SET FSitePayDate = DATEADD(hour, -FID, GETDATE()) UPDATE IC_Web2ERPOrders SET FSendDate = "
      "DATEADD(day, -FID % 3, '2026-06-20T10:00:00'), FShippingMan = 16394 + FID % 2 WHERE FOrderStatus = 14 INSERT INTO "
      "IC_TradeLog (FOrderFID, FOPUserID, FOPCode, FOPTime) SELECT FID, 16394, 3008, '2026-06-20T09:30:00' FROM "
      "IC_Web2ERPOrders WHERE FID % 4 = 0");
  for (const std::string& caller : {ann_, pia_}) {
    std::map<std::string, std::int64_t> tabs;
    for (const Json& row : Rows("tabs", caller, Json::object())) tabs[row["FTab"]] = row["FOrders"];
    const Json backlog = Rows("backlog", caller, Json::object());
    EXPECT_EQ(Sum(backlog, "FOrders", [](const Json& row) { return row["FState"] == 2; }), tabs["toBePicked"]);
    EXPECT_EQ(Sum(backlog, "FOrders", [](const Json& row) { return row["FState"] == 6; }), tabs["toBeDelivered"]);
    for (const Json& row : backlog) {
      Json filter = {{"tab", row["FState"] == 2 ? "toBePicked" : "toBeDelivered"}, {"paidTo", row["FTo"]}};
      if (!row["FFrom"].is_null()) filter["paidFrom"] = row["FFrom"];
      EXPECT_EQ(Rows("orders", caller, filter).size(), row["FOrders"]) << row;
    }
    const Json work = Rows("work", caller, {{"day", "2026-06-20"}, {"days", 3}});
    for (const Json& row : work) {
      const std::string step = row["FStep"];
      const std::string by = row["FPersonID"];
      if (step != "delivered" && step != "weighed") continue;
      const std::string key = step == "delivered" ? "sent" : step;
      const Json listed =
          Rows("orders", caller, {{key + "From", row["FFrom"]}, {key + "To", row["FTo"]}, {key + "By", std::stoi(by)}});
      EXPECT_EQ(listed.size(), row["FOrders"]) << row;
    }
    const auto delivered = [](const Json& row) { return row["FStep"] == "delivered"; };
    EXPECT_EQ(Sum(work, "FOrders", delivered), Sum(Rows("carriers", caller, {{"day", "2026-06-20"}, {"days", 3}}),
                                                   "FOrders", [](auto&) { return true; }));
    EXPECT_EQ(Sum(Rows("work", caller, {{"day", "2026-06-20"}}), "FOrders",
                  [](const Json& row) { return row["FStep"] == "weighed"; }),
              Rows("orders", caller, {{"weighedFrom", "2026-06-20"}}).size());
  }
}

TEST_F(WorkbenchTest, CountsPrintsUpToTheirLimitAndTellsOthers) {
  database_.connection().Execute(
      "DELETE FROM ICPrintMaxCount INSERT INTO ICPrintMaxCount (FID, FPrintControlOrNo, FPrintMaxCount) VALUES (10143011, "
      "1, 2) UPDATE IC_Web2ERPOrders SET FPrintPickCount = FID DELETE FROM IC_PrintOrderInfo");
  const Json values = {{"document", 10143011}, {"keys", {1, 2, 3}}};
  const std::string again = ann_ + "Idempotency-Key: p1\r\n";
  for (int time = 0; time < 2; ++time) {
    EXPECT_EQ(Rows("countPrints", again, values), Json::parse(R"([{"FID":1}])")) << "counted once";
  }
  EXPECT_EQ(Rows("countPrints", ann_, values), Json::array());
  EXPECT_EQ(
      Read("SELECT o.FPrintPickCount, p.FIsPrintPick FROM IC_Web2ERPOrders o INNER JOIN IC_PrintOrderInfo p ON p.FID "
           "= o.FID"),
      "2|1|");
  EXPECT_EQ(Read("SELECT FOperation, FOrders FROM DoorCall"), "countPrints|1|");
}

TEST_F(WorkbenchTest, TheLogCanBeReadPageByPage) {
  database_.connection().Execute(
      "DELETE FROM IC_TradeLog DELETE FROM IC_TradeFieldLog DECLARE @i int = 0 WHILE @i < 7 BEGIN SET @i += 1 INSERT INTO "
      "IC_TradeLog (FOrderFID, FOPUserID, FOPCode, FOPTime) VALUES (2, 16394, 3008, '2026-06-20T09:30:00.123') INSERT INTO "
      "IC_TradeFieldLog (FOrderFID, FOPUserID, FFieldName, FOPTime) VALUES (2, 16394, 'FX', '2026-06-20T09:30:00.123') "
      "END");
  std::set<std::string> seen;
  Json asked = {{"most", 4}};
  for (Json page = Rows("log", pia_, asked); !page.empty(); page = Rows("log", pia_, asked)) {
    for (const Json& row : page) EXPECT_TRUE(seen.insert(row["FKind"].get<std::string>() + row["FKey"].dump()).second);
    const Json& last = page.back();
    asked.update({{"beforeTime", last["FTime"]}, {"beforeKind", last["FKind"]}, {"beforeKey", last["FKey"]}});
  }
  EXPECT_EQ(seen.size(), 14U);
}

TEST_F(WorkbenchTest, ResourcesAreForThoseWhomTheyConcern) {
  const auto status = [&](const std::string& line, const std::string& caller, const std::string& body = "") {
    return door_.Ask(line, caller, body).status;
  };
  EXPECT_EQ(status("PUT /api/v1/kept/views", ann_, R"([1])"), 204);
  EXPECT_EQ(status("PUT /api/v1/kept/views", pia_, R"({"own":true})"), 204);
  EXPECT_EQ(door_.Ask("GET /api/v1/kept", ann_).body, R"({"views":[1]})");
  EXPECT_EQ(door_.Ask("GET /api/v1/kept", pia_).body, R"({"views":{"own":true}})");
  const std::string user = R"({"name":"a/b","password":"long enough","erpUser":16395,"role":"picker"})";
  for (const char* const line : {"GET /api/v1/users", "POST /api/v1/users", "DELETE /api/v1/users/ann",
                                 "POST /api/v1/tokens", "GET /api/v1/roles"}) {
    EXPECT_EQ(status(line, pia_, user), 403) << line;
  }
  EXPECT_EQ(status("POST /api/v1/users", ann_, user), 201);
  EXPECT_EQ(status("POST /api/v1/users", ann_, user), 422);
  const HttpAnswer made = door_.Ask("POST /api/v1/tokens", ann_, R"({"user":"a/b","name":"x/y"})");
  const std::string token = Bearer(Json::parse(made.body)["token"]);
  EXPECT_EQ(status("GET /api/v1/me", token), 200);
  EXPECT_EQ(status("PATCH /api/v1/users/a%2Fb", ann_, R"({"disabled":true})"), 204);
  EXPECT_EQ(status("GET /api/v1/me", token), 401);
  EXPECT_EQ(status("DELETE /api/v1/tokens/a%2Fb/x%2Fy", ann_), 204);
  EXPECT_EQ(status("DELETE /api/v1/users/a%2Fb", ann_), 204);
  EXPECT_EQ(status("DELETE /api/v1/users/ann", ann_), 422);
  EXPECT_EQ(Read("SELECT FName FROM DoorUser"), "ann|pia|");
}

TEST_F(WorkbenchTest, TakesTextsAsTheyAre) {
  const std::string hostile = R"(100% [a_b]\ O'Brien "x" 王; drop table t --)";
  const HttpAnswer written = door_.Ask("POST /api/v1/clsSaveData/DeRemark", ann_,
                                       Json{{"dctPara", {{"FID", "7"}, {"FDeliveryRemark", hostile}}}}.dump());
  ASSERT_EQ(written.status, 200) << written.body;
  EXPECT_EQ(Rows("orders", ann_, {{"text", hostile}}), Json::parse(R"([{"FID":7}])"));
  for (const char* other : {"100_", "[a-z_b]", "1%王", "' OR 1=1 --"}) {
    EXPECT_EQ(Rows("orders", ann_, {{"text", other}}), Json::array()) << other;
  }
  EXPECT_EQ(Rows("orders", ann_, {{"fields", {"FDeliveryRemark~O'Brien \"x\"", "FOrderDate>=2020-01-01"}}}),
            Json::parse(R"([{"FID":7}])"));
  EXPECT_EQ(Rows("find", ann_, {{"text", "%"}}), Json::array());
  const Json history = Rows("history", ann_, {{"order", 7}});
  ASSERT_FALSE(history.empty());
  EXPECT_EQ(history[0]["FNewValue"], hostile);
}

TEST_F(WorkbenchTest, IsForRolesThatMayCallTheList) {
  AddRole(database_.connection(), "pickonly", {"ConfirmBill"});
  const std::string caller = AddCaller(database_.connection(), "low", 16394, "pickonly");
  for (const char* question : {"tabs", "orders", "choices"}) {
    EXPECT_EQ(Answer(question, caller, Json::object()).status, 403) << question;
  }
  const std::string reader = AddCaller(database_.connection(), "rea", 16394, "reader");
  EXPECT_EQ(Answer("countPrints", reader, {{"document", 10143011}, {"keys", {1}}}).status, 403);
}

TEST_F(WorkbenchTest, NamesTheKeyAtFault) {
  using Case = std::tuple<const char*, Json, int, const char*>;
  for (const auto& [question, values, status, key] :
       {Case{"orders", {{"tba", "locked"}}, 400, "tba"}, Case{"orders", {{"tab", "open"}}, 422, "tab"},
        Case{"orders", {{"sort", "FID; drop table t"}}, 422, "sort"}, Case{"orders", {{"most", 0}}, 422, "most"},
        Case{"orders", {{"shop", "101"}}, 422, "shop"}, Case{"orders", {{"paidTo", "soon"}}, 422, "paidTo"},
        Case{"rows", {{"keys", {"1) OR (1=1"}}}, 422, "keys"},
        Case{"orders", {{"paidTo", "1600-01-01"}}, 422, "paidTo"},
        Case{"orders", {{"fields", {"FWeight>=1 OR 1=1"}}}, 422, "fields"},
        Case{"orders", {{"fields", {"FNone=1"}}}, 422, "fields"},
        Case{"work", {{"day", "2026-06-20"}, {"days", 32}}, 422, "days"},
        Case{"countPrints", {{"document", 7}, {"keys", {1}}}, 422, "document"},
        Case{"orders", {{"paidTo", "5/6/2024"}}, 422, "paidTo"}, Case{"find", {{"text", " "}}, 422, "text"},
        Case{"find", Json::object(), 400, "text"}}) {
    const HttpAnswer answer = Answer(question, ann_, values);
    EXPECT_EQ(answer.status, status) << answer.body;
    EXPECT_EQ(Json::parse(answer.body)["key"], key);
  }
}

}  // namespace
}  // namespace tessarlorn::http
