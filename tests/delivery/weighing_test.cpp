#include <gmock/gmock.h>

#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using WeighingTest = RecordingTest;

TEST_F(WeighingTest, LogsEachParcelBeforeTheBatch) {
  const Vector parcels{
      Dictionary{
          {"FWeight", 1.5}, {"FLogisticsCost", "12"}, {"FWeighttingMan", 7}, {"FWeighttingStatus", 1}, {"FID", 12}},
      Dictionary{{"FID", "15"}}};
  EXPECT_TRUE(save_.SaveLogWeight(kDsn, &parcels));
  EXPECT_THAT(Events(),
              ElementsAre("IsLogEnable(3008)", HasSubstr("{sFID=12,"), "IsLogEnable(3008)", HasSubstr("{sFID=15,"),
                          testing::AllOf(HasSubstr("FWeight = 1.5,FLogisticsCost = 12,"),
                                         HasSubstr("FWeight = ,FLogisticsCost = ,"))));
  Events().clear();
  const Vector none;
  EXPECT_TRUE(save_.SaveLogWeight(kDsn, &none));
  EXPECT_FALSE(save_.SaveLogWeight(kDsn, nullptr));
  EXPECT_TRUE(Events().empty());
  const Vector no_orders{1};
  EXPECT_EQ(Raised([&] { save_.SaveLogWeight(kDsn, &no_orders); }), "13 SaveLogWeight");
}

TEST_F(WeighingTest, MarksWeighedAndQueuesOnRequest) {
  Dictionary parameters{{"FID", "12,15"}, {"UserID", 7}, {"AsyncCreate", false}};
  const std::string update = Lines({
      "UPDATE IC_Web2ERPOrders",
      "SET FWeighttingStatus = 1,FWeighttingMan = 7",
      "WHERE FID IN (12,15)",
  });
  EXPECT_TRUE(save_.UpdateLogisticsWeightStatus(kDsn, &parameters));
  EXPECT_EQ(OnlyEvent(), update);
  Events().clear();
  parameters.SetValue("AsyncCreate", "True");
  EXPECT_TRUE(save_.UpdateLogisticsWeightStatus(kDsn, &parameters));
  EXPECT_THAT(Events(), ElementsAre(update, HasSubstr("VALUES (15,1,'')")));
  Events().clear();
  parameters.Remove("AsyncCreate");
  EXPECT_FALSE(save_.UpdateLogisticsWeightStatus(kDsn, &parameters));
  EXPECT_TRUE(Events().empty());
}

TEST_F(WeighingTest, AddsWeightsUpInKilograms) {
  const struct {
    const char* gross_unit;
    const char* item_unit;
    const char* coefficient;
    double expected;
  } cases[] = {
      {"kg", "PCS", "9", 500}, {"千克", "PCS", "9", 500}, {"g", "PCS", "9", 0.5}, {"克", "PCS", "9", 0.5},
      {"*", "Kg", "9", 500},   {"*", "克", "9", 0.5},     {"*", "PCS", "4", 125}, {"t", "kg", "0.001", 500000},
  };
  const std::vector<std::string> fields = {"FID", "FUnitName", "FGrossUnitName", "FCoefficient", "FWeight"};
  for (const auto& c : cases) {
    TheRecording().answer = [&](std::string_view) {
      return TextRows(fields,
                      {{"12", c.item_unit, c.gross_unit, c.coefficient, "500"}, {"12", "", "", nullptr, nullptr}});
    };
    const Dictionary weight = get_.NewGetWeightByFID(kDsn, 12).value();
    EXPECT_EQ(weight.GetValue("FWeight").ToDouble(), c.expected) << c.gross_unit << " " << c.item_unit;
    EXPECT_EQ(weight.GetValue("FID").ToInt32(), 12);
  }
  TheRecording().answer = [&](std::string_view) { return TextRows(fields, {{"12", "", "*", "0", "1"}}); };
  EXPECT_EQ(Raised([&] { get_.NewGetWeightByFID(kDsn, 12); }), "11 NewGetWeightByFID");
  TheRecording().answer = {};
  EXPECT_EQ(get_.NewGetWeightByFID(kDsn, 12)->GetValue("FWeight").ToText(), "0");
}

}  // namespace
}  // namespace tessarlorn
