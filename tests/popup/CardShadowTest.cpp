#include "popup/CardShadow.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <cmath>

#include "popup/CardShape.h"

namespace quillmere {
namespace {

constexpr QRect kCard(24, 24, 440, 300);

/// The shadow's strength at each pixel of a window around the card.
class Shaded {
 public:
  explicit Shaded(const QRect& card = kCard, qreal scale = 1) : scale_(scale) {
    image_ = QImage(card.adjusted(-24, -24, 24, 24).size() * scale, QImage::Format_ARGB32_Premultiplied);
    image_.setDevicePixelRatio(scale);
    image_.fill(Qt::transparent);
    QPainter painter(&image_);
    painter.setRenderHint(QPainter::Antialiasing);  // as the card is drawn
    CardShadow().paint(painter, card);
  }
  int at(qreal x, qreal y) const {
    return qAlpha(image_.pixel(static_cast<int>(x * scale_), static_cast<int>(y * scale_)));
  }
  QSize size() const { return image_.size(); }
  int pixel(int x, int y) const { return qAlpha(image_.pixel(x, y)); }
  QRgb colour(int x, int y) const { return image_.pixel(x, y); }

 private:
  qreal scale_;
  QImage image_;
};

TEST(CardShadowTest, NothingOfItIsUnderTheCard) {
  const Shaded shadow;
  for (int y = kCard.top() + 1; y < kCard.bottom(); ++y) {
    const int distance = std::min(y - kCard.top(), kCard.bottom() - y);
    const int inset = static_cast<int>(std::ceil(CardShape::cornerInset(distance))) + 1;
    for (int x = kCard.left() + inset; x <= kCard.right() - inset; ++x)
      ASSERT_EQ(shadow.pixel(x, y), 0) << x << ", " << y;
  }
}

TEST(CardShadowTest, ItIsBlackAndAtMostThreeTenths) {
  const Shaded shadow;
  for (int y = 0; y < shadow.size().height(); ++y) {
    for (int x = 0; x < shadow.size().width(); ++x) {
      ASSERT_EQ(shadow.colour(x, y) & 0xFFFFFF, 0U);
      ASSERT_LE(shadow.pixel(x, y), 77);
    }
  }
}

TEST(CardShadowTest, ItFallsBelowTheCard) {
  const Shaded shadow;
  EXPECT_GT(shadow.at(244, 325), 45) << "below";
  EXPECT_LT(shadow.at(244, 22), 30) << "above";
  EXPECT_EQ(shadow.at(20, 174), shadow.at(467, 174)) << "the same on both sides";
}

TEST(CardShadowTest, ATightLayerLiesOnTheWideOne) {
  const Shaded shadow;
  // Of the wide layer alone, which falls 6 points, hardly anything would be above the card.
  EXPECT_GE(shadow.at(244, 23), 8);
  EXPECT_LE(shadow.at(244, 14), 2) << "the tight one ends soon";
  EXPECT_GE(shadow.at(244, 340), 3) << "and the wide one goes on below";
}

TEST(CardShadowTest, ItEndsWithinTheWindow) {
  const Shaded shadow;
  for (int x = 0; x < shadow.size().width(); ++x) {
    ASSERT_LE(shadow.pixel(x, 0), 1);
    ASSERT_LE(shadow.pixel(x, shadow.size().height() - 1), 1);
  }
  for (int y = 0; y < shadow.size().height(); ++y) {
    ASSERT_LE(shadow.pixel(0, y), 1);
    ASSERT_LE(shadow.pixel(shadow.size().width() - 1, y), 1);
  }
}

TEST(CardShadowTest, ItFadesWithoutBands) {
  for (const qreal scale : {1.0, 1.5, 2.0}) {
    const Shaded shadow(kCard, scale);
    const int first = qRound(324 * scale);
    for (int y = first + 1; y < shadow.size().height(); ++y) {
      const int step = shadow.pixel(qRound(244 * scale), y - 1) - shadow.pixel(qRound(244 * scale), y);
      EXPECT_GE(step, 0);
      EXPECT_LE(step, 5) << "scale " << scale << ", line " << y;
    }
  }
}

TEST(CardShadowTest, ItsPartsMeetWithoutASeam) {
  for (const int height : {60, 100, 300}) {
    const Shaded shadow(QRect(24, 24, 440, height), 1);
    for (int y = 1; y < shadow.size().height(); ++y) {
      ASSERT_LE(std::abs(shadow.pixel(14, y) - shadow.pixel(14, y - 1)), 6) << height << ", line " << y;
    }
  }
}

TEST(CardShadowTest, ItsPartsMeetOnWholePixelsAtEveryScale) {
  for (const qreal scale : {1.25, 1.5, 1.75}) {
    for (const int height : {301, 302, 303, 458}) {
      const Shaded shadow(QRect(24, 24, 440, height), scale);
      const int x = qRound(14 * scale);
      for (int y = 1; y < shadow.size().height(); ++y) {
        ASSERT_LE(std::abs(shadow.pixel(x, y) - shadow.pixel(x, y - 1)), 3)
            << scale << ", " << height << ", line " << y;
      }
    }
  }
}

TEST(CardShadowTest, ItIsDrawnOnceForAScale) {
  CardShadow shadow;
  const auto paint = [&](int height, qreal scale) {
    QImage image(QSize(488, height + 48) * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    QPainter painter(&image);
    shadow.paint(painter, QRect(24, 24, 440, height));
  };
  paint(300, 1);
  paint(300, 1);
  paint(500, 1);
  EXPECT_EQ(shadow.count(), 1);
  paint(500, 2);
  EXPECT_EQ(shadow.count(), 2);
}

}  // namespace
}  // namespace quillmere
