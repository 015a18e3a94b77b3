#include "hosts/objects/automation_object.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>

#include "hosts/objects/array.h"
#include "hosts/objects/dictionary_object.h"
#include "hosts/objects/service_class.h"
#include "hosts/objects/vector_object.h"
#include "objects/object_support.h"
#include "platform/text/text.h"

namespace tessarlorn {
namespace {

/// A member for each way of use.
class Probe final : public AutomationObject {
 public:
  [[nodiscard]] const ClassDescription& description() const override {
    static constexpr std::array kArguments = {
        Argument{.name = "First", .type = ValueType::kLong},
        Argument{.name = "Second", .type = ValueType::kString, .in_out = true, .optional = true},
        Argument{.name = "Third", .type = ValueType::kLong, .optional = true}};
    static const ClassDescription kDescription = {
        .name = "Probe",
        .prog_id = "",
        .class_id = "",
        .interface_id = "",
        .help = "",
        .members = {
            {.name = "Work", .id = 1, .arguments = kArguments, .help = ""},
            {.name = "Place", .id = 2, .uses = kGet | kPut, .arguments = std::span(kArguments).last(2), .help = ""}}};
    return kDescription;
  }

  MemberUse use = kCall;
  std::vector<Variant> given;

 protected:
  Variant Do(const Member& /*member*/, MemberUse used, std::span<Variant> arguments) override {
    use = used;
    given.assign(arguments.begin(), arguments.end());
    if (arguments.size() > 1) arguments[1] = "written back";
    return 1;
  }
};

TEST(AutomationObjectTest, FillsInWhatIsLeftOutAndWritesBackWhatWasGiven) {
  Probe probe;
  std::vector<Variant> arguments = {1, "in"};
  probe.Use(*probe.description().Find("WORK"), kCall, arguments);
  ASSERT_EQ(probe.given.size(), 3U);
  EXPECT_TRUE(probe.given[2].is_empty());
  EXPECT_EQ(arguments[1].ToText(), "written back");
  // The new value of a property stands behind its arguments, however many of them are given.
  Put(probe, "Place", {"x", 5});
  EXPECT_EQ(Texts(probe.given), (std::vector<std::string>{"x", "", "5"}));
  Put(probe, "Place", {5});
  EXPECT_EQ(Texts(probe.given), (std::vector<std::string>{"", "", "5"}));
}

TEST(AutomationObjectTest, RefusesWrongUseByNumber) {
  Probe probe;
  const struct {
    const char* member;
    MemberUse use;
    std::vector<Variant> arguments;
    std::int32_t error;
  } cases[] = {
      {"Work", kCall, {}, 449},    {"Work", kCall, {1, 2, 3, 4}, 450}, {"Work", kGet, {1}, 438},
      {"Work", kPut, {1, 2}, 438}, {"Place", kPut, {}, 449},           {"Place", kPut, {1, 2, 3, 4}, 450},
      {"Place", kCall, {}, 438},   {"Place", kGet, {1, 2, 3}, 450},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(Number([&] { Use(probe, c.member, c.use, c.arguments); }), c.error) << c.member << c.arguments.size();
  }
  EXPECT_EQ(Number([&] { probe.Call("None", {}); }), 438);
  EXPECT_EQ(Number([&] { static_cast<void>(probe.Items()); }), 438);
  // By name a property is read.
  EXPECT_EQ(probe.Call("place", {}).ToInt32(), 1);
  EXPECT_EQ(probe.use, kGet);
}

TEST(AutomationObjectTest, ClassesAreDescribedWithoutClashes) {
  Host host;
  std::set<std::string_view> guids = {kLibraryId};
  std::set<std::string_view> names;
  for (const ClassDescription* const description : AutomationClasses()) {
    const std::string name(description->name);
    EXPECT_TRUE(names.insert(description->name).second) << name;
    EXPECT_FALSE(description->help.empty()) << name;
    ASSERT_EQ(description->create == nullptr, description->prog_id.empty()) << name;
    EXPECT_EQ(description->create == nullptr, description->title.empty()) << name;
    if (description->create != nullptr) {
      EXPECT_EQ(&description->create(host)->description(), description);
    }
    for (const std::string_view id : {description->class_id, description->interface_id}) {
      EXPECT_THAT(std::string(id), testing::MatchesRegex("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}")) << name;
      EXPECT_TRUE(guids.insert(id).second) << name << " " << id;
    }
    std::set<std::int32_t> ids;
    std::set<std::string> members;
    for (const Member& member : description->members) {
      const std::string what = name + "." + std::string(member.name);
      EXPECT_TRUE(ids.insert(member.id).second) << what;
      EXPECT_TRUE(members.insert(LowerCase(member.name)).second) << what;
      EXPECT_NE(member.uses, 0) << what;
      EXPECT_FALSE(member.help.empty()) << what;
      EXPECT_EQ(description->Find(member.id), &member) << what;
      // Behind an optional argument none can be mandatory.
      EXPECT_TRUE(std::is_partitioned(member.arguments.begin(), member.arguments.end(), [](const Argument& argument) {
        return !argument.optional;
      })) << what;
    }
  }
}

TEST(AutomationObjectTest, ServiceClassesCallTheirOperations) {
  Host host;
  const auto service = ServiceClassObject::Description(ServiceClass::kSaveData).create(host);
  EXPECT_EQ(Get(*service, "transmode").ToInt32(), service->Call("TransMode", {}).ToInt32());
  EXPECT_EQ(Number([&] { Call(*service, "ConfirmBill"); }), 449);
  // Mandatory keys are missing: nothing happens.
  const Variant answer = Call(*service, "ConfirmBill", {std::make_shared<Dictionary>()});
  EXPECT_TRUE(answer.holds<bool>());
  EXPECT_FALSE(answer.ToBool());
}

TEST(AutomationObjectTest, ValuesAndTheirObjectsAreTheSame) {
  const auto dictionary = std::make_shared<Dictionary>();
  EXPECT_EQ(ValueOf(ObjectOf(dictionary)).ToDictionary(), dictionary);
  const auto vector = std::make_shared<Vector>();
  EXPECT_EQ(ValueOf(ObjectOf(vector)).ToVector(), vector);
  for (const Variant& value : {Variant(), Variant(1), ToArray({}), Variant(std::shared_ptr<Object>()),
                               Variant(RecordsetPtr()), Variant(std::shared_ptr<Dictionary>())}) {
    EXPECT_EQ(ObjectOf(value), nullptr) << value.type_name();
  }
}

/// A loop over `dictionary("rows")` ends only when each reading is the same recordset.
TEST(AutomationObjectTest, RecordsetKeepsItsPositionInsideACollection) {
  DictionaryObject dictionary(std::make_shared<Dictionary>());
  Call(dictionary, "Add", {"rows", ValueOf(Rows())});
  const auto read = [&] { return ObjectOf(Get(dictionary, "Item", {"rows"})); };
  Call(*read(), "MoveNext");
  EXPECT_EQ(Value(*read(), "FID").ToInt32(), 2);
}

}  // namespace
}  // namespace tessarlorn
