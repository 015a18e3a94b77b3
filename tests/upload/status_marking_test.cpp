#include <gmock/gmock.h>

#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

using StatusMarkingTest = RecordingTest;

TEST_F(StatusMarkingTest, MarksUploaded) {
  Dictionary parameters{{"sDSN", kDsn}, {"FID", "12,15"}, {"IsOfflineUpLoad", "1"}};
  EXPECT_TRUE(save_.UploadStatus(&parameters));
  EXPECT_NE(OnlyEvent().find("\r\nFSendType = 38132 ,\r\n"), std::string::npos);
  for (const Variant& offline : {Variant(0), Variant(2), Variant(true), Variant("")}) {
    Events().clear();
    parameters.SetValue("IsOfflineUpLoad", offline);
    EXPECT_TRUE(save_.UploadStatus(&parameters));
    EXPECT_EQ(OnlyEvent().find("FSendType"), std::string::npos) << offline.ToText();
  }
  parameters.SetValue("IsOfflineUpLoad", "no");
  EXPECT_EQ(Raised([&] { save_.UploadStatus(&parameters); }), "13 UploadStatus");
}

TEST_F(StatusMarkingTest, RecordsFailures) {
  Dictionary parameters{
      {"sDSN", kDsn},
      {"ErrInfo", Vector{Dictionary{{"FailureFID", 12}, {"FailureInfo", "can't 'ship'"}}, Dictionary{}}}};
  EXPECT_TRUE(save_.UploadStatusFailure(&parameters));
  EXPECT_EQ(OnlyEvent(),
            Lines({
                "UPDATE IC_Web2ERPOrders SET FUpLoadStatus =0,FReasonsForFailure = 'cant ship' WHERE FID = 12",
                "UPDATE IC_Web2ERPOrders SET FUpLoadStatus =0,FReasonsForFailure = '' WHERE FID = 0",
            }));
  Events().clear();
  parameters.SetValue("ErrInfo", Vector{});
  EXPECT_TRUE(save_.UploadStatusFailure(&parameters));
  EXPECT_TRUE(Events().empty());
  parameters.SetValue("ErrInfo", "failed");
  EXPECT_EQ(Raised([&] { save_.UploadStatusFailure(&parameters); }), "13 UploadStatusFailure");
}

}  // namespace
}  // namespace tessarlorn
