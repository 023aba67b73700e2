#include "popup/DurationPicker.h"

#include <QtTest/QTest>
#include <QtWidgets/QLineEdit>

#include "controls/DesktopLook.h"

namespace quillmere {
namespace {

TEST(DurationPicker, OffersEveryDurationInTheOrderOfTheMenus) {
  DurationPicker picker(nullptr);
  ASSERT_EQ(picker.count(), static_cast<int>(kTemporaryDurations.size()));
  for (int i = 0; i < picker.count(); ++i) {
    picker.setCurrentIndex(i);
    EXPECT_EQ(picker.duration(), kTemporaryDurations[static_cast<size_t>(i)]);
    EXPECT_EQ(picker.currentText(), menuText(picker.duration()));
  }
}

TEST(DurationPicker, IsAsWideAsItsLongestTextNeedsWhicheverIsChosen) {
  DurationPicker picker(nullptr);
  const QSize size = picker.sizeHint();
  EXPECT_EQ(size.height(), 36);
  for (const TemporaryDuration duration : kTemporaryDurations) {
    picker.setDuration(duration);
    EXPECT_EQ(picker.sizeHint(), size);
    const QString whole = QStringLiteral("Temporary for ") + menuText(duration);
    EXPECT_GT(size.width(), picker.fontMetrics().horizontalAdvance(whole));
  }
}

TEST(DurationPicker, WithoutAChoiceItIsFiveMinutes) {
  DurationPicker picker(nullptr);
  picker.setCurrentIndex(-1);
  EXPECT_EQ(picker.duration(), TemporaryDuration::fiveMinutes);
}

class DurationPickerLook : public testing::DesktopLook {};

TEST_F(DurationPickerLook, SaysThatItIsTheTimeOfTemporary) {
  DurationPicker picker(nullptr);
  picker.resize(picker.sizeHint());
  const int label = 12 + picker.fontMetrics().horizontalAdvance(QStringLiteral("Temporary for"));
  const QImage image = picture(picker);
  const auto shows = [&image](const QColor& color, int first, int last) {
    for (int y = 0; y < image.height(); ++y) {
      for (int x = first; x < last; ++x) {
        if (image.pixel(x, y) == color.rgb()) return true;
      }
    }
    return false;
  };
  EXPECT_TRUE(shows(theme().secondaryText, 0, label));
  EXPECT_FALSE(shows(theme().text, 0, label));
  EXPECT_TRUE(shows(theme().text, label, image.width()));
}

TEST_F(DurationPickerLook, WhereLanguageRunsFromTheRightItIsMirrored) {
  DurationPicker picker(nullptr);
  picker.setLayoutDirection(Qt::RightToLeft);
  picker.resize(picker.sizeHint());
  const QImage image = picture(picker);
  const auto firstColumn = [&](const QColor& color) {
    for (int x = 0; x < image.width(); ++x) {
      for (int y = 0; y < image.height(); ++y) {
        if (image.pixel(x, y) == color.rgb()) return x;
      }
    }
    return -1;
  };
  const int label = picker.fontMetrics().horizontalAdvance(QStringLiteral("Temporary for "));
  EXPECT_LT(firstColumn(theme().secondaryText), 12 + 16) << "the arrow";
  EXPECT_GE(firstColumn(theme().text), 12 + 16) << "the time";
  bool hasLabel = false;
  for (int x = image.width() - 12 - label; x < image.width() - 12; ++x) {
    for (int y = 0; y < image.height(); ++y) {
      hasLabel |= image.pixel(x, y) == theme().secondaryText.rgb();
      EXPECT_NE(image.pixel(x, y), theme().text.rgb()) << x;
    }
  }
  EXPECT_TRUE(hasLabel);
}

TEST_F(DurationPickerLook, TheKeyboardIsShownWhereItIs) {
  QWidget window;
  DurationPicker picker(&window);
  picker.resize(picker.sizeHint());
  QLineEdit other(&window);
  other.move(0, 60);
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  other.setFocus();
  EXPECT_FALSE(shows(picker, theme().focusRing));
  picker.setFocus();
  EXPECT_TRUE(shows(picker, theme().focusRing));
}

}  // namespace
}  // namespace quillmere
