#pragma once

#include <unistd.h>
#include <cstdint>
#include <fstream>
#include <string>

#include "hostile/HostilePictures.h"
#include "support/Files.h"

namespace quillmere::testing {

/// The file as somebody would leave it among the captures.
inline void writeHostile(const HostilePicture& picture, const FileURL& url) {
  writeFile(url, picture.bytes());
  if (picture.sparseSize > 0) {
    ASSERT_EQ(::truncate(url.c_str(), picture.sparseSize), 0);
  }
}

/// A number that the kernel keeps of this process, behind a word of one of its tables.
inline int64_t numberIn(const std::string& table, const std::string& word) {
  std::ifstream lines(table);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with(word)) return std::stoll(line.substr(word.size()));
  }
  return -1;
}

/// The highest that this process's memory was, from the beginning of this on.
class MemoryTaken {
 public:
  MemoryTaken() {
    std::ofstream("/proc/self/clear_refs") << "5";
    before_ = numberIn("/proc/self/status", "VmRSS:");
  }
  int64_t megabytes() const { return (numberIn("/proc/self/status", "VmHWM:") - before_) / 1024; }

 private:
  int64_t before_ = 0;
};

/// The suffix of a test's name.
inline std::string testName(const HostilePicture& picture) {
  std::string name = picture.name;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

}  // namespace quillmere::testing
