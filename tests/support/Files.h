#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "foundation/Date.h"
#include "foundation/FileURL.h"

namespace quillmere::testing {

inline void appendToFile(const FileURL& url, std::string_view bytes, int flags = O_APPEND) {
  const int descriptor = ::open(url.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | flags, 0600);
  ASSERT_GE(descriptor, 0) << url.path();
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    ASSERT_GT(count, 0) << url.path();
    bytes.remove_prefix(static_cast<size_t>(count));
  }
  ASSERT_EQ(::close(descriptor), 0);
}

inline void writeFile(const FileURL& url, std::string_view bytes) {
  appendToFile(url, bytes, O_TRUNC);
}

/// The whole file; an empty text and a failed test when it cannot be read.
inline std::string readBytes(const FileURL& url) {
  std::string bytes;
  const int descriptor = ::open(url.c_str(), O_RDONLY | O_CLOEXEC);
  EXPECT_GE(descriptor, 0) << url.path();
  if (descriptor < 0) return bytes;
  std::string buffer(1 << 16, '\0');
  while (true) {
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    EXPECT_GE(count, 0) << url.path();
    if (count <= 0) break;
    bytes.append(buffer, 0, static_cast<size_t>(count));
  }
  ::close(descriptor);
  return bytes;
}

inline void setModified(const FileURL& url, Date date) {
  const double unix = date.seconds + static_cast<double>(Date::kReferenceUnixSeconds);
  const auto whole = static_cast<time_t>(std::floor(unix));
  const timespec moment{whole, static_cast<long>((unix - static_cast<double>(whole)) * 1e9)};
  const timespec times[2] = {moment, moment};
  ASSERT_EQ(::utimensat(AT_FDCWD, url.c_str(), times, AT_SYMLINK_NOFOLLOW), 0) << url.path();
}

/// The names in a folder, sorted.
inline std::vector<std::string> namesIn(const FileURL& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace quillmere::testing
