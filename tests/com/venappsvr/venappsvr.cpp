// The network library of the ERP, as far as a test needs it: tells the address that the environment variable
// TESSARLORN_TEST_ADDRESS holds, none without it.
#include <cstdlib>
#include <cstring>

#include "com_base/windows_headers.h"

extern "C" int WINAPI ReadTcp(char* address, char* unused) {
  constexpr std::size_t kSize = 64;
  const char* const found = std::getenv("TESSARLORN_TEST_ADDRESS");
  if (found == nullptr || *found == '\0' || std::strlen(found) >= kSize || unused == nullptr) return 0;
  std::strcpy(address, found);
  return 1;
}
