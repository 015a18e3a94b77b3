// A disconnected recordset as clients of automation see it, with ADO's members and numbers.
#pragma once

#include <memory>
#include <string>
#include <utility>

#include "hosts/objects/automation_object.h"
#include "hosts/objects/recordset/field_object.h"
#include "hosts/objects/recordset/recordset_pages.h"
#include "hosts/objects/recordset/recordset_view.h"

namespace tessarlorn {

/// Has a position, a filter and an order of its own, whoever else holds the rows.
class RecordsetObject final : public AutomationObject {
 public:
  /// @pre not nullptr
  explicit RecordsetObject(RecordsetPtr rows)
      : view_(std::make_shared<RecordsetView>(std::move(rows))), fields_(std::make_shared<FieldsObject>(view_)) {}

  static const ClassDescription& Description();
  [[nodiscard]] const ClassDescription& description() const override { return Description(); }
  /// A field.
  [[nodiscard]] const std::shared_ptr<AutomationObject>* Element(const Member& member,
                                                                 std::int32_t position) const override;

 protected:
  Variant Do(const Member& member, MemberUse use, std::span<Variant> arguments) override;

 private:
  [[nodiscard]] std::size_t RowOf(const Variant& bookmark) const;
  [[nodiscard]] std::size_t PositionOf(const Variant& bookmark) const;
  [[nodiscard]] std::int32_t AbsolutePosition() const;
  void SetAbsolutePosition(std::int32_t position);
  Variant GetRows(const Variant& rows, const Variant& start, const Variant& fields);
  Variant GetString(std::span<const Variant> arguments);
  void Find(std::span<const Variant> arguments);
  void Show(const Variant& filter, const std::string& sort);
  void SetFilter(const Variant& filter);
  [[nodiscard]] Variant Collect(const Variant& name_or_position, MemberUse use);
  [[nodiscard]] Variant OfTheRow(std::int32_t value) const;
  void SetActiveConnection(const Variant& connection);
  void Save(const Variant& destination, const Variant& format);

  std::shared_ptr<RecordsetView> view_;
  std::shared_ptr<FieldsObject> fields_;
  RecordsetPages pages_;
  /// As Filter answers it.
  Variant filter_ = 0;
  std::string sort_;
};

}  // namespace tessarlorn
