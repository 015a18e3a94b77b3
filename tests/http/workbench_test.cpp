// The questions of the workbench: they agree with the list of orders, and show nobody more than it does.
#include <nlohmann/json.hpp>

#include "hosts/http/access/roles.h"
#include "http/door_support.h"

namespace tessarlorn::http {
namespace {

using Json = nlohmann::json;

class WorkbenchTest : public DoorTest {
 protected:
  HttpAnswer Answer(const std::string& question, const std::string& caller, const Json& values) const {
    return door_.Ask("POST /api/v1/workbench/" + question, caller + "Content-Type: application/json\r\n",
                     values.dump());
  }
  Json Rows(const std::string& question, const std::string& caller, const Json& values) const {
    const HttpAnswer answer = Answer(question, caller, values);
    EXPECT_EQ(answer.status, 200) << answer.body;
    return Json::parse(answer.body)["result"]["rows"];
  }
  /// Keys of the list itself, which the page's filter is to show, too.
  Json Listed(const std::string& caller, const Json& filter) const {
    const HttpAnswer answer = door_.Ask("POST /api/v1/clsGetData/GetListData?columns=FID",
                                        caller + "Content-Type: application/json\r\n", Json{{"Filter", filter}}.dump());
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
  for (const auto& [question, values] : std::map<std::string, Json>{{"find", {{"text", number}}},
                                                                    {"rows", {{"keys", {1}}}},
                                                                    {"orders", {{"shop", 103}}},
                                                                    {"history", {{"order", 1}}}}) {
    EXPECT_EQ(Rows(question, pia_, values), Json::array()) << question;
  }
  for (const Json& choice : Rows("choices", pia_, Json::object())) {
    EXPECT_FALSE(choice["FKind"] == "shop" && choice["FID"] == 103);
  }
}

TEST_F(WorkbenchTest, TakesTextsAsTheyAre) {
  const std::string hostile = R"(100% [a_b]\ O'Brien "x" 王; drop table t --)";
  const HttpAnswer written = door_.Ask("POST /api/v1/clsSaveData/DeRemark", ann_ + "Content-Type: application/json\r\n",
                                       Json{{"dctPara", {{"FID", "7"}, {"FDeliveryRemark", hostile}}}}.dump());
  ASSERT_EQ(written.status, 200) << written.body;
  EXPECT_EQ(Rows("orders", ann_, {{"text", hostile}}), Json::parse(R"([{"FID":7}])"));
  for (const char* other : {"100_", "[a-z_b]", "1%王", "' OR 1=1 --"}) {
    EXPECT_EQ(Rows("orders", ann_, {{"text", other}}), Json::array()) << other;
  }
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
}

TEST_F(WorkbenchTest, NamesTheKeyAtFault) {
  struct Case {
    const char* question;
    Json values;
    int status;
    const char* key;
  };
  for (const auto& [question, values, status, key] :
       {Case{"orders", {{"tba", "locked"}}, 400, "tba"}, Case{"orders", {{"tab", "open"}}, 422, "tab"},
        Case{"orders", {{"sort", "FID; drop table t"}}, 422, "sort"}, Case{"orders", {{"most", 0}}, 422, "most"},
        Case{"orders", {{"shop", "101"}}, 422, "shop"}, Case{"orders", {{"paidTo", "soon"}}, 422, "paidTo"},
        Case{"rows", {{"keys", {"1) OR (1=1"}}}, 422, "keys"},
        Case{"orders", {{"paidTo", "1600-01-01"}}, 422, "paidTo"},
        Case{"orders", {{"paidTo", "5/6/2024"}}, 422, "paidTo"}, Case{"find", {{"text", " "}}, 422, "text"},
        Case{"find", Json::object(), 400, "text"}}) {
    const HttpAnswer answer = Answer(question, ann_, values);
    EXPECT_EQ(answer.status, status) << answer.body;
    EXPECT_EQ(Json::parse(answer.body)["key"], key);
  }
}

}  // namespace
}  // namespace tessarlorn::http
