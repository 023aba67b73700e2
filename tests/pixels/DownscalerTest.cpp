#include "pixels/Downscaler.h"

#include <gtest/gtest.h>
#include <QtGui/QColorSpace>
#include <cmath>
#include <numbers>
#include <random>

namespace quillmere {
namespace {

/// Lanczos' window of three lobes over all pixels, in floating point and without any step before it.
class PlainLanczos {
 public:
  static QImage scaled(const QImage& image, QSize size) {
    const Picture narrow = turned(shortened(of(image), size.width()));
    return toImage(turned(shortened(narrow, size.height())));
  }

 private:
  struct Picture {
    int width;
    int height;
    std::vector<double> values;
    double& at(int x, int y, int channel) { return values[4 * (y * width + x) + channel]; }
    double at(int x, int y, int channel) const { return values[4 * (y * width + x) + channel]; }
  };
  static Picture empty(int width, int height) { return {width, height, std::vector<double>(4 * width * height)}; }
  static Picture of(const QImage& image) {
    Picture picture = empty(image.width(), image.height());
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        const QRgb pixel = image.pixel(x, y);
        for (int i = 0; i < 4; ++i) {
          picture.at(x, y, i) = (pixel >> (8 * i) & 255) * (i < 3 ? qAlpha(pixel) / 255.0 : 1);
        }
      }
    }
    return picture;
  }
  static QImage toImage(const Picture& picture) {
    QImage image(picture.width, picture.height, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        QRgb pixel = 0;
        const long alpha = std::clamp(std::lround(picture.at(x, y, 3)), 0L, 255L);
        for (int i = 0; i < 4; ++i) {
          pixel |= static_cast<QRgb>(std::clamp(std::lround(picture.at(x, y, i)), 0L, alpha)) << (8 * i);
        }
        reinterpret_cast<QRgb*>(image.scanLine(y))[x] = pixel;
      }
    }
    return image;
  }
  static Picture turned(const Picture& picture) {
    Picture result = empty(picture.height, picture.width);
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        for (int i = 0; i < 4; ++i) result.at(y, x, i) = picture.at(x, y, i);
      }
    }
    return result;
  }
  static double window(double x) {
    if (x == 0) return 1;
    const double turn = std::numbers::pi * x;
    return std::abs(x) >= 3 ? 0 : 3 * std::sin(turn) * std::sin(turn / 3) / (turn * turn);
  }
  static Picture shortened(const Picture& picture, int width) {
    const double ratio = static_cast<double>(picture.width) / width;
    Picture result = empty(width, picture.height);
    for (int x = 0; x < width; ++x) {
      const double middle = (x + 0.5) * ratio;
      const int first = std::max(0, static_cast<int>(middle - 3 * ratio));
      const int last = std::min(picture.width - 1, static_cast<int>(middle + 3 * ratio));
      double sum = 0;
      for (int from = first; from <= last; ++from) sum += window((from + 0.5 - middle) / ratio);
      for (int from = first; from <= last; ++from) {
        const double weight = window((from + 0.5 - middle) / ratio) / sum;
        for (int y = 0; y < picture.height; ++y) {
          for (int i = 0; i < 4; ++i) result.at(x, y, i) += weight * picture.at(from, y, i);
        }
      }
    }
    return result;
  }
};

/// Of all channels, in steps of 255.
double meanDifference(const QImage& a, const QImage& b) {
  EXPECT_EQ(a.size(), b.size());
  int64_t sum = 0;
  for (int y = 0; y < a.height(); ++y) {
    const auto* left = reinterpret_cast<const QRgb*>(a.constScanLine(y));
    const auto* right = reinterpret_cast<const QRgb*>(b.constScanLine(y));
    for (int x = 0; x < a.width(); ++x) {
      for (int i = 0; i < 32; i += 8) {
        sum += std::abs(static_cast<int>(left[x] >> i & 255) - static_cast<int>(right[x] >> i & 255));
      }
    }
  }
  return static_cast<double>(sum) / (4.0 * a.width() * a.height());
}

/// Lines of short strokes, one and two pixels wide, as text has them.
QImage page(int width, int height) {
  QImage image(width, height, QImage::Format_RGB32);
  image.fill(qRgb(250, 250, 245));
  std::mt19937 random(3);
  for (int line = 4; line + 12 < height; line += 17) {
    for (int x = 6; x + 8 < width; x += 7) {
      if (random() % 6 == 0) continue;
      for (int stroke = 0; stroke < 3; ++stroke) {
        const bool isUpright = random() % 2 == 0;
        const int along = static_cast<int>(random() % 5);
        for (int i = 0; i < 9; ++i) {
          const int px = isUpright ? x + along : x + std::min(i, 5);
          const int py = isUpright ? line + i : line + 2 * along;
          image.setPixel(px, py, qRgb(30, 32, 40));
        }
      }
    }
  }
  return image;
}

/// Rings that get narrower outward until they are as narrow as pixels: what is too fine must turn gray.
QImage rings(int side) {
  QImage image(side, side, QImage::Format_RGB32);
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      const double dx = x - side / 2.0;
      const double dy = y - side / 2.0;
      const int level = static_cast<int>(127.5 + 127.5 * std::cos(std::numbers::pi / side * (dx * dx + dy * dy)));
      image.setPixel(x, y, qRgb(level, level, level));
    }
  }
  return image;
}

TEST(DownscalerTest, TheSizeFitsAndKeepsTheShape) {
  EXPECT_EQ(Downscaler::fitting({5120, 2880}, 408), QSize(408, 230));
  EXPECT_EQ(Downscaler::fitting({2880, 5120}, 408), QSize(230, 408));
  EXPECT_EQ(Downscaler::fitting({400, 200}, 400), QSize(400, 200));
  EXPECT_EQ(Downscaler::fitting({400, 200}, 1000), QSize(400, 200)) << "never enlarged";
  EXPECT_EQ(Downscaler::fitting({10000, 3}, 100), QSize(100, 1)) << "no side vanishes";
  EXPECT_EQ(Downscaler::fitting({1000000, 1000000}, 1), QSize(1, 1));
}

TEST(DownscalerTest, APlainGroundKeepsItsColourAtAnySize) {
  const QRgb colour = qRgb(255, 1, 128);
  for (int from = 1; from <= 40; ++from) {
    for (int to = 1; to <= from; ++to) {
      QImage image(from, 41 - from, QImage::Format_RGB32);
      image.fill(colour);
      const QSize size(to, std::max(1, image.height() / (1 + from % 5)));
      const QImage small = Downscaler::scaled(image, size);
      ASSERT_EQ(small.size(), size);
      ASSERT_EQ(small.format(), QImage::Format_RGB32);
      for (int y = 0; y < small.height(); ++y) {
        for (int x = 0; x < small.width(); ++x) ASSERT_EQ(small.pixel(x, y), colour) << from << " to " << to;
      }
    }
  }
}

TEST(DownscalerTest, ALongStripKeepsItsColour) {
  QImage strip(200000, 2, QImage::Format_RGB32);
  strip.fill(Qt::white);
  QImage white(100, 1, QImage::Format_RGB32);
  white.fill(Qt::white);
  EXPECT_EQ(Downscaler::scaled(strip, {100, 1}), white);
  EXPECT_EQ(Downscaler::scaled(strip.transformed(QTransform().rotate(90)), {1, 100}),
            white.transformed(QTransform().rotate(90)));
}

/// What averaging in cells costs before the window comes; the usual ways of scaling are twice as far from it.
TEST(DownscalerTest, TextLooksAlmostAsByTheWindowAlone) {
  const QImage text = page(1300, 730);
  for (const int width : {100, 104, 208}) {
    const QSize size = Downscaler::fitting(text.size(), width);
    EXPECT_LT(meanDifference(Downscaler::scaled(text, size), PlainLanczos::scaled(text, size)), 2.8) << width;
  }
}

TEST(DownscalerTest, WhereNothingIsAveragedItIsTheWindowAlone) {
  const QImage text = page(650, 365);
  for (const int width : {204, 350, 600, 649}) {
    const QSize size = Downscaler::fitting(text.size(), width);
    EXPECT_LT(meanDifference(Downscaler::scaled(text, size), PlainLanczos::scaled(text, size)), 0.01) << width;
  }
}

TEST(DownscalerTest, FineRingsMakeNoPatternsThatAreNotThere) {
  const QImage plate = rings(900);
  for (const int side : {70, 144, 288, 449}) {
    const QSize size(side, side);
    EXPECT_LT(meanDifference(Downscaler::scaled(plate, size), PlainLanczos::scaled(plate, size)), 1.3) << side;
  }
}

TEST(DownscalerTest, AStepStaysWhereItIs) {
  QImage image(1200, 30, QImage::Format_RGB32);
  image.fill(Qt::black);
  for (int y = 0; y < 30; ++y) {
    for (int x = 600; x < 1200; ++x) image.setPixel(x, y, qRgb(255, 255, 255));
  }
  const QImage small = Downscaler::scaled(image, {100, 3});
  int sum = 0;
  for (int x = 0; x < 100; ++x) sum += qGreen(small.pixel(x, 1));
  EXPECT_NEAR(sum, 50 * 255, 4);
  EXPECT_LT(qGreen(small.pixel(48, 1)), 20);
  EXPECT_GT(qGreen(small.pixel(51, 1)), 235);
}

TEST(DownscalerTest, AClearPixelsColourIsNotSeen) {
  QImage image(64, 64, QImage::Format_ARGB32);
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 64; ++x) image.setPixel(x, y, x % 2 ? qRgba(255, 0, 0, 0) : qRgba(0, 0, 255, 255));
  }
  const QImage small = Downscaler::scaled(image, {8, 8});
  ASSERT_EQ(small.format(), QImage::Format_ARGB32_Premultiplied);
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 8; ++x) {
      const QRgb pixel = reinterpret_cast<const QRgb*>(small.constScanLine(y))[x];
      EXPECT_EQ(qRed(pixel), 0);
      EXPECT_NEAR(qBlue(pixel), qAlpha(pixel), 1);
      EXPECT_NEAR(qAlpha(pixel), 128, 12);
    }
  }
}

TEST(DownscalerTest, NoColourIsBrighterThanItsAlpha) {
  QImage image(300, 200, QImage::Format_ARGB32);
  std::mt19937 random(9);
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 300; ++x)
      image.setPixel(x, y, (static_cast<QRgb>(random()) & 0x00FFFFFF) | (x / 10 % 2 ? 0xFF000000 : 0x03000000));
  }
  for (const QSize size : {QSize(299, 199), QSize(100, 67), QSize(30, 20)}) {
    const QImage small = Downscaler::scaled(image, size);
    if (size.width() >= 100) {
      EXPECT_LT(meanDifference(small, PlainLanczos::scaled(image, size)), 0.3);
    }
    for (int y = 0; y < size.height(); ++y) {
      for (int x = 0; x < size.width(); ++x) {
        const QRgb pixel = reinterpret_cast<const QRgb*>(small.constScanLine(y))[x];
        ASSERT_LE(std::max({qRed(pixel), qGreen(pixel), qBlue(pixel)}), qAlpha(pixel));
      }
    }
  }
}

TEST(DownscalerTest, OtherFormsOfPicturesAreTakenToo) {
  const QImage text = page(200, 100);
  const QImage gray = text.convertToFormat(QImage::Format_Grayscale8);
  EXPECT_EQ(Downscaler::scaled(gray, {50, 25}),
            Downscaler::scaled(gray.convertToFormat(QImage::Format_RGB32), {50, 25}));
  const QImage clear = text.convertToFormat(QImage::Format_ARGB32);
  EXPECT_EQ(Downscaler::scaled(clear.convertToFormat(QImage::Format_RGBA8888), {50, 25}),
            Downscaler::scaled(clear, {50, 25}));
  EXPECT_EQ(Downscaler::scaled(clear.convertToFormat(QImage::Format_ARGB32_Premultiplied), {50, 25}),
            Downscaler::scaled(clear, {50, 25}));
  EXPECT_TRUE(Downscaler::scaled(QImage(), {50, 25}).isNull());
}

TEST(DownscalerTest, TheSameSizeIsTheSamePicture) {
  const QImage text = page(200, 100);
  EXPECT_EQ(Downscaler::scaled(text, text.size()), text);
}

TEST(DownscalerTest, TheColourSpaceStays) {
  QImage image = page(200, 100);
  image.setColorSpace(QColorSpace::DisplayP3);
  EXPECT_EQ(Downscaler::scaled(image, {50, 25}).colorSpace(), QColorSpace(QColorSpace::DisplayP3));
}

/// Nothing but the vectors' width differs between machines.
TEST(DownscalerTest, ThePictureIsTheSameOnEveryMachine) {
  for (const auto format : {QImage::Format_RGB32, QImage::Format_ARGB32}) {
    QImage image(611, 307, format);
    std::mt19937 random(5);
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x)
        image.setPixel(x, y, static_cast<QRgb>(random()) | (x < 300 ? 0xFF000000 : 0));
    }
    for (const QSize size : {QSize(610, 306), QSize(204, 102), QSize(61, 30), QSize(7, 300)}) {
      std::vector<QImage> results;
      for (const ScalingSteps* steps : {&plainScalingSteps(), &scalingSteps(Instructions::baseline), &scalingSteps()}) {
        Downscaler scaler(image.size(), size, format, *steps);
        int y = 0;
        while (scaler.rowsWanted() > 0) {
          std::vector<const QRgb*> rows;
          for (int i = scaler.rowsWanted(); i > 0; --i) {
            rows.push_back(reinterpret_cast<const QRgb*>(image.constScanLine(y++)));
          }
          scaler.add(rows.data());
        }
        EXPECT_EQ(y, image.height());
        results.push_back(scaler.result());
      }
      EXPECT_EQ(results[1], results[0]);
      EXPECT_EQ(results[2], results[0]);
    }
  }
}

}  // namespace
}  // namespace quillmere
