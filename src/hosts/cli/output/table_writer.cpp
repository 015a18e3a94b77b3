#include <algorithm>

#include "hosts/calls/result_rows.h"
#include "hosts/cli/console/display_width.h"
#include "hosts/cli/output/result_writer.h"
#include "platform/text/text.h"

namespace tessarlorn::cli {
namespace {

/// Columns of the widest cell on a terminal.
constexpr std::size_t kMostCellWidth = 40;
constexpr std::size_t kGap = 2;

bool IsNumber(FieldType type) { return type >= FieldType::kTinyInt && type <= FieldType::kMoney; }

class TableWriter final : public ResultWriter {
 public:
  TableWriter(const OutputLayout& layout, std::ostream& out)
      : columns_(layout.columns), width_(layout.width), out_(out) {}

  void Write(const Variant& result) override {
    if (!result.is_object() || result.type_name() == "Nothing") {
      out_ << CellText(result, FieldType::kNVarChar, CellStyle::kDisplay) << '\n';
      return;
    }
    const ResultRows shown =
        SelectColumns(RowsOf(result), result.ToRecordset() ? columns_ : std::vector<std::string>());
    if (written_) out_ << '\n';
    written_ = true;
    WriteTable(shown);
  }

 private:
  [[nodiscard]] std::string Cell(const ResultRows& shown, std::size_t column) const {
    const std::size_t field = shown.fields[column];
    std::string text =
        OnOneLine(CellText(shown.rows->Get(field), shown.rows->fields()[field].type, CellStyle::kDisplay));
    return width_ > 0 ? CutToWidth(text, kMostCellWidth) : text;
  }

  [[nodiscard]] std::vector<std::size_t> Widths(const ResultRows& shown) const {
    std::vector<std::size_t> widths;
    for (const std::string& head : shown.heads) widths.push_back(DisplayWidth(OnOneLine(head)));
    Recordset& rows = *shown.rows;
    ForEachRow(rows, [&] {
      for (std::size_t i = 0; i < widths.size(); ++i) widths[i] = std::max(widths[i], DisplayWidth(Cell(shown, i)));
    });
    return widths;
  }

  /// How many of the columns fit beside each other, at least one.
  [[nodiscard]] std::size_t Fitting(const std::vector<std::size_t>& widths) const {
    std::size_t taken = 0;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      taken += widths[i] + (i > 0 ? kGap : 0);
      if (width_ > 0 && taken > width_ && i > 0) return i;
    }
    return widths.size();
  }

  void WriteTable(const ResultRows& shown) {
    const std::vector<std::size_t> widths = Widths(shown);
    const std::size_t count = Fitting(widths);
    Line(widths, count, [&](std::size_t i) { return Padded(shown, i, OnOneLine(shown.heads[i]), widths[i]); });
    Line(widths, count, [&](std::size_t i) { return std::string(widths[i], '-'); });
    Recordset& rows = *shown.rows;
    ForEachRow(
        rows, [&] { Line(widths, count, [&](std::size_t i) { return Padded(shown, i, Cell(shown, i), widths[i]); }); });
    out_ << '(' << rows.RecordCount() << (rows.RecordCount() == 1 ? " row" : " rows");
    if (count < widths.size()) {
      out_ << "; " << count << " of " << widths.size()
           << " columns fit here, --columns A,B,... chooses others, --full shows all";
    }
    out_ << ")\n";
  }

  static std::string Padded(const ResultRows& shown, std::size_t column, const std::string& text, std::size_t width) {
    const std::string blanks(width - DisplayWidth(text), ' ');
    return IsNumber(shown.rows->fields()[shown.fields[column]].type) ? blanks + text : text + blanks;
  }

  /// One line, without blanks at its end.
  template <typename Text>
  void Line(const std::vector<std::size_t>& widths, std::size_t count, const Text& text) {
    std::string line;
    for (std::size_t i = 0; i < count && i < widths.size(); ++i) {
      if (i > 0) line.append(kGap, ' ');
      line += text(i);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    out_ << line << '\n';
  }

  std::vector<std::string> columns_;
  std::size_t width_;
  std::ostream& out_;
  bool written_ = false;
};

}  // namespace

std::unique_ptr<ResultWriter> MakeTableWriter(const OutputLayout& layout, std::ostream& out) {
  return std::make_unique<TableWriter>(layout, out);
}

}  // namespace tessarlorn::cli
