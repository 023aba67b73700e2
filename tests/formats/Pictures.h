#pragma once

#include <gtest/gtest.h>
#include <QtCore/QBuffer>
#include <QtGui/QImage>
#include <string>

#include "formats/Tiffs.h"

namespace quillmere::testing {

/// Left half red, right half blue, with some noise so that it does not compress away.
inline QImage redAndBlue(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  uint32_t noise = 1;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      noise = noise * 1664525 + 1013904223;
      const int gray = static_cast<int>(noise >> 27);
      image.setPixel(x, y, x < width / 2 ? qRgb(220, gray, gray) : qRgb(gray, gray, 220));
    }
  }
  return image;
}
inline const QRgb kRed = qRgb(220, 16, 16);
inline const QRgb kBlue = qRgb(16, 16, 220);

inline bool isAlike(QRgb a, QRgb b) {
  return std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) + std::abs(qBlue(a) - qBlue(b)) < 120;
}

inline std::string encoded(const QImage& image, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  EXPECT_TRUE(image.save(&buffer, format, 90));
  return bytes.toStdString();
}

/// A JPEG with these camera data, a TIFF.
inline std::string withExif(std::string jpeg, const std::string& tiff) {
  const std::string camera = std::string("Exif\0\0", 6) + tiff;
  const size_t length = camera.size() + 2;
  return jpeg.insert(
      2, std::string("\xff\xe1", 2) + static_cast<char>(length >> 8) + static_cast<char>(length & 255) + camera);
}

/// With an orientation in its camera data.
inline std::string oriented(std::string jpeg, char orientation) {
  return withExif(std::move(jpeg), std::string("MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0", 19) + orientation +
                                       std::string("\0\0\0\0\0\0", 6));
}

/// A PNG with these camera data before its end.
inline std::string orientedPng(std::string png, int orientation) {
  return png.insert(png.size() - pngChunk("IEND", {}).size(), pngChunk("eXIf", orientationTiff(orientation)));
}

}  // namespace quillmere::testing
