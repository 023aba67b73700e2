#include "reading/ThumbnailLoader.h"

#include <sys/stat.h>
#include <algorithm>
#include <cmath>
#include <limits>

#include "foundation/FileStatus.h"
#include "foundation/OnCancel.h"
#include "pixels/Downscaler.h"
#include "reading/FailedPictures.h"
#include "reading/ScreenPicture.h"
#include "reading/ThumbnailCache.h"

namespace quillmere {
namespace {

using Outcome = ThumbnailLoader::Outcome;
using Sharing = ThumbnailLoader::Sharing;

/// With its date in the key, a file that changes gets a new picture, and the old one ages out. To the nanosecond: a
/// file may be replaced within a second.
std::string cacheKey(const FileURL& url, int pixels) {
  struct stat status {};
  if (::lstat(url.c_str(), &status) != 0) status.st_mtim = {};
  return url.path() + "|" + std::to_string(status.st_mtim.tv_sec) + "." + std::to_string(status.st_mtim.tv_nsec) + "|" +
         std::to_string(pixels);
}

bool isUsable(const QRectF& crop) {
  // Written so that a side that is no number is too small as well.
  return crop.width() >= 1 && crop.height() >= 1 && std::isfinite(crop.x()) && std::isfinite(crop.y());
}

/// How large the whole must be for the crop alone to have `pixels` on its larger side; at most its full size.
int sizeForCrop(QSize full, const QRectF& crop, int pixels) {
  const double longest = std::max(full.width(), full.height());
  const double wanted = std::ceil(longest * pixels / std::max(crop.width(), crop.height()));
  return static_cast<int>(std::clamp(wanted, 1.0, longest));
}

/// Grown outward to whole pixels. In doubles, for a crop may lie anywhere. Null where it is empty.
QImage cut(const QImage& thumbnail, QSize full, const QRectF& crop) {
  const double scale = static_cast<double>(thumbnail.width()) / full.width();
  const double left = std::max(0.0, std::floor(crop.left() * scale));
  const double top = std::max(0.0, std::floor(crop.top() * scale));
  const double right = std::min<double>(thumbnail.width(), std::ceil((crop.x() + crop.width()) * scale));
  const double bottom = std::min<double>(thumbnail.height(), std::ceil((crop.y() + crop.height()) * scale));
  if (!(left < right && top < bottom)) return {};
  return thumbnail.copy(static_cast<int>(left), static_cast<int>(top), static_cast<int>(right - left),
                        static_cast<int>(bottom - top));
}

}  // namespace

/// What a load gives, and what is left to do then.
struct ThumbnailLoader::Loaded {
  /// What becomes of it for other programs.
  struct ToKeep {
    FileURL url;
    FileStatus seen;
    QImage thumbnail;
  };
  Outcome outcome;
  std::optional<ToKeep> toKeep = std::nullopt;
};

/// What the work on other threads needs, and so must not go before it.
class ThumbnailLoader::Source {
 public:
  Source(std::shared_ptr<PictureReading> pictures, std::function<bool(const FileURL&)> isEvicted,
         std::shared_ptr<SharedThumbnails> sharedOnes, int64_t limit)
      : cache(limit), shared(std::move(sharedOnes)), pictures_(std::move(pictures)), isEvicted_(std::move(isEvicted)) {}

  Outcome load(const FileURL& url, int pixels, const std::atomic<bool>& isStopped) {
    if (isEvicted_(url)) return NotDownloaded{};
    const std::string key = cacheKey(url, pixels);
    if (const auto image = cache.find(key)) return *image;
    if (isStopped) return Cancelled{};
    const Outcome outcome = readSmall(url, pixels, isStopped);
    const auto* image = std::get_if<QImage>(&outcome);
    if (!image) return outcome;
    cache.keep(key, *image);
    return outcome;
  }

  Outcome load(const FileURL& url, int pixels, const QRectF& crop, const std::atomic<bool>& isStopped) {
    if (isEvicted_(url)) return NotDownloaded{};
    if (isStopped) return Cancelled{};
    const auto full = pictures_->pixelSize(url);
    if (!full || !isUsable(crop)) return Unreadable{};
    Outcome outcome = load(url, sizeForCrop(*full, crop, pixels), isStopped);
    const auto* thumbnail = std::get_if<QImage>(&outcome);
    if (!thumbnail) return outcome;
    QImage part = cut(*thumbnail, *full, crop);
    if (part.isNull()) return Unreadable{};
    return part;
  }

  /// Pictures of the shared cache are kept apart: they are as crisp as their makers cared for.
  Loaded loadShared(const FileURL& url, int pixels, Sharing sharing, const std::atomic<bool>& isStopped) {
    const auto side = shared ? shared->side(pixels) : std::nullopt;
    if (!side || sharing == Sharing::none) return {load(url, pixels, isStopped)};
    if (isEvicted_(url)) return {NotDownloaded{}};
    const auto seen = fileStatus(url);
    const std::string key = cacheKey(url, pixels);
    if (const auto image = cache.find(key)) return toKeep(url, seen, *image, *image, sharing);
    const std::string sharedKey = key + "|shared";
    if (const auto image = cache.find(sharedKey)) return {*image};
    if (isStopped) return {Cancelled{}};
    if (const auto found = shared->find(url, pixels)) {
      const QImage image = pictureForScreen(*found);
      cache.keep(sharedKey, image);
      return {image};
    }
    // Made as large as others want it, then smaller still for us.
    const Outcome outcome = readSmall(url, sharing == Sharing::takenAndKept ? *side : pixels, isStopped);
    const auto* made = std::get_if<QImage>(&outcome);
    if (!made) return {outcome};
    const QImage image = Downscaler::scaled(*made, Downscaler::fitting(made->size(), pixels));
    cache.keep(key, image);
    return toKeep(url, seen, *made, image, sharing);
  }

  Outcome loadFull(const FileURL& url, const std::atomic<bool>& isStopped) {
    if (isEvicted_(url)) return NotDownloaded{};
    if (isStopped) return Cancelled{};
    // As the screen wants it, which a picture at its own size need not be.
    return readSmall(url, std::numeric_limits<int>::max(), isStopped);
  }

  std::optional<QSize> pixelSize(const FileURL& url) const {
    return isEvicted_(url) ? std::nullopt : pictures_->pixelSize(url);
  }

  ThumbnailCache cache;
  const std::shared_ptr<SharedThumbnails> shared;

 private:
  static Loaded toKeep(const FileURL& url, const std::optional<FileStatus>& seen, const QImage& thumbnail,
                       const QImage& image, Sharing sharing) {
    if (sharing != Sharing::takenAndKept || !seen) return {image};
    return {image, Loaded::ToKeep{url, *seen, thumbnail}};
  }

  /// For the screen. Never the same file twice that has none.
  Outcome readSmall(const FileURL& url, int pixels, const std::atomic<bool>& isStopped) {
    auto error = failed_.find(url);
    if (!error) {
      const auto seen = fileStatus(url);
      auto picture = pictures_->thumbnail(url, pixels, isStopped);
      // Whatever it gives then, it tells nothing of the file.
      if (isStopped) return Cancelled{};
      if (picture) {
        QImage image = pictureForScreen(*std::move(picture));
        if (image.isNull()) return Unreadable{};
        return image;
      }
      error = picture.reason();
      failed_.keep(url, seen, *error);
    }
    if (*error == PictureError::tooCostly) return TooCostly{};
    return Unreadable{};
  }

  const std::shared_ptr<PictureReading> pictures_;
  std::function<bool(const FileURL&)> isEvicted_;
  FailedPictures failed_;
};

ThumbnailLoader::ThumbnailLoader(Executor& executor, std::shared_ptr<PictureReading> pictures,
                                 std::function<bool(const FileURL&)> isEvicted,
                                 std::shared_ptr<SharedThumbnails> shared, int64_t limit)
    : executor_(executor),
      source_(std::make_shared<Source>(std::move(pictures), std::move(isEvicted), std::move(shared), limit)) {}

Task<Outcome> ThumbnailLoader::load(FileURL url, int pixels, Sharing sharing) {
  return loadInBackground([url = std::move(url), pixels, sharing](Source& source, const std::atomic<bool>& isStopped) {
    return source.loadShared(url, pixels, sharing, isStopped);
  });
}

Task<Outcome> ThumbnailLoader::load(FileURL url, int pixels, QRectF crop) {
  return loadInBackground(
      [url = std::move(url), pixels, crop = crop.normalized()](Source& source, const std::atomic<bool>& isStopped) {
        return Loaded{source.load(url, pixels, crop, isStopped)};
      });
}

Task<Outcome> ThumbnailLoader::loadInBackground(Work work) {
  // The loader may be gone when the picture comes.
  Executor& executor = executor_;
  const auto source = source_;
  const auto isStopped = std::make_shared<std::atomic<bool>>(false);
  OnCancel stopping([isStopped] { *isStopped = true; });
  co_await stopping;
  auto loading = executor.background([source, work, isStopped] { return work(*source, *isStopped); });
  Loaded loaded = co_await loading;
  if (loaded.toKeep) {
    executor.runInBackground([shared = source->shared,
                              kept = *std::move(loaded.toKeep)] { shared->keep(kept.url, kept.seen, kept.thumbnail); },
                             [] {});
  }
  co_return loaded.outcome;
}

Task<Outcome> ThumbnailLoader::loadFull(FileURL url) {
  const auto isStopped = std::make_shared<std::atomic<bool>>(false);
  OnCancel stopping([isStopped] { *isStopped = true; });
  co_await stopping;
  auto loading = executor_.background([source = source_, url, isStopped] { return source->loadFull(url, *isStopped); });
  Outcome outcome = co_await loading;
  co_return outcome;
}

Task<std::optional<QSize>> ThumbnailLoader::pixelSize(FileURL url) {
  auto measuring = executor_.background([source = source_, url] { return source->pixelSize(url); });
  const auto size = co_await measuring;
  co_return size;
}

int64_t ThumbnailLoader::cachedBytes() const {
  return source_->cache.bytes();
}

}  // namespace quillmere
