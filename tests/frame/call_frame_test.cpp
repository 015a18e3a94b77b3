#include "frame/call_frame.h"

#include <gmock/gmock.h>
#include <new>

#include "support/error_of.h"
#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

constexpr Contract kDelivery = {.name = "Delivery", .source = "Delivery", .arguments = {}, .help = ""};
constexpr Contract kPlain = {.name = "", .source = "", .arguments = {}, .help = ""};

class CallFrameTest : public RecordingTest {
 protected:
  InstanceState State() { return {host_, context_, session_}; }

  SessionContext context_;
  std::shared_ptr<DataSession> session_ = SessionFactory::ForThisThread(host_).NewSession();
};

TEST_F(CallFrameTest, TurnsEveryFailureIntoOneErrorOfTheOperation) {
  const auto raised = [&](const auto& failure) {
    return Raised([&] { CallOperation(State(), kDelivery, kDsn, [&](Connection&) { failure(); }); });
  };
  EXPECT_EQ(raised([] { throw std::bad_alloc(); }), "7 Delivery");
  EXPECT_EQ(raised([] { throw std::runtime_error("x"); }), "51 Delivery");
  EXPECT_EQ(raised([] { throw 1; }), "51 Delivery");
  EXPECT_EQ(raised([] { RaiseTypeMismatch(); }), "13 Delivery");
  EXPECT_EQ(Raised([&] { CallOperation(State(), kDelivery, "Nobody=1", [](Connection&) {}); }),
            std::to_string(error_number::kLoginRefused) + " Delivery");
  const Error error = ErrorOf([&] {
    CallOperation(State(), kDelivery, kDsn, [](Connection&) {
      throw Error(error_number::kConstraintBroken, "driver", "Violation of PRIMARY KEY", {2627, "23000"});
    });
  });
  EXPECT_EQ(error.number(), error_number::kConstraintBroken);
  EXPECT_EQ(error.description(), "Violation of PRIMARY KEY");
  EXPECT_EQ(error.native().number, 2627);
  EXPECT_EQ(error.native().sqlstate, "23000");
}

TEST_F(CallFrameTest, ReplacesSessionAndContextWithEachCall) {
  CallOperation(State(), kPlain, kDsn, [&](Connection&) { EXPECT_EQ(session_->GetDsn(), kDsn); });
  CallOperation(State(), kPlain, "Connect=Recording=b;User=2;Language=CHT", [&](Connection&) {});
  EXPECT_EQ(context_.GetLanguage(), "CHT");
  EXPECT_EQ(context_.GetCallerInfo(), "User=2");
  EXPECT_THAT(Events(), testing::ElementsAre("open"));
  // A session that is kept holds its connection until the new one is open.
  CallOperation(
      State(), kPlain, "Recording=b", [](Connection&) {}, OldSession::kKeep);
  EXPECT_THAT(Events(), testing::ElementsAre("open", "open"));
}

}  // namespace
}  // namespace tessarlorn
