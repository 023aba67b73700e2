#include "controls/AnalysisStatusRow.h"

#include <gtest/gtest.h>
#include <QtGui/QClipboard>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

#include "controls/SymbolLabel.h"
#include "support/Printing.h"

namespace quillmere {
namespace {

class AnalysisStatusRowTest : public ::testing::Test {
 protected:
  const QLabel& text() const { return *row.findChild<QLabel*>(); }
  QPushButton& button() const { return *row.findChild<QPushButton*>(); }
  bool hasSymbol() const {
    for (const QWidget* child : row.findChildren<QWidget*>()) {
      if (dynamic_cast<const SymbolLabel*>(child)) return child->isVisibleTo(&row);
    }
    return false;
  }
  AnalysisStatusRow row{nullptr};
};

TEST_F(AnalysisStatusRowTest, ADescriptionStandsByItself) {
  row.show({QStringLiteral("A login page"), false, false});
  EXPECT_EQ(text().text(), QStringLiteral("A login page"));
  EXPECT_FALSE(hasSymbol());
  EXPECT_FALSE(button().isVisibleTo(&row));
}

TEST_F(AnalysisStatusRowTest, AFailureHasASymbolAndPerhapsAnotherAttempt) {
  row.show({QStringLiteral("The model is busy."), true, true});
  EXPECT_TRUE(hasSymbol());
  EXPECT_TRUE(button().isVisibleTo(&row));
  row.show({QStringLiteral("The content was blocked."), true, false});
  EXPECT_TRUE(hasSymbol());
  EXPECT_FALSE(button().isVisibleTo(&row));
}

TEST_F(AnalysisStatusRowTest, TheButtonSaysWhatItDoesAndDoesIt) {
  row.show({QStringLiteral("The model is busy."), true, true});
  EXPECT_EQ(&row.button(), &button());
  EXPECT_EQ(button().accessibleName(), QStringLiteral("Analyze Again"));
  EXPECT_EQ(button().toolTip(), QStringLiteral("Analyze Again"));
  QTest::mouseClick(&button(), Qt::LeftButton);  // nobody listens yet
  int count = 0;
  row.onAnalyze = [&] { ++count; };
  QTest::mouseClick(&button(), Qt::LeftButton);
  EXPECT_EQ(count, 1);
}

TEST_F(AnalysisStatusRowTest, WhatAModelWroteIsTextAndNothingElse) {
  row.show({QStringLiteral("<a href=\"https://example.com\">A page</a>"), false, false});
  EXPECT_EQ(text().textFormat(), Qt::PlainText);
  EXPECT_FALSE(text().openExternalLinks());
}

TEST_F(AnalysisStatusRowTest, ADescriptionCanBeSelectedByKeyboardAndAStatusCannot) {
  row.show({QStringLiteral("No description yet.")});
  EXPECT_EQ(text().focusPolicy(), Qt::NoFocus);
  EXPECT_EQ(text().textInteractionFlags(), Qt::NoTextInteraction);
  row.show({QStringLiteral("A login page"), false, false, true});
  row.QWidget::show();
  row.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&row));
  row.text().clearFocus();
  row.text().setFocus(Qt::TabFocusReason);
  EXPECT_EQ(text().selectedText(), QStringLiteral("A login page"));
  QGuiApplication::clipboard()->clear();
  QTest::keyClick(&row.text(), Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("A login page"));
  row.text().clearFocus();
  EXPECT_FALSE(text().hasSelectedText());
}

TEST_F(AnalysisStatusRowTest, ALongTextTakesSeveralLinesAtOnce) {
  row.show({QStringLiteral("Short"), false, false});
  const int low = row.heightForWidth(200);
  row.show({QStringLiteral("word ").repeated(60), false, false});
  EXPECT_GT(row.heightForWidth(200), 2 * low) << "in the same turn of the loop";
}

}  // namespace
}  // namespace quillmere
