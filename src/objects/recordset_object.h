// A disconnected recordset, its fields and one field, with the members and numbers that clients of ADO know.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "objects/automation_object.h"
#include "platform/recordset.h"

namespace tessarlorn {

/// What RecordsetObject, FieldsObject and FieldObject share: the rows, which of them are shown in which order, and the
/// current one.
class RecordsetView {
 public:
  explicit RecordsetView(RecordsetPtr rows);

  [[nodiscard]] bool open() const noexcept { return rows_ != nullptr; }
  /// Raises 3704 when it is closed.
  [[nodiscard]] Recordset& rows() const;
  void Close() noexcept { rows_ = nullptr; }

  [[nodiscard]] std::size_t count() const noexcept { return shown_.size(); }
  /// 1 to count(); 0 before the first row, count() + 1 behind the last.
  [[nodiscard]] std::size_t position() const noexcept { return position_; }
  [[nodiscard]] bool bof() const noexcept { return position_ == 0 || count() == 0; }
  [[nodiscard]] bool eof() const noexcept { return position_ == count() + 1; }
  void set_position(std::size_t position) noexcept { position_ = position; }
  /// Steps by so many rows; one step beyond either end is possible. Raises 3021 for a step from there onwards.
  void Move(std::int64_t rows);

  /// The field of the current row. Raises 3021 when there is none.
  [[nodiscard]] Variant Value(std::size_t field) const;
  /// By name, or by position from 0. Raises 3265 naming it.
  [[nodiscard]] std::size_t FieldIndex(const Variant& name_or_position) const;

  /// Shows the rows that the condition holds for, all for "", in the order of the fields named in `sort`. Goes to the
  /// first one. Raises 3001 for a text that cannot be read, 3265 for an unknown field.
  void Show(const std::string& filter, const std::string& sort);
  /// The position of the first row from `from` on (backwards from it) that the condition holds for, or nothing.
  [[nodiscard]] std::optional<std::size_t> Find(const std::string& condition, std::size_t from, bool forwards) const;

 private:
  RecordsetPtr rows_;
  std::vector<std::size_t> shown_;  // rows by position - 1
  std::size_t position_ = 0;
};

class RecordsetObject final : public AutomationObject {
 public:
  /// @pre not nullptr
  explicit RecordsetObject(RecordsetPtr rows);

  static const ClassDescription& Description();
  [[nodiscard]] const ClassDescription& description() const override { return Description(); }
  /// nullptr once it is closed.
  [[nodiscard]] const RecordsetPtr& recordset() const noexcept { return recordset_; }

 protected:
  Variant Do(const Member& member, MemberUse use, std::span<Variant> arguments) override;

 private:
  Variant GetRows(const Variant& rows, const Variant& start, const Variant& fields);
  Variant GetString(std::span<const Variant> arguments);
  void Find(std::span<const Variant> arguments);
  void Save(const Variant& destination, const Variant& format) const;
  void GoToStart(const Variant& start);

  RecordsetPtr recordset_;
  std::shared_ptr<RecordsetView> view_;
  std::string filter_;
  std::string sort_;
};

/// `For Each` goes through the fields.
class FieldsObject final : public AutomationObject {
 public:
  explicit FieldsObject(std::shared_ptr<RecordsetView> view) : view_(std::move(view)) {}

  static const ClassDescription& Description();
  [[nodiscard]] const ClassDescription& description() const override { return Description(); }
  [[nodiscard]] std::vector<Variant> Items() const override;

 protected:
  Variant Do(const Member& member, MemberUse use, std::span<Variant> arguments) override;

 private:
  std::shared_ptr<RecordsetView> view_;
};

/// A column; its value is that of the row which is current when it is asked for.
class FieldObject final : public AutomationObject {
 public:
  FieldObject(std::shared_ptr<RecordsetView> view, std::size_t field) : view_(std::move(view)), field_(field) {}

  static const ClassDescription& Description();
  [[nodiscard]] const ClassDescription& description() const override { return Description(); }

 protected:
  Variant Do(const Member& member, MemberUse use, std::span<Variant> arguments) override;

 private:
  std::shared_ptr<RecordsetView> view_;
  std::size_t field_;
};

}  // namespace tessarlorn
