#include "controls/PopupSurface.h"

#include <QtTest/QTest>
#include <QtWidgets/QMenu>
#include <QtWidgets/QToolTip>

#include "controls/DesktopLook.h"

namespace quillmere {
namespace {

constexpr int kReach = PopupSurface::kReach;

class PopupSurfaceTest : public testing::DesktopLook {
 protected:
  PopupSurfaceTest() { menu.addAction(QStringLiteral("Open")); }
  ~PopupSurfaceTest() override { setCompositing(true); }
  void setCompositing(bool isCompositing) {
    look.setCompositing([isCompositing] { return isCompositing; });
  }
  QImage opened(const QPoint& place = {100, 100}) {
    menu.popup(place);
    QCoreApplication::processEvents();
    return menu.grab().toImage().convertToFormat(QImage::Format_ARGB32);
  }
  QMenu menu;
};

TEST_F(PopupSurfaceTest, AMenuIsRoundWithItsShadowAround) {
  const QImage image = opened();
  EXPECT_TRUE(menu.testAttribute(Qt::WA_TranslucentBackground));
  EXPECT_TRUE(menu.mask().isEmpty());
  EXPECT_LT(qAlpha(image.pixel(kReach, kReach)), 120) << "outside of its corner";
  EXPECT_EQ(image.pixelColor(image.width() / 2, kReach + 2), theme().card);
  const int below = qAlpha(image.pixel(image.width() / 2, image.height() - kReach + 3));
  EXPECT_GT(below, 10);
  EXPECT_LT(below, 100);
}

TEST_F(PopupSurfaceTest, WithoutACompositorTheWindowEndsAtAClearEdge) {
  setCompositing(false);
  const QImage image = opened();
  const QRegion mask = menu.mask();
  EXPECT_FALSE(mask.contains(QPoint(kReach - 1, menu.height() / 2)));
  EXPECT_FALSE(mask.contains(QPoint(kReach, kReach))) << "its corner";
  EXPECT_TRUE(mask.contains(QPoint(kReach + 12, kReach)));
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      if (!mask.contains(QPoint(x, y))) continue;
      ASSERT_EQ(qAlpha(image.pixel(x, y)), 255) << x << ", " << y;
    }
  }
  EXPECT_EQ(image.pixelColor(image.width() / 2, kReach), theme().fieldBorder);
}

TEST_F(PopupSurfaceTest, AskedAgainAtEachShowing) {
  setCompositing(false);
  opened();
  menu.close();
  setCompositing(true);
  opened();
  EXPECT_TRUE(menu.mask().isEmpty());
}

TEST_F(PopupSurfaceTest, TheSurfaceNotTheShadowIsWhereTheMenuWasAskedFor) {
  opened({100, 100});
  EXPECT_EQ(menu.pos(), QPoint(100 - kReach, 100 - kReach));
}

TEST_F(PopupSurfaceTest, ItStaysThereWhenTheWindowSystemTellsThatItIsShown) {
  opened({100, 100});
  QShowEvent told;
  QSpontaneKeyEvent::setSpontaneous(&told);
  qApp->notify(&menu, &told);
  EXPECT_EQ(menu.pos(), QPoint(100 - kReach, 100 - kReach));
}

TEST_F(PopupSurfaceTest, TheSurfaceStaysOnTheScreen) {
  const QRect screen = menu.screen()->availableGeometry();
  opened(screen.bottomRight());
  EXPECT_TRUE(screen.contains(PopupSurface::surface(menu.geometry())));
  menu.close();
  opened(screen.topLeft());
  EXPECT_TRUE(screen.contains(PopupSurface::surface(menu.geometry())));
}

TEST_F(PopupSurfaceTest, AClickIntoTheShadowIsBesideTheMenu) {
  opened();
  QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.rect().center());
  EXPECT_FALSE(menu.isVisible()) << "the one row";
  opened();
  QTest::mousePress(&menu, Qt::LeftButton, {}, QPoint(3, 3));
  EXPECT_FALSE(menu.isVisible());
}

TEST_F(PopupSurfaceTest, ATipHasTheLookOfTheMomentToo) {
  QWidget owner;
  owner.show();
  show(of(Scheme::dark));
  QToolTip::showText(QPoint(50, 50), QStringLiteral("Help"), &owner);
  QWidget* tip = nullptr;
  for (QWidget* window : QApplication::topLevelWidgets()) {
    if (window->inherits("QTipLabel")) tip = window;
  }
  ASSERT_TRUE(tip);
  EXPECT_TRUE(PopupSurface::isOne(*tip));
  EXPECT_TRUE(shows(*tip, theme().card));
  QToolTip::hideText();
}

TEST_F(PopupSurfaceTest, AWindowIsNone) {
  EXPECT_FALSE(PopupSurface::isOne(QWidget()));
}

}  // namespace
}  // namespace quillmere
