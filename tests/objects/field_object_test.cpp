#include "objects/field_object.h"

#include <cmath>
#include <gtest/gtest.h>

#include "objects/object_support.h"

namespace tessarlorn {
namespace {

TEST(FieldObjectTest, FollowsTheCurrentRow) {
  const auto rows = Rows();
  const auto buyer = ObjectOf(Get(*rows, "Fields", {"fbuyer"}));
  EXPECT_EQ(Get(*buyer, "Value").ToText(), "Wang");
  EXPECT_EQ(Get(*buyer, "ActualSize").ToInt32(), 4);
  EXPECT_EQ(Get(*buyer, "DefinedSize").ToInt32(), 20);
  Put(*rows, "AbsolutePosition", {4});
  EXPECT_TRUE(Get(*buyer, "Value").is_null());
  EXPECT_EQ(Get(*buyer, "ActualSize").ToInt32(), 0);
  EXPECT_EQ(Get(*ObjectOf(Get(*rows, "Fields", {"FData"})), "ActualSize").ToInt32(), 2);
  Call(*rows, "MoveFirst");
  Call(*rows, "MovePrevious");
  EXPECT_EQ(ErrorOf([&] { Get(*buyer, "Value"); }), 3021);
  EXPECT_EQ(Get(*buyer, "Name").ToText(), "FBuyer");
  EXPECT_EQ(ErrorOf([&] { Put(*buyer, "Value", {"Li"}); }), 3251);
}

TEST(FieldObjectTest, IsOneObjectForAsLongAsItsRecordset) {
  const auto rows = Rows();
  const auto buyer = ObjectOf(Get(*rows, "Fields", {"FBuyer"}));
  EXPECT_EQ(ObjectOf(Get(*rows, "Fields", {1})), buyer);
  EXPECT_EQ(ObjectOf(Get(*ObjectOf(Get(*rows, "Fields")), "Item", {1})), buyer);
  EXPECT_NE(ObjectOf(Get(*ObjectOf(Call(*rows, "Clone")), "Fields", {1})), buyer);
}

// Texts can be read in place; whoever does so has to read what others read.
TEST(FieldObjectTest, TextInPlaceIsTheValue) {
  const auto rows = Rows();
  const auto all = Call(*Rows(), "GetRows");
  const Array& cells = ArrayOf(all);
  std::size_t place = 0;
  std::size_t texts = 0;
  for (; !Get(*rows, "EOF").ToBool(); Call(*rows, "MoveNext")) {
    for (const Variant& item : ObjectOf(Get(*rows, "Fields"))->Items()) {
      const auto field = ObjectOf(item);
      const Variant value = Get(*field, "Value");
      const auto text = field->FindText(*field->description().Find("Value"));
      const auto* const wanted = value.get_if<std::string>();
      ASSERT_EQ(text.has_value(), wanted != nullptr) << place;
      ASSERT_EQ(text, cells.TextAt(place++));
      ASSERT_EQ(text.value_or(""), wanted == nullptr ? "" : *wanted);
      texts += text ? 1 : 0;
      EXPECT_FALSE(field->FindText(*field->description().Find("DefinedSize")));
    }
  }
  EXPECT_EQ(place, cells.size());
  EXPECT_EQ(texts, 9U);
  const auto buyer = ObjectOf(Get(*rows, "Fields", {"FBuyer"}));
  EXPECT_EQ(ErrorOf([&] { static_cast<void>(buyer->FindText(*buyer->description().Find("Value"))); }), 3021);
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
    EXPECT_EQ(ErrorOf([&] { name(index); }), 3265) << index.ToText();
    EXPECT_EQ(ErrorOf([&] { Get(*rows, "Fields", {index}); }), 3265) << index.ToText();
  }
  std::string names;
  for (const Variant& field : fields->Items()) names += Get(*ObjectOf(field), "Name").ToText() + ";";
  EXPECT_EQ(names, "FID;FBuyer;FCost;FWeight;FDate;FPaid;Remark, own;FData;");
}

TEST(FieldObjectTest, FindsTheFirstOfFieldsWithOneName) {
  const auto rows = std::make_shared<Recordset>(
      std::vector<Field>{{.name = "FID", .type = FieldType::kInt}, {.name = "fid", .type = FieldType::kInt}});
  rows->BeginRow();
  rows->AppendInteger(1);
  rows->AppendInteger(2);
  rows->Finish();
  EXPECT_EQ(Value(*Rows(rows), "fid").ToInt32(), 1);
  EXPECT_EQ(Value(*Rows(rows), 1).ToInt32(), 2);
}

Field Make(FieldType type, int size = 0, int precision = 0, int scale = 0) {
  return {.name = "F", .type = type, .size = size, .precision = precision, .scale = scale};
}

/// The numbers that clients of ADO compare with.
TEST(FieldObjectTest, TellsTypesByTheNumbersOfAdo) {
  const struct {
    Field field;
    std::int32_t type;
    std::int32_t size;
    std::int32_t precision;
    std::int32_t scale;
  } cases[] = {
      {Make(FieldType::kBit), 11, 2, 255, 255},
      {Make(FieldType::kTinyInt), 17, 1, 3, 255},
      {Make(FieldType::kSmallInt), 2, 2, 5, 255},
      {Make(FieldType::kInt), 3, 4, 10, 255},
      {Make(FieldType::kBigInt), 20, 8, 19, 255},
      {Make(FieldType::kReal), 4, 4, 7, 255},
      {Make(FieldType::kFloat), 5, 8, 15, 255},
      {Make(FieldType::kDecimal, 0, 18, 2), 131, 19, 18, 2},
      {Make(FieldType::kMoney, 0, 19, 4), 6, 8, 19, 255},
      {Make(FieldType::kDate), 133, 6, 255, 255},
      {Make(FieldType::kTime), 134, 6, 255, 255},
      {Make(FieldType::kDateTime), 135, 16, 23, 3},
      {Make(FieldType::kChar, 5), 129, 5, 255, 255},
      {Make(FieldType::kVarChar, 5), 200, 5, 255, 255},
      {Make(FieldType::kVarChar), 201, 2147483647, 255, 255},
      {Make(FieldType::kNChar, 5), 130, 5, 255, 255},
      {Make(FieldType::kNVarChar, 5), 202, 5, 255, 255},
      {Make(FieldType::kNVarChar), 203, 1073741823, 255, 255},
      {Make(FieldType::kBinary, 5), 128, 5, 255, 255},
      {Make(FieldType::kVarBinary, 5), 204, 5, 255, 255},
      {Make(FieldType::kVarBinary), 205, 2147483647, 255, 255},
      {Make(FieldType::kGuid), 72, 16, 255, 255},
  };
  for (const auto& [field, type, size, precision, scale] : cases) {
    const auto object = ObjectOf(Get(*Rows(std::make_shared<Recordset>(std::vector{field})), "Fields", {0}));
    EXPECT_EQ(Get(*object, "Type").ToInt32(), type);
    EXPECT_EQ(Get(*object, "DefinedSize").ToInt32(), size) << type;
    EXPECT_EQ(Get(*object, "Precision").ToInt32(), precision) << type;
    EXPECT_EQ(Get(*object, "NumericScale").ToInt32(), scale) << type;
  }
}

}  // namespace
}  // namespace tessarlorn
