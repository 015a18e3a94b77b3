#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "hosts/cli/console/usage_error.h"
#include "hosts/cli/input/json_arguments.h"
#include "hosts/cli/output/json_text.h"

// Any bytes are either refused as a wrong call or become a value whose JSON reads back as the same JSON.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessarlorn;
  std::string written;
  try {
    written = cli::JsonText(cli::ReadJson({reinterpret_cast<const char*>(data), size}, "fuzz"));
  } catch (const cli::UsageError&) {
    return 0;
  }
  if (cli::JsonText(cli::ReadJson(written, "written")) != written) std::abort();
  return 0;
}
