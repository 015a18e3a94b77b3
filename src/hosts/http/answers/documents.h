// What the door answers without asking anybody: the description of the operations, the page that shows it, and the
// workbench.
#pragma once

#include <map>
#include <span>
#include <string>
#include <string_view>

namespace tessarlorn::http {

/// A file of a page, part of the program.
struct PageFile {
  /// As "docs.css".
  std::string_view name;
  std::string_view text;
};

/// The files of pages/.
std::span<const PageFile> PageFiles();
/// The workbench: index.html and what it names; none in a program without it.
std::span<const PageFile> WorkbenchFiles();

struct Document {
  std::string_view type;
  std::string_view text;
  /// The same, compressed by gzip.
  std::string packed = {};
  /// Its name changes with its contents: who has it need not ask again.
  bool lasting = false;
};

class Documents {
 public:
  /// Makes the texts. @param workbench the files of the workbench: index.html and what it names; may be none
  explicit Documents(std::span<const PageFile> workbench);
  /// By path, as "/api/v1/openapi.json"; nullptr when there is none.
  [[nodiscard]] const Document* Find(std::string_view path) const;

 private:
  void Add(std::string path, Document document);

  std::string description_;
  std::map<std::string, Document, std::less<>> documents_;
};

}  // namespace tessarlorn::http
