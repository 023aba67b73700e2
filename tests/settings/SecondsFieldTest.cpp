#include "settings/SecondsField.h"

#include <gtest/gtest.h>
#include <QtGui/QWheelEvent>
#include <QtTest/QTest>

namespace quillmere {
namespace {

class SecondsFieldTest : public ::testing::Test {
 protected:
  SecondsFieldTest() {
    field.setValue(10);
    QObject::connect(&field, &QSpinBox::valueChanged, &window, [this](int value) { told.push_back(value); });
    field.setFixedWidth(120);
    window.show();
    window.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    field.setFocus();
  }
  int typed(const char* digits) {
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, QLatin1String(digits));
    QTest::keyClick(&field, Qt::Key_Return);
    return field.value();
  }
  void turnWheel() {
    const QPointF place(field.rect().center());
    QWheelEvent turn(place, field.mapToGlobal(place), {}, {0, 120}, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase,
                     false);
    QCoreApplication::sendEvent(&field, &turn);
  }
  QWidget window;
  SecondsField field{3, 300, QStringLiteral("Seconds"), &window};
  std::vector<int> told;
};

TEST_F(SecondsFieldTest, WhatIsInRangeIsTakenAsItIs) {
  EXPECT_EQ(typed("25"), 25);
  EXPECT_EQ(typed("300"), 300);
  EXPECT_EQ(typed("3"), 3);
  EXPECT_EQ(told, (std::vector<int>{25, 300, 3}));
}

TEST_F(SecondsFieldTest, WhatIsBeyondBecomesTheNearest) {
  EXPECT_EQ(typed("500"), 300);
  EXPECT_EQ(typed("2"), 3);
  EXPECT_EQ(typed("0"), 3);
  EXPECT_EQ(typed("999999"), 300);
  EXPECT_EQ(field.text(), QStringLiteral("300"));
}

TEST_F(SecondsFieldTest, AlsoWhenTheFocusGoes) {
  field.selectAll();
  QTest::keyClicks(&field, QStringLiteral("1000"));
  EXPECT_EQ(field.value(), 10);
  field.clearFocus();
  EXPECT_EQ(field.value(), 300);
}

TEST_F(SecondsFieldTest, NothingButDigitsCanBeTyped) {
  EXPECT_EQ(typed("-4x5"), 45);
  EXPECT_EQ(typed("12345678"), 300) << "as many digits as make sense";
  EXPECT_EQ(typed("77"), 77);
  field.selectAll();
  QTest::keyClick(&field, Qt::Key_Backspace);
  QTest::keyClick(&field, Qt::Key_Return);
  EXPECT_EQ(field.value(), 77) << "nothing is no number";
}

TEST_F(SecondsFieldTest, TheWheelTurnsItOnlyWithTheKeyboard) {
  turnWheel();
  EXPECT_EQ(field.value(), 11);
  field.clearFocus();
  turnWheel();
  EXPECT_EQ(field.value(), 11);
}

}  // namespace
}  // namespace quillmere
