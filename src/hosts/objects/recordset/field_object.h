// The fields of a recordset and one field as clients of automation see them, with ADO's members and numbers.
#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "hosts/objects/automation_object.h"
#include "hosts/objects/recordset/recordset_view.h"

namespace tessarlorn {

/// A column; its value is that of the row which is current when it is asked for.
class FieldObject final : public AutomationObject {
 public:
  /// @pre the rows have that field
  FieldObject(std::shared_ptr<RecordsetView> view, std::size_t field) : view_(std::move(view)), field_(field) {}

  static const ClassDescription& Description();
  [[nodiscard]] const ClassDescription& description() const override { return Description(); }
  [[nodiscard]] bool Read(const Member& member, ValueTaker& taker) const override;
  /// The value in the current row.
  [[nodiscard]] std::optional<Variant> DefaultValue() override;

 protected:
  Variant Do(const Member& member, MemberUse use, std::span<Variant> arguments) override;

 private:
  std::shared_ptr<RecordsetView> view_;
  std::size_t field_;
};

/// `For Each` goes through the fields. Each is made once: a table that is read by field asks for all of them in every
/// row.
class FieldsObject final : public AutomationObject {
 public:
  explicit FieldsObject(std::shared_ptr<RecordsetView> view) : view_(std::move(view)) {}

  static const ClassDescription& Description();
  [[nodiscard]] const ClassDescription& description() const override { return Description(); }
  [[nodiscard]] std::vector<Variant> Items() const override;
  /// The field of that name or position as an object. Raises 3265 when there is none, 3251 when it is to be written.
  [[nodiscard]] Variant Item(const Variant& name_or_position, MemberUse use) const;
  /// A field by its position. Raises 3265 when there is none.
  [[nodiscard]] const std::shared_ptr<AutomationObject>& At(std::int32_t position) const;
  [[nodiscard]] const std::shared_ptr<AutomationObject>* Element(const Member& member,
                                                                 std::int32_t position) const override;

 protected:
  Variant Do(const Member& member, MemberUse use, std::span<Variant> arguments) override;

 private:
  /// @pre the rows have that field
  [[nodiscard]] const std::shared_ptr<AutomationObject>& Made(std::size_t field) const;

  std::shared_ptr<RecordsetView> view_;
  /// Nothing where none was asked for.
  mutable std::vector<std::shared_ptr<AutomationObject>> fields_;
};

}  // namespace tessarlorn
