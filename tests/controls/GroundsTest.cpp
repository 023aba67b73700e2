#include "controls/Grounds.h"

#include <QtGui/QPainter>

#include "controls/DesktopLook.h"

namespace quillmere {
namespace {

class GroundsTest : public testing::DesktopLook {
 protected:
  /// A green ground all over a white picture.
  static QImage green() {
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    paintGround(painter, image.rect(), 10, Qt::green, theme());
    return image;
  }
};

TEST_F(GroundsTest, AGroundReachesItsSidesAndHasRoundCorners) {
  const QImage image = green();
  EXPECT_EQ(image.pixelColor(0, 20), QColor(Qt::green));
  EXPECT_EQ(image.pixelColor(59, 20), QColor(Qt::green));
  EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::white));
}

TEST_F(GroundsTest, InHigherContrastItHasAnEdge) {
  show(of(Scheme::light, true));
  const QImage image = green();
  EXPECT_NE(image.pixelColor(30, 0), QColor(Qt::green));
  EXPECT_EQ(image.pixelColor(30, 20), QColor(Qt::green));
}

TEST_F(GroundsTest, AWarningFollowsTheDesktop) {
  class Warning : public QWidget {
    void paintEvent(QPaintEvent*) override { paintWarningGround(*this); }
  } widget;
  widget.resize(80, 60);
  for (const Scheme scheme : {Scheme::dark, Scheme::light}) {
    show(of(scheme));
    EXPECT_NE(picture(widget).pixelColor(40, 30), picture(widget).pixelColor(0, 0));
    QWidget plain;
    plain.resize(80, 60);
    QImage mixed = picture(plain);
    QPainter(&mixed).fillRect(mixed.rect(), theme().warningGround);
    EXPECT_EQ(picture(widget).pixelColor(40, 30), mixed.pixelColor(40, 30));
  }
}

TEST_F(GroundsTest, AColourOfItsOwnIsForTextsAlone) {
  QWidget widget;
  const QPalette before = widget.palette();
  setTextColor(widget, Qt::magenta);
  EXPECT_EQ(widget.palette().color(QPalette::WindowText), QColor(Qt::magenta));
  EXPECT_EQ(widget.palette().color(QPalette::Text), QColor(Qt::magenta));
  EXPECT_EQ(widget.palette().color(QPalette::Window), before.color(QPalette::Window));
  EXPECT_EQ(widget.palette().color(QPalette::ButtonText), before.color(QPalette::ButtonText));
}

}  // namespace
}  // namespace quillmere
