#include "hosts/http/answers/documents.h"

#include <utility>

#include "hosts/http/description/openapi.h"
#include "hosts/http/transport/gzip.h"

namespace tessarlorn::http {
namespace {

constexpr std::string_view kIndex = "index.html";

std::string_view TypeOfFile(std::string_view name) {
  if (name.ends_with(".css")) return "text/css; charset=utf-8";
  return name.ends_with(".js") ? "text/javascript; charset=utf-8" : "text/html; charset=utf-8";
}

}  // namespace

Documents::Documents(std::span<const PageFile> workbench) : description_(OpenApiText()) {
  Add("/api/v1/openapi.json", {.type = "application/json", .text = description_});
  for (const PageFile& file : PageFiles()) {
    const std::string path = file.name.ends_with(".html") ? "" : "/" + std::string(file.name);
    Add("/api/v1/docs" + path, {.type = TypeOfFile(file.name), .text = file.text});
  }
  for (const PageFile& file : workbench) {
    const bool index = file.name == kIndex;
    Add(index ? "/" : "/" + std::string(file.name),
        {.type = TypeOfFile(file.name), .text = file.text, .lasting = !index});
  }
}

void Documents::Add(std::string path, Document document) {
  Gzip gzip;
  document.packed = gzip.Add(document.text);
  document.packed += gzip.Finish();
  documents_[std::move(path)] = std::move(document);
}

const Document* Documents::Find(std::string_view path) const {
  const auto found = documents_.find(path);
  return found == documents_.end() ? nullptr : &found->second;
}

}  // namespace tessarlorn::http
