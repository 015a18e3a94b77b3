// What every operation sends to the database, to the blank: blanks at line ends and comments are part of it, and an
// editor or a formatter would take them out unseen.
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "automation/operations.h"
#include "platform/text.h"
#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

std::string dsn;

/// Values that lead an operation through its statements.
Variant Sample(std::string_view name, ValueType type) {
  if (name == "sFKey") return "1014301_FStockID";
  if (name == "PrintID") return 10143012;
  if (name == "FPickingGoodsstatus") return 1;
  if (type == ValueType::kBoolean) return true;
  if (type == ValueType::kLong || type == ValueType::kInteger || type == ValueType::kDouble) return 71;
  if (type == ValueType::kDate) return "2024-05-06";
  return std::string("<").append(name).append(">");
}

Dictionary SampleKeys(std::span<const Key> keys) {
  Dictionary values;
  for (const Key& key : keys) {
    if (key.is_connection()) {
      values.SetValue(key.name, dsn);
    } else if (key.type == ValueType::kVector) {
      values.SetValue(key.name, Vector{SampleKeys(key.item_keys)});
    } else if (key.name == "FID") {
      values.SetValue(key.name, "12");
    } else if (key.name != "AdvancedFilter") {
      values.SetValue(key.name, Sample(key.name, key.type));
    }
  }
  return values;
}

Variant SampleArgument(const Argument& argument) {
  if (argument.is_connection()) return dsn;
  if (argument.type == ValueType::kDictionary) {
    return argument.any_key ? Dictionary{{"<key>", "<value>"}} : SampleKeys(argument.keys);
  }
  if (argument.type == ValueType::kVector) return Vector{SampleKeys(argument.keys)};
  if (argument.name == "sFID" || argument.name == "strFids" || argument.name == "strIDs") return "12,15";
  return Sample(argument.name, argument.type);
}

/// One row that answers every question: counts are 1, texts tell their field.
RecordsetPtr Answer(std::string_view text) {
  if (text.starts_with(" select count(1) as Fcount")) return TextRows({"Fcount"}, {{"0"}});
  if (text.find("AccessData") == std::string_view::npos && text.find("WebShopAccess") != std::string_view::npos) {
    return TextRows({"FValue"}, {});
  }
  return TextRows({"Flag",
                   "FID",
                   "FItemID",
                   "FNumber",
                   "FSiteOrderID",
                   "Num",
                   "FChildOrderID",
                   "FWebshopID",
                   "FLogisticsID",
                   "FLogisticsOrder",
                   "FOrderID",
                   "MaxNum",
                   "FLookUpList",
                   "FSRCFieldName",
                   "FDSPFieldName",
                   "FDeliveryProvince",
                   "FDeliveryCity",
                   "FDeliveryDistrict",
                   "FPrintControlOrNo",
                   "FPrintMaxCount",
                   "FUniqueCode",
                   "FPrintSendCount",
                   "FValue",
                   "FWebShopType",
                   "FStatus",
                   "FEntryID",
                   "FStockID",
                   "FStockName",
                   "FDefaultStockPlaceGroupID",
                   "FDefaultStockPlaceGroupName",
                   "FDefaultStockPlaceName",
                   "FDefaultItemStockPlaceID",
                   "FWebtplType",
                   "FWebtplID",
                   "FIndex",
                   "FWeight",
                   "FGrossUnitName",
                   "FUnitName",
                   "FCoefficient",
                   "TotalLogisticsCosts",
                   "UserDefineFld"},
                  {{"1",
                    "1",
                    "1",
                    "<code>",
                    "<site>",
                    "2",
                    "<child>",
                    "1",
                    "1",
                    "<waybill>",
                    "<order>",
                    "7",
                    "SELECT x FROM <list>",
                    "<id>",
                    "<name>",
                    "<province>",
                    "<city>",
                    "<district>",
                    "1",
                    "1",
                    "1",
                    "1",
                    "1",
                    "1",
                    "0",
                    "1",
                    "1",
                    "<stock>",
                    "1",
                    "<group>",
                    "<place>",
                    "1",
                    "1",
                    "1",
                    "1",
                    "1",
                    "KG",
                    "KG",
                    "1",
                    "1",
                    ",t1.<user field>"}});
}

/// What the texts of the samples say is the same with their quotes doubled.
class StatementsTest : public RecordingTest, public testing::WithParamInterface<const char*> {
 protected:
  StatementsTest() {
    dsn = std::string(kDsn) + GetParam();
    SessionFactory::ForThisThread().NewSession()->OpenSession(dsn);
  }
};

void InvokeWithSamples(const Operation& operation) {
  std::vector<Variant> arguments;
  for (const Argument& argument : operation.arguments()) arguments.push_back(SampleArgument(argument));
  ServiceObject(operation.service).Invoke(operation, arguments);
}

TEST_P(StatementsTest, AreSentToTheBlank) {
  std::ostringstream sent;
  for (const Operation* operation : Operations()) {
    if (operation->property) continue;
    TheRecording().events.clear();
    TheRecording().answer = Answer;
    sent << "== " << operation->name << "\n";
    try {
      InvokeWithSamples(*operation);
    } catch (const Error& error) {
      sent << "raised " << error.number() << "\n";
    }
    for (const std::string& event : Events()) sent << ReplaceAll(event, "\r\n", "|\n") << "\n";
  }
  std::ifstream file(std::string(TESSARLORN_TEST_DATA) + "/statements.txt");
  std::ostringstream expected;
  expected << file.rdbuf();
  const std::string received = ReplaceAll(sent.str(), GetParam(), "");
  if (received == expected.str()) return;
  const std::string actual = testing::TempDir() + "statements.txt";
  std::ofstream(actual) << received;
  FAIL() << "The statements differ: see diff " << TESSARLORN_TEST_DATA << "/statements.txt " << actual
         << "; where they are meant to, copy the second over the first.";
}

TEST_P(StatementsTest, ThatAnswerNoRowsRaise3704WhereRowsAreRead) {
  int raised = 0;
  for (const Operation* operation : Operations()) {
    if (operation->property) continue;
    // One batch after the other of the operation stays without rows.
    for (std::size_t silent = 0, sent = 1; silent < sent; ++silent) {
      sent = 0;
      TheRecording().answer = [&](std::string_view text) { return sent++ == silent ? nullptr : Answer(text); };
      try {
        InvokeWithSamples(*operation);
      } catch (const Error& error) {
        EXPECT_EQ(error.number(), error_number::kObjectClosed) << operation->name << ", batch " << silent;
        ++raised;
      }
    }
  }
  EXPECT_GT(raised, 20);
}

INSTANTIATE_TEST_SUITE_P(Escape, StatementsTest, testing::Values("", ";Escape=Yes"));

}  // namespace
}  // namespace tessarlorn
