#include "imaging/TextPreparation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <opencv2/imgproc.hpp>

namespace quillmere {
namespace {

double tune(const char* name, double value) {
  const char* text = std::getenv(name);
  return text ? std::atof(text) : value;
}

}  // namespace

QImage preparedLine(const QImage& image, const TextLine& line) {
  static const double target = tune("T_HEIGHT", 32), border = tune("T_BORDER", 8);
  const int height = line.box.height();
  cv::Mat ink(line.box.height(), line.box.width(), CV_8UC1, cv::Scalar(255));
  for (const InkPiece& piece : line.pieces) {
    // Words of one line may have colours of their own; a dot beside a letter is as weak as it looks.
    int full = piece.contrast;
    for (const InkPiece& other : line.pieces) {
      if (other.box.left() < piece.box.right() + height && other.box.right() > piece.box.left() - height) {
        full = std::max(full, other.contrast);
      }
    }
    for (const InkPiece::Run& run : piece.runs) {
      const auto* pixels = reinterpret_cast<const uint32_t*>(image.constScanLine(run.y));
      auto* row = ink.ptr<uint8_t>(run.y - line.box.top());
      for (int x = run.begin; x < run.end; ++x) {
        row[x - line.box.left()] = static_cast<uint8_t>(255 - 255 * colorDistance(pixels[x], piece.groundColor) / full);
      }
    }
  }
  const double factor = std::clamp(target / height, 0.5, 4.0);
  cv::Mat large;
  cv::copyMakeBorder(ink, ink, 4, 4, 4, 4, cv::BORDER_CONSTANT, cv::Scalar(255));
  cv::resize(ink, large, cv::Size(), factor, factor, factor < 1 ? cv::INTER_AREA : cv::INTER_CUBIC);
  const int margin = static_cast<int>(border);
  QImage result(large.cols + 2 * margin, large.rows + 2 * margin, QImage::Format_Grayscale8);
  cv::Mat whole(large.rows + 2 * margin, large.cols + 2 * margin, CV_8UC1, result.bits(),
                static_cast<size_t>(result.bytesPerLine()));
  cv::copyMakeBorder(large, whole, margin, margin, margin, margin, cv::BORDER_CONSTANT, cv::Scalar(255));
  return result;
}

}  // namespace quillmere
