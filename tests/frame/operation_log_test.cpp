#include <gmock/gmock.h>

#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;

class OperationLogTest : public RecordingTest {
 protected:
  /// An instance whose last operation has left a session open.
  OperationLogTest() {
    save_.UpdateDeliveryData(kDsn, "");
    Events().clear();
  }
};

TEST_F(OperationLogTest, TakesTheAddressUpToItsEnd) {
  const auto address = [&](std::size_t length, int answer) {
    Events().clear();
    host_.SetReadTcp([=](std::span<char> buffer, std::span<char>) {
      std::fill_n(buffer.begin(), length, '1');
      return answer;
    });
    return Raised([&] { save_.WriteOPLog("1", "1", "0", "", ""); });
  };
  EXPECT_EQ(address(63, 1), "none");
  EXPECT_THAT(Events(), ElementsAre(testing::HasSubstr("FUserIP=" + std::string(63, '1') + ",")));
  EXPECT_EQ(address(5, 0), "none");
  EXPECT_THAT(Events(), ElementsAre(testing::HasSubstr("FUserIP=,")));
  EXPECT_EQ(address(64, 1), "5 TessarLornPickingAndDelivery");
}

TEST_F(OperationLogTest, LetsErrorsOfTheComponentThrough) {
  host_.AddObject("TessarMWebOrder.TessarMWebOrderUpdate", {});
  EXPECT_EQ(Raised([&] { save_.IsLogEnable("3005"); }), "429 TessarLornPickingAndDelivery");
}

}  // namespace
}  // namespace tessarlorn
