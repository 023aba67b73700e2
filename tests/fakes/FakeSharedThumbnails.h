#pragma once

#include <map>
#include <string>
#include <vector>

#include "reading/SharedThumbnails.h"

namespace quillmere::testing {

/// In memory, with thumbnails of 128 and 256 pixels. Of the calling thread alone.
class FakeSharedThumbnails final : public SharedThumbnails {
 public:
  std::optional<int> side(int pixels) const override {
    return pixels <= 128 ? std::optional(128) : pixels <= 256 ? std::optional(256) : std::nullopt;
  }
  std::optional<QImage> find(const FileURL& url, int pixels) const override {
    asked.push_back(url.lastPathComponent() + " " + std::to_string(pixels));
    const auto found = ofOthers.find(url.path());
    return found == ofOthers.end() ? std::nullopt : std::optional(found->second);
  }
  void keep(const FileURL& url, const FileStatus& seen, const QImage& thumbnail) override {
    kept.push_back({url, seen, thumbnail});
  }
  void forget(const FileURL&) override {}

  struct Kept {
    FileURL url;
    FileStatus seen;
    QImage thumbnail;
  };
  std::vector<std::string> keptNames() const {
    std::vector<std::string> names;
    for (const Kept& one : kept) names.push_back(one.url.lastPathComponent());
    return names;
  }

  std::map<std::string, QImage> ofOthers;  ///< by path
  mutable std::vector<std::string> asked;
  std::vector<Kept> kept;
};

}  // namespace quillmere::testing
