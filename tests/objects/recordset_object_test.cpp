#include "hosts/objects/recordset/recordset_object.h"

#include <gtest/gtest.h>

#include "hosts/objects/recordset/recordset_errors.h"
#include "objects/object_support.h"

namespace tessarlorn {
namespace {

const std::string kNoBookmark = std::to_string(error_number::kInvalidBookmark);

class RecordsetObjectTest : public testing::Test {
 protected:
  /// BOF, EOF and AbsolutePosition, as "--3".
  std::string Place() {
    return std::string(Get(rs_, "BOF").ToBool() ? "B" : "-") + (Get(rs_, "EOF").ToBool() ? "E" : "-") +
           Get(rs_, "AbsolutePosition").ToText();
  }
  std::int32_t Id() { return Value(rs_, "FID").ToInt32(); }
  /// Where a call leads to, or the number that it raises.
  std::string After(const char* member, std::vector<Variant> arguments = {}) {
    const std::int32_t number = Number([&] { Call(rs_, member, std::move(arguments)); });
    return number == 0 ? Place() : std::to_string(number);
  }

  std::shared_ptr<AutomationObject> object_ = Rows();
  AutomationObject& rs_ = *object_;
};

TEST_F(RecordsetObjectTest, MovesFromOneEndToTheOther) {
  EXPECT_EQ(Place(), "--1");
  std::string ids;
  for (; !Get(rs_, "EOF").ToBool(); Call(rs_, "MoveNext")) ids += Value(rs_, 0).ToText();
  EXPECT_EQ(ids, "12345");
  EXPECT_EQ(Place(), "-E-3");
  EXPECT_EQ(Number([&] { Id(); }), 3021);
  for (const auto& [member, place] : {std::pair{"MoveNext", "3021"},
                                      {"MovePrevious", "--5"},
                                      {"MoveFirst", "--1"},
                                      {"MovePrevious", "B--2"},
                                      {"MovePrevious", "3021"},
                                      {"MoveNext", "--1"},
                                      {"MoveLast", "--5"}}) {
    EXPECT_EQ(After(member), place) << member;
  }
}

TEST_F(RecordsetObjectTest, MovesByCountFromARowABookmarkOrAnEnd) {
  EXPECT_EQ(After("Move", {2}), "--3");
  const Variant third = Get(rs_, "Bookmark");
  const std::pair<std::vector<Variant>, std::string> moves[] = {
      {{-1}, "--2"},          {{1, third}, "--4"},    {{1, 1}, "--2"},    {{-1, 2}, "--4"},
      {{0, third}, "--3"},    {{100}, "-E-3"},        {{1}, "3021"},      {{-2147483647}, "B--2"},
      {{1, 99}, kNoBookmark}, {{1, -1}, kNoBookmark}, {{1, "x"}, "3001"},
  };
  for (const auto& [arguments, place] : moves) EXPECT_EQ(After("Move", arguments), place) << arguments[0].ToText();
  Put(rs_, "AbsolutePosition", {4});
  for (const std::int32_t position : {-3, -1, 0, 6}) {
    EXPECT_EQ(Number([&] { Put(rs_, "AbsolutePosition", {position}); }), 3001) << position;
  }
  EXPECT_EQ(Id(), 4);
}

TEST_F(RecordsetObjectTest, WithoutRowsIsAtBothEndsAndHasNoPlaceToGo) {
  const auto none = Rows(std::make_shared<Recordset>(SampleRows()->fields()));
  EXPECT_TRUE(Get(*none, "BOF").ToBool() && Get(*none, "EOF").ToBool());
  Put(rs_, "Filter", {"FID = 99"});
  EXPECT_EQ(Get(rs_, "RecordCount").ToInt32(), 0);
  for (const char* const member : {"MoveFirst", "MoveLast", "MoveNext", "MovePrevious", "GetRows", "GetString"}) {
    EXPECT_EQ(Number([&] { Call(*none, member); }), 3021) << member;
    EXPECT_EQ(After(member), "3021") << member;
  }
  for (const std::vector<Variant>& move : {std::vector<Variant>{0}, {1, 1}, {-1, 2}}) {
    EXPECT_EQ(After("Move", move), "3021") << move[0].ToText();
  }
  EXPECT_EQ(After("Find", {"FID = 1", 0, 1, 2}), "3021");
  EXPECT_EQ(Number([&] { Get(rs_, "Bookmark"); }), 3021);
  EXPECT_EQ(Number([&] { Id(); }), 3021);
  Put(rs_, "Sort", {"FID"});
  EXPECT_EQ(Place(), "BE-1");
  Put(rs_, "Filter", {0});
  EXPECT_EQ(Get(rs_, "RecordCount").ToInt32(), 5);
}

TEST_F(RecordsetObjectTest, BookmarksStayWithTheirRow) {
  Put(rs_, "AbsolutePosition", {2});
  const Variant second = Get(rs_, "Bookmark");
  Put(rs_, "Sort", {"FID DESC"});
  EXPECT_EQ(Id(), 5);
  Put(rs_, "Bookmark", {second});
  EXPECT_EQ(Id(), 2);
  EXPECT_EQ(Place(), "--4");
  const auto clone = ObjectOf(Call(rs_, "Clone"));
  EXPECT_EQ(Value(*clone, "FID").ToInt32(), 1);
  Put(*clone, "Bookmark", {second});
  EXPECT_EQ(Value(*clone, "FID").ToInt32(), 2);
  // What is done to one of them leaves the other as it is.
  Put(*clone, "Filter", {"FID = 3"});
  EXPECT_EQ(Id(), 2);
  Call(*clone, "Close");
  EXPECT_EQ(Id(), 2);
  Put(rs_, "Filter", {"FID > 2"});
  EXPECT_EQ(Number([&] { Put(rs_, "Bookmark", {second}); }), error_number::kInvalidBookmark);
  EXPECT_EQ(Id(), 5);
}

TEST_F(RecordsetObjectTest, FindsForwardsAndBackwards) {
  const struct {
    std::int32_t from;
    std::vector<Variant> arguments;
    const char* place;
  } cases[] = {
      {1, {"FID = 1"}, "--1"},
      {1, {"FDate = #2024-01-02#", 1}, "--5"},
      {3, {"FID = 1"}, "-E-3"},
      {3, {"FID = 1", 0, -1}, "--1"},
      {3, {"FID = 3", 1, -1}, "B--2"},
      {1, {"FPaid = TRUE", 1, -1, 2}, "--3"},
      {5, {"FPaid = TRUE", 0, 1, 1}, "--1"},
      {4, {"FPaid = TRUE", -1}, "--3"},
      {2, {"FID > 0", 2147483647}, "-E-3"},
      {2, {"FID > 0", 2147483647, -1}, "B--2"},
  };
  for (const auto& [from, arguments, place] : cases) {
    Put(rs_, "AbsolutePosition", {from});
    EXPECT_EQ(After("Find", arguments), place) << from << " " << arguments[0].ToText();
  }
  EXPECT_EQ(After("Find", {"FID = 1"}), "3021") << "the search needs a row to begin at";
  Call(rs_, "MoveFirst");
  EXPECT_EQ(After("Find", {"FID = 1", 0, 0}), "3001");
  EXPECT_EQ(After("Find", {"FID ="}), "3001");
  EXPECT_EQ(After("Find", {"None = 1"}), "3265");
  EXPECT_EQ(Place(), "--1");
}

TEST_F(RecordsetObjectTest, FiltersAndSortsTogether) {
  Call(rs_, "MoveLast");
  Put(rs_, "Sort", {"FCost DESC, FID DESC"});
  EXPECT_EQ(Id(), 3);
  EXPECT_EQ(Keys(rs_), "3,1,2,5,4");
  Put(rs_, "Filter", {"FCost > 0"});
  EXPECT_EQ(Keys(rs_), "3,1,2");
  EXPECT_EQ(Get(rs_, "Filter").ToText(), "FCost > 0");
  EXPECT_EQ(Get(rs_, "Sort").ToText(), "FCost DESC, FID DESC");
  // What cannot be read leaves everything as it is.
  Call(rs_, "MoveLast");
  EXPECT_EQ(Number([&] { Put(rs_, "Filter", {"FCost >"}); }), 3001);
  EXPECT_EQ(Number([&] { Put(rs_, "Sort", {"None"}); }), 3265);
  EXPECT_EQ(Number([&] { Put(rs_, "Filter", {2}); }), 3001);
  EXPECT_EQ(Place(), "--3");
  EXPECT_EQ(Get(rs_, "Filter").ToText(), "FCost > 0");
  EXPECT_EQ(Keys(rs_), "3,1,2");
  Put(rs_, "Filter", {""});
  EXPECT_EQ(*Get(rs_, "Filter").get_if<std::int32_t>(), 0);
  Put(rs_, "Sort", {""});
  EXPECT_EQ(Keys(rs_), "1,2,3,4,5");
}

TEST_F(RecordsetObjectTest, FiltersByBookmarks) {
  const Variant marks = ToArray({7, 3, 7});  // of the rows 5, 1 and 5
  Put(rs_, "Filter", {marks});
  EXPECT_EQ(Keys(rs_), "1,5");
  Put(rs_, "Sort", {"FID DESC"});
  EXPECT_EQ(Keys(rs_), "5,1");
  EXPECT_EQ(ArrayTexts(Get(rs_, "Filter")), ArrayTexts(marks));
  EXPECT_EQ(Number([&] { Put(rs_, "Filter", {ToArray({3, 99})}); }), error_number::kInvalidBookmark);
  EXPECT_EQ(Keys(rs_), "5,1");
  Put(rs_, "Filter", {ToArray({})});
  EXPECT_EQ(Place(), "BE-1");
}

TEST_F(RecordsetObjectTest, ShowsPages) {
  EXPECT_EQ(Get(rs_, "PageCount").ToInt32(), 1);
  Put(rs_, "PageSize", {2});
  EXPECT_EQ(Get(rs_, "PageCount").ToInt32(), 3);
  Put(rs_, "AbsolutePage", {3});
  EXPECT_EQ(Id(), 5);
  for (const auto& [member, page] : {std::pair{"MovePrevious", 2}, {"MoveFirst", 1}, {"MovePrevious", -2}}) {
    Call(rs_, member);
    EXPECT_EQ(Get(rs_, "AbsolutePage").ToInt32(), page) << member;
  }
  for (const auto& [member, value] : {std::pair{"AbsolutePage", 0}, {"AbsolutePage", 4}, {"PageSize", 0}}) {
    EXPECT_EQ(Number([&] { Put(rs_, member, {value}); }), 3001) << member << value;
  }
  Call(rs_, "Move", {9});
  EXPECT_EQ(Get(rs_, "AbsolutePage").ToInt32(), -3);
}

TEST_F(RecordsetObjectTest, AnswersWhatLoopsOfOfficeProgramsAsk) {
  EXPECT_EQ(Get(rs_, "Collect", {"FBuyer"}).ToText(), "Wang");
  EXPECT_EQ(Get(rs_, "Status").ToInt32(), 8);
  const auto properties = ObjectOf(Get(rs_, "Properties"));
  EXPECT_EQ(Get(*properties, "Count").ToInt32(), 0);
  EXPECT_TRUE(properties->Items().empty());
  EXPECT_EQ(Number([&] { Get(*properties, "Item", {0}); }), 3265);
  EXPECT_EQ(Number([&] { Get(rs_, "Properties", {"Unique Table"}); }), 3265);
  EXPECT_EQ(Call(rs_, "NextRecordset").type_name(), "Nothing");
  EXPECT_EQ(Number([&] { Put(rs_, "Collect", {"FBuyer", "Li"}); }), 3251);
  EXPECT_EQ(Number([&] { Put(rs_, "MaxRecords", {5}); }), 3705);
  Call(rs_, "Move", {9});
  for (const char* const member : {"Status", "EditMode"}) EXPECT_EQ(Number([&] { Get(rs_, member); }), 3021) << member;
}

TEST_F(RecordsetObjectTest, GetRowsAnswersFieldsOfRows) {
  const Variant two = Call(rs_, "GetRows", {2, {}, ToArray({"FBuyer", 0})});
  EXPECT_EQ(ArrayOf(two).dimensions(), 2);
  EXPECT_EQ(ArrayOf(two).columns(), 2U);
  EXPECT_EQ(ArrayTexts(two), (std::vector<std::string>{"Wang", "1", "apple_b", "2"}));
  EXPECT_EQ(ArrayOf(two).At(3).ToInt32(), 2);
  EXPECT_EQ(Place(), "--3");
  EXPECT_EQ(ArrayOf(Call(rs_, "GetRows")).size(), 3U * 8U);
  EXPECT_EQ(Place(), "-E-3");
  EXPECT_EQ(Number([&] { Call(rs_, "GetRows"); }), 3021);
  const Variant all = Call(rs_, "GetRows", {-1, 1, "FID"});
  // They are those of the rows as they stood, whatever becomes of the recordset.
  Put(rs_, "Sort", {"FID DESC"});
  EXPECT_EQ(ArrayOf(all).columns(), 1U);
  EXPECT_EQ(ArrayTexts(all), (std::vector<std::string>{"1", "2", "3", "4", "5"}));
  EXPECT_EQ(ArrayTexts(Call(rs_, "GetRows", {100, 2, 0})), std::vector<std::string>{"1"});
  Call(rs_, "Close");
  EXPECT_EQ(ArrayTexts(two)[0], "Wang");
}

TEST_F(RecordsetObjectTest, GetRowsRefusesWithoutMoving) {
  Put(rs_, "AbsolutePosition", {3});
  EXPECT_EQ(After("GetRows", {-2}), "3001");
  EXPECT_EQ(After("GetRows", {1, 77}), kNoBookmark);
  EXPECT_EQ(After("GetRows", {1, 1, "None"}), "3265");
  EXPECT_EQ(After("GetRows", {1, 1, ToArray({0, 8})}), "3265");
  EXPECT_EQ(After("GetRows", {1, 1, ToArray({})}), "3001");
  EXPECT_EQ(Place(), "--3");
}

TEST_F(RecordsetObjectTest, GetStringWritesRowsAsText) {
  EXPECT_EQ(Call(rs_, "GetString", {2, 1}).ToText(), "1\tWang\t12.5000\t0.5\t2024-01-02 00:00:00\tTrue\tb\t01ab\r");
  EXPECT_EQ(Place(), "--2");
  Call(rs_, "MoveLast");
  Call(rs_, "MovePrevious");
  EXPECT_EQ(Call(rs_, "GetString", {{}, {}, ";", "|", "-"}).ToText(),
            "4;-;-1.0000;0.1;2023-12-31 00:00:00;-;a\tb;01ab|5;O'Neil 50%;0.0000;3;2024-01-02 00:00:00;False;;01ab|");
  EXPECT_EQ(Place(), "-E-3");
  EXPECT_EQ(Number([&] { Call(rs_, "GetString"); }), 3021);
  Call(rs_, "MoveFirst");
  EXPECT_EQ(Call(rs_, "GetString", {2, 0}).ToText(), "");
  EXPECT_EQ(Number([&] { Call(rs_, "GetString", {1}); }), 3001);
  EXPECT_EQ(Number([&] { Call(rs_, "GetString", {2, -5}); }), 3001);
  EXPECT_EQ(Place(), "--1");
}

TEST_F(RecordsetObjectTest, ClosedKnowsNothingButItsState) {
  EXPECT_EQ(Get(rs_, "State").ToInt32(), 1);
  const auto fields = ObjectOf(Get(rs_, "Fields"));
  const auto field = ObjectOf(Get(rs_, "Fields", {"FID"}));
  Call(rs_, "Close");
  EXPECT_EQ(Get(rs_, "State").ToInt32(), 0);
  for (const Member& member : rs_.description().members) {
    if (member.name == "State" || member.name == "Fields") continue;
    for (const MemberUse use : {kCall, kGet, kPut}) {
      if ((member.uses & use) == 0) continue;
      EXPECT_EQ(Number([&] {
                  Use(rs_, member.name, use, std::vector<Variant>(member.arguments.size() + (use == kPut ? 1 : 0)));
                }),
                3704)
          << member.name;
    }
  }
  EXPECT_EQ(ObjectOf(Get(rs_, "Fields")), fields);
  EXPECT_EQ(Get(*fields, "Count").ToInt32(), 0);
  EXPECT_EQ(Number([&] { Get(rs_, "Fields", {"FID"}); }), 3704);
  EXPECT_EQ(Number([&] { static_cast<void>(fields->Items()); }), 3704);
  for (const Member& member : field->description().members) {
    EXPECT_EQ(Number([&] { Get(*field, member.name); }), 3704) << member.name;
  }
}

TEST_F(RecordsetObjectTest, IsDisconnectedAndReadOnly) {
  const RecordsetPtr rows = SampleRows();
  const auto object = Rows(rows);
  EXPECT_EQ(Get(*object, "ActiveConnection").type_name(), "Nothing");
  Put(*object, "ActiveConnection", {std::shared_ptr<Object>()});
  EXPECT_FALSE(rows->attached());
  EXPECT_EQ(Number([&] { Put(*object, "ActiveConnection", {"Provider=x"}); }), 3001);
  constexpr std::int32_t kMoveBackAndBookmark = 0x200 | 0x2000;
  constexpr std::int32_t kUpdate = 0x1008000;
  EXPECT_TRUE(Call(*object, "Supports", {kMoveBackAndBookmark}).ToBool());
  EXPECT_FALSE(Call(*object, "Supports", {kUpdate}).ToBool());
  EXPECT_FALSE(Call(*object, "Supports", {kMoveBackAndBookmark | kUpdate}).ToBool());
  for (const char* const writer :
       {"AddNew", "Update", "UpdateBatch", "Delete", "CancelUpdate", "CancelBatch", "Requery", "Resync", "Open"}) {
    EXPECT_EQ(Number([&] { Call(*object, writer); }), 3251) << writer;
  }
  const auto fields = ObjectOf(Get(*object, "Fields"));
  EXPECT_EQ(Number([&] { Put(*object, "Fields", {"FID", 5}); }), 3251);
  EXPECT_EQ(Number([&] { Put(*fields, "Item", {"FID", 5}); }), 3251);
  EXPECT_EQ(Number([&] { Put(*object, "Fields", {"FNone", 5}); }), 3265);
}

}  // namespace
}  // namespace tessarlorn
