// The rows of a recordset on their way to ADO.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "tessarlorn/error.h"
#include "tessarlorn/object.h"
#include "tessarlorn/variant.h"

namespace tessarlorn {

/// Rows in the XML that ADO reads. Only held by a Variant, never called: a host whose clients know ADO hands out a
/// recordset of ADO's in its place.
class RowsForAdo final : public Object {
 public:
  explicit RowsForAdo(std::string xml) : xml_(std::move(xml)) {}
  [[nodiscard]] const std::string& xml() const noexcept { return xml_; }

  Variant Call(std::string_view method, std::span<const Variant>) override {
    Raise(error_number::kNoSuchMember, "Rows for ADO have no member " + std::string(method));
  }

 private:
  std::string xml_;
};

}  // namespace tessarlorn
