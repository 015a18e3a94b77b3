#include <gmock/gmock.h>

#include "frame/clsGetData.h"
#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

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
    EXPECT_THAT(TheRecording().Batches().front(), HasSubstr("',t2.'+FFieldName \r\n"));
    EXPECT_THAT(TheRecording().Batches().front(), HasSubstr("and FPage=2\r\n"));
    return TheRecording().Batches().back();
  }
  clsGetData get_;
};

TEST_F(OrderLinesTest, ReadsTheLinesOfAnOrder) {
  const std::string text = Send("");
  EXPECT_THAT(text,
              StartsWith(" SET TRANSACTION ISOLATION LEVEL READ UNCOMMITTED \r\nSELECT  0.05 as FTest, t1.FID ,\r\n"));
  EXPECT_THAT(text,
              HasSubstr("\r\n ,t18.FActivityName as FActivityName\r\nFROM    IC_Web2ERPOrders t1 with(nolock) \r\n"));
  EXPECT_THAT(text, EndsWith(Lines({
                        " LEFT JOIN IC_CDPSActivity t18 ON t17.FActivityID=t18.FActivityID",
                        "where 1=1 ",
                        "and t1.FID=12",
                        "ORDER BY t2.FIsFree, t2.FIndex",
                    })));
  EXPECT_THAT(Send(",t2.FColour"), HasSubstr("FActivityName\r\n,t2.FColour\r\nFROM "));
}

TEST_F(OrderLinesTest, NeedsConnectionStringAndOrder) {
  const Dictionary parameters{{"FID", 12}};
  const Dictionary other{{"fid", 12}};
  EXPECT_EQ(get_.GetEntryData("", &parameters), nullptr);
  EXPECT_EQ(get_.GetEntryData(kDsn, &other), nullptr);
  EXPECT_EQ(get_.GetEntryData(kDsn, nullptr), nullptr);
  EXPECT_TRUE(Events().empty());
}

}  // namespace
}  // namespace tessarlorn
