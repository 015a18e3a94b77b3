// What the tests of automation objects share: members by name, errors by number, and a few rows.
#pragma once

#include <gtest/gtest.h>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "hosts/objects/array.h"
#include "hosts/objects/automation_object.h"
#include "platform/recordset_builder.h"
#include "support/error_of.h"
#include "tessarlorn/recordset.h"

namespace tessarlorn {

inline Variant Use(AutomationObject& object, std::string_view name, MemberUse use, std::vector<Variant> arguments) {
  const Member* const member = object.description().Find(name);
  if (member == nullptr) {
    ADD_FAILURE() << "no member " << name;
    return {};
  }
  return object.Use(*member, use, arguments);
}
inline Variant Get(AutomationObject& object, std::string_view name, std::vector<Variant> arguments = {}) {
  return Use(object, name, kGet, std::move(arguments));
}
inline void Put(AutomationObject& object, std::string_view name, std::vector<Variant> arguments) {
  Use(object, name, kPut, std::move(arguments));
}
inline Variant Call(AutomationObject& object, std::string_view name, std::vector<Variant> arguments = {}) {
  return Use(object, name, kCall, std::move(arguments));
}

/// 0 when nothing is raised.
template <typename Action>
std::int32_t Number(const Action& action) {
  return ErrorOf(action).number();
}

/// Values as text.
inline std::vector<std::string> Texts(std::span<const Variant> values) {
  std::vector<std::string> texts;
  for (const Variant& value : values) texts.push_back(value.is_null() ? "NULL" : value.ToText());
  return texts;
}

inline const Array& ArrayOf(const Variant& value) {
  return dynamic_cast<const Array&>(**value.get_if<std::shared_ptr<Object>>());
}
inline std::vector<std::string> ArrayTexts(const Variant& value) { return Texts(ArrayOf(value).Values()); }

/// Orders 1 to 5: FID int, FBuyer nvarchar(20), FCost money, FWeight float, FDate datetime, FPaid bit, [Remark, own]
/// nvarchar(max), FData varbinary(8).
inline RecordsetPtr SampleRows() {
  RecordsetBuilder rows({
      {.name = "FID", .type = FieldType::kInt, .nullable = false},
      {.name = "FBuyer", .type = FieldType::kNVarChar, .size = 20},
      {.name = "FCost", .type = FieldType::kMoney, .precision = 19, .scale = 4},
      {.name = "FWeight", .type = FieldType::kFloat},
      {.name = "FDate", .type = FieldType::kDateTime},
      {.name = "FPaid", .type = FieldType::kBit},
      {.name = "Remark, own", .type = FieldType::kNVarChar},
      {.name = "FData", .type = FieldType::kVarBinary, .size = 8},
  });
  const struct {
    const char* buyer;
    std::int64_t cost;
    double weight;
    const char* date;
    int paid;
    const char* remark;
  } orders[] = {{"Wang", 12'5000, 0.5, "2024-01-02", 1, "b"},
                {"apple_b", 7'0000, 1.25, "2024-03-01 10:30", 0, "a"},
                {"Apple", 12'5000, 2, nullptr, 1, "B"},
                {nullptr, -1'0000, 0.1, "2023-12-31", -1, "a\tb"},
                {"O'Neil 50%", 0, 3, "2024-01-02", 0, ""}};
  for (std::int32_t id = 1; const auto& order : orders) {
    rows.BeginRow();
    rows.AppendInteger(id++);
    order.buyer == nullptr ? rows.AppendNull() : rows.AppendText(order.buyer);
    rows.AppendScaled(order.cost);
    rows.AppendDouble(order.weight);
    order.date == nullptr ? rows.AppendNull() : rows.AppendDateTime(DateTime::Parse(order.date).value());
    order.paid < 0 ? rows.AppendNull() : rows.AppendInteger(order.paid);
    rows.AppendText(order.remark);
    rows.AppendBytes("\x01\xAB", 2);
  }
  return rows.Finish();
}

/// The recordset's object; for fields and values see Value.
inline std::shared_ptr<AutomationObject> Rows(const RecordsetPtr& rows = SampleRows()) { return ObjectOf(rows); }

/// rs(field)
inline Variant Value(AutomationObject& recordset, const Variant& field) {
  return Get(*ObjectOf(Get(recordset, "Fields", {field})), "Value");
}
/// The keys of the shown rows, from the first on, as "1,2,3".
inline std::string Keys(AutomationObject& recordset) {
  std::string keys;
  if (Get(recordset, "RecordCount").ToInt32() > 0) Call(recordset, "MoveFirst");
  for (; !Get(recordset, "EOF").ToBool(); Call(recordset, "MoveNext")) {
    keys += (keys.empty() ? "" : ",") + Value(recordset, "FID").ToText();
  }
  return keys;
}

}  // namespace tessarlorn
