// A recordset of ADO as a result of the component: handed out as it is, and read only when an operation reads it.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "com_base/apartment.h"
#include "com_base/pointers.h"
#include "drivers/ado/ado_interfaces.h"
#include "platform/recordset_builder.h"
#include "tessarlorn/recordset.h"

namespace tessarlorn::ado {

/// Keeps ADO's recordset alive; lives on the thread that opened its connection.
class AdoRows final : public RowSource {
 public:
  /// @pre not nullptr, open, at the client
  explicit AdoRows(com::Pointer<IAdoRecordset> rows) : rows_(std::move(rows)) {}

  void Read(RecordsetBuilder& rows) override;
  void Detach() override;
  /// ADO's own object.
  [[nodiscard]] const com::Pointer<IAdoRecordset>& recordset() const noexcept { return rows_; }

 private:
  const com::Apartment apartment_;
  com::Pointer<IAdoRecordset> rows_;
};

/// The recordset with its fields. Raises what ADO raises.
RecordsetPtr ToRecordset(com::Pointer<IAdoRecordset> rows);

}  // namespace tessarlorn::ado
