#include "hosts/cli/output/result_writer.h"

namespace tessarlorn::cli {

std::unique_ptr<ResultWriter> MakeResultWriter(const OutputLayout& layout, std::ostream& out) {
  switch (layout.format) {
    case OutputFormat::kJson:
      return MakeJsonWriter(layout, out);
    case OutputFormat::kCsv:
      return MakeCsvWriter(layout, out);
    case OutputFormat::kTable:
      break;
  }
  return MakeTableWriter(layout, out);
}

}  // namespace tessarlorn::cli
