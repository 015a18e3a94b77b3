// Rows as CSV (RFC 4180): lines end with CR LF.
#pragma once

#include <string>
#include <string_view>

#include "hosts/calls/result_rows.h"

namespace tessarlorn {

/// A cell with a comma, quote or line break is quoted; the empty text is "".
std::string EscapedCsv(std::string_view text);
/// The heads of the shown fields.
void AppendCsvHeads(std::string& csv, const ResultRows& shown);
/// The current row of a recordset with the same fields; null is nothing at all.
void AppendCsvRow(std::string& csv, const Recordset& rows, const ResultRows& shown);

}  // namespace tessarlorn
