#include "controls/PictureLevels.h"

#include <algorithm>

#include "pixels/Downscaler.h"

namespace quillmere {
namespace {

/// Anything is drawn from this in no time.
constexpr int kSmallestSide = 64;

QImage half(const QImage& picture) {
  return Downscaler::scaled(picture, {std::max(1, picture.width() / 2), std::max(1, picture.height() / 2)});
}

}  // namespace

std::vector<QImage> PictureLevels::halves(const QImage& picture) {
  std::vector<QImage> result;
  QImage last = picture;
  while (std::max(last.width(), last.height()) > kSmallestSide) {
    last = half(last);
    if (last.isNull()) break;
    result.push_back(last);
  }
  return result;
}

QImage PictureLevels::halved(const QImage& picture, int times) {
  QImage last = picture;
  while (times-- > 0 && !last.isNull()) last = half(last);
  return last;
}

int PictureLevels::halvings(int from, int to) {
  int count = 0;
  for (int side = from / 2; side >= std::max(1, to); side /= 2) ++count;
  return count;
}

void PictureLevels::add(const QImage& image) {
  const auto before = std::lower_bound(images_.begin(), images_.end(), image, [](const QImage& one, const QImage& two) {
    return one.width() + one.height() < two.width() + two.height();
  });
  images_.insert(before, image);
}

QImage PictureLevels::nearest(QSize pixels) const {
  if (images_.empty()) return {};
  // By the longer side, which rounding changes least.
  const auto longer = [](QSize size) { return std::max(size.width(), size.height()); };
  const int wanted = longer(pixels);
  const auto enough =
      std::find_if(images_.begin(), images_.end(), [&](const QImage& image) { return longer(image.size()) >= wanted; });
  if (enough == images_.end()) return images_.back();
  // One pixel more than twice as many comes of halving what is odd.
  const bool isTooLarge = longer(enough->size()) > 2 * wanted + 1;
  return isTooLarge && enough != images_.begin() ? *std::prev(enough) : *enough;
}

qsizetype PictureLevels::bytesBeside(const QImage& other) const {
  qsizetype bytes = 0;
  for (const QImage& image : images_) {
    if (image.cacheKey() != other.cacheKey()) bytes += image.sizeInBytes();
  }
  return bytes;
}

}  // namespace quillmere
