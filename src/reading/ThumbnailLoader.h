#pragma once

#include <QtCore/QRectF>
#include <QtGui/QImage>
#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <variant>

#include "foundation/Executor.h"
#include "foundation/FileURL.h"
#include "reading/PictureReading.h"
#include "reading/SharedThumbnails.h"

namespace quillmere {

/// Small pictures of screenshots, made off the main thread and kept in a memory cache bounded by decoded bytes. An
/// evicted file is never read, for that would bring its data here. One that gave no picture is not read again before it
/// changes.
class ThumbnailLoader {
 public:
  struct NotDownloaded {
    bool operator==(const NotDownloaded&) const = default;
  };
  struct Unreadable {
    bool operator==(const Unreadable&) const = default;
  };
  /// It would take more memory or time than any screenshot does.
  struct TooCostly {
    bool operator==(const TooCostly&) const = default;
  };
  /// The task was cancelled before the picture was made.
  struct Cancelled {
    bool operator==(const Cancelled&) const = default;
  };
  using Outcome = std::variant<QImage, NotDownloaded, Unreadable, TooCostly, Cancelled>;

  static constexpr int64_t kDefaultLimit = 256 * 1024 * 1024;

  /// What a load has to do with the thumbnails that programs share.
  enum class Sharing {
    none,         ///< the picture is made of the file, as crisp as it can be
    taken,        ///< another program's thumbnail will do
    takenAndKept  ///< and where there is none, ours is kept there: for a file that lives on
  };

  /// `isEvicted` is asked on other threads.
  ThumbnailLoader(Executor& executor, std::shared_ptr<PictureReading> pictures,
                  std::function<bool(const FileURL&)> isEvicted, int64_t limit = kDefaultLimit)
      : ThumbnailLoader(executor, std::move(pictures), std::move(isEvicted), nullptr, limit) {}
  /// `shared` may be null, which shares nothing.
  ThumbnailLoader(Executor& executor, std::shared_ptr<PictureReading> pictures,
                  std::function<bool(const FileURL&)> isEvicted, std::shared_ptr<SharedThumbnails> shared,
                  int64_t limit = kDefaultLimit);

  /// The upright picture in sRGB with neither side above `pixels`. A load that is cancelled stops before it decodes and
  /// keeps nothing; one whose task is dropped goes on, and its picture stays in the cache. Thumbnails are kept for
  /// other programs after the outcome was given.
  Task<Outcome> load(FileURL url, int pixels, Sharing sharing = Sharing::none);
  /// The part of it inside `crop`, in pixels of the full upright picture: the part alone has `pixels` on its larger
  /// side, as far as the picture has so many. Unreadable where the crop has no pixel of the picture.
  Task<Outcome> load(FileURL url, int pixels, QRectF crop);
  /// The upright picture in sRGB with all of its pixels, for one who looks closely: it is decoded each time, and the
  /// cache neither keeps it nor loses anything for it. Cancelled like the others.
  Task<Outcome> loadFull(FileURL url);
  /// The upright size in pixels, from the header alone; none where the file isn't here or cannot be read.
  Task<std::optional<QSize>> pixelSize(FileURL url);

  /// Of the pictures in the cache. Parts are cut from them and not kept.
  int64_t cachedBytes() const;

 private:
  class Source;
  struct Loaded;
  using Work = std::function<Loaded(Source&, const std::atomic<bool>& isStopped)>;
  Task<Outcome> loadInBackground(Work work);

  Executor& executor_;
  std::shared_ptr<Source> source_;  ///< shared with the work that is under way
};

}  // namespace quillmere
