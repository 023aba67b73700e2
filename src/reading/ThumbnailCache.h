#pragma once

#include <QtGui/QImage>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>

namespace quillmere {

/// Pictures by key, bounded by their bytes: what was used least recently goes first. Any thread.
class ThumbnailCache {
 public:
  explicit ThumbnailCache(int64_t limit) : limit_(limit) {}

  std::optional<QImage> find(const std::string& key);
  /// In the place of an earlier one. A picture that alone is above the limit is not kept, and drives nothing out.
  void keep(const std::string& key, const QImage& image);
  int64_t bytes() const;

 private:
  struct Entry {
    std::string key;
    QImage image;
  };
  using Entries = std::list<Entry>;
  void remove(Entries::iterator entry);

  const int64_t limit_;
  mutable std::mutex mutex_;
  Entries entries_;  // most recently used first
  std::unordered_map<std::string, Entries::iterator> byKey_;
  int64_t bytes_ = 0;
};

}  // namespace quillmere
