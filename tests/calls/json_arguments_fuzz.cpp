#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "hosts/calls/json_arguments.h"
#include "hosts/calls/json_text.h"
#include "hosts/calls/wrong_call.h"

// Any bytes are either refused as a wrong call or become a value whose JSON reads back as the same JSON.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessarlorn;
  std::string written;
  try {
    written = JsonText(ReadJson({reinterpret_cast<const char*>(data), size}, "fuzz"));
  } catch (const WrongCall&) {
    return 0;
  }
  if (JsonText(ReadJson(written, "written")) != written) std::abort();
  return 0;
}
