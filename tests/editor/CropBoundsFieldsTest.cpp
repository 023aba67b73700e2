#include "editor/CropBoundsFields.h"

#include <gtest/gtest.h>
#include <QtTest/QTest>
#include <QtWidgets/QPushButton>

#include "support/Printing.h"

namespace quillmere {
namespace {

class CropBoundsFieldsTest : public ::testing::Test {
 protected:
  CropBoundsFieldsTest() {
    fields.onEdit = [this](const QRect& bounds) {
      edits.push_back(bounds);
      selection.setByHand(bounds);
      fields.show(selection);
    };
    fields.onSelectWholeImage = [this] { ++wholes; };
    fields.show(selection);
    fields.QWidget::show();
    fields.activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&fields));
  }
  void select(const QRect& rect) {
    selection.setByHand(rect);
    fields.show(selection);
  }
  PixelField& field(const char* name) {
    for (auto* found : fields.findChildren<QLineEdit*>()) {
      if (found->accessibleName() == QString::fromUtf8(name)) return dynamic_cast<PixelField&>(*found);
    }
    throw std::out_of_range(name);
  }
  void type(const char* name, const char* number) {
    field(name).setFocus();
    field(name).selectAll();
    QTest::keyClicks(&field(name), QString::fromUtf8(number));
  }
  QStringList shown() { return {field("X").text(), field("Y").text(), field("Width").text(), field("Height").text()}; }
  static QStringList list(const char* numbers) { return QString::fromUtf8(numbers).split(QLatin1Char(' ')); }

  CropSelection selection{QSize(100, 80)};
  CropBoundsFields fields{nullptr};
  std::vector<QRect> edits;
  int wholes = 0;
};

TEST_F(CropBoundsFieldsTest, TheyShowTheSelectionAndNothingWithoutOne) {
  EXPECT_EQ(shown(), list("   "));
  select({1, 2, 30, 40});
  EXPECT_EQ(shown(), list("1 2 30 40"));
  select({});
  EXPECT_EQ(shown(), list("   "));
}

TEST_F(CropBoundsFieldsTest, AnEditIsTakenByReturnAndOnLeaving) {
  select({1, 2, 30, 40});
  type("X", "5");
  EXPECT_TRUE(edits.empty());
  QTest::keyClick(&field("X"), Qt::Key_Return);
  EXPECT_EQ(edits.back(), QRect(5, 2, 30, 40));
  type("Width", "50");
  QTest::keyClick(&field("Width"), Qt::Key_Tab);
  EXPECT_EQ(edits.back(), QRect(5, 2, 50, 40));
  EXPECT_EQ(edits.size(), 2U);
}

TEST_F(CropBoundsFieldsTest, WhatIsNotInsideStaysTypedUntilTheFourTogetherAre) {
  select({1, 2, 30, 40});
  type("X", "80");
  QTest::keyClick(&field("X"), Qt::Key_Return);
  EXPECT_EQ(fields.problem(), QString::fromUtf8("Enter bounds inside the image."));
  EXPECT_EQ(shown(), list("80 2 30 40"));
  EXPECT_TRUE(edits.empty());
  type("Width", "20");
  QTest::keyClick(&field("Width"), Qt::Key_Return);
  EXPECT_EQ(edits.back(), QRect(80, 2, 20, 40));
  EXPECT_TRUE(fields.problem().isEmpty());
}

TEST_F(CropBoundsFieldsTest, WhatIsNoNumberOrNoSizeIsRefused) {
  for (const char* typed : {"abc", "", "0", "-3", "1.5", "99999999999999999999"}) {
    select({1, 2, 30, 40});
    type("Height", typed);
    if (!*typed) field("Height").clear();
    QTest::keyClick(&field("Height"), Qt::Key_Return);
    EXPECT_FALSE(fields.problem().isEmpty()) << typed;
    EXPECT_EQ(field("Height").text(), QString::fromUtf8(typed));
    EXPECT_TRUE(edits.empty()) << typed;
    select({1, 2, 30, 41});
    EXPECT_TRUE(fields.problem().isEmpty()) << "a selection that was made elsewhere takes its place";
    EXPECT_EQ(shown(), list("1 2 30 41"));
  }
}

TEST_F(CropBoundsFieldsTest, TheSameSelectionLeavesWhatIsBeingTyped) {
  select({1, 2, 30, 40});
  type("X", "7");
  fields.show(selection);
  EXPECT_EQ(field("X").text(), QStringLiteral("7"));
}

TEST_F(CropBoundsFieldsTest, LeavingThemAsTheyWereIsNoEdit) {
  select({1, 2, 30, 40});
  field("X").setFocus();
  QTest::keyClick(&field("X"), Qt::Key_Tab);
  type("Y", "02");
  QTest::keyClick(&field("Y"), Qt::Key_Return);
  EXPECT_TRUE(edits.empty());
  EXPECT_EQ(field("Y").text(), QStringLiteral("2"));
}

TEST_F(CropBoundsFieldsTest, WithoutASelectionTheFourAreFilledInOneAfterAnother) {
  const char* numbers[] = {"1", "2", "30"};
  const char* names[] = {"X", "Y", "Width"};
  for (size_t i = 0; i < 3; ++i) {
    type(names[i], numbers[i]);
    QTest::keyClick(&field(names[i]), Qt::Key_Tab);
    EXPECT_TRUE(fields.problem().isEmpty()) << names[i];
  }
  type("Height", "40");
  QTest::keyClick(&field("Height"), Qt::Key_Tab);
  EXPECT_EQ(edits, std::vector{QRect(1, 2, 30, 40)});
}

TEST_F(CropBoundsFieldsTest, ArrowKeysStepAndNotOutOfThePicture) {
  select({0, 2, 30, 40});
  QTest::keyClick(&field("X"), Qt::Key_Up);
  EXPECT_EQ(edits.back(), QRect(1, 2, 30, 40));
  QTest::keyClick(&field("X"), Qt::Key_Up, Qt::ShiftModifier);
  EXPECT_EQ(edits.back(), QRect(11, 2, 30, 40));
  QTest::keyClick(&field("Y"), Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(edits.size(), 2U);
  EXPECT_TRUE(fields.problem().isEmpty());
  QTest::keyClick(&field("Height"), Qt::Key_Down);
  EXPECT_EQ(edits.back(), QRect(11, 2, 30, 39));
}

TEST_F(CropBoundsFieldsTest, WhatAHeldKeyEditsBelongsTogether) {
  select({0, 2, 30, 40});
  QStringList told;
  fields.onHeldChanged = [&] { told << (fields.isHeld() ? QStringLiteral("held") : QStringLiteral("over")); };
  fields.onEdit = [&](const QRect& bounds) {
    told << QString::number(bounds.x());
    EXPECT_TRUE(fields.isHeld());
    select(bounds);
  };
  QTest::keyPress(&field("X"), Qt::Key_Up);
  QTest::keyPress(&field("X"), Qt::Key_Up);
  QTest::keyRelease(&field("X"), Qt::Key_Up);
  EXPECT_EQ(told, list("held 1 2 over"));
  EXPECT_FALSE(fields.isHeld());
}

TEST_F(CropBoundsFieldsTest, WhatIsTypedIsTakenBeforeAnActionAndRefusedUntilItIsMended) {
  select({1, 2, 30, 40});
  type("X", "5");
  EXPECT_TRUE(fields.takeTyped());
  EXPECT_EQ(edits.back(), QRect(5, 2, 30, 40));
  type("X", "500");
  EXPECT_FALSE(fields.takeTyped());
  EXPECT_FALSE(fields.problem().isEmpty());
  EXPECT_FALSE(fields.takeTyped()) << "nobody means the bounds that the fields do not show";
  type("X", "6");
  EXPECT_TRUE(fields.takeTyped());
}

TEST_F(CropBoundsFieldsTest, SelectWholeImageTakesThePlaceOfWhatWasTyped) {
  select({0, 0, 100, 80});
  type("X", "500");
  QTest::keyClick(&field("X"), Qt::Key_Return);
  auto* button = fields.findChild<QPushButton*>();
  EXPECT_EQ(button->text(), QString::fromUtf8("Select Whole Image"));
  EXPECT_TRUE(button->toolTip().contains(QString::fromUtf8("Set the crop area to the whole screenshot")));
  QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_EQ(wholes, 1);
  EXPECT_EQ(shown(), list("0 0 100 80"));
  EXPECT_TRUE(fields.problem().isEmpty());
}

}  // namespace
}  // namespace quillmere
