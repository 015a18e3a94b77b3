#include "frame/key_list.h"

#include "platform/text/text.h"
#include "tessarlorn/variant.h"

namespace tessarlorn {

std::vector<std::string_view> SplitKeys(std::string_view keys) {
  if (keys.empty()) return {};
  return Split(keys, ',');
}

std::int32_t KeyNumber(std::string_view key) { return Variant(key).ToInt32(); }

}  // namespace tessarlorn
