#include "controls/Symbol.h"

#include <gtest/gtest.h>
#include <QtCore/QDir>
#include <QtGui/QImage>

#include "controls/Contrast.h"

namespace quillmere {
namespace {

/// Of all the program's symbols.
QStringList names() {
  symbolPixmap({}, 1, Qt::black, 1);
  QStringList names;
  for (const QString& file : QDir(QStringLiteral(":/symbols")).entryList()) names += file.chopped(4);
  return names;
}
QImage drawn(const QString& name, int points, const QColor& color, qreal ratio = 1) {
  return symbolPixmap(name, points, color, ratio).toImage().convertToFormat(QImage::Format_ARGB32);
}
int strongestAlpha(const QImage& image) {
  int strongest = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) strongest = std::max(strongest, qAlpha(image.pixel(x, y)));
  }
  return strongest;
}

TEST(Symbol, EachIsThereAndTakesTheColour) {
  ASSERT_GT(names().size(), 20);
  for (const QString& name : names()) {
    const QImage red = drawn(name, 48, Qt::red);
    const QImage blue = drawn(name, 48, Qt::blue);
    EXPECT_EQ(strongestAlpha(red), 255) << name.toStdString();
    EXPECT_NE(red, blue) << name.toStdString();
  }
}

TEST(Symbol, AFaintOneIsFaintThroughout) {
  QColor faint(Qt::black);
  faint.setAlpha(100);
  for (const QString& name : names()) {
    EXPECT_NEAR(strongestAlpha(drawn(name, 48, faint)), 100, 1) << name.toStdString() << ", where strokes cross";
  }
}

TEST(Symbol, TheMarkInAFilledOneIsSeenInEveryColour) {
  for (const QColor& color : {QColor(Qt::white), QColor(Qt::black), QColor(0xf2b84b), QColor(0x855000)}) {
    const QImage image = drawn(QStringLiteral("exclamationmark.triangle.fill"), 96, color);
    double furthest = 1;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (qAlpha(image.pixel(x, y)) == 255)
          furthest = std::max(furthest, contrastRatio(image.pixelColor(x, y), color));
      }
    }
    EXPECT_GE(furthest, kTextContrast) << color.name().toStdString();
  }
}

TEST(Symbol, HasThePixelsOfItsScreen) {
  const QPixmap pixmap = symbolPixmap(QStringLiteral("photo"), 16, Qt::black, 1.5);
  EXPECT_EQ(pixmap.size(), QSize(24, 24));
  EXPECT_EQ(pixmap.deviceIndependentSize(), QSizeF(16, 16));
  EXPECT_EQ(symbolPixmap(QStringLiteral("photo"), 16, Qt::black, 1).size(), QSize(16, 16)) << "not the one before";
}

TEST(Symbol, OneThatThereIsNotIsNothing) {
  EXPECT_TRUE(symbolPixmap(QStringLiteral("unicorn"), 16, Qt::black, 1).isNull());
  EXPECT_TRUE(symbolPixmap({}, 16, Qt::black, 1).isNull());
}

TEST(Symbol, TheApplicationsIconHasEverySizeOfPanelsAndSwitchers) {
  const QIcon icon = applicationIcon();
  for (const int side : {16, 24, 32, 48, 64, 128}) {
    const QImage image = icon.pixmap(QSize(side, side)).toImage().convertToFormat(QImage::Format_ARGB32);
    EXPECT_EQ(image.size(), QSize(side, side));
    EXPECT_EQ(strongestAlpha(image), 255) << side;
  }
}

TEST(Symbol, TheApplicationsIconHasThePixelsOfItsScreen) {
  const QPixmap pixmap = applicationPixmap(40, 2.5);
  EXPECT_EQ(pixmap.size(), QSize(100, 100));
  EXPECT_EQ(pixmap.deviceIndependentSize(), QSizeF(40, 40));
  EXPECT_EQ(strongestAlpha(pixmap.toImage().convertToFormat(QImage::Format_ARGB32)), 255);
}

}  // namespace
}  // namespace quillmere
