#include <set>
#include <string>
#include <vector>

#include "hosts/cli/output/result_rows.h"
#include "hosts/cli/output/result_writer.h"

namespace tessarlorn::cli {
namespace {

/// The heads as keys of one object: "_2" and so on behind those that stood before.
std::vector<std::string> KeysOf(const std::vector<std::string>& heads) {
  std::set<std::string> taken;
  std::vector<std::string> keys;
  for (const std::string& head : heads) {
    std::string key = head;
    for (int number = 2; !taken.insert(key).second; ++number) key = head + "_" + std::to_string(number);
    keys.push_back(key);
  }
  return keys;
}

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
  void WriteRows(const ResultRows& result) {
    std::vector<std::string> heads;
    for (const std::string& key : KeysOf(result.heads)) heads.push_back(JsonText(key) + ":");
    Recordset& rows = *result.rows;
    out_ << '[';
    bool first = true;
    ForEachRow(rows, [&] {
      out_ << (first ? "\n  {" : ",\n  {");
      first = false;
      for (std::size_t i = 0; i < heads.size(); ++i) {
        const std::size_t field = result.fields[i];
        out_ << (i > 0 ? "," : "") << heads[i] << JsonText(rows.Get(field), rows.fields()[field].type);
      }
      out_ << '}';
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
