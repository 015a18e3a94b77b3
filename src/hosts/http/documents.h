// What the door answers without asking anybody: the description of the operations, and the page that shows it.
#pragma once

#include <span>
#include <string_view>

namespace tessarlorn::http {

struct Document {
  std::string_view type;
  std::string_view text;
};

/// By path, as "/api/v1/openapi.json"; nullptr when there is none. The texts are made once, by the first call.
const Document* FindDocument(std::string_view path);

/// A file of pages/, part of the program.
struct PageFile {
  /// As "docs.css".
  std::string_view name;
  std::string_view text;
};

std::span<const PageFile> PageFiles();

}  // namespace tessarlorn::http
