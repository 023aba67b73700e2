#pragma once

#include <QtGui/QImage>
#include <functional>
#include <list>
#include <mutex>
#include <string>
#include <unordered_map>
#include <variant>

#include "foundation/Executor.h"
#include "foundation/FileURL.h"

namespace quillmere {

/// Small pictures of screenshots, made off the main thread and kept in a memory cache bounded by decoded bytes. A file
/// whose data is elsewhere is never read.
class ThumbnailLoader {
 public:
  struct NotDownloaded {};
  struct Unreadable {};
  using Outcome = std::variant<QImage, NotDownloaded, Unreadable>;

  static constexpr int64_t kDefaultLimit = 256 * 1024 * 1024;

  ThumbnailLoader(Executor& executor, std::function<bool(const FileURL&)> isEvicted, int64_t limit = kDefaultLimit);

  /// The upright picture with neither side above `pixels`. The work goes on when the task is dropped, and its picture
  /// stays in the cache.
  Task<Outcome> load(FileURL url, int pixels);
  int64_t cachedBytes() const;

 private:
  struct Entry {
    std::string key;
    QImage image;
  };
  Outcome loadNow(const FileURL& url, int pixels);
  std::optional<QImage> cached(const std::string& key);
  void keep(const std::string& key, const QImage& image);

  Executor& executor_;
  std::function<bool(const FileURL&)> isEvicted_;
  int64_t limit_;
  mutable std::mutex mutex_;
  std::list<Entry> entries_;  // most recently used first
  std::unordered_map<std::string, std::list<Entry>::iterator> byKey_;
  int64_t bytes_ = 0;
};

}  // namespace quillmere
