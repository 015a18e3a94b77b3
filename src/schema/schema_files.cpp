#include "schema/schema_files.h"

#include <algorithm>

#include "platform/text/text.h"

namespace tessarlorn {
namespace {

std::string_view WithoutSpace(std::string_view text) {
  constexpr std::string_view kSpace = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kSpace) - first + 1);
}

}  // namespace

std::vector<std::string_view> SplitBatches(std::string_view script) {
  std::vector<std::string_view> batches;
  const auto add = [&](std::size_t begin, std::size_t end) {
    const std::string_view batch = script.substr(begin, end - begin);
    if (!WithoutSpace(batch).empty()) batches.push_back(batch);
  };
  std::size_t batch_begin = 0;
  std::size_t position = 0;
  for (const std::string_view line : Split(script, '\n')) {
    const std::size_t next = std::min(position + line.size() + 1, script.size());
    if (EqualsIgnoreCase(WithoutSpace(line), "GO")) {
      add(batch_begin, position);
      batch_begin = next;
    }
    position = next;
  }
  add(batch_begin, script.size());
  return batches;
}

std::string DateOrderWarning(Connection& connection) {
  constexpr std::int32_t kFebruary = 2;
  const RecordsetPtr row = connection.Execute("SELECT MONTH(CAST('2001-02-03 00:00:00' AS datetime)) AS FMonth");
  if (row->Get("FMonth").ToInt32() == kFebruary) return {};
  return "This login reads '2001-02-03' as year, day, month, by its language or DATEFORMAT. Dates in filters would mean "
         "other days. Give it a language that reads year, month, day, such as us_english: ALTER LOGIN name WITH "
         "DEFAULT_LANGUAGE = us_english.";
}

void ApplySchema(Connection& connection) {
  for (const SchemaFile& file : SchemaFiles()) {
    for (const std::string_view batch : SplitBatches(file.text)) connection.Execute(batch);
  }
}

}  // namespace tessarlorn
