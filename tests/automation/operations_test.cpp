#include "tessarlorn/operations.h"

#include <fstream>
#include <gmock/gmock.h>
#include <set>

#include "automation/operation_arguments.h"
#include "platform/text/text.h"
#include "support/recording_driver.h"

namespace tessarlorn {
namespace {

/// The public functions that a service class declares: the names before the parentheses of its member declarations.
std::set<std::string> DeclaredOperations(const std::string& class_name) {
  std::ifstream file(std::string(TESSARLORN_SOURCE_ROOT) + "/include/tessarlorn/" + class_name + ".h");
  std::set<std::string> names;
  for (std::string line; std::getline(file, line) && line != " private:";) {
    const std::size_t open = line.find('(');
    const bool member = line.starts_with("  ") && line[2] != ' ' && line[2] != '/';
    if (!member || open == std::string::npos) continue;
    const std::string name = line.substr(line.rfind(' ', open) + 1, open - line.rfind(' ', open) - 1);
    if (name != class_name && name != "~" + class_name && name != "operator=") names.insert(name);
  }
  return names;
}

void CheckKeys(const Operation& operation, std::span<const Key> keys) {
  std::set<std::string_view> names;
  for (const Key& key : keys) {
    EXPECT_FALSE(key.help.empty()) << operation.name << " " << key.name;
    EXPECT_TRUE(names.insert(key.name).second) << operation.name << " " << key.name;
    EXPECT_EQ(key.type == ValueType::kVector, !key.item_keys.empty()) << operation.name << " " << key.name;
    CheckKeys(operation, key.item_keys);
  }
}

TEST(OperationTableTest, HoldsEveryPublicOperation) {
  for (const ServiceClass service : {ServiceClass::kSaveData, ServiceClass::kGetData}) {
    std::set<std::string> held;
    for (const Operation* operation : Operations()) {
      if (operation->service != service) continue;
      EXPECT_TRUE(held.emplace(operation->name).second) << operation->name;
    }
    EXPECT_EQ(held, DeclaredOperations(std::string(ClassName(service))));
  }
}

TEST(OperationTableTest, DescribesEveryOperation) {
  for (const Operation* operation : Operations()) {
    EXPECT_FALSE(operation->contract->help.empty()) << operation->name;
    EXPECT_EQ(operation->property, operation->name == "TransMode");
    for (const Argument& argument : operation->arguments()) {
      const bool has_keys = argument.type == ValueType::kDictionary || argument.type == ValueType::kVector;
      EXPECT_EQ(has_keys, argument.any_key || !argument.keys.empty()) << operation->name << " " << argument.name;
      CheckKeys(*operation, argument.keys);
    }
  }
}

TEST(OperationTableTest, FindsByNameWithoutCase) {
  EXPECT_EQ(FindOperation("getlistdata")->name, "GetListData");
  EXPECT_EQ(FindOperation("CLSSAVEDATA.uploadstatus")->name, "UploadStatus");
  EXPECT_EQ(FindOperation("clsGetData.TransMode")->service, ServiceClass::kGetData);
  EXPECT_EQ(FindOperation("TransMode")->service, ServiceClass::kSaveData);
  for (const char* name : {"clsGetData.Delivery", "clsGetData.", "Deliver", "", "clsSaveData"}) {
    EXPECT_EQ(FindOperation(name), nullptr) << name;
  }
}

class InvokeTest : public RecordingTest {
 protected:
  /// Calls on a new object of the operation's class.
  Variant Invoke(std::string_view name, std::vector<Variant> arguments) {
    const Operation& operation = *FindOperation(name);
    return ServiceObject(host_, operation.service).Invoke(operation, arguments);
  }
};

/// Operations that have nothing to miss: they work on the instance's session, or take any connection string.
constexpr std::string_view kWithoutGuard =
    " WriteSaveOrderLog WriteOPLog IsLogEnable UpdateDeliveryData UpLoadStatusForManualAndClosed NewGetWeightByFID "
    "ExecuteSQL CheckWebShopTypeSameByOrders ClearTplFieldInfo DownloadWebTpls GetWebFIDByCostInoviceID TransMode ";

TEST_F(InvokeTest, DoesNothingWhenEverythingIsMissing) {
  for (const Operation* operation : Operations()) {
    if (kWithoutGuard.find(" " + std::string(operation->name) + " ") != std::string_view::npos) continue;
    std::vector<Variant> arguments(operation->argument_count);
    const Variant result = ServiceObject(host_, operation->service).Invoke(*operation, arguments);
    if (const std::shared_ptr<Vector> items = result.ToVector()) {
      EXPECT_TRUE(items->empty()) << operation->name;
    } else if (result.is_object()) {
      EXPECT_EQ(result.type_name(), "Nothing") << operation->name;
    } else if (operation->result == ValueType::kString) {
      EXPECT_EQ(result.ToText(), "") << operation->name;
    } else {
      EXPECT_EQ(result.ToDouble(), 0) << operation->name;
    }
  }
  EXPECT_TRUE(Events().empty());
}

TEST_F(InvokeTest, RaisesUnderTheSourceOfItsContract) {
  TheRecording().answer = [](std::string_view) -> RecordsetPtr {
    throw Error(error_number::kNoSuchTable, "driver", "Invalid object name");
  };
  for (const Operation* operation : Operations()) {
    if (operation->contract->source.empty()) continue;
    auto arguments = SampleArguments(*operation, kDsn, [](std::string_view name, ValueType type, Standing) -> Variant {
      if (name == "sFKey") return "1_1";
      return type == ValueType::kBoolean ? Variant(true) : Variant(1);
    });
    EXPECT_EQ(Raised([&] { ServiceObject(host_, operation->service).Invoke(*operation, arguments); }),
              std::to_string(error_number::kNoSuchTable) + " " + std::string(operation->contract->source))
        << operation->name;
  }
}

TEST_F(InvokeTest, ConvertsArgumentsAsAutomationDoes) {
  EXPECT_EQ(Invoke("NewGetWeightByFID", {kDsn, "12.5"}).ToDictionary()->GetValue("FID").ToInt32(), 12);
  EXPECT_EQ(Invoke("TransMode", {}).ToInt32(), 2);
  EXPECT_EQ(Invoke("clsSaveData.UpdateDeliveryData", {kDsn, 12}).ToBool(), true);
  EXPECT_THAT(Events().back(), testing::HasSubstr("VALUES (12,1,'')"));
  const std::string source = " TessarLornPickingAndDelivery";
  EXPECT_EQ(Raised([&] { Invoke("NewGetWeightByFID", {kDsn, "x"}); }), "13" + source);
  EXPECT_EQ(Raised([&] { Invoke("NewGetWeightByFID", {kDsn, 1e10}); }), "6" + source);
  EXPECT_EQ(Raised([&] { Invoke("bIsWeightting", {Null{}}); }), "94" + source);
  EXPECT_EQ(Raised([&] { Invoke("Delivery", {Vector{}}); }), "13" + source);
  EXPECT_EQ(Raised([&] { Invoke("UpdateDeliveryData", {kDsn}); }), "449" + source);
  EXPECT_EQ(Raised([&] { Invoke("Delivery", {Variant(), Variant()}); }), "450" + source);
  EXPECT_EQ(Raised([&] { ServiceObject(host_, "clsGetData").Invoke(*FindOperation("Delivery"), {}); }), "438" + source);
  EXPECT_EQ(Raised([&] { ServiceObject(host_, "clsPutData"); }), "429" + source);
  EXPECT_EQ(ServiceObject(host_, "tessarlornpickinganddelivery.CLSGETDATA").service(), ServiceClass::kGetData);
}

}  // namespace
}  // namespace tessarlorn
