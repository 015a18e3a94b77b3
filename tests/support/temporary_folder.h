// A folder for a test's files, gone when the test ends.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace tessarlorn {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "tessarlorn-XXXXXX").string();
    if (mkdtemp(name.data()) != nullptr) path_ = name;
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  [[nodiscard]] std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

}  // namespace tessarlorn
