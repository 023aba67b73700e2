#include "recognition/TextPreparation.h"

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
constexpr int kBlank = 240;
/// The engine cannot be stopped within a part; it reads one of this length in 50 ms.
constexpr int kLongest = 2400;

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

/// Where the part that begins at `left` ends, and where the next begins: at the broadest gap in the last half of what
/// may be one part. The whole rest where there is no gap.
std::pair<int, int> endOfPart(const cv::Mat& line, int left) {
  if (line.cols - left <= kLongest) return {line.cols, line.cols};
  cv::Mat darkest;
  const int first = left + kLongest / 2;
  cv::reduce(line.colRange(first, left + kLongest), darkest, 0, cv::REDUCE_MIN);
  std::pair<int, int> best(line.cols, line.cols);
  int broadest = 0;
  for (int x = 0; x < darkest.cols; ++x) {
    const int begin = x;
    while (x < darkest.cols && darkest.at<uint8_t>(0, x) >= kBlank) ++x;
    if (x - begin <= broadest) continue;
    broadest = x - begin;
    best = {first + begin, first + x};
  }
  return best;
}

QImage withMargins(const cv::Mat& part) {
  QImage result(part.cols + 2 * kSideMargin, part.rows + 2 * kTopMargin, QImage::Format_Grayscale8);
  cv::Mat whole(result.height(), result.width(), CV_8UC1, result.bits(), static_cast<size_t>(result.bytesPerLine()));
  cv::copyMakeBorder(part, whole, kTopMargin, kTopMargin, kSideMargin, kSideMargin, cv::BORDER_CONSTANT,
                     cv::Scalar(kWhite));
  return result;
}

}  // namespace

std::vector<PreparedPart> preparedLine(const QImage& image, const TextGrounds& grounds, const TextLine& line) {
  // One pixel all around belongs to the letters too: the faintest of their edges count as ground.
  cv::Mat ink(line.box.height() + 2, line.box.width() + 2, CV_8UC1, cv::Scalar(kWhite));
  const QPoint origin = line.box.topLeft() - QPoint(1, 1);
  for (const InkPiece& piece : line.pieces) {
    const int full = fullContrast(line, piece);
    const auto draw = [&](int x, int y) {
      const auto* pixels = reinterpret_cast<const uint32_t*>(image.constScanLine(y));
      const int darkness = std::min(kWhite * colorDistance(pixels[x], piece.groundColor) / full, kWhite);
      auto& pixel = ink.ptr<uint8_t>(y - origin.y())[x - origin.x()];
      pixel = std::min(pixel, static_cast<uint8_t>(kWhite - darkness));
    };
    const auto drawGround = [&](int x, int y) {
      const bool isInside = x >= 0 && y >= 0 && x < grounds.width() && y < grounds.height();
      if (isInside && grounds.row(y)[x] == piece.ground) draw(x, y);
    };
    for (const InkPiece::Run& run : piece.runs) {
      for (int x = run.begin - 1; x <= run.end; ++x) {
        drawGround(x, run.y - 1);
        drawGround(x, run.y + 1);
      }
      drawGround(run.begin - 1, run.y);
      drawGround(run.end, run.y);
      for (int x = run.begin; x < run.end; ++x) draw(x, run.y);
    }
  }
  const double factor = std::clamp(kHeight / line.box.height(), kMostReduced, kMostEnlarged);
  cv::Mat large;
  cv::resize(ink, large, cv::Size(), factor > 1 ? factor * kNarrowed : factor, factor,
             factor < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
  const double scale = static_cast<double>(large.cols) / ink.cols;
  std::vector<PreparedPart> parts;
  for (int left = 0; left < large.cols;) {
    const auto [end, next] = endOfPart(large, left);
    parts.push_back({withMargins(large.colRange(left, end)), origin.x() + (left - kSideMargin) / scale, scale});
    left = next;
  }
  return parts;
}

}  // namespace quillmere
