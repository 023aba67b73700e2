#include "popup/AccessibleDurationPicker.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractItemView>
#include <QtWidgets/QVBoxLayout>

#include "popup/DurationPicker.h"
#include "support/Printing.h"
#include "support/ToldToReaders.h"

namespace quillmere {
namespace {

class AccessibleDurationPickerTest : public ::testing::Test {
 protected:
  AccessibleDurationPickerTest() {
    column.addWidget(&picker);
    picker.setDuration(TemporaryDuration::fiveMinutes);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
  }
  QAccessibleInterface& heard() { return *QAccessible::queryAccessibleInterface(&picker); }
  QAccessibleTextInterface& text() { return *heard().textInterface(); }

  QWidget window;
  QVBoxLayout column{&window};
  DurationPicker picker{&window};
};

TEST_F(AccessibleDurationPickerTest, IsNamedByItsPurposeAndItsValueIsTheChosenTime) {
  EXPECT_EQ(heard().role(), QAccessible::ComboBox);
  for (const TemporaryDuration duration : kTemporaryDurations) {
    picker.setDuration(duration);
    EXPECT_EQ(heard().text(QAccessible::Name), QStringLiteral("Temporary duration"));
    EXPECT_EQ(heard().text(QAccessible::Value), menuText(duration));
    EXPECT_EQ(text().text(0, text().characterCount()), menuText(duration));
    EXPECT_EQ(text().text(0, -1), menuText(duration));
  }
  EXPECT_EQ(heard().text(QAccessible::Description), picker.toolTip());
}

TEST_F(AccessibleDurationPickerTest, PartsOfTheTextAreToldToo) {
  EXPECT_EQ(text().text(2, 5), QStringLiteral("Min"));
  int start = -1;
  int end = -1;
  text().selection(0, &start, &end);
  EXPECT_EQ(std::pair(start, end), std::pair(0, 9)) << "a choice replaces all of it";
  text().attributes(3, &start, &end);
  EXPECT_EQ(std::pair(start, end), std::pair(0, 9));
}

TEST_F(AccessibleDurationPickerTest, AListThatIsClosedHasNoItems) {
  EXPECT_EQ(heard().childCount(), 0);
  EXPECT_EQ(heard().child(0), nullptr);
  EXPECT_TRUE(heard().state().collapsed);
  heard().actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
  EXPECT_TRUE(heard().state().expanded);
  ASSERT_EQ(heard().childCount(), 1);
  QAccessibleInterface* list = heard().child(0);
  ASSERT_TRUE(list);
  EXPECT_EQ(list->object(), picker.view());
  EXPECT_EQ(heard().indexOfChild(list), 0);
  EXPECT_EQ(list->childCount(), picker.count());
  heard().actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
  EXPECT_EQ(heard().childCount(), 0);
  EXPECT_EQ(heard().indexOfChild(list), -1);
}

/// Nobody asked about a choice that the program makes for the next screenshot.
TEST_F(AccessibleDurationPickerTest, ANewChoiceIsToldWhereTheKeyboardIs) {
  picker.setFocus();
  testing::ToldToReaders told;
  QTest::keyClick(&picker, Qt::Key_Down);
  const auto heard = told.take(QAccessible::TextInserted, picker);
  ASSERT_EQ(heard.size(), 1u);
  EXPECT_EQ(heard[0].text, QStringLiteral("15 Minutes"));
  picker.clearFocus();
  picker.setDuration(TemporaryDuration::oneHour);
  EXPECT_TRUE(told.take(QAccessible::TextInserted, picker).empty());
}

}  // namespace
}  // namespace quillmere
