#include "popup/CaptureDecisionPanel.h"

#include <gtest/gtest.h>
#include <QtCore/QPointer>
#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QVBoxLayout>

#include "controls/Appearance.h"
#include "controls/AppearanceStyle.h"
#include "controls/Theme.h"

namespace quillmere {
namespace {

class CaptureDecisionPanelTest : public ::testing::Test {
 protected:
  CaptureDecisionPanelTest() {
    auto* rows = new QVBoxLayout(card);
    rows->addWidget(upper);
    rows->addStretch();
    rows->addWidget(lower);
    panel.setFrame(QRect(0, 0, 488, 348));
  }
  QImage seen() { return panel.grab().toImage().convertToFormat(QImage::Format_ARGB32); }
  QScrollBar* bar() { return panel.findChild<QScrollBar*>(QString(), Qt::FindDirectChildrenOnly); }

  QWidget* card = new QWidget;
  QPushButton* upper = new QPushButton(QStringLiteral("Upper"));
  QPushButton* lower = new QPushButton(QStringLiteral("Lower"));
  CaptureDecisionPanel panel{card};
};

TEST_F(CaptureDecisionPanelTest, ItIsADialogWithTitleAndName) {
  QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&panel);
  ASSERT_TRUE(interface);
  EXPECT_EQ(interface->role(), QAccessible::Dialog);
  EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Screenshot Decision"));
  EXPECT_EQ(panel.windowTitle(), QStringLiteral("Screenshot Decision"));
}

TEST_F(CaptureDecisionPanelTest, ItNeitherTakesTheKeyboardNorKeepsTheProgramRunning) {
  EXPECT_TRUE(panel.testAttribute(Qt::WA_ShowWithoutActivating));
  EXPECT_TRUE(panel.windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
  EXPECT_FALSE(panel.testAttribute(Qt::WA_QuitOnClose));
}

TEST_F(CaptureDecisionPanelTest, EachFrameThatIsSetCounts) {
  EXPECT_EQ(panel.frameChangeCount(), 1);
  panel.setFrame(QRect(10, 10, 488, 400));
  EXPECT_EQ(panel.frameChangeCount(), 2);
  EXPECT_EQ(panel.geometry(), QRect(10, 10, 488, 400));
  EXPECT_EQ(panel.cardRect(), QRect(24, 24, 440, 352));
}

TEST_F(CaptureDecisionPanelTest, ItsPlaceAndItsSizeChangeAtOnce) {
  const QRect frame(10, 20, 488, 400);
  class Watch final : public QObject {
   public:
    std::vector<QRect> seen;
    bool eventFilter(QObject* watched, QEvent* event) override {
      const bool isChange = event->type() == QEvent::Move || event->type() == QEvent::Resize;
      if (isChange) seen.push_back(static_cast<QWindow*>(watched)->geometry());
      return false;
    }
  } watch;
  panel.show();
  QCoreApplication::processEvents();
  panel.windowHandle()->installEventFilter(&watch);
  panel.setFrame(frame);
  QCoreApplication::processEvents();
  EXPECT_FALSE(watch.seen.empty());
  for (const QRect& seen : watch.seen) EXPECT_EQ(seen, frame);
}

TEST_F(CaptureDecisionPanelTest, ItNeverScrollsSideways) {
  upper->setMinimumWidth(600);
  static_cast<QWidget&>(panel).show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&panel));
  EXPECT_FALSE(panel.findChild<QScrollArea*>()->horizontalScrollBar()->isVisible());
}

TEST_F(CaptureDecisionPanelTest, AnySizeFitsItsSteps) {
  panel.setFrame(QRect(10, 10, 488, 401));
  EXPECT_EQ(panel.baseSize(), panel.size());
}

TEST_F(CaptureDecisionPanelTest, TheShadowIsDrawnOnceWhateverTheCardsSize) {
  EXPECT_EQ(panel.shadowInvalidationCount(), 0);
  seen();
  panel.setFrame(QRect(0, 0, 488, 500));
  seen();
  EXPECT_EQ(panel.shadowInvalidationCount(), 1);
}

TEST_F(CaptureDecisionPanelTest, TheCardIsOpaqueWithAQuietEdgeAndNothingBesideItButShadow) {
  const QImage image = seen();
  EXPECT_EQ(image.pixelColor(244, 28), Theme(panel.palette()).card);
  EXPECT_LT(image.pixelColor(244, 330).alpha(), 78);
  EXPECT_EQ(image.pixelColor(244, 24).alpha(), 255);
}

TEST_F(CaptureDecisionPanelTest, ForMoreContrastItHasTheDesktopsColourAndTheTextsEdge) {
  const QPalette usual = panel.palette();
  Appearance appearance;
  appearance.scheme = Appearance::Scheme::dark;
  appearance.isHighContrast = true;
  panel.setPalette(paletteFor(appearance, std::nullopt));
  const QColor ground = panel.palette().color(QPalette::Window);
  const QColor text = Theme(panel.palette()).text;
  const QImage image = seen();
  EXPECT_EQ(image.pixelColor(244, 28), ground);
  const QColor edge = image.pixelColor(244, 24);
  EXPECT_NEAR(edge.red(), 0.4 * ground.red() + 0.6 * text.red(), 2);
  EXPECT_NEAR(edge.green(), 0.4 * ground.green() + 0.6 * text.green(), 2);
  EXPECT_EQ(image.pixelColor(244, 25), ground) << "one point wide";
  panel.setPalette(usual);
  EXPECT_EQ(seen().pixelColor(244, 28), Theme(panel.palette()).card);
}

TEST_F(CaptureDecisionPanelTest, WithoutACompositorNoPixelAlongTheCardsEdgeIsTranslucent) {
  panel.setCompositing(false);
  const QImage image = seen();
  for (int x = 24; x < 464; ++x) {
    ASSERT_EQ(image.pixelColor(x, 24 + (x < 57 || x >= 431 ? 33 : 0)).alpha(), 255) << x;
  }
  // Where the corner's curve crosses its diagonal.
  EXPECT_EQ(image.pixelColor(30, 30).alpha(), 255);
}

TEST_F(CaptureDecisionPanelTest, AContentThatFitsHasNoScrollBar) {
  panel.setScrolls(false);
  EXPECT_TRUE(bar()->isHidden());
}

TEST_F(CaptureDecisionPanelTest, ASlimBarOverTheCardsPaddingScrollsWhatDoesNotFit) {
  card->setMinimumHeight(900);
  panel.setScrolls(true);
  panel.show();
  QCoreApplication::processEvents();
  ASSERT_TRUE(bar()->isVisible());
  EXPECT_EQ(card->width(), 440) << "it takes nothing from the contents";
  EXPECT_TRUE(panel.cardRect().contains(bar()->geometry()));
  EXPECT_LE(bar()->width(), 8);
  EXPECT_EQ(bar()->maximum() + bar()->pageStep(), 900) << "its handle is as long as the part in view";
  const int before = lower->mapTo(&panel, QPoint()).y();
  bar()->setValue(bar()->maximum());
  EXPECT_EQ(lower->mapTo(&panel, QPoint()).y(), before - bar()->maximum());
  EXPECT_TRUE(panel.cardRect().contains(QRect(lower->mapTo(&panel, QPoint()), lower->size())));
}

TEST_F(CaptureDecisionPanelTest, TheNextCardThatFitsBeginsAtItsTop) {
  card->setMinimumHeight(900);
  panel.setScrolls(true);
  panel.show();
  QCoreApplication::processEvents();
  bar()->setValue(100);
  card->setMinimumHeight(0);
  panel.setScrolls(false);
  QCoreApplication::processEvents();
  EXPECT_TRUE(QTest::qWaitFor([this] { return panel.windowOpacity() == 1; })) << "it has come up";
  EXPECT_EQ(card->mapTo(&panel, QPoint()), QPoint(24, 24));
}

TEST_F(CaptureDecisionPanelTest, ItFadesInAndRisesToItsPlace) {
  panel.show();
  QCoreApplication::processEvents();
  EXPECT_GT(panel.windowOpacity(), 0) << "the first frame is seen";
  EXPECT_LT(panel.windowOpacity(), 1);
  EXPECT_GT(card->mapTo(&panel, QPoint()).y(), 24);
  EXPECT_EQ(panel.cardRect(), QRect(24, 24, 440, 300)) << "what takes clicks is at its place from the first moment";
  EXPECT_TRUE(QTest::qWaitFor([this] { return panel.windowOpacity() == 1; }));
  EXPECT_EQ(card->mapTo(&panel, QPoint()), QPoint(24, 24));
}

TEST_F(CaptureDecisionPanelTest, NothingMovesWhereLessMotionIsWanted) {
  AppearanceStyle style;
  style.setMotionReduced(true);
  panel.setStyle(&style);
  panel.show();
  EXPECT_EQ(panel.windowOpacity(), 1);
  EXPECT_EQ(card->mapTo(&panel, QPoint()), QPoint(24, 24));
  panel.leave();
  EXPECT_FALSE(panel.findChild<QWidget*>(QStringLiteral("fadingPicture")));
}

TEST_F(CaptureDecisionPanelTest, NothingMovesWithoutACompositor) {
  panel.setCompositing(false);
  panel.show();
  EXPECT_EQ(panel.windowOpacity(), 1);
  EXPECT_EQ(card->mapTo(&panel, QPoint()), QPoint(24, 24));
  panel.leave();
  EXPECT_FALSE(panel.findChild<QWidget*>(QStringLiteral("fadingPicture")));
}

TEST_F(CaptureDecisionPanelTest, ItLeavesAtOnceAndAPictureOfItFades) {
  panel.show();
  panel.leave();
  EXPECT_FALSE(panel.isVisible());
  QPointer<QWidget> picture = panel.findChild<QWidget*>(QStringLiteral("fadingPicture"));
  ASSERT_TRUE(picture);
  EXPECT_EQ(picture->geometry(), panel.geometry());
  EXPECT_TRUE(picture->windowFlags().testFlag(Qt::WindowTransparentForInput));
  EXPECT_TRUE(picture->windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus));
  EXPECT_TRUE(QTest::qWaitFor([&] { return picture.isNull(); })) << "and goes by itself";
}

TEST_F(CaptureDecisionPanelTest, ItVanishesWithoutATrace) {
  panel.show();
  panel.vanish();
  EXPECT_FALSE(panel.isVisible());
  EXPECT_EQ(panel.windowOpacity(), 0);
  EXPECT_FALSE(panel.findChild<QWidget*>(QStringLiteral("fadingPicture")));
  panel.show();
  EXPECT_TRUE(QTest::qWaitFor([this] { return panel.windowOpacity() == 1; })) << "and is seen again";
}

TEST_F(CaptureDecisionPanelTest, LosingTheKeyboardIsTold) {
  int told = 0;
  panel.onDeactivated = [&] { ++told; };
  QEvent event(QEvent::WindowDeactivate);
  QCoreApplication::sendEvent(&panel, &event);
  EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace quillmere
