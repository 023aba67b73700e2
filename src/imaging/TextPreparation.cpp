#include "imaging/TextPreparation.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

namespace quillmere {
namespace {

/// The engine brings each line to 36 pixels with its margins. Enlarging small text before that with a smooth curve
/// keeps more of it than the engine's own enlarging; more height than this only costs time.
constexpr double kHeight = 28;
constexpr double kMostEnlarged = 4;
constexpr double kMostReduced = 0.25;
/// Enlarged letters are read as well a little narrower, and the time goes with the width.
constexpr double kNarrowed = 0.92;
/// White beside the line becomes quotes and full stops; white above and below is what the engine has learnt with.
constexpr int kSideMargin = 1;
constexpr int kTopMargin = 12;
constexpr int kWhite = 255;

/// The strongest contrast around the piece, which stands for black: words of one line have colours of their own, and a
/// dot is no blacker than the letters beside it.
int fullContrast(const TextLine& line, const InkPiece& piece) {
  const int reach = line.box.height();
  int full = piece.contrast;
  for (const InkPiece& other : line.pieces) {
    if (other.box.left() < piece.box.right() + reach && other.box.right() > piece.box.left() - reach) {
      full = std::max(full, other.contrast);
    }
  }
  return full;
}

}  // namespace

QImage preparedLine(const QImage& image, const TextLine& line) {
  // One white pixel all around, so that enlarging does not smear the ink along the edge.
  cv::Mat ink(line.box.height() + 2, line.box.width() + 2, CV_8UC1, cv::Scalar(kWhite));
  for (const InkPiece& piece : line.pieces) {
    const int full = fullContrast(line, piece);
    for (const InkPiece::Run& run : piece.runs) {
      const auto* pixels = reinterpret_cast<const uint32_t*>(image.constScanLine(run.y));
      auto* row = ink.ptr<uint8_t>(run.y - line.box.top() + 1);
      for (int x = run.begin; x < run.end; ++x) {
        row[x - line.box.left() + 1] =
            static_cast<uint8_t>(kWhite - kWhite * colorDistance(pixels[x], piece.groundColor) / full);
      }
    }
  }
  const double factor = std::clamp(kHeight / line.box.height(), kMostReduced, kMostEnlarged);
  cv::Mat large;
  cv::resize(ink, large, cv::Size(), factor > 1 ? factor * kNarrowed : factor, factor,
             factor < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
  QImage result(large.cols + 2 * kSideMargin, large.rows + 2 * kTopMargin, QImage::Format_Grayscale8);
  cv::Mat whole(result.height(), result.width(), CV_8UC1, result.bits(), static_cast<size_t>(result.bytesPerLine()));
  cv::copyMakeBorder(large, whole, kTopMargin, kTopMargin, kSideMargin, kSideMargin, cv::BORDER_CONSTANT,
                     cv::Scalar(kWhite));
  return result;
}

}  // namespace quillmere
