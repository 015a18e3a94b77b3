#include "hosts/calls/csv_text.h"

#include "platform/text/text.h"

namespace tessarlorn {

std::string EscapedCsv(std::string_view text) {
  if (!text.empty() && text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  return Quoted(text, '"', '"');
}

void AppendCsvHeads(std::string& csv, const ResultRows& shown) {
  for (std::size_t i = 0; i < shown.heads.size(); ++i) csv += (i > 0 ? "," : "") + EscapedCsv(shown.heads[i]);
  csv += "\r\n";
}

void AppendCsvRow(std::string& csv, const Recordset& rows, const ResultRows& shown) {
  for (std::size_t i = 0; i < shown.fields.size(); ++i) {
    if (i > 0) csv += ',';
    const std::size_t field = shown.fields[i];
    if (!rows.IsNull(field)) csv += EscapedCsv(CellText(rows.Get(field), rows.fields()[field].type, CellStyle::kData));
  }
  csv += "\r\n";
}

}  // namespace tessarlorn
