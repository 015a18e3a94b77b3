// A copy of the database takes reads while it is near, and only those that may be a little old.
#include <gmock/gmock.h>

#include "hosts/http/access/tokens.h"
#include "hosts/http/access/users.h"
#include "support/door_answers.h"
#include "support/sample_database.h"
#include "support/wait_until.h"

namespace tessarlorn::http {
namespace {

using testing::HasSubstr;

class ReplicaTest : public testing::Test {
 protected:
  ReplicaTest() {
    AddUser(first_.connection(), "ann", {.erp_user = 16394, .role = "supervisor", .password = "correct horse"});
    token_ = AddToken(first_.connection(), "test", "ann", std::nullopt);
    Mark(first_, "first");
    Mark(copy_, "copy");
    DoorOptions options;
    options.database = first_.database();
    options.replica = copy_.database();
    options.longest_lag = kLag;
    door_ = std::make_unique<Door>(TestHost(), options);
  }
  static void Mark(SampleDatabase& database, const std::string& mark) {
    database.connection().Execute("UPDATE IC_Web2ERPOrders SET FConsignee='" + mark +
                                  "' UPDATE IC_Web2ERPOrdersEntry SET FBatchNo='" + mark + "'");
  }
  /// The copy has the beat of so many seconds ago.
  void Beat(int age) {
    copy_.connection().Execute("DELETE FROM DoorBeat INSERT INTO DoorBeat VALUES (1, DATEADD(second, " +
                               std::to_string(-age) + ", SYSUTCDATETIME()))");
  }
  std::string List() {
    return Ask(*door_, token_, "/api/v1/clsGetData/GetListData?columns=FConsignee", R"({"Filter":{}})").body;
  }
  bool ListComesFrom(std::string_view mark) {
    return WaitUntil([&] { return List().find(mark) != std::string::npos; });
  }

  static constexpr std::chrono::seconds kLag{5};
  SampleDatabase first_{20};
  SampleDatabase copy_{20};
  std::string token_;
  std::unique_ptr<Door> door_;
};

TEST_F(ReplicaTest, TakesReadsWhileItIsNear) {
  EXPECT_THAT(List(), HasSubstr("first"));
  Beat(-3600);
  EXPECT_TRUE(ListComesFrom("copy"));
  // What has to be the latest stays, and so does what the copy refuses.
  EXPECT_THAT(Ask(*door_, token_, "/api/v1/clsGetData/GetBatchNo", R"({"dctPara":{"FID":"1,2,3"}})").body,
              HasSubstr("first"));
  copy_.connection().Execute("DROP TABLE IC_Web2ERPOrdersEx");
  EXPECT_THAT(List(), HasSubstr("first"));
  ApplySchema(copy_.connection());
  EXPECT_TRUE(ListComesFrom("copy"));
  Beat(60);
  EXPECT_TRUE(ListComesFrom("first"));
  Beat(-3600);
  EXPECT_TRUE(ListComesFrom("copy"));
}

}  // namespace
}  // namespace tessarlorn::http
