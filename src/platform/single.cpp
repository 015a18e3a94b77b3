#include "platform/single.h"

#include <array>
#include <charconv>

namespace tessarlorn {

double Widened(float value) {
  std::array<char, 32> buffer;
  const char* const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
  double wide = 0;
  std::from_chars(buffer.data(), end, wide);
  return wide;
}

}  // namespace tessarlorn
