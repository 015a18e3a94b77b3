#include "hosts/objects/recordset/field_object.h"

#include <array>
#include <string>

#include "hosts/objects/recordset/field_traits.h"
#include "hosts/objects/recordset/properties_object.h"
#include "hosts/objects/recordset/recordset_errors.h"
#include "platform/text/text.h"

namespace tessarlorn {
namespace {

constexpr std::array kIndex = {Argument{.name = "Index", .type = ValueType::kVariant}};

constexpr std::int32_t kActualSize = MemberId("ActualSize");
constexpr std::int32_t kAttributes = 1036;
constexpr std::int32_t kCount = MemberId("Count");
constexpr std::int32_t kDefinedSize = MemberId("DefinedSize");
constexpr std::int32_t kName = MemberId("Name");
constexpr std::int32_t kNumericScale = MemberId("NumericScale");
constexpr std::int32_t kOriginalValue = 1104;
constexpr std::int32_t kPrecision = MemberId("Precision");
constexpr std::int32_t kStatus = 1116;
constexpr std::int32_t kType = MemberId("Type");
constexpr std::int32_t kUnderlyingValue = 1105;

/// ADO's bits: every value as long, may be null, and without limit.
std::int32_t AttributesOf(const Field& field) {
  constexpr std::int32_t kFixed = 0x10;
  constexpr std::int32_t kNullable = 0x20 | 0x40;
  constexpr std::int32_t kLong = 0x80;
  const FieldTraits traits = TraitsOf(field);
  return (traits.fixed_length ? kFixed : 0) | (field.nullable ? kNullable : 0) | (traits.unlimited ? kLong : 0);
}

std::int32_t ActualSize(const Field& field, const Variant& value) {
  if (value.is_null()) return 0;
  const auto* text = KeepsText(field) ? value.get_if<std::string>() : nullptr;
  if (text != nullptr) return static_cast<std::int32_t>(Utf16Length(*text));
  if (const auto* bytes = value.get_if<Bytes>()) return static_cast<std::int32_t>(bytes->size());
  return TraitsOf(field).size;
}

}  // namespace

const ClassDescription& FieldObject::Description() {
  const auto number = [](std::string_view name, std::int32_t id, std::string_view help,
                         std::string_view enumeration = {}) {
    return Member{
        .name = name, .id = id, .uses = kGet, .result = ValueType::kLong, .help = help, .result_class = enumeration};
  };
  static const ClassDescription kDescription = {
      .name = "Field",
      .prog_id = "",
      .class_id = "5673A645-148A-4CB4-86C9-E17863D84D3D",
      .interface_id = "6F69B62D-BC58-457E-BC9B-4306A22F0426",
      .help = "A column of a recordset.",
      .members = {
          {.name = "Value",
           .id = kDefaultMember,
           .uses = kGet | kPut,
           .help = "The value in the current row. Writing raises 3251: the rows are read only."},
          {.name = "Name", .id = kName, .uses = kGet, .result = ValueType::kString, .help = "The column's name."},
          number("Type", kType, "ADO's number of the type, as 202 for nvarchar.", "DataTypeEnum"),
          number("DefinedSize", kDefinedSize, "Characters of text, bytes of anything else."),
          number("ActualSize", kActualSize, "Of the value in the current row."),
          number("Precision", kPrecision, "Digits of a number, 255 for anything else."),
          number("NumericScale", kNumericScale, "Places of a decimal, 255 for a type that has none."),
          number("Attributes", kAttributes, "16 for one size of every value, 96 for nulls, 128 for no limit, added up.",
                 "FieldAttributeEnum"),
          {.name = "OriginalValue", .id = kOriginalValue, .uses = kGet, .help = "The same as Value."},
          {.name = "UnderlyingValue", .id = kUnderlyingValue, .uses = kGet, .help = "The same as Value."},
          number("Status", kStatus, "0: the field is in order.", "FieldStatusEnum"),
          PropertiesMember(),
      }};
  return kDescription;
}

bool FieldObject::Read(const Member& member, ValueTaker& taker) const {
  if (member.id != kDefaultMember) return false;
  HandOver(view_->Current(), field_, taker);
  return true;
}

std::optional<Variant> FieldObject::DefaultValue() {
  return ClientValue(view_->fields()[field_], view_->Value(field_));
}

Variant FieldObject::Do(const Member& member, MemberUse use, std::span<Variant> arguments) {
  const Field& field = view_->fields()[field_];
  if (use == kPut) RaiseReadOnlyRows(field.name);
  constexpr std::int32_t kInOrder = 0;
  switch (member.id) {
    case kName:
      return field.name;
    case kType:
      return TraitsOf(field).type;
    case kDefinedSize:
      return TraitsOf(field).size;
    case kActualSize:
      return ActualSize(field, view_->Value(field_));
    case kPrecision:
      return TraitsOf(field).precision;
    case kNumericScale:
      return TraitsOf(field).scale;
    case kAttributes:
      return AttributesOf(field);
    case kStatus:
      return kInOrder;
    case kPropertiesMember:
      return PropertiesOf(arguments);
    default:
      break;
  }
  Variant value = view_->Value(field_);
  ToClientValue(field, value);
  return value;
}

const ClassDescription& FieldsObject::Description() {
  static const ClassDescription kDescription = {
      .name = "Fields",
      .prog_id = "",
      .class_id = "3BCEB113-4921-4F1C-8BDF-3E74DD67C1DB",
      .interface_id = "864CBACF-3DCA-41B8-88BE-BA3C9C1EA818",
      .help = "The fields of a recordset.",
      .members = {
          {.name = "Item",
           .id = kDefaultMember,
           .uses = kGet | kPut,
           .arguments = kIndex,
           .help = "A field by name or by position from 0. Raises 3265 when there is none, and 3251 when written.",
           .result_class = "Field"},
          {.name = "Count", .id = kCount, .uses = kGet, .result = ValueType::kLong, .help = "Number of fields."},
          {.name = "_NewEnum", .id = kEnumerationMember, .uses = kGet, .help = "For Each goes through the fields."},
      }};
  return kDescription;
}

std::vector<Variant> FieldsObject::Items() const {
  std::vector<Variant> fields;
  for (std::size_t i = 0; i < view_->fields().size(); ++i) fields.emplace_back(std::shared_ptr<Object>(Made(i)));
  return fields;
}

Variant FieldsObject::Item(const Variant& name_or_position, MemberUse use) const {
  const std::size_t field = view_->FieldIndex(name_or_position);
  if (use == kPut) RaiseReadOnlyRows(view_->fields()[field].name);
  return std::shared_ptr<Object>(Made(field));
}

const std::shared_ptr<AutomationObject>& FieldsObject::At(std::int32_t position) const {
  const auto field = static_cast<std::size_t>(position);
  return Made(position >= 0 && field < view_->fields().size() ? field : view_->FieldIndex(position));
}

const std::shared_ptr<AutomationObject>* FieldsObject::Element(const Member& member, std::int32_t position) const {
  return member.id == kDefaultMember ? &At(position) : nullptr;
}

const std::shared_ptr<AutomationObject>& FieldsObject::Made(std::size_t field) const {
  if (fields_.empty()) fields_.resize(view_->fields().size());
  std::shared_ptr<AutomationObject>& found = fields_[field];
  if (found == nullptr) found = std::make_shared<FieldObject>(view_, field);
  return found;
}

Variant FieldsObject::Do(const Member& member, MemberUse use, std::span<Variant> arguments) {
  if (member.id == kCount) return view_->open() ? static_cast<std::int32_t>(view_->fields().size()) : 0;
  return Item(arguments[0], use);
}

}  // namespace tessarlorn
