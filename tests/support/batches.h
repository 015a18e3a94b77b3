// Long key lists and the batches that become of them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tessarlorn {

/// Numbers of keys around the limit, and the blocks that each batch then holds.
struct BatchCase {
  int keys;
  std::vector<int> blocks;
};
inline const BatchCase kBatchCases[] = {{1, {1}}, {149, {149}}, {150, {150}}, {151, {150, 1}}, {301, {150, 150, 1}}};

/// "1,2,3", with `wrong` in place of the key of that number when there is one.
inline std::string KeysTo(int count, int wrong = 0) {
  std::string keys;
  for (int key = 1; key <= count; ++key) keys += (key == 1 ? "" : ",") + (key == wrong ? "x" : std::to_string(key));
  return keys;
}

/// How often the text stands in each of the batches in which it stands at all.
inline std::vector<int> CountsOf(std::string_view text, const std::vector<std::string>& batches) {
  std::vector<int> counts;
  for (const std::string& batch : batches) {
    int count = 0;
    for (std::size_t at = batch.find(text); at != std::string::npos; at = batch.find(text, at + 1)) ++count;
    if (count > 0) counts.push_back(count);
  }
  return counts;
}

}  // namespace tessarlorn
