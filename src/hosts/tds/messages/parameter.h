// Parameters of calls: their types and values as TDS carries them.
#pragma once

#include <string>

#include "hosts/tds/messages/tds_reader.h"
#include "hosts/tds/messages/type_codes.h"
#include "tessarlorn/sql_command.h"

namespace tessarlorn::tds {

/// A type as its bytes say.
struct WireType {
  TypeCode code = TypeCode::kNull;
  /// Most bytes of a value; kUnlimited when it comes in parts.
  std::size_t size = 0;
  int precision = 0;
  int scale = 0;
  std::string_view collation;

  /// text, ntext and image.
  [[nodiscard]] bool is_old_long() const noexcept;
};

/// Raises as ReadParameter does.
WireType ReadWireType(TdsReader& reader);
/// As a batch declares it: "nvarchar(40)".
std::string DeclarationOf(const WireType& type);
/// The value of a column or parameter of the type; a datetimeoffset is its text. @param name for messages
Variant ReadVariant(TdsReader& reader, const WireType& type, const std::string& name);

/// Reads name, flags, type and value. Raises ProtocolError for malformed ones, Error 8023 for a value that its
/// type does not have (a float that is no number, a date out of range), and Error 40000 for types that the database
/// does not have: tables, XML, variants and users' own.
SqlParameter ReadParameter(TdsReader& reader);

}  // namespace tessarlorn::tds
