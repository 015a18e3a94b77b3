#include <gmock/gmock.h>

#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

using testing::HasSubstr;

class OrderLinesTest : public RecordingTest {
 protected:
  std::string Send(const char* user_fields) {
    Events().clear();
    TheRecording().answer = [=](std::string_view text) {
      return text.starts_with("declare") ? TextRows({"UserDefineFld"}, {{user_fields}}) : TextRows({}, {});
    };
    const Dictionary parameters{{"FID", 12}};
    EXPECT_NE(get_.GetEntryData(kDsn, &parameters), nullptr);
    EXPECT_EQ(TheRecording().Batches().size(), 2U);
    return TheRecording().Batches().back();
  }
};

TEST_F(OrderLinesTest, ReadsTheFieldsOfTheInstallation) {
  EXPECT_THAT(Send(""), testing::AllOf(HasSubstr("FActivityName\r\nFROM "), HasSubstr("\r\nand t1.FID=12\r\n")));
  EXPECT_THAT(Send(",t2.FColour"), HasSubstr("FActivityName\r\n,t2.FColour\r\nFROM "));
}

}  // namespace
}  // namespace tessarlorn
