// Who is let in, who is not, and what each may call.
#include <atomic>
#include <gmock/gmock.h>
#include <sodium.h>
#include <thread>

#include "hosts/http/access/logins.h"
#include "hosts/http/access/throttle.h"
#include "hosts/http/access/tokens.h"
#include "hosts/http/access/users.h"
#include "support/error_of.h"
#include "support/sample_test.h"

namespace tessarlorn::http {
namespace {

using std::chrono::seconds;
using testing::AllOf;
using testing::Gt;
using testing::HasSubstr;
using testing::Le;

constexpr const char* kPassword = "correct horse";

class AccessTest : public testing::Test {
 protected:
  AccessTest() : database_(ReachOfEnvironment()), connection_(OpenConnection(database_.string())) {
    for (const SchemaFile& file : SchemaFiles()) {
      if (file.name != "70_door.sql") continue;
      for (const std::string_view batch : SplitBatches(file.text)) connection_->Execute(batch);
    }
    AddUser(*connection_, "Ann", {.erp_user = 7, .role = "administrator", .sql = true, .password = kPassword});
  }

  Login Try(std::string_view password, std::string_view user = "ann", std::string_view address = "10.0.0.5") {
    return LogIn(*connection_, user, password, address);
  }
  std::string Read(std::string_view query) { return Cells(*connection_, query); }
  /// All that has happened so far happened so long before.
  void Pass(int passed) {
    const std::string back = "=DATEADD(second,-" + std::to_string(passed) + ",";
    connection_->Execute("UPDATE DoorThrottle SET FLast" + back + "FLast)\nUPDATE DoorSession SET FUsed" + back +
                         "FUsed),FBegun" + back + "FBegun)\nUPDATE DoorToken SET FUsed" + back + "FUsed),FExpires" +
                         back + "FExpires)");
  }
  void Change(const UserSettings& settings) { ChangeUser(*connection_, "ann", settings); }
  bool IsIn(const std::string& cookie) { return CallerOfSession(*connection_, cookie, {}).has_value(); }

  TestDatabase database_;
  std::unique_ptr<Connection> connection_;
};

TEST_F(AccessTest, SessionsEndInEachWay) {
  const Login login = Try(kPassword, "ANN");
  ASSERT_TRUE(login.caller);
  EXPECT_EQ(login.caller->name + login.caller->language + login.caller->role->name(), "AnnCHSadministrator");
  EXPECT_EQ(login.caller->user, 7);
  EXPECT_TRUE(login.caller->sql);
  EXPECT_EQ(Read("SELECT COUNT(*) FROM DoorThrottle WHERE FFailures>0"), "0|");
  EXPECT_FALSE(IsIn(""));
  EXPECT_FALSE(IsIn(login.cookie + "x"));

  Pass(1700);
  EXPECT_TRUE(IsIn(login.cookie)) << "and this use begins a new half hour";
  Pass(1700);
  EXPECT_TRUE(IsIn(login.cookie));
  EXPECT_FALSE(CallerOfSession(*connection_, login.cookie, {.idle = seconds(1800), .whole = seconds(3000)}));
  SweepAccess(*connection_, {});
  Pass(1900);
  EXPECT_FALSE(IsIn(login.cookie));
  SweepAccess(*connection_, {});
  EXPECT_EQ(Read("SELECT COUNT(*) FROM DoorSession"), "0|");

  const std::string one = Try(kPassword).cookie;
  const std::string two = Try(kPassword).cookie;
  LogOut(*connection_, one);
  EXPECT_FALSE(IsIn(one));
  EXPECT_TRUE(IsIn(two));
  for (const auto& end : {std::function<void()>([this] { LogOutEverywhere(*connection_, "ann"); }),
                          {[this] { Change({.password = kPassword}); }},
                          {[this] { Change({.disabled = true}); }},
                          {[this] { RemoveUser(*connection_, "ann"); }}}) {
    const std::string cookie = Try(kPassword).cookie;
    EXPECT_TRUE(IsIn(cookie));
    end();
    EXPECT_FALSE(IsIn(cookie));
    if (Read("SELECT FDisabled FROM DoorUser") == "True|") {
      EXPECT_FALSE(Try(kPassword).caller);
      Change({.disabled = false});
      EXPECT_FALSE(IsIn(cookie)) << "it had ended";
    }
  }
  EXPECT_EQ(Read("SELECT COUNT(*) FROM DoorSession"), "0|");
}

TEST_F(AccessTest, TokensLetProgramsInUntilTheyEnd) {
  const std::string token = AddToken(*connection_, "scan", "ann", 2);
  EXPECT_EQ(token.size(), 46U);
  EXPECT_EQ(CallerOfToken(*connection_, token).value().token, "scan");
  const std::string used = Read("SELECT FUsed FROM DoorToken");
  EXPECT_TRUE(CallerOfToken(*connection_, token));
  EXPECT_EQ(Read("SELECT FUsed FROM DoorToken"), used) << "it is written once a minute";
  EXPECT_FALSE(CallerOfToken(*connection_, token.substr(0, 45)));
  Change({.role = "picker", .disabled = true});
  EXPECT_FALSE(CallerOfToken(*connection_, token));
  Change({.disabled = false});
  EXPECT_FALSE(CallerOfToken(*connection_, token).value().sql) << "another role took it";
  Pass(2 * 86'400);
  EXPECT_FALSE(CallerOfToken(*connection_, token));
  const std::string lasting = AddToken(*connection_, "lasting", "ann", std::nullopt);
  EXPECT_TRUE(CallerOfToken(*connection_, lasting));
  RevokeToken(*connection_, "lasting", "ann");
  EXPECT_FALSE(CallerOfToken(*connection_, lasting));
}

TEST_F(AccessTest, FailuresMakeOthersWait) {
  for (int i = 0; i < 5; ++i) {
    const Login login = Try("wrong horse", i % 2 == 0 ? "ann" : "nobody", "10.0.0." + std::to_string(i));
    EXPECT_FALSE(login.caller || login.wait.count() > 0);
  }
  EXPECT_EQ(Read("SELECT FFailures FROM DoorThrottle WHERE FKey IN ('u:ANN','u:nobody') ORDER BY FKey"), "3|2|");
  connection_->Execute("UPDATE DoorThrottle SET FFailures=12 WHERE FKey='u:ann'");
  EXPECT_THAT(Try(kPassword, "ann", "elsewhere").wait, AllOf(Gt(seconds(64)), Le(seconds(128))))
      << "though it is right";
  EXPECT_EQ(Read("SELECT COUNT(*) FROM DoorThrottle WHERE FKey='a:elsewhere'"), "0|") << "it was no guess";
  Pass(128);
  ASSERT_TRUE(Try(kPassword, "ann", "10.0.0.4").caller);
  EXPECT_EQ(Read("SELECT FKey,FFailures FROM DoorThrottle WHERE FKey IN ('u:ann','a:10.0.0.4')"), "a:10.0.0.4|1|")
      << "the address is not forgiven";
  connection_->Execute("UPDATE DoorThrottle SET FFailures=99,FLast=SYSUTCDATETIME() WHERE FKey='a:10.0.0.4'");
  EXPECT_THAT(Try(kPassword, "ann", "10.0.0.4").wait, AllOf(Gt(seconds(128)), Le(seconds(300))));
  Pass(301);
  EXPECT_TRUE(Try(kPassword, "ann", "10.0.0.4").caller);
  EXPECT_TRUE(Try(kPassword, "ann", "10.0.0.4").caller) << "a success makes nobody wait";
  Pass(3601);
  EXPECT_FALSE(Try("wrong horse", "ann", "10.0.0.4").caller);
  EXPECT_EQ(Read("SELECT FFailures FROM DoorThrottle WHERE FKey='a:10.0.0.4'"), "1|") << "the others are forgotten";
}

TEST_F(AccessTest, GuessesInManyThreadsAreCountedOneByOne) {
  { const Attempt first(*connection_, "ann", "a"); }
  connection_->Execute("UPDATE DoorThrottle SET FFailures=13");
  Pass(301);
  std::atomic<int> free = 0;
  std::vector<std::thread> guesses;
  for (int i = 0; i < 6; ++i) {
    guesses.emplace_back([this, &free] {
      const std::unique_ptr<Connection> own = TestHost().OpenConnection(database_.string());
      if (Attempt(*own, "ann", "a").wait().count() == 0) ++free;
    });
  }
  for (std::thread& guess : guesses) guess.join();
  EXPECT_EQ(free, 1);
}

TEST_F(AccessTest, HashesOfOtherCostsAreMadeAnew) {
  std::array<char, crypto_pwhash_STRBYTES> cheap{};
  ASSERT_EQ(crypto_pwhash_str(cheap.data(), kPassword, std::string_view(kPassword).size(), crypto_pwhash_OPSLIMIT_MIN,
                              crypto_pwhash_MEMLIMIT_MIN),
            0);
  connection_->Execute("UPDATE DoorUser SET FHash='" + std::string(cheap.data()) + "'");
  ASSERT_TRUE(Try(kPassword).caller);
  EXPECT_THAT(Read("SELECT FHash FROM DoorUser"), HasSubstr("m=65536"));
  EXPECT_TRUE(Try(kPassword).caller);
}

TEST_F(AccessTest, RolesAllowWhatTheyAreFor) {
  for (const Operation* const operation : Operations()) {
    const std::string name(operation->name);
    for (const RolePtr& role : BuiltInRoles()) {
      if (role->administrator()) {
        EXPECT_TRUE(role->Allows(*operation)) << name;
      } else {
        EXPECT_TRUE(name != "ExecuteSQL" || !role->Allows(*operation)) << role->name();
        EXPECT_TRUE(name != "TransMode" || role->Allows(*operation)) << role->name();
      }
    }
  }
  AddRole(*connection_, "checker", {"getlistdata", "clsSaveData.MarkPickingGoodsStatus"});
  Change({.role = "CHECKER"});
  const RolePtr own = Try(kPassword).caller.value().role;
  EXPECT_EQ(own->name(), "checker");
  EXPECT_TRUE(own->Allows(*FindOperation("GetListData")) && own->Allows(*FindOperation("MarkPickingGoodsStatus")));
  EXPECT_FALSE(own->Allows(*FindOperation("Delivery")));
  connection_->Execute("UPDATE DoorRole SET FOperations=FOperations+',ExecuteSQL'");
  EXPECT_FALSE(FindRole(*connection_, "Checker")->Allows(*FindOperation("ExecuteSQL")));
  EXPECT_EQ(FindRole(*connection_, "check"), nullptr);

  const auto fault = [this](const auto& action) { return ErrorOf([&] { action(*connection_); }).description(); };
  EXPECT_THAT(fault([](Connection& c) { RemoveRole(c, "checker"); }), HasSubstr("that of Ann"));
  EXPECT_THAT(fault([](Connection& c) { AddRole(c, "Picker", {"Delivery"}); }), HasSubstr("already"));
  EXPECT_THAT(fault([](Connection& c) { AddRole(c, "x", {"Deliver"}); }), HasSubstr("did you mean Delivery?"));
  EXPECT_THAT(fault([](Connection& c) { ChangeUser(c, "ann", {.sql = true}); }), HasSubstr("administrator"));
  connection_->Execute("DROP TABLE DoorSession");
  EXPECT_THAT(fault([](Connection& c) { LogOut(c, "x"); }), HasSubstr("'tessarlorn init'"));
}

}  // namespace
}  // namespace tessarlorn::http
