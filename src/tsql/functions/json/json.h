// JSON texts as trees whose nodes know where they stand in the text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessarlorn::tsql {

/// The numbers are those that OPENJSON gives as type.
enum class JsonKind : std::uint8_t { kNull, kString, kNumber, kBool, kArray, kObject };

struct JsonMember;

struct JsonNode {
  JsonKind kind = JsonKind::kNull;
  /// As it stands in the text that was parsed, which outlives the node.
  std::string_view text;
  /// Of an object or an array.
  std::vector<JsonMember> members;

  [[nodiscard]] bool is_scalar() const { return kind < JsonKind::kArray; }
  /// Of a scalar: a string without quotes and escapes, else the text.
  [[nodiscard]] std::string Scalar() const;
};

struct JsonMember {
  std::string key;  // "" in an array
  /// From the key, or else the value, to the end of the value.
  std::string_view text;
  JsonNode value;
};

/// An object or an array. Raises 13609 for any other text, and for more than 128 levels.
JsonNode ParseJson(std::string_view text);

/// One step of a path: .key or [index].
struct JsonStep {
  std::string key;
  std::size_t index = 0;
  bool by_index = false;
};

/// [append] [lax|strict] $.a[0]."b c"
struct JsonPath {
  bool append = false;
  bool strict = false;
  std::vector<JsonStep> steps;
};

/// Raises 13607.
JsonPath ParseJsonPath(std::string_view text);
/// The node after the first so many steps; nullptr where there is none.
const JsonNode* FindNode(const JsonNode& root, const JsonPath& path, std::size_t steps);
/// The node at the end of the path. nullptr where there is none; raises 13608 instead when the path is strict.
const JsonNode* FindNode(const JsonNode& root, const JsonPath& path);
[[noreturn]] void RaiseNoProperty();

}  // namespace tessarlorn::tsql
