#pragma once

#include <QtGui/QImage>

#include "pixels/GrayImage.h"
#include "support/PlainEdges.h"

// Pictures that tests draw by hand, in the plain form, and how they become the program's. What leaves a picture is cut.
namespace quillmere::pictures {

inline void set(plain::Gray& gray, int64_t x, int64_t y, int level) {
  if (x >= 0 && y >= 0 && x < gray.width && y < gray.height) gray.at(x, y) = std::clamp(level, 0, 255);
}

inline void fill(plain::Gray& gray, int64_t left, int64_t top, int64_t width, int64_t height, int level) {
  for (int64_t y = top; y < top + height; ++y) {
    for (int64_t x = left; x < left + width; ++x) set(gray, x, y, level);
  }
}

/// Lines of one pixel, such that the frame that is found is this one.
inline void outline(plain::Gray& gray, const QRectF& frame, int level) {
  const auto left = static_cast<int64_t>(frame.left()) + 1;
  const auto top = static_cast<int64_t>(frame.top()) + 1;
  const auto width = static_cast<int64_t>(frame.width()) - 1;
  const auto height = static_cast<int64_t>(frame.height()) - 1;
  fill(gray, left, top, width, 1, level);
  fill(gray, left, top + height - 1, width, 1, level);
  fill(gray, left, top, 1, height, level);
  fill(gray, left + width - 1, top, 1, height, level);
}

inline void disc(plain::Gray& gray, int64_t left, int64_t top, int64_t diameter, int level) {
  for (int64_t y = 0; y < diameter; ++y) {
    for (int64_t x = 0; x < diameter; ++x) {
      const int64_t acrossX = 2 * x - diameter + 1;
      const int64_t acrossY = 2 * y - diameter + 1;
      if (acrossX * acrossX + acrossY * acrossY <= diameter * diameter) set(gray, left + x, top + y, level);
    }
  }
}

/// Three, `pitch` from one to the next.
inline void titleBarDots(plain::Gray& gray, int64_t left, int64_t top, int64_t diameter, int64_t pitch, int level) {
  for (int i = 0; i < 3; ++i) disc(gray, left + i * pitch, top, diameter, level);
}

inline GrayImage grayImage(const plain::Gray& gray) {
  GrayImage image(gray.width, gray.height);
  std::transform(gray.levels.begin(), gray.levels.end(), image.row(0),
                 [](int level) { return static_cast<uint8_t>(level); });
  return image;
}

inline QImage image(const plain::Gray& gray) {
  QImage result(static_cast<int>(gray.width), static_cast<int>(gray.height), QImage::Format_RGB32);
  for (int y = 0; y < result.height(); ++y) {
    for (int x = 0; x < result.width(); ++x) {
      const int level = gray.at(x, y);
      result.setPixel(x, y, qRgb(level, level, level));
    }
  }
  return result;
}

/// What the tests run on: all that this processor can do.
inline std::vector<Instructions> instructions() {
  if (bestInstructions() == Instructions::baseline) return {Instructions::baseline};
  return {Instructions::baseline, bestInstructions()};
}

}  // namespace quillmere::pictures
