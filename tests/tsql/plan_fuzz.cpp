// Three bytes a batch, a place and two literals: the last batch answers what it answers alone.
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "tsql/plan_cases.h"

namespace {

using tessarlorn::AnswerAndUndo;

std::unique_ptr<tessarlorn::Connection> Open() {
  auto connection = tessarlorn::OpenEmbedded();
  connection->Execute(tessarlorn::kPlanTables);
  connection->Execute(tessarlorn::kPlanProcedure);
  return connection;
}

std::string Literal(std::uint8_t byte) {
  constexpr std::size_t kFixed = tessarlorn::kLiterals.size();
  switch (byte % (kFixed + 4)) {
    case kFixed:
      return tessarlorn::LongText();
    case kFixed + 1:
      return tessarlorn::LongBinary();
    case kFixed + 2:
      return std::to_string(byte * 9973);
    case kFixed + 3:
      return "'" + std::string(byte % 9, 'b') + "'";
    default:
      return std::string(tessarlorn::kLiterals[byte % (kFixed + 4)]);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 3 || size > 60) return 0;
  const auto shared = Open();
  std::string batch;
  std::string answer;
  for (std::size_t i = 0; i + 2 < size; i += 3) {
    const std::string_view place = tessarlorn::kPlaces[data[i] % tessarlorn::kPlaces.size()];
    batch = tessarlorn::Placed(place, Literal(data[i + 1]), Literal(data[i + 2]));
    answer = AnswerAndUndo(*shared, batch);
  }
  const std::string alone = AnswerAndUndo(*Open(), batch);
  if (answer != alone) {
    std::fprintf(stderr, "%s\nanswers %s\nalone   %s\n", batch.c_str(), answer.c_str(), alone.c_str());
    std::abort();
  }
  return 0;
}
