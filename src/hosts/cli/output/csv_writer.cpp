#include <string_view>

#include "hosts/calls/result_rows.h"
#include "hosts/cli/output/result_writer.h"
#include "platform/text/text.h"

namespace tessarlorn::cli {
namespace {

std::string Escaped(std::string_view text) {
  if (!text.empty() && text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
  return Quoted(text, '"', '"');
}

class CsvWriter final : public ResultWriter {
 public:
  CsvWriter(const OutputLayout& layout, std::ostream& out) : columns_(layout.columns), out_(out) {}

  void Write(const Variant& result) override {
    if (result.type_name() == "Nothing") return;
    const bool scalar = !result.is_object();
    const ResultRows shown =
        SelectColumns(RowsOf(result), result.ToRecordset() ? columns_ : std::vector<std::string>());
    if (written_) out_ << "\r\n";
    written_ = true;
    for (std::size_t i = 0; i < shown.heads.size(); ++i) out_ << (i > 0 ? "," : "") << Escaped(shown.heads[i]);
    out_ << "\r\n";
    if (scalar) {
      WriteCell(result, FieldType::kNVarChar);
      out_ << "\r\n";
      return;
    }
    Recordset& rows = *shown.rows;
    ForEachRow(rows, [&] {
      for (std::size_t i = 0; i < shown.fields.size(); ++i) {
        if (i > 0) out_ << ',';
        WriteCell(rows.Get(shown.fields[i]), rows.fields()[shown.fields[i]].type);
      }
      out_ << "\r\n";
    });
  }

 private:
  void WriteCell(const Variant& value, FieldType type) {
    if (!value.is_null()) out_ << Escaped(CellText(value, type, CellStyle::kData));
  }

  std::vector<std::string> columns_;
  std::ostream& out_;
  bool written_ = false;
};

}  // namespace

std::unique_ptr<ResultWriter> MakeCsvWriter(const OutputLayout& layout, std::ostream& out) {
  return std::make_unique<CsvWriter>(layout, out);
}

}  // namespace tessarlorn::cli
