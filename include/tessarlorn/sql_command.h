// What goes to a database: a batch or the call of a procedure, and its parameters with their types.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "tessarlorn/recordset.h"
#include "tessarlorn/variant.h"

namespace tessarlorn {

/// A value that travels beside the text, never in it.
struct SqlParameter {
  /// With its @, as the batch names it. A procedure takes one without a name by its position.
  std::string name;
  /// As a batch declares it: "int", "nvarchar(40)", "varbinary(max)", "decimal(18,4)".
  std::string type;
  /// Empty and Null are NULL. What is no value of the type fails as a conversion of the server does.
  Variant value;
  /// What the batch or procedure leaves in it comes back in `value`.
  bool is_output = false;
  /// The procedure's own default counts; `value` does not.
  bool is_default = false;
};

/// A batch, or the call of a procedure. It is used for one run, and refers to text and parameters.
struct SqlCommand {
  SqlCommand(std::string_view batch, std::span<SqlParameter> with = {}) : text(batch), parameters(with) {}
  SqlCommand(const char* batch) : text(batch) {}
  SqlCommand(const std::string& batch) : text(batch) {}
  static SqlCommand Procedure(std::string_view name, std::span<SqlParameter> with) {
    SqlCommand command(name, with);
    command.is_procedure = true;
    return command;
  }

  /// The batch, or the procedure's name.
  std::string_view text;
  std::span<SqlParameter> parameters;
  bool is_procedure = false;
  /// What the procedure returned.
  std::int32_t status = 0;
};

/// The type that a declaration such as "decimal(18,4)" stands for, as a nullable field without a name. Types that
/// differ in range or precision only are one: datetime, datetime2 and smalldatetime; money and smallmoney. text, ntext
/// and image are varchar(max), nvarchar(max) and varbinary(max). Raises 0x80040E14 naming the declaration for any other
/// word. What stands behind the first numbers in parentheses is not read.
Field FieldOfDeclaration(std::string_view declaration);

/// The type's word in declarations, without arguments: "int", "nvarchar", "datetime".
std::string_view TypeWordOf(FieldType type);

}  // namespace tessarlorn
