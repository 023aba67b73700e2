#include "controls/BarStyle.h"

#include "controls/DesktopLook.h"

namespace quillmere {
namespace {

class BarStyleTest : public testing::DesktopLook {
 protected:
  static QStyleOptionSlider scrollBar(int position) {
    QStyleOptionSlider bar;
    bar.rect = QRect(0, 0, BarStyle::kScrollBar, 200);
    bar.state = QStyle::State_Enabled;
    bar.palette = QApplication::palette();
    bar.orientation = Qt::Vertical;
    bar.minimum = 0;
    bar.maximum = 300;
    bar.pageStep = 100;
    bar.sliderPosition = position;
    return bar;
  }
};

TEST_F(BarStyleTest, TheHandleHasTheShareThatIsSeenAndTravelsAllTheWay) {
  const QRect first = BarStyle::scrollBarPart(scrollBar(0), QStyle::SC_ScrollBarSlider);
  const QRect last = BarStyle::scrollBarPart(scrollBar(300), QStyle::SC_ScrollBarSlider);
  EXPECT_EQ(first.height(), 50);
  EXPECT_EQ(first.top(), 0);
  EXPECT_EQ(last.bottom(), 199);
}

TEST_F(BarStyleTest, TheHandleOfALongListCanStillBeGrabbed) {
  QStyleOptionSlider bar = scrollBar(0);
  bar.maximum = 2'000'000'000;
  EXPECT_GE(BarStyle::scrollBarPart(bar, QStyle::SC_ScrollBarSlider).height(), 32);
}

TEST_F(BarStyleTest, ItsPartsFillItAndNoneIsAButton) {
  const QStyleOptionSlider bar = scrollBar(120);
  int sum = 0;
  for (const auto part : {QStyle::SC_ScrollBarSubPage, QStyle::SC_ScrollBarSlider, QStyle::SC_ScrollBarAddPage}) {
    sum += BarStyle::scrollBarPart(bar, part).height();
  }
  EXPECT_EQ(sum, 200);
  EXPECT_TRUE(BarStyle::scrollBarPart(bar, QStyle::SC_ScrollBarAddLine).isEmpty());
}

TEST_F(BarStyleTest, WhereNothingScrollsNothingIsDrawn) {
  QStyleOptionSlider bar = scrollBar(0);
  EXPECT_EQ(drawn(bar, &BarStyle::paintScrollBar).pixelColor(6, 25), theme().fieldBorder);
  bar.maximum = 0;
  EXPECT_EQ(drawn(bar, &BarStyle::paintScrollBar).pixelColor(6, 25), QColor(Qt::magenta));
}

TEST_F(BarStyleTest, TheTabThatIsShownHasALine) {
  QStyleOptionTab tab;
  tab.rect = QRect(0, 0, 100, BarStyle::tabSize(QSize(100, 20)).height());
  tab.state = QStyle::State_Enabled;
  tab.palette = QApplication::palette();
  const int line = tab.rect.height() - 3;
  EXPECT_EQ(drawn(tab, &BarStyle::paintTab).pixelColor(50, line), QColor(Qt::magenta));
  tab.state |= QStyle::State_Selected;
  EXPECT_EQ(drawn(tab, &BarStyle::paintTab).pixelColor(50, line), theme().focusRing);
}

TEST_F(BarStyleTest, ProgressRunsWithTheLanguage) {
  QStyleOptionProgressBar bar;
  bar.rect = QRect(0, 0, 100, 10);
  bar.state = QStyle::State_Enabled;
  bar.palette = QApplication::palette();
  bar.minimum = 0;
  bar.maximum = 100;
  bar.progress = 30;
  EXPECT_EQ(drawn(bar, &BarStyle::paintProgress).pixelColor(15, 5), theme().focusRing);
  EXPECT_NE(drawn(bar, &BarStyle::paintProgress).pixelColor(85, 5), theme().focusRing);
  bar.direction = Qt::RightToLeft;
  EXPECT_EQ(drawn(bar, &BarStyle::paintProgress).pixelColor(85, 5), theme().focusRing);
}

TEST_F(BarStyleTest, AScrollBarsHandleGrowsUnderThePointer) {
  QStyleOptionSlider bar = scrollBar(0);
  EXPECT_EQ(drawn(bar, &BarStyle::paintScrollBar).pixelColor(3, 25), QColor(Qt::magenta));
  bar.state |= QStyle::State_MouseOver;
  bar.activeSubControls = QStyle::SC_ScrollBarSlider;
  EXPECT_EQ(drawn(bar, &BarStyle::paintScrollBar).pixelColor(3, 25), theme().secondaryText);
}

TEST_F(BarStyleTest, AMenusTitleHasAGroundWhileItIsPointedAtOrOpen) {
  const auto paint =
      +[](const QStyleOptionMenuItem& title, QPainter& painter) { BarStyle::paintMenuTitle(title, painter, false); };
  QStyleOptionMenuItem title;
  title.rect = QRect(QPoint(), BarStyle::menuTitleSize(QSize(40, 16)));
  title.palette = QApplication::palette();
  title.state = QStyle::State_Enabled;
  EXPECT_EQ(drawn(title, paint).pixelColor(4, 14), QColor(Qt::magenta));
  title.state |= QStyle::State_Selected;
  const QColor pointedAt = drawn(title, paint).pixelColor(4, 14);
  EXPECT_NE(pointedAt, QColor(Qt::magenta));
  title.state |= QStyle::State_Sunken;
  EXPECT_NE(drawn(title, paint).pixelColor(4, 14), pointedAt);
}

TEST_F(BarStyleTest, PanesArePartedByOneLineHoweverWideTheHandleIs) {
  QStyleOption handle;
  handle.rect = QRect(0, 0, 5, 40);
  handle.palette = QApplication::palette();
  handle.state = QStyle::State_Enabled | QStyle::State_Horizontal;
  const QImage picture = drawn(handle, &BarStyle::paintSplitter);
  for (int x = 0; x < 5; ++x) EXPECT_EQ(picture.pixelColor(x, 20) != QColor(Qt::magenta), x == 2) << x;
}

}  // namespace
}  // namespace quillmere
