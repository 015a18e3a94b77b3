#include <string_view>

#include "hosts/calls/csv_text.h"
#include "hosts/calls/result_rows.h"
#include "hosts/cli/output/result_writer.h"

namespace tessarlorn::cli {
namespace {

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
    std::string line;
    AppendCsvHeads(line, shown);
    if (scalar) {
      if (!result.is_null()) line += EscapedCsv(CellText(result, FieldType::kNVarChar, CellStyle::kData));
      out_ << line << "\r\n";
      return;
    }
    out_ << line;
    ForEachRow(*shown.rows, [&] {
      line.clear();
      AppendCsvRow(line, *shown.rows, shown);
      out_ << line;
    });
  }

 private:
  std::vector<std::string> columns_;
  std::ostream& out_;
  bool written_ = false;
};

}  // namespace

std::unique_ptr<ResultWriter> MakeCsvWriter(const OutputLayout& layout, std::ostream& out) {
  return std::make_unique<CsvWriter>(layout, out);
}

}  // namespace tessarlorn::cli
