#include "controls/ApplicationAppearance.h"

#include <QtWidgets/QLabel>

#include "controls/AppearanceStyle.h"
#include "controls/DesktopLook.h"

namespace quillmere {
namespace {

class ApplicationAppearanceTest : public testing::DesktopLook {};

TEST_F(ApplicationAppearanceTest, EveryWindowTakesTheNewColours) {
  QWidget window;
  const QColor light = window.palette().color(QPalette::Window);
  show(of(Scheme::dark));
  EXPECT_NE(window.palette().color(QPalette::Window), light);
  EXPECT_TRUE(Theme(window.palette()).isDark);
  show(of(Scheme::dark, true));
  EXPECT_TRUE(Theme(window.palette()).isHighContrast);
  show(of(Scheme::light));
  EXPECT_EQ(window.palette().color(QPalette::Window), light);
}

TEST_F(ApplicationAppearanceTest, TheApplicationTakesEveryColour) {
  Appearance appearance = of(Scheme::dark);
  appearance.accent = QColor(0x9141ac);
  show(appearance);
  EXPECT_EQ(QApplication::palette(), paletteFor(appearance, std::nullopt));
}

TEST_F(ApplicationAppearanceTest, LessMotionReachesWidgets) {
  QWidget widget;
  EXPECT_FALSE(isMotionReduced(widget));
  Appearance appearance;
  appearance.isMotionReduced = true;
  show(appearance);
  EXPECT_TRUE(isMotionReduced(widget));
  show({});
  EXPECT_FALSE(isMotionReduced(widget));
}

TEST_F(ApplicationAppearanceTest, TheFontIsTheDesktopsWhereItTellsOne) {
  const QFont before = QApplication::font();
  Appearance appearance;
  appearance.font = QFont(QStringLiteral("DejaVu Serif"), 15);
  show(appearance);
  QLabel label;
  EXPECT_EQ(label.font().family(), QStringLiteral("DejaVu Serif"));
  EXPECT_EQ(label.font().pointSize(), 15);
  show({});
  EXPECT_EQ(QApplication::font(), before);
}

TEST_F(ApplicationAppearanceTest, TheSameAgainTouchesNothing) {
  class Counting : public QWidget {
   public:
    int count = 0;

   protected:
    void changeEvent(QEvent* event) override { count += event->type() == QEvent::PaletteChange; }
  } widget;
  show(of(Scheme::dark));
  const int count = widget.count;
  EXPECT_GT(count, 0);
  show(of(Scheme::dark));
  EXPECT_EQ(widget.count, count);
}

}  // namespace
}  // namespace quillmere
