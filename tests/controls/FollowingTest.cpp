#include <gtest/gtest.h>
#include <QtGui/QPainter>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QSpinBox>

#include "controls/ActionButton.h"
#include "controls/AppearanceStyle.h"
#include "controls/ApplicationAppearance.h"
#include "controls/SymbolLabel.h"
#include "controls/ThemedLabel.h"

namespace quillmere {
namespace {

using Scheme = Appearance::Scheme;

/// The same widgets through every change of the desktop.
class FollowingTest : public ::testing::Test {
 protected:
  FollowingTest() { show(of(Scheme::light)); }
  ~FollowingTest() override { show({}); }

  static Appearance of(Scheme scheme, bool isHighContrast = false) {
    Appearance appearance;
    appearance.scheme = scheme;
    appearance.isHighContrast = isHighContrast;
    return appearance;
  }
  static Theme theme() { return Theme(QApplication::palette()); }
  /// Whether the colour is anywhere in what the widget shows.
  static bool shows(QWidget& widget, const QColor& color) {
    const QImage image = widget.grab().toImage().convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (image.pixel(x, y) == color.rgb()) return true;
      }
    }
    return false;
  }

  /// Widgets are told in a later turn of the loop.
  void show(const Appearance& appearance) {
    look.show(appearance);
    QCoreApplication::processEvents();
  }

  ApplicationAppearance& look = sharedLook();

 private:
  /// One, as in the program: the style belongs to the application.
  static ApplicationAppearance& sharedLook() {
    static ApplicationAppearance shared;
    return shared;
  }
};

TEST_F(FollowingTest, EveryWindowTakesTheNewColours) {
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

TEST_F(FollowingTest, TheApplicationTakesEveryColour) {
  Appearance appearance = of(Scheme::dark);
  appearance.accent = QColor(0x9141ac);
  show(appearance);
  EXPECT_EQ(QApplication::palette(), paletteFor(appearance, std::nullopt));
}

TEST_F(FollowingTest, ALabelKeepsItsInk) {
  for (const Ink ink : {Ink::text, Ink::secondary, Ink::warning, Ink::danger}) {
    ThemedLabel label(ink, nullptr, QStringLiteral("text"));
    for (const Appearance& appearance :
         {of(Scheme::dark), of(Scheme::light, true), of(Scheme::dark, true), of(Scheme::light)}) {
      show(appearance);
      EXPECT_EQ(label.palette().color(QPalette::WindowText), theme().color(ink));
    }
  }
}

TEST_F(FollowingTest, ASymbolIsDrawnInTheInkOfNow) {
  SymbolLabel symbol(48, Ink::warning, nullptr, QStringLiteral("photo"));
  symbol.resize(symbol.sizeHint());
  for (const Scheme scheme : {Scheme::light, Scheme::dark}) {
    show(of(scheme));
    EXPECT_TRUE(shows(symbol, theme().warning));
    EXPECT_FALSE(shows(symbol, theme().danger));
  }
  symbol.setSymbol(QStringLiteral("photo"), Ink::danger);
  EXPECT_TRUE(shows(symbol, theme().danger));
}

TEST_F(FollowingTest, ThePrimaryButtonHasTheDesktopsAccent) {
  ActionButton button(ActionButton::Role::primary, {}, QStringLiteral("Temporary"));
  button.resize(button.sizeHint());
  for (const QColor& accent : {QColor(0x9141ac), QColor(Qt::yellow)}) {
    Appearance appearance = of(Scheme::dark);
    appearance.accent = accent;
    show(appearance);
    EXPECT_TRUE(shows(button, accent));
    EXPECT_TRUE(shows(button, theme().onAccent));
  }
}

TEST_F(FollowingTest, HigherContrastOutlinesControls) {
  show(of(Scheme::dark, true));
  QCheckBox box;
  QSpinBox number;
  for (QWidget* control : {static_cast<QWidget*>(&box), static_cast<QWidget*>(&number)}) {
    control->resize(control->sizeHint());
    control->setFont(QFont(QStringLiteral("no font has this name"), 1));
    EXPECT_TRUE(shows(*control, Qt::white)) << control->metaObject()->className();
  }
  show(of(Scheme::dark));
  EXPECT_FALSE(shows(box, Qt::white));
}

TEST_F(FollowingTest, AFieldThatShallHaveNoFrameGetsNone) {
  show(of(Scheme::dark, true));
  QLineEdit field;
  field.resize(field.sizeHint());
  EXPECT_TRUE(shows(field, theme().fieldBorder));
  field.setFrame(false);
  EXPECT_FALSE(shows(field, theme().fieldBorder));
}

TEST_F(FollowingTest, AButtonHasAnOutlineOnlyInHigherContrast) {
  ActionButton button(ActionButton::Role::secondary, {}, {});
  button.resize(button.sizeHint());
  const auto atEdge = [&button] {
    const QImage image = button.grab().toImage();
    return image.pixelColor(image.width() / 2, 0) != image.pixelColor(image.width() / 2, image.height() / 2);
  };
  EXPECT_FALSE(atEdge());
  show(of(Scheme::light, true));
  EXPECT_TRUE(atEdge());
}

TEST_F(FollowingTest, LessMotionReachesWidgets) {
  QWidget widget;
  EXPECT_FALSE(isMotionReduced(widget));
  Appearance appearance;
  appearance.isMotionReduced = true;
  show(appearance);
  EXPECT_TRUE(isMotionReduced(widget));
  show({});
  EXPECT_FALSE(isMotionReduced(widget));
}

TEST_F(FollowingTest, TheFontIsTheDesktopsWhereItTellsOne) {
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

TEST_F(FollowingTest, TheSameAgainTouchesNothing) {
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

TEST_F(FollowingTest, ALabelOfAnotherSizeGoesByTheNewFont) {
  QWidget window;
  ThemedLabel label(Ink::text, &window, QStringLiteral("Title"));
  label.setTextSize(1.5, QFont::DemiBold);
  const QFont before = QApplication::font();
  QFont large = before;
  large.setPointSizeF(20);
  QApplication::setFont(large);
  QCoreApplication::processEvents();
  EXPECT_EQ(label.font().pointSizeF(), 30);
  EXPECT_EQ(label.font().weight(), QFont::DemiBold);
  QApplication::setFont(before);
  QCoreApplication::processEvents();
  EXPECT_EQ(label.font().pointSizeF(), before.pointSizeF() * 1.5);
}

}  // namespace
}  // namespace quillmere
