#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

#include "foundation/FileURL.h"

namespace quillmere::testing {

/// A folder of its own for one test, removed with everything in it at the end.
class TemporaryFolder {
 public:
  TemporaryFolder() : TemporaryFolder(std::filesystem::temp_directory_path().string()) {}
  explicit TemporaryFolder(const std::string& parent) {
    std::string pattern = parent + "/quillmere-test-XXXXXX";
    if (!::mkdtemp(pattern.data())) std::abort();
    url_ = FileURL::fromPath(pattern);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(url_.path(), ignored);
  }

  const FileURL& url() const { return url_; }
  const std::string& path() const { return url_.path(); }
  FileURL file(std::string_view name) const { return url_.appending(name); }

 private:
  FileURL url_;
};

}  // namespace quillmere::testing
