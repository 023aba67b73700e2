#include "formats/ThumbnailLoader.h"

#include <sys/stat.h>
#include <QtGui/QColorSpace>
#include <algorithm>
#include <atomic>
#include <cmath>

#include "formats/ImageFile.h"
#include "formats/ThumbnailCache.h"
#include "foundation/OnCancel.h"

namespace quillmere {
namespace {

using Outcome = ThumbnailLoader::Outcome;

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

/// In the colours of the screen, which takes what it is given for sRGB.
QImage forScreen(QImage image) {
  const QColorSpace space = image.colorSpace();
  if (space.isValid() && space != QColorSpace(QColorSpace::SRgb)) image.convertToColorSpace(QColorSpace::SRgb);
  return image;
}

}  // namespace

/// What the work on other threads needs, and so must not go before it.
class ThumbnailLoader::Source {
 public:
  Source(std::function<bool(const FileURL&)> isEvicted, int64_t limit)
      : cache(limit), isEvicted_(std::move(isEvicted)) {}

  Outcome load(const FileURL& url, int pixels, const std::atomic<bool>& isStopped) {
    if (isEvicted_(url)) return NotDownloaded{};
    const std::string key = cacheKey(url, pixels);
    if (const auto image = cache.find(key)) return *image;
    if (isStopped) return Cancelled{};
    const QImage image = forScreen(ImageFile::thumbnail(url, pixels));
    if (image.isNull()) return Unreadable{};
    if (isStopped) return Cancelled{};
    cache.keep(key, image);
    return image;
  }

  Outcome load(const FileURL& url, int pixels, const QRectF& crop, const std::atomic<bool>& isStopped) {
    if (isEvicted_(url)) return NotDownloaded{};
    if (isStopped) return Cancelled{};
    const auto full = ImageFile::pixelSize(url);
    if (!full || !isUsable(crop)) return Unreadable{};
    Outcome outcome = load(url, sizeForCrop(*full, crop, pixels), isStopped);
    const auto* thumbnail = std::get_if<QImage>(&outcome);
    if (!thumbnail) return outcome;
    QImage part = cut(*thumbnail, *full, crop);
    if (part.isNull()) return Unreadable{};
    return part;
  }

  ThumbnailCache cache;

 private:
  std::function<bool(const FileURL&)> isEvicted_;
};

ThumbnailLoader::ThumbnailLoader(Executor& executor, std::function<bool(const FileURL&)> isEvicted, int64_t limit)
    : executor_(executor), source_(std::make_shared<Source>(std::move(isEvicted), limit)) {}

Task<Outcome> ThumbnailLoader::load(FileURL url, int pixels) {
  return loadInBackground(std::move(url), pixels, std::nullopt);
}

Task<Outcome> ThumbnailLoader::load(FileURL url, int pixels, QRectF crop) {
  return loadInBackground(std::move(url), pixels, crop.normalized());
}

Task<Outcome> ThumbnailLoader::loadInBackground(FileURL url, int pixels, std::optional<QRectF> crop) {
  const auto isStopped = std::make_shared<std::atomic<bool>>(false);
  OnCancel stopping([isStopped] { *isStopped = true; });
  co_await stopping;
  auto loading = executor_.background([source = source_, url, pixels, crop, isStopped] {
    return crop ? source->load(url, pixels, *crop, *isStopped) : source->load(url, pixels, *isStopped);
  });
  Outcome outcome = co_await loading;
  co_return outcome;
}

int64_t ThumbnailLoader::cachedBytes() const {
  return source_->cache.bytes();
}

}  // namespace quillmere
