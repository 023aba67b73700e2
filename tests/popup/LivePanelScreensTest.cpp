#include "popup/LivePanelScreens.h"

#include <gtest/gtest.h>
#include <QtGui/QCursor>
#include <QtGui/QGuiApplication>

#include "popup/StillWindowSystem.h"

namespace quillmere {
namespace {

/// A desktop with a panel along the lower edge of each screen.
class PanelBelow final : public StillWindowSystem {
 public:
  QRect availableGeometry(const QScreen& screen) const override { return screen.geometry().adjusted(0, 0, 0, -40); }
};

class FirstScreenTest : public ::testing::Test {
 protected:
  const QRect geometry = QGuiApplication::primaryScreen()->geometry();
};

TEST_F(FirstScreenTest, TheFirstScreenBeginsAtTheOrigin) {
  const LivePanelScreens screens;
  ASSERT_EQ(screens.screens().size(), static_cast<size_t>(QGuiApplication::screens().size()));
  EXPECT_EQ(screens.screens()[0].frame, QRectF(0, 0, geometry.width(), geometry.height()));
  EXPECT_EQ(screens.mainScreen(), screens.screens()[0]);
}

TEST_F(FirstScreenTest, WhatThePanelsTakeIsTheWindowSystemsToTell) {
  const PanelBelow windowSystem;
  const LivePanelScreens screens(&windowSystem);
  EXPECT_EQ(screens.mainScreen()->frame, QRectF(0, 0, geometry.width(), geometry.height()));
  EXPECT_EQ(screens.mainScreen()->visibleFrame, QRectF(0, 40, geometry.width(), geometry.height() - 40));
}

TEST_F(FirstScreenTest, APlaceIsTurnedBackToWhereItWas) {
  EXPECT_EQ(LivePanelScreens::toQt(QRectF(0, 0, geometry.width(), geometry.height())), geometry);
  const QRect turned = LivePanelScreens::toQt(QRectF(10, 20, 30, 40));
  EXPECT_EQ(turned, QRect(geometry.x() + 10, geometry.y() + geometry.height() - 60, 30, 40));
}

TEST_F(FirstScreenTest, ThePointersHeightIsCountedUpwards) {
  QCursor::setPos(geometry.topLeft() + QPoint(7, 9));
  EXPECT_EQ(LivePanelScreens().mouseLocation(), QPointF(7, geometry.height() - 9));
}

}  // namespace
}  // namespace quillmere
