#pragma once

#include <QtCore/QRectF>
#include <QtGui/QImage>
#include <functional>
#include <memory>
#include <optional>
#include <variant>

#include "foundation/Executor.h"
#include "foundation/FileURL.h"

namespace quillmere {

/// Small pictures of screenshots, made off the main thread and kept in a memory cache bounded by decoded bytes. An
/// evicted file is never read, for that would bring its data here.
class ThumbnailLoader {
 public:
  struct NotDownloaded {
    bool operator==(const NotDownloaded&) const = default;
  };
  struct Unreadable {
    bool operator==(const Unreadable&) const = default;
  };
  /// The task was cancelled before the picture was made.
  struct Cancelled {
    bool operator==(const Cancelled&) const = default;
  };
  using Outcome = std::variant<QImage, NotDownloaded, Unreadable, Cancelled>;

  static constexpr int64_t kDefaultLimit = 256 * 1024 * 1024;

  /// `isEvicted` is asked on other threads.
  ThumbnailLoader(Executor& executor, std::function<bool(const FileURL&)> isEvicted, int64_t limit = kDefaultLimit);

  /// The upright picture in sRGB with neither side above `pixels`. A load that is cancelled stops before it decodes and
  /// keeps nothing; one whose task is dropped goes on, and its picture stays in the cache.
  Task<Outcome> load(FileURL url, int pixels);
  /// The part of it inside `crop`, in pixels of the full upright picture: the part alone has `pixels` on its larger
  /// side, as far as the picture has so many. Unreadable where the crop has no pixel of the picture.
  Task<Outcome> load(FileURL url, int pixels, QRectF crop);

  /// Of the pictures in the cache. Parts are cut from them and not kept.
  int64_t cachedBytes() const;

 private:
  class Source;
  Task<Outcome> loadInBackground(FileURL url, int pixels, std::optional<QRectF> crop);

  Executor& executor_;
  std::shared_ptr<Source> source_;  ///< shared with the work that is under way
};

}  // namespace quillmere
