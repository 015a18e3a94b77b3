#include "hosts/objects/recordset/field_object.h"

#include <cmath>
#include <gtest/gtest.h>

#include "objects/object_support.h"
#include "platform/recordset_builder.h"

namespace tessarlorn {
namespace {

TEST(FieldObjectTest, FollowsTheCurrentRow) {
  const auto rows = Rows();
  const auto buyer = ObjectOf(Get(*rows, "Fields", {"fbuyer"}));
  EXPECT_EQ(Get(*buyer, "Value").ToText(), "Wang");
  EXPECT_EQ(Get(*buyer, "ActualSize").ToInt32(), 4);
  EXPECT_EQ(Get(*buyer, "DefinedSize").ToInt32(), 20);
  EXPECT_EQ(Get(*buyer, "OriginalValue").ToText(), "Wang");
  Put(*rows, "AbsolutePosition", {4});
  EXPECT_TRUE(Get(*buyer, "Value").is_null());
  EXPECT_EQ(Get(*buyer, "ActualSize").ToInt32(), 0);
  EXPECT_EQ(Get(*ObjectOf(Get(*rows, "Fields", {"FData"})), "ActualSize").ToInt32(), 2);
  Call(*rows, "MoveFirst");
  Call(*rows, "MovePrevious");
  EXPECT_EQ(Number([&] { Get(*buyer, "Value"); }), 3021);
  EXPECT_EQ(Get(*buyer, "Name").ToText(), "FBuyer");
  EXPECT_EQ(Number([&] { Put(*buyer, "Value", {"Li"}); }), 3251);
}

TEST(FieldObjectTest, HasAttributes) {
  const auto rows = Rows();
  for (const auto& [field, attributes] : {std::pair{"FID", 16}, {"FCost", 112}, {"FBuyer", 96}, {"Remark, own", 224}}) {
    EXPECT_EQ(Get(*ObjectOf(Get(*rows, "Fields", {field})), "Attributes").ToInt32(), attributes) << field;
  }
}

TEST(FieldObjectTest, IsOneObjectForAsLongAsItsRecordset) {
  const auto rows = Rows();
  const auto buyer = ObjectOf(Get(*rows, "Fields", {"FBuyer"}));
  EXPECT_EQ(ObjectOf(Get(*rows, "Fields", {1})), buyer);
  EXPECT_EQ(ObjectOf(Get(*ObjectOf(Get(*rows, "Fields")), "Item", {1})), buyer);
  EXPECT_NE(ObjectOf(Get(*ObjectOf(Call(*rows, "Clone")), "Fields", {1})), buyer);
}

/// The texts among the values.
struct Texts : ValueTaker {
  void TakeText(std::string_view text) override { taken.emplace_back(text); }
  void Take(const Variant& /*value*/) override { taken.emplace_back(); }
  std::vector<std::optional<std::string>> taken;
};

// Texts can be read in place; whoever does so has to read what others read.
TEST(FieldObjectTest, TextInPlaceIsTheValue) {
  const auto rows = Rows();
  const auto all = Call(*Rows(), "GetRows");
  Texts cells;
  ArrayOf(all).Each(cells);
  std::size_t place = 0;
  std::size_t texts = 0;
  for (; !Get(*rows, "EOF").ToBool(); Call(*rows, "MoveNext")) {
    for (const Variant& item : ObjectOf(Get(*rows, "Fields"))->Items()) {
      const auto field = ObjectOf(item);
      const Variant value = Get(*field, "Value");
      Texts read;
      ASSERT_TRUE(field->Read(*field->description().Find("Value"), read));
      const auto& text = read.taken.at(0);
      const auto* const wanted = value.get_if<std::string>();
      ASSERT_EQ(text.has_value(), wanted != nullptr) << place;
      ASSERT_EQ(text, cells.taken[place++]);
      ASSERT_EQ(text.value_or(""), wanted == nullptr ? "" : *wanted);
      texts += text ? 1 : 0;
      EXPECT_FALSE(field->Read(*field->description().Find("DefinedSize"), read));
    }
  }
  EXPECT_EQ(place, cells.taken.size());
  EXPECT_EQ(texts, 9U);
  const auto buyer = ObjectOf(Get(*rows, "Fields", {"FBuyer"}));
  EXPECT_EQ(Number([&] { static_cast<void>(buyer->Read(*buyer->description().Find("Value"), cells)); }), 3021);
}

TEST(FieldObjectTest, IsFoundByNameAndPosition) {
  const auto rows = Rows();
  const auto fields = ObjectOf(Get(*rows, "Fields"));
  EXPECT_EQ(Get(*fields, "Count").ToInt32(), 8);
  const auto name = [&](const Variant& index) {
    return Get(*ObjectOf(Get(*fields, "Item", {index})), "Name").ToText();
  };
  EXPECT_EQ(name(0), "FID");
  EXPECT_EQ(name(7.0), "FData");
  EXPECT_EQ(name(std::int16_t{1}), "FBuyer");
  EXPECT_EQ(name("REMARK, OWN"), "Remark, own");
  for (const Variant& index :
       {Variant(8), Variant(-1), Variant("0"), Variant(""), Variant(1e300), Variant(std::nan("")), Variant(Null{})}) {
    EXPECT_EQ(Number([&] { name(index); }), 3265) << index.ToText();
    EXPECT_EQ(Number([&] { Get(*rows, "Fields", {index}); }), 3265) << index.ToText();
  }
  std::string names;
  for (const Variant& field : fields->Items()) names += Get(*ObjectOf(field), "Name").ToText() + ";";
  EXPECT_EQ(names, "FID;FBuyer;FCost;FWeight;FDate;FPaid;Remark, own;FData;");
}

TEST(FieldObjectTest, FindsTheFirstOfFieldsWithOneName) {
  RecordsetBuilder builder({{.name = "FID", .type = FieldType::kInt}, {.name = "fid", .type = FieldType::kInt}});
  builder.BeginRow();
  builder.AppendInteger(1);
  builder.AppendInteger(2);
  const RecordsetPtr rows = builder.Finish();
  EXPECT_EQ(Value(*Rows(rows), "fid").ToInt32(), 1);
  EXPECT_EQ(Value(*Rows(rows), 1).ToInt32(), 2);
}

}  // namespace
}  // namespace tessarlorn
