#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tsql/syntax/parser.h"
#include "tsql/values/sql_error.h"

// Any bytes either parse or raise SqlError.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tessarlorn::tsql;
  const std::string_view batch(reinterpret_cast<const char*>(data), size);
  try {
    NameTable names;
    Tokens tokens;
    TokenizeBatch(batch, names, tokens);
    ParseStatements(batch, tokens);
  } catch (const SqlError&) {
    return 0;
  }
  return 0;
}
