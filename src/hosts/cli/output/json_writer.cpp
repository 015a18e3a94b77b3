#include <string>
#include <vector>

#include "hosts/calls/json_text.h"
#include "hosts/cli/output/result_writer.h"

namespace tessarlorn::cli {
namespace {

class JsonWriter final : public ResultWriter {
 public:
  JsonWriter(const OutputLayout& layout, std::ostream& out) : columns_(layout.columns), out_(out) {}

  void Write(const Variant& result) override {
    const RecordsetPtr rows = result.ToRecordset();
    if (rows) {
      WriteRows(SelectColumns(rows, columns_));
    } else {
      out_ << JsonText(result) << '\n';
    }
  }

 private:
  void WriteRows(const ResultRows& shown) {
    const JsonRows objects(shown);
    out_ << '[';
    bool first = true;
    std::string line;
    ForEachRow(*shown.rows, [&] {
      line = first ? "\n  " : ",\n  ";
      objects.AppendObject(line, *shown.rows);
      out_ << line;
      first = false;
    });
    out_ << (first ? "]\n" : "\n]\n");
  }

  std::vector<std::string> columns_;
  std::ostream& out_;
};

}  // namespace

std::unique_ptr<ResultWriter> MakeJsonWriter(const OutputLayout& layout, std::ostream& out) {
  return std::make_unique<JsonWriter>(layout, out);
}

}  // namespace tessarlorn::cli
