#include "hosts/http/documents.h"

#include <algorithm>
#include <map>
#include <string>

#include "hosts/http/openapi.h"

namespace tessarlorn::http {
namespace {

using Documents = std::map<std::string, Document, std::less<>>;

std::string_view TypeOfFile(std::string_view name) {
  if (name.ends_with(".css")) return "text/css; charset=utf-8";
  return name.ends_with(".js") ? "text/javascript; charset=utf-8" : "text/html; charset=utf-8";
}

Documents MakeDocuments() {
  static const std::string description = OpenApiText();
  Documents documents = {{"/api/v1/openapi.json", {.type = "application/json", .text = description}}};
  for (const PageFile& file : PageFiles()) {
    const std::string path = file.name.ends_with(".html") ? "" : "/" + std::string(file.name);
    documents["/api/v1/docs" + path] = {.type = TypeOfFile(file.name), .text = file.text};
  }
  return documents;
}

}  // namespace

const Document* FindDocument(std::string_view path) {
  static const Documents documents = MakeDocuments();
  const auto found = documents.find(path);
  return found == documents.end() ? nullptr : &found->second;
}

}  // namespace tessarlorn::http
