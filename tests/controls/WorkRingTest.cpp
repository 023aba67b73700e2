#include "controls/WorkRing.h"

#include <gtest/gtest.h>
#include <QtGui/QPainter>
#include <QtWidgets/QPushButton>

#include "controls/AppearanceStyle.h"

namespace quillmere {
namespace {

TEST(WorkRingTest, IsAnOpenRingAroundItsCentre) {
  AppearanceStyle style;
  style.setMotionReduced(true);
  QPushButton button;
  button.setStyle(&style);
  WorkRing ring(button);
  EXPECT_FALSE(ring.isWorking());
  ring.setWorking(true);
  EXPECT_TRUE(ring.isWorking());
  QImage image(40, 40, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  ring.paint(painter, QPointF(20, 20), Qt::black);
  const auto isDrawn = [&](int x, int y) { return image.pixelColor(x, y) != QColor(Qt::white); };
  EXPECT_TRUE(isDrawn(20, 27) && isDrawn(13, 20));
  EXPECT_FALSE(isDrawn(20, 20)) << "a ring";
  EXPECT_FALSE(isDrawn(15, 15)) << "open between ten and twelve o'clock";
}

}  // namespace
}  // namespace quillmere
