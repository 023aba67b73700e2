#include "formats/PngFilters.h"

#include <QtGui/QRgb>
#include <algorithm>
#include <array>
#include <cstdlib>

#include "formats/PngFiltersVector.h"

namespace quillmere {
namespace {

using PngFilters::Row;

enum Kind : uint8_t { kNone, kSub, kUp, kAverage, kPaeth };

/// Red, green, blue and alpha, the order of the file.
using Pixel = std::array<int, 4>;

Pixel split(QRgb pixel) {
  return {qRed(pixel), qGreen(pixel), qBlue(pixel), qAlpha(pixel)};
}

/// Whichever neighbour is nearest to left + above - corner; of two that are equally near, the one named first.
int paethPredictor(int left, int above, int corner) {
  const int estimate = left + above - corner;
  const int toLeft = std::abs(estimate - left);
  const int toAbove = std::abs(estimate - above);
  const int toCorner = std::abs(estimate - corner);
  if (toLeft <= toAbove && toLeft <= toCorner) return left;
  return toAbove <= toCorner ? above : corner;
}

int predicted(Kind kind, int left, int above, int corner) {
  switch (kind) {
    case kNone:
      return 0;
    case kSub:
      return left;
    case kUp:
      return above;
    case kAverage:
      return (left + above) / 2;
    case kPaeth:
      return paethPredictor(left, above, corner);
  }
  return 0;
}

template <size_t kChannels>
void undoRow(Kind kind, const Row& row) {
  Pixel left{};
  Pixel corner{};
  for (size_t x = 0; x < row.width; ++x) {
    const Pixel above = split(row.above[x]);
    Pixel pixel{0, 0, 0, 255};
    for (size_t i = 0; i < kChannels; ++i) {
      pixel[i] = (row.filtered[x * kChannels + i] + predicted(kind, left[i], above[i], corner[i])) & 255;
    }
    row.pixels[x] = qRgba(pixel[0], pixel[1], pixel[2], pixel[3]);
    left = pixel;
    corner = above;
  }
}

}  // namespace

void PngFilters::undoPlainly(uint8_t kind, int channels, const Row& row) {
  channels == 3 ? undoRow<3>(static_cast<Kind>(kind), row) : undoRow<4>(static_cast<Kind>(kind), row);
}

void PngFilters::undo(uint8_t kind, int channels, const Row& row) {
  static const bool isVectorPossible = PngFiltersVector::isPossible();
  isVectorPossible ? PngFiltersVector::undo(kind, channels, row) : undoPlainly(kind, channels, row);
}

}  // namespace quillmere
