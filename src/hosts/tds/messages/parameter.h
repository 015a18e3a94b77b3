// Parameters of calls: their types and values as TDS carries them, read into Transact-SQL.
#pragma once

#include <optional>
#include <string>

#include "hosts/tds/messages/tds_reader.h"
#include "hosts/tds/messages/type_codes.h"

namespace tessarlorn::tds {

/// A parameter whose value stands as a literal that its own type reads back unchanged.
struct Parameter {
  /// With its @, "" when it is given by position.
  std::string name;
  /// "nvarchar(40)".
  std::string type;
  /// "N'it''s'", "0x0102", "NULL".
  std::string literal;
  bool is_output = false;
  /// The value is to be the procedure's default.
  bool is_default = false;
  /// The value itself, for the calls whose parameters the server reads: of a text, of a whole number.
  std::optional<std::string> text;
  std::optional<std::int64_t> number;
};

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
/// The value of a column or parameter of the type, as a literal. @param name for messages
std::string ReadLiteral(TdsReader& reader, const WireType& type, const std::string& name);

/// Reads name, flags, type and value. Raises ProtocolError for malformed ones, Error 8023 for a value that its
/// type does not have (a float that is no number, a date out of range), and Error 40000 for types that the database
/// does not have: tables, XML, variants and users' own.
Parameter ReadParameter(TdsReader& reader);

/// N'…' with the quotes inside doubled.
std::string TextLiteral(std::string_view text);

}  // namespace tessarlorn::tds
