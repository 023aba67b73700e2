#include "controls/SoftShadow.h"

#include <gtest/gtest.h>

namespace quillmere {
namespace {

constexpr int kReach = 12;
constexpr QRect kPlace(20, 20, 120, 80);

QPainterPath rounded(const QRectF& place) {
  QPainterPath path;
  path.addRoundedRect(place, 8, 8);
  return path;
}
QImage drawn(SoftShadow& shadow, qreal scale = 1) {
  QImage image(QSize(160, 120) * scale, QImage::Format_ARGB32_Premultiplied);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  shadow.paint(painter, kPlace);
  return image;
}
int at(const QImage& image, int x, int y) {
  return qAlpha(image.pixel(x, y));
}

TEST(SoftShadowTest, IsAroundTheShapeAndNotUnderIt) {
  SoftShadow shadow({rounded, 8}, {{0.3, 0, 10}}, kReach);
  const QImage image = drawn(shadow);
  EXPECT_EQ(at(image, 80, 60), 0);
  EXPECT_EQ(at(image, 22, 60), 0) << "just inside";
  EXPECT_GT(at(image, 18, 60), 20);
  EXPECT_EQ(at(image, 80, 5), 0) << "beyond its reach";
}

TEST(SoftShadowTest, LayersAddUp) {
  SoftShadow wide({rounded, 8}, {{0.2, 0, 10}}, kReach);
  SoftShadow both({rounded, 8}, {{0.2, 0, 10}, {0.1, 0, 4}}, kReach);
  EXPECT_GT(at(drawn(both), 18, 60), at(drawn(wide), 18, 60)) << "where the tight one is";
  EXPECT_EQ(at(drawn(both), 12, 60), at(drawn(wide), 12, 60)) << "beyond that";
}

TEST(SoftShadowTest, ALayerFallsByItsOffset) {
  SoftShadow shadow({rounded, 8}, {{0.3, 4, 8}}, kReach);
  const QImage image = drawn(shadow);
  EXPECT_GT(at(image, 80, kPlace.bottom() + 3), at(image, 80, kPlace.top() - 3));
}

TEST(SoftShadowTest, IsDrawnOnceForAScale) {
  SoftShadow shadow({rounded, 8}, {{0.3, 0, 8}}, kReach);
  drawn(shadow);
  drawn(shadow);
  EXPECT_EQ(shadow.count(), 1);
  drawn(shadow, 1.5);
  EXPECT_EQ(shadow.count(), 2);
}

}  // namespace
}  // namespace quillmere
